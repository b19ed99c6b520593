#include "calls/Scenario.h"

#include <algorithm>
#include <iterator>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "support/RecordingObserver.h"
#include "support/Requirements.h"
#include "support/Text.h"
#include "support/VersionedFile.h"

namespace {

const char* needsWine() {
    return runsUnderWine() ? nullptr : "changes the machine, or asks the user something";
}

const char* needsOpenedAttributes() {
    return opensReadOnlyFilesForAttributes() ? nullptr
                                             : "the user can't open a read-only file under Wine";
}

void prepareNothing(Machine&, int32_t) {}

/// Around the elements of a scenario stand all others that only hold or refer, and behind them
/// something that tells that the run has gone on.
constexpr char frame[] =
    "<Script><Variable Id='FOUND' Type='int' Value='0'/><Product>"
    "<Directory Id='APPLICATIONROOTDIRECTORY' Path='{app}'/>"
    "<DirectoryRef Id='APPLICATIONROOTDIRECTORY'><Component Id='Main'>ELEMENTS</Component>"
    "</DirectoryRef>"
    "<Feature Id='All'><ComponentRef Id='Main'/></Feature>"
    "<Fragment Id='End'><Caution Title='end'/></Fragment>"
    "<InstallExecuteSequence><FeatureRef Id='All'/><FragmentRef Id='End'/></InstallExecuteSequence>"
    "</Product></Script>";

/// Waits, where the engine sleeps, for the program that it has ended.
class EndOfProgram {
public:
    explicit EndOfProgram(const std::optional<Sleeper>& program) : program(program) {}

    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* /*name*/, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        if constexpr (isCall<member>(&ClockCalls::Sleep)) {
            if (program)
                program->waitUntilEnded();
        }
        return real(arguments...);
    }

private:
    const std::optional<Sleeper>& program;
};

/// An observer of the run, with the answer ANSWER_IGNORE behind those that it is given.
class IgnoringObserver final : public IterfaceObserver {
public:
    IgnoringObserver(const Machine& machine, std::deque<int32_t> answers)
        : machine(machine), answers(std::move(answers)) {}

    void update(IterfaceProduct* product) override {
        const ActionInfo& info = product->actionInfo;
        lines.push_back("heard " + std::to_string(info.code) + textsOf(info) + " at " +
                        std::to_string(product->progress) + "%");
    }

    ObserverAnswer askOnError(ErrorInfo* error) override {
        lines.push_back("asked about " + textOf(*error));
        if (answers.empty())
            return ANSWER_IGNORE;
        const int32_t answer = answers.front();
        answers.pop_front();
        return static_cast<ObserverAnswer>(answer);
    }

    std::string textOf(const ErrorInfo& error) const {
        std::wstring message = error.message;
        if (!message.empty() && message == systemMessage(error.systemError))
            message = L"(the system's text)";
        std::string text = std::to_string(error.code) + textsOf(error);
        if (error.systemError != 0)
            text += " by " + std::to_string(static_cast<int32_t>(error.systemError));
        return message.empty() ? text : text + ": " + machine.readable(message);
    }

    std::vector<std::string> lines;

private:
    template <class Info>
    std::string textsOf(const Info& info) const {
        std::string texts;
        for (const wchar_t* const text : {info.text1, info.text2})
            if (*text)
                texts += " " + machine.readable(text);
        return texts;
    }

    const Machine& machine;
    std::deque<int32_t> answers;
};

}  // namespace

std::string scriptOf(const Scenario& scenario) {
    std::string script = scenario.elements;
    if (!script.starts_with("<Script>")) {
        script = frame;
        const std::string_view place = "ELEMENTS";
        script.replace(script.find(place), place.size(), scenario.elements);
    }
    return script;
}

ScenarioRun runScenario(const Scenario& scenario, int32_t mode, const CallUse& use,
                        const Fault& fault, std::deque<int32_t> answers) {
    Machine machine;
    machine.folder.makeDirectory(L"app");
    scenario.prepare(machine, mode);
    const std::wstring script =
        machine.folder.write(L"script.xml", machine.withPaths(scriptOf(scenario)));

    ScenarioRun run;
    IgnoringObserver observer(machine, std::move(answers));
    CContext context;
    CallFaults faults([&](std::wstring text) { return machine.readable(std::move(text)); });
    faults.fail(use, fault);
    {
        EndOfProgram end(machine.sleeper);
        const CallWrapper<EndOfProgram> ending(end);
        const CallWrapper<CallFaults> failing(faults);
        if (!context.load(script.c_str())) {
            run.lines.push_back("not loaded: " + narrow(context.getLastError()));
        } else {
            CSubject& product = context.subject();
            product.observer = &observer;
            product.observerData = &machine.action;
            context.runMode = mode;
            const int32_t result = context.getProduct()->run(&context);
            run.lines.push_back("result " + std::to_string(result));
            run.lines.push_back("left " + observer.textOf(product.errorInfo));
            if (product.rebootRequired)
                run.lines.emplace_back("restart");
            product.observer = nullptr;
        }
    }
    context.unload();
    run.uses = std::move(faults.uses);
    run.hasFailed = faults.hasFailed;
    machine.locked.reset();
    std::ranges::copy(observer.lines, std::back_inserter(run.lines));
    std::ranges::copy(machine.picture(), std::back_inserter(run.lines));
    return run;
}

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all = {
        {"a new file", "<File Name='new\\deep\\new.txt' Source='{payload}\\new.txt'/>",
         [](Machine& machine, int32_t mode) {
             machine.payload.write(L"new.txt", "new");
             if (mode == RUNMODE_UNINSTALL)
                 machine.write(L"new\\deep\\new.txt", "new");
         }},
        {"a file that is there", "<File Name='old.txt' Source='{payload}\\old.txt'/>",
         [](Machine& machine, int32_t) {
             machine.payload.write(L"old.txt", "new");
             machine.write(L"old.txt", "old");
             machine.write(L"old.txt!@#$%", "left");
         }},
        {"a read-only file", "<File Name='kept.txt' Source='{payload}\\kept.txt'/>",
         [](Machine& machine, int32_t mode) {
             machine.payload.write(L"kept.txt", "new");
             const wchar_t* const kept = mode == RUNMODE_UNINSTALL ? L"kept.txt" : L"kept.txt!@#$%";
             machine.write(kept, "old");
             machine.makeReadOnly(kept);
         },
         needsOpenedAttributes},
        {"a file in use",
         "<File Name='used.txt' Source='{payload}\\used.txt' SupportDelayInstall='yes'/>",
         [](Machine& machine, int32_t) {
             machine.payload.write(L"used.txt", "new");
             machine.locked.emplace(machine.write(L"used.txt", "old"));
         },
         needsWine},
        {"a file without its source",
         "<File Name='gone.txt' Source='{payload}\\gone.txt'/>"
         "<File Name='more.txt' Source='{payload}\\more.txt' Vital='no'/>",
         prepareNothing},
        {"a program that runs",
         "<File Name='tool.exe' Source='{payload}\\tool.exe' KillProcess='yes'/>",
         [](Machine& machine, int32_t) {
             machine.payload.write(L"tool.exe", "new");
             machine.sleeper.emplace(machine.app(L"tool.exe"));
         },
         needsWine},
        {"a link",
         "<Shortcut Name='links\\Tool' Description='d' Target='{app}\\tool.exe'"
         " WorkingDirectory='{app}' IcoFile='{app}\\tool.ico'/>",
         [](Machine& machine, int32_t mode) {
             machine.write(L"tool.ico", "icon");
             if (mode == RUNMODE_UNINSTALL)
                 machine.write(L"links\\Tool.lnk", "link");
         }},
        {"keys",
         "<RegistryKey Action='create' Root='HKEY_CURRENT_USER' Key='{key}\\made' Title='t'>"
         "<RegistryValue Name='text' Type='REG_SZ' Value='v'/></RegistryKey>"
         "<RegistryKey Action='remove' Root='HKEY_CURRENT_USER' Key='{key}\\gone' Title='t'/>",
         [](Machine& machine, int32_t) {
             machine.key.make(L"gone\\a");
             machine.key.make(L"gone\\b");
         }},
        {"a directory", "<RemoveDirectory Path='{app}\\tree' Title='t'/>",
         [](Machine& machine, int32_t) {
             machine.write(L"tree\\a.txt", "a");
             machine.write(L"tree\\sub\\b.txt", "b");
         }},
        {"a custom action",
         "<CustomAction DllFile='{program}\\temz_test_actions.dll' DllEntry='answer'"
         " Return='check' Title='t'/>",
         prepareNothing},
        {"a program",
         "<ShellExcute File='[System32Folder]cmd.exe' ExeCommand='/c echo done>{app}\\ran.txt'"
         " Return='sync' Title='t'/>",
         prepareNothing, needsWine},
        {"a service that is started", "<ServiceControl Name='S' Action='start' Wait='yes'/>",
         [](Machine& machine, int32_t) {
             machine.services.states = {SERVICE_STOPPED};
             machine.services.statesBehindRequest = {SERVICE_START_PENDING, SERVICE_RUNNING};
         }},
        {"a service that is stopped", "<ServiceControl Name='S' Action='stop' Wait='yes'/>",
         [](Machine& machine, int32_t) {
             machine.services.states = {SERVICE_RUNNING};
             machine.services.statesBehindRequest = {SERVICE_STOP_PENDING, SERVICE_STOPPED};
         }},
        {"a service that is removed", "<ServiceControl Name='S' Action='remove' Wait='yes'/>",
         prepareNothing},
        {"a search",
         "<FileSearch Name='lib.dll' Path='{app}' Expression='FOUND = 1' MinVersion='1.0'/>"
         "<Condition Expression='FOUND E 1'><Caution Title='found'/></Condition>",
         [](Machine& machine, int32_t) {
             placeVersionedFile(machine.app(L"lib.dll"), L"1.2.0.0");
         }},
        {"facts of the system",
         "<Condition Expression='OS_BIT E 64'><Caution Title='64 bits'/></Condition>"
         "<Caution Title='[WindowsFolder]'/><CopyFile DestinationName='d' SourceName='s'/>",
         prepareNothing},
        {"texts",
         "<Script><VariableConst Id='V' Type='int' Value='1'/><Product><InstallExecuteSequence>"
         "<Condition Expression='V E 1'><Caution Title='t'/></Condition>"
         "<FragmentRef Id='F'/></InstallExecuteSequence><Fragment Id='F'><Caution Title='end'/>"
         "</Fragment></Product></Script>",
         prepareNothing},
    };
    return all;
}
