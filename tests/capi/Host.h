#pragma once

#include <temz/temz.h>

#include "Machine.h"
#include "Report.h"
#include "support/ActionCall.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Where the scripts of the cases install. */
#define FOLDER L"C:\\temz-capi"
#define APP FOLDER L"\\app"

/* A script with a sequence of its own, some variables, a component of three files, and one of a
   file that can't be had. */
#define SCRIPT(sequence) \
    L"<Script><Variable Id='TEXT' Type='string' Value='a text'/>"                              \
    L"<Variable Id='EMPTY' Type='string' Value=''/>"                                           \
    L"<Variable Id='NUMBER' Type='int' Value='7'/><Product Id='P'>"                            \
    L"<Directory Id='APPLICATIONROOTDIRECTORY' Path='" APP L"'><Component Id='Files'>"         \
    L"<File Name='1.txt' Source='payload\\greeter.txt'/>"                                      \
    L"<File Name='2.txt' Source='payload\\manual.txt'/>"                                       \
    L"<File Name='3.txt' Source='payload\\changes.txt'/></Component>"                          \
    L"<Component Id='Missing'><File Name='4.txt' Source='payload\\missing.txt'/></Component>"  \
    L"</Directory>"                                                                            \
    L"<InstallExecuteSequence>" sequence L"</InstallExecuteSequence></Product></Script>"
#define THREE_FILES SCRIPT(L"<Feature><ComponentRef Id='Files'/></Feature>")
/* One announcement, which does nothing. */
#define ONE_CAUTION SCRIPT(L"<Fragment><Caution Title='Mind the gap'/></Fragment>")
/* An action that answers what `host.action` says. */
#define ONE_ACTION                                                                   \
    SCRIPT(                                                                          \
        L"<Fragment><CustomAction DllFile='temz_test_actions.dll' DllEntry='answer'" \
        L" Return='check' Title='A title'/></Fragment>")

enum { MOST_ANSWERS = 4, MOST_CALLS = 256, MOST_ARGUMENTS = 6, MOST_STEPS = 32 };

/* A call as the tracer heard it: as much of its texts as fits. */
typedef struct HeardCall {
    temz_char group[16];
    temz_char name[32];
    uint32_t failed;
    uint32_t systemError;
    uint32_t changes;
    uint32_t argumentCount;
    temz_char arguments[MOST_ARGUMENTS][200];
    temz_char result[32];
} HeardCall;

/* A step as the planner heard it: as much of its texts as fits. */
typedef struct HeardStep {
    temz_step step; /* but for its texts */
    temz_char element[32];
    temz_char id[32];
    temz_char object[200];
    temz_char detail[200];
    temz_char message[200];
} HeardStep;

/* A host of the library, one for each case: it does what the case says and notes what it hears. */
typedef struct Host {
    temz_context* context;
    temz_outcome outcome; /* of the last run */
    ActionCall action;    /* what the custom action of a script answers, and was given */

    /* Which update, counted from 1, it answers with what; and what it answers to each question,
       which is TEMZ_ABORT behind the last. */
    int stopAt;
    temz_answer stop;
    int answerCount;
    temz_answer answers[MOST_ANSWERS];
    /* What it does inside each of the callbacks, where the case wants anything. */
    void (*inUpdate)(const temz_outcome* now);
    void (*inAsk)(const temz_outcome* now);
    void (*inCall)(const temz_call* call);
    void (*inPermit)(const temz_call* call);
    /* Which permit, counted from 1, it refuses, and with what answer. */
    int refuseAt;
    temz_answer refusal;

    int updates;
    temz_outcome lastUpdate;
    int asks;
    temz_outcome lastAsk;
    int calls;
    HeardCall heard[MOST_CALLS];
    int permits;
    HeardCall asked; /* the last call that a permit was asked for */
    int steps;
    HeardStep heardSteps[MOST_STEPS];
    void (*inStep)(const temz_step* step);
} Host;
extern Host host;

/* What stands around each case: a fresh context with the host's observer and without a script. Once
   a case is over, the library must still be good enough to clear up behind it. */
void openHost(void);
void closeHost(void);

/* Writes a script and loads it. */
temz_status load(const temz_char* script);
temz_status run(temz_mode mode);

/* Makes a plan, of which the host hears every step. */
temz_status plan(temz_mode mode);
/* The same with other values of some variables. */
temz_status planAssuming(const temz_assumption* assumptions, uint32_t count);
/* The nth step of this kind that was heard, counted from 0; null when there is none. */
const HeardStep* heardStep(uint32_t kind, int index);

temz_observer observerOfHost(void);
temz_planner plannerOfHost(void);
temz_tracer tracerOfHost(void);
/* Lets the host hear every call from now on. */
void trace(void);
/* Lets the host be asked for a permit, and hear no call. */
void guard(void);
/* The nth call of this name that was heard, counted from 0; null when there is none. */
const HeardCall* heardCall(const temz_char* name, int index);

/* A record full of bytes, but for its size. */
temz_outcome usedOutcome(void);

#ifdef __cplusplus
}
#endif
