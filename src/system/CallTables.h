#pragma once

#include "logging/LogCalls.h"
#include "motion/ActionCalls.h"
#include "motion/WalkCalls.h"
#include "system/ClockCalls.h"
#include "system/FileCalls.h"
#include "system/LibraryCalls.h"
#include "system/LinkCalls.h"
#include "system/ProcessCalls.h"
#include "system/RegistryCalls.h"
#include "system/ServiceCalls.h"
#include "system/ShellCalls.h"
#include "system/SystemCalls.h"
#include "system/TextCalls.h"
#include "system/VersionCalls.h"

/// Calls `visit.template operator()<table>()` for each call table.
template <class Visitor>
void visitCallTables(Visitor&& visit) {
    visit.template operator()<actionCalls>();
    visit.template operator()<clockCalls>();
    visit.template operator()<fileCalls>();
    visit.template operator()<libraryCalls>();
    visit.template operator()<linkCalls>();
    visit.template operator()<logCalls>();
    visit.template operator()<processCalls>();
    visit.template operator()<registryCalls>();
    visit.template operator()<serviceCalls>();
    visit.template operator()<shellCalls>();
    visit.template operator()<systemCalls>();
    visit.template operator()<textCalls>();
    visit.template operator()<versionCalls>();
    visit.template operator()<walkCalls>();
}

/// Stands around every call of every table for the life of the object: in place of each call comes
///
///     handler.around<table, member>(name, real, arguments...)
///
/// where `real` is what the table held before. So a tool sees all that the engine does on the
/// machine, and can let a call through, follow it or answer in its place. One object at a time for
/// each class of handlers; those of several classes nest.
template <class Handler>
class CallWrapper {
public:
    explicit CallWrapper(Handler& handler) {
        active = &handler;
        visitCallTables([]<auto & table>() {
            table.visitCalls([]<auto member>(const char* name) {
                using Wrapped = Slot<table, member, decltype(+(table.*member))>;
                Wrapped::name = name;
                Wrapped::real = table.*member;
                table.*member = &Wrapped::call;
            });
        });
    }
    CallWrapper(const CallWrapper&) = delete;
    CallWrapper& operator=(const CallWrapper&) = delete;
    ~CallWrapper() {
        visitCallTables([]<auto & table>() {
            table.visitCalls([]<auto member>(const char*) {
                table.*member = Slot<table, member, decltype(+(table.*member))>::real;
            });
        });
        active = nullptr;
    }

private:
    template <auto& table, auto member, class Function>
    struct Slot;
    template <auto& table, auto member, class Result, class... Arguments>
    struct Slot<table, member, Result (*)(Arguments...)> {
        static Result call(Arguments... arguments) {
            return active->template around<table, member>(name, real, arguments...);
        }
        static inline const char* name = nullptr;
        static inline Result (*real)(Arguments...) = nullptr;
    };

    static inline Handler* active = nullptr;
};
