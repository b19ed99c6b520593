#pragma once

#include <temz/temz.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What every host must find, whatever language, compiler and runtime it is made with. Each case is
   a function of this name. */
#define CASES(CASE)                               \
    /* LibraryCases.c */                          \
    CASE(versionsOfHeaderAndLibraryAgree)         \
    CASE(olderHeadersOfTheMajorVersionAreServed)  \
    CASE(otherMajorAndNewerVersionsAreRefused)    \
    CASE(eachStatusHasItsText)                    \
    CASE(unknownStatusHasATextToo)                \
    /* LoadCases.c */                             \
    CASE(missingFileFailsWithoutAWord)            \
    CASE(fileThatIsNoXmlFailsWithoutAWord)        \
    CASE(scriptNestedTooDeepFailsWithoutAWord)    \
    CASE(scriptWithoutProductTellsSo)             \
    CASE(failedLoadLeavesNothingBehind)           \
    CASE(relativePathCountsFromCurrentDirectory)  \
    CASE(unloadForgetsScriptAndOutcome)           \
    CASE(unloadKeepsObserverTracerAndActionValue) \
    /* RunCases.c */                              \
    CASE(runTellsEachActionBeforeItIsDone)        \
    CASE(runWithoutObserverIsDoneUnseen)          \
    CASE(observerMayLackItsFunctions)             \
    CASE(failureIsAskedAndAborted)                \
    CASE(retryCarriesTheActionOutOnceMore)        \
    CASE(ignoredFailureIsASuccess)                \
    CASE(anyOtherAnswerEndsTheRun)                \
    CASE(stopBeforeTheFirstDoesNothing)           \
    CASE(stopInTheMiddleKeepsWhatWasDone)         \
    CASE(stoppedRunCanBeRepeated)                 \
    CASE(namesOutsideAsciiStayWhole)              \
    CASE(customActionReadsTheActionValue)         \
    CASE(outcomeIsEmptyBeforeTheFirstRun)         \
    CASE(outcomeCanBeAskedLater)                  \
    CASE(questionsLeaveTheOutcomeAlone)           \
    CASE(contextsRunOneAfterTheOther)             \
    /* ProductCases.c */                          \
    CASE(productIsInstalledUpgradedAndRemoved)    \
    /* TextCases.c */                             \
    CASE(lengthAloneCanBeAsked)                   \
    CASE(exactBufferIsFilled)                     \
    CASE(smallBufferIsLeftAsItIs)                 \
    CASE(textsWithoutLengthCanBeAsked)            \
    CASE(absentNamesAreNotFound)                  \
    CASE(emptyTextNeedsItsTerminator)             \
    CASE(failureTextLastsUntilTheNextCall)        \
    CASE(schemaNeedsNoContext)                    \
    /* MisuseCases.c */                           \
    CASE(nullContextIsTold)                       \
    CASE(freedContextIsTold)                      \
    CASE(garbageIsNoContext)                      \
    CASE(nullArgumentsAreTold)                    \
    CASE(scriptMustBeLoaded)                      \
    CASE(scriptIsLoadedOnce)                      \
    CASE(modesAreThree)                           \
    CASE(smallerRecordsAreRefused)                \
    CASE(largerRecordsAreServed)                  \
    /* CallbackCases.c */                         \
    CASE(callbacksMayAskAndSetButNotChange)       \
    CASE(callbacksMayNotChangeAnotherContext)     \
    CASE(callbacksSeeTheRunGoOn)                  \
    CASE(runGoesOnWithTheObserverItBeganWith)     \
    CASE(runGoesOnWithTheTracerItBeganWith)       \
    CASE(otherThreadIsTurnedAway)                 \
    CASE(otherThreadComesAfterwards)              \
    /* TraceCases.c */                            \
    CASE(traceShowsCallsInOrder)                  \
    CASE(traceShowsLinesOfTheLog)                 \
    CASE(traceShowsTheRegistryByNames)            \
    CASE(traceShowsFailures)                      \
    CASE(tracedRunEqualsAnUntracedOne)            \
    CASE(tracerMayAskForTheOutcome)               \
    CASE(whatATracerAsksIsNotTraced)              \
    CASE(traceEndsWithItsTracer)                  \
    /* CheckCases.c */                            \
    CASE(checkTellsWhatIsWrongAndWhere)           \
    CASE(checkOfAScriptWithoutFaultsTellsNone)    \
    CASE(checkRunsNothing)                        \
    CASE(checkNeedsAFileThatCanBeRead)            \
    CASE(misusedChecksAreTold)                    \
    CASE(checkInsideARunIsRefused)                \
    CASE(eachKindOfFindingCanBeAsked)             \
    CASE(traceMarksWhatChangesSomething)          \
    CASE(permitIsAskedBeforeEachChange)           \
    CASE(refusedChangeEndsTheRun)                 \
    CASE(anyOtherPermitIsARefusal)                \
    CASE(permitMayAsk)                            \
    CASE(tracerWithNeitherFunctionIsRefused)      \
    /* PlanCases.c */                             \
    CASE(planChangesNothing)                      \
    CASE(planTellsItsStepsInOrder)                \
    CASE(planTellsWhatIsLeftOut)                  \
    CASE(planTellsSearches)                       \
    CASE(planIsTracedAndPermittedLikeARun)        \
    CASE(planGoesOnPastAFailure)                  \
    CASE(planEndsWhereARunEndsUnasked)            \
    CASE(planCanBeStopped)                        \
    CASE(planNeedsNeitherPlannerNorOutcome)       \
    CASE(planLeavesVariablesAsTheyWere)           \
    CASE(planAssumesOtherValues)                  \
    CASE(assumptionsMustBePossible)               \
    CASE(stepsMayAskAndSetButNotChange)           \
    CASE(plannerIsGoodForItsPlanOnly)

#define DECLARE_CASE(name) void name(void);
CASES(DECLARE_CASE)
#undef DECLARE_CASE

/* Runs all cases and gives how many have failed. */
int runCases(void);

#ifdef __cplusplus
}
#endif
