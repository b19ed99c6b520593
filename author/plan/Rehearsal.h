#pragma once

#include <type_traits>

#include "plan/AnsweredCall.h"
#include "plan/Change.h"
#include "plan/EndedProcesses.h"
#include "plan/ShadowClock.h"
#include "plan/ShadowFiles.h"
#include "plan/ShadowLibraries.h"
#include "plan/ShadowLinks.h"
#include "plan/ShadowLog.h"
#include "plan/ShadowProcesses.h"
#include "plan/ShadowRegistry.h"
#include "plan/ShadowServices.h"
#include "trace/CallEffect.h"
#include "trace/CallFailure.h"

/// A dry run of the engine on the real machine. For a CallWrapper, and made right before it:
///
///     Rehearsal rehearsal(listener);
///     const CallWrapper<Rehearsal> wrapper(rehearsal);
///     product->run(&context);
///
/// Nothing on the machine changes. A call that would change something is answered as the system
/// would answer it, told to the listener when it would succeed, and seen by the later calls of the
/// same run: what it has made is there, what it has removed isn't. All other calls pass. The last
/// error is what the system would leave, and untouched by a call that succeeds.
///
/// What would come of a program or of a custom action isn't seen.
class Rehearsal {
public:
    explicit Rehearsal(ChangeListener& listener)
        : files(ended, listener),
          libraries(files, listener),
          links(files, listener),
          processes(files, ended, listener),
          registry(listener),
          services(files, ended, listener) {}
    Rehearsal(const Rehearsal&) = delete;
    Rehearsal& operator=(const Rehearsal&) = delete;

    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* /*name*/, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        if constexpr (requires { shadowOf(table).answer(Call<member>(), arguments...); })
            return answerIn<table, member, Result>(shadowOf(table), arguments...);
        else {
            static_assert(!ChangingCalls::has<member>, "no shadow answers this change");
            return real(arguments...);
        }
    }

private:
    /// The answer of a shadow, which asks the system much that isn't the engine's business.
    template <auto& table, auto member, class Result, class Shadow, class... Arguments>
    static Result answerIn(Shadow& shadow, Arguments&... arguments) {
        const DWORD lastError = GetLastError();
        if constexpr (std::is_void_v<Result>) {
            shadow.answer(Call<member>(), arguments...);
            SetLastError(lastError);
        } else {
            constexpr Failure rule = failureOf<table, member, Result>();
            const Result result = shadow.answer(Call<member>(), arguments...);
            if (rule == Failure::nonZeroErrorCode || !saysFailure<rule>(result))
                SetLastError(lastError);
            return result;
        }
    }

    ShadowClock& shadowOf(const ClockCalls&) { return clock; }
    ShadowFiles& shadowOf(const FileCalls&) { return files; }
    ShadowFiles& shadowOf(const VersionCalls&) { return files; }
    ShadowLibraries& shadowOf(const ActionCalls&) { return libraries; }
    ShadowLibraries& shadowOf(const LibraryCalls&) { return libraries; }
    ShadowLinks& shadowOf(const LinkCalls&) { return links; }
    ShadowLog& shadowOf(const LogCalls&) { return log; }
    ShadowProcesses& shadowOf(const ProcessCalls&) { return processes; }
    ShadowProcesses& shadowOf(const ShellCalls&) { return processes; }
    ShadowRegistry& shadowOf(const RegistryCalls&) { return registry; }
    ShadowServices& shadowOf(const ServiceCalls&) { return services; }

    EndedProcesses ended;
    ShadowClock clock;
    ShadowFiles files;
    ShadowLibraries libraries;
    ShadowLinks links;
    ShadowLog log;
    ShadowProcesses processes;
    ShadowRegistry registry;
    ShadowServices services;
};
