// Memory ends at each allocation of a load and a run: once, and for good. What the engine has done
// by then is what it would have done anyhow, it says so when it didn't come to the end, and the
// context serves on.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "FailingAllocation.h"
#include "engine/CContext.h"
#include "engine/CProductElement.h"
#include "logging/IterfaceObserver.h"
#include "support/ActionCall.h"
#include "support/PayloadFolder.h"
#include "support/Sweep.h"
#include "support/TestFolder.h"
#include "support/Text.h"
#include "system/CallTables.h"
#include "trace/CallEffect.h"
#include "trace/CallText.h"

namespace {

using Lines = std::vector<std::wstring>;

/// Writes down what the engine would change, and answers in place of the machine, which stays as it
/// is.
class Recorder {
public:
    explicit Recorder(Lines& lines) : lines(lines) {}

    template <auto& table, auto member, class Result, class... Parameters, class... Arguments>
    Result around(const char* name, Result (*real)(Parameters...), Arguments&&... arguments) {
        using Table = std::remove_reference_t<decltype(table)>;
        if constexpr (ChangingCalls::has<member>)
            note(name, arguments...);
        if constexpr (std::is_same_v<Table, ServiceCalls>)
            return service<member, Result>(arguments...);
        else if constexpr (isCall<member>(&LibraryCalls::LoadLibraryW) ||
                           isCall<member>(&ActionCalls::CallEntry))
            return real(arguments...);
        else if constexpr (isCall<member>(&ClockCalls::Sleep) ||
                           isCall<member>(&LogCalls::WriteLine) ||
                           isCall<member>(&ShellCalls::SHChangeNotify))
            return;
        else if constexpr (std::is_same_v<Table, RegistryCalls>)
            return ERROR_SUCCESS;
        else if constexpr (ChangingCalls::has<member>)
            return std::is_same_v<Result, BOOL> ? TRUE : S_OK;
        else
            return real(arguments...);
    }

private:
    template <class... Arguments>
    void note(const char* name, Arguments... arguments) {
        const SparedAllocations spared;
        std::wstring line(name, name + std::strlen(name));
        ((line += L" " + textOfArgument(HandleNames(), true, arguments)), ...);
        lines.push_back(line);
    }

    /// A service that is stopped and started as it is told.
    template <auto member, class Result, class... Arguments>
    Result service(Arguments... arguments) {
        if constexpr (isCall<member>(&ServiceCalls::ControlService))
            state = SERVICE_STOPPED;
        if constexpr (isCall<member>(&ServiceCalls::StartServiceW))
            state = SERVICE_RUNNING;
        if constexpr (isCall<member>(&ServiceCalls::QueryServiceStatus))
            [this](SC_HANDLE, SERVICE_STATUS* status) {
                status->dwCurrentState = state;
            }(arguments...);
        if constexpr (std::is_pointer_v<Result>)
            return reinterpret_cast<Result>(this);
        else
            return TRUE;
    }

    Lines& lines;
    DWORD state = SERVICE_RUNNING;
};

/// Writes down what it is told, and ends the run at a failure.
class Listener final : public IterfaceObserver {
public:
    explicit Listener(Lines& lines) : lines(lines) {}

    void update(IterfaceProduct* product) override {
        const SparedAllocations spared;
        const ActionInfo& info = product->actionInfo;
        lines.push_back(std::to_wstring(info.code) + L" " + info.text1 + L" " + info.text2 + L" " +
                        std::to_wstring(product->progress) + L"%");
    }
    ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }

private:
    Lines& lines;
};

/// How a load and a run have ended.
struct Outcome {
    enum End { threw, notLoaded, failed, succeeded };

    End end = threw;
    std::wstring message;
    Lines lines;

    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << "end " << outcome.end << " " << narrow(outcome.message);
    for (const std::wstring& line : outcome.lines)
        *out << "\n  " << narrow(line);
}

Outcome use(CContext& context, const std::wstring& script, int32_t mode) {
    Outcome outcome;
    Recorder recorder(outcome.lines);
    Listener listener(outcome.lines);
    ActionCall call{};
    const CallWrapper<Recorder> wrapper(recorder);
    context.runMode = mode;
    bool loaded = false;
    try {
        outcome.end = Outcome::notLoaded;
        loaded = context.load(script.c_str());
        if (loaded) {
            outcome.end = Outcome::failed;
            context.getProduct()->observer = &listener;
            context.getProduct()->observerData = &call;
            const int32_t code = context.getProduct()->run(&context);
            if (code == 0)
                outcome.end = Outcome::succeeded;
            else
                outcome.message = context.getProduct()->errorInfo.message;
        }
    } catch (const std::bad_alloc&) {
        outcome.end = Outcome::threw;
    }
    if (!loaded) {
        EXPECT_EQ(context.getProduct(), nullptr);
        EXPECT_TRUE(context.getVariables().empty());
    }
    context.unload();
    return outcome;
}

/// A script, by what stands before its sequence and in it. "$" is a folder of the test's.
struct Script {
    const char* name;
    std::string definitions;
    std::string sequence;
    size_t stride = 1;  ///< where a use takes long, of so many allocations one fails
};

void PrintTo(const Script& script, std::ostream* out) {
    *out << script.name;
}

const std::string files =
    "<Directory Id='APPLICATIONROOTDIRECTORY' Path='$'><Directory Id='B' Path='b'>"
    "<Component Id='C' SupportDelayInstall='yes'>"
    "<File Name='a file with a name.txt' Source='#Source' KillProcess='yes' Vital='yes'/>"
    "<File Name='b.txt' Source='#Source'/></Component></Directory></Directory>";

const std::string links =
    "<Directory Id='D' Path='$'><Component Id='C'>"
    "<Shortcut Name='a link' Description='' Target='[D]temz-none.exe' WorkingDirectory='[D]' "
    "IcoFile='[D]temz-none.ico'/><Shortcut Name='b' Description='' Target='[D]temz-none.exe'/>"
    "</Component></Directory>";

const std::string keys =
    "<Directory Id='D' Path='$'><Component Id='C'>"
    "<RegistryKey Root='HKEY_CURRENT_USER' Key='Software\\temz tests\\none' Action='create' "
    "Title='a key'><RegistryKey Key='below the first' Action='create'>"
    "<RegistryValue Name='path' Type='REG_SZ' Value='[D]x'/>"
    "<RegistryValue Name='number' Type='REG_DWORD' Value='70000'/></RegistryKey>"
    "<Condition Expression='OS_BIT E 64'><RegistryValue Name='list' Type='REG_MULTI_SZ' "
    "Value='one of them'/></Condition></RegistryKey>"
    "<RegistryKey Root='HKEY_CURRENT_USER' Key='Software\\temz tests\\none' Action='remove'/>"
    "</Component></Directory>";

const std::string referenced =
    "<Directory Id='D' Path='$'><Directory Id='E' Path='e'/></Directory>"
    "<DirectoryRef Id='E'><Directory Id='F' Path='f'><Component Id='C'>"
    "<File Name='x' Source='[F]y'/></Component></Directory></DirectoryRef>"
    "<Fragment Id='Last'><Caution Title='[F] at the end of all'/></Fragment>"
    "<Feature Id='All'><Condition Expression='1'><FeatureRef Id='One'/></Condition></Feature>"
    "<Feature Id='One'><ComponentRef Id='C'/></Feature>";

/// What stands around a component gives it its path, be it a reference.
const std::string insideReference =
    "<Directory Id='D' Path='$'><Component Id='A'><Caution Title='a'/></Component>"
    "<ComponentRef Id='A'><Component Id='B'><File Name='a' Source='b'/></Component></ComponentRef>"
    "</Directory>";

const std::string decisions =
    "<Condition Expression='OS_BIT E 64 AND ( ! Flag OR Count GE 3 )'>"
    "<Fragment On='install'><FileSearch Name='notepad.exe' Path='[WindowsFolder]' MinVersion='0.1' "
    "Expression='Word = Other'/></Fragment>"
    "<Fragment On='uninstall'><FileSearch Name='absent' Path='$' Expression='Flag = 1'/></Fragment>"
    "<Fragment On='installupgrade'><FileSearch Name='notepad.exe' Path='[WindowsFolder]' "
    "Expression='( Word E Word ) AND ( Word = Other )'/></Fragment>"
    "<Fragment><Caution Title='#Word'/></Fragment></Condition>"
    "<Condition Expression='Count L 0'><Fragment><Caution Title='never'/></Fragment></Condition>"
    "<Condition Expression='Word E Other'><Fragment><Caution Title='[WindowsFolder]'/></Fragment>"
    "</Condition>";

const std::string programs =
    "<Fragment On='install'><ShellExcute File='$\\temz-none.exe' Return='ignore' "
    "ExeCommand='/a [D]' Show='no' Title='starts a program'/>"
    "<ServiceControl Name='temz none' Action='stop' Wait='yes'/>"
    "<ServiceControl Name='temz none' Action='start' Wait='no'/>"
    "<ServiceControl Name='temz none' Action='remove' Wait='no'/></Fragment>"
    "<Fragment On='uninstall'><RemoveDirectory Path='$' Title='removes what there is'/></Fragment>"
    "<Fragment On='upgrade'><CustomAction DllFile='temz_test_actions.dll' DllEntry='answer' "
    "Return='check' Title='calls a function'/><CopyFile DestinationName='a' SourceName='b'/>"
    "</Fragment>";

class AllocationSweepTest : public testing::TestWithParam<Script> {
protected:
    AllocationSweepTest() {
        folder.write(L"tree\\a\\b.txt", "b");
        folder.write(L"tree\\c.txt", "c");
    }

    std::wstring write(const Script& script) const {
        const std::string xml =
            "<Script><Variable Id='Flag' Type='int' Value='0'/><Variable Id='Count' Type='int' "
            "Value='3'/><Variable Id='Word' Type='string' Value='a word that is long enough'/>"
            "<VariableConst Id='Other' Type='string' Value='another word, no shorter'/>"
            "<Variable Id='Source' Type='string' Value='" +
            narrow(source) + "'/>" + "<Product><!-- of the test -->" + script.definitions +
            "<InstallExecuteSequence>" + script.sequence +
            "</InstallExecuteSequence></Product></Script>";
        std::string text;
        for (const char character : xml)
            if (character == '$')
                text += narrow(folder.path(L"tree"));
            else
                text += character;
        return folder.write(L"script.xml", text);
    }

    /// Goes through the allocations of a use, each of which fails, alone or with all behind it.
    void sweep(const std::wstring& script, int32_t mode, size_t failures, size_t stride) {
        CContext context;
        const Outcome whole = use(context, script, mode);
        ASSERT_EQ(whole.end, Outcome::succeeded) << testing::PrintToString(whole);

        bool failed = true;
        for (size_t succeeding = 0; failed; succeeding += stride) {
            Outcome outcome;
            {
                const FailingAllocation failing(succeeding, failures);
                outcome = use(context, script, mode);
                failed = failing.hasFailed();
            }
            SCOPED_TRACE(succeeding);
            expectHonest(outcome, whole);
            ASSERT_EQ(use(context, script, mode), whole);
        }
    }

    const TestFolder folder;
    const PayloadFolder payload;
    const std::wstring source = payload.write(L"a.txt", "a");

private:
    static void expectHonest(const Outcome& outcome, const Outcome& whole) {
        if (outcome.end == Outcome::succeeded) {
            EXPECT_EQ(outcome, whole);
            return;
        }
        if (outcome.end == Outcome::failed) {
            EXPECT_NE(outcome.message.find(L"Insufficient memory."), std::wstring::npos)
                << testing::PrintToString(outcome);
        }
        ASSERT_LE(outcome.lines.size(), whole.lines.size());
        EXPECT_TRUE(std::equal(outcome.lines.begin(), outcome.lines.end(), whole.lines.begin()))
            << testing::PrintToString(outcome);
    }
};

TEST_P(AllocationSweepTest, LeavesNothingUnsaid) {
    const std::wstring script = write(GetParam());
    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE})
        for (const size_t failures : {size_t{1}, SIZE_MAX}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", failures " << failures);
            sweep(script, mode, failures, sweepStride(GetParam().stride));
        }
}

INSTANTIATE_TEST_SUITE_P(
    , AllocationSweepTest,
    testing::Values(
        Script{"Files", files, "<Feature><ComponentRef Id='C'/></Feature>", 4},
        Script{"Links", links, "<Feature><ComponentRef Id='C'/></Feature>", 7},
        Script{"Keys", keys, "<Feature><ComponentRef Id='C'/></Feature>"},
        Script{"References", referenced, "<FeatureRef Id='All'/><FragmentRef Id='Last'/>"},
        Script{"InsideAReference", insideReference, "<Feature><ComponentRef Id='B'/></Feature>"},
        Script{"Decisions", "", decisions},
        Script{"Programs",
               "<Directory Id='APPLICATIONROOTDIRECTORY' Path='$'/>"
               "<Directory Id='D' Path='$'/>",
               programs}),
    [](const auto& info) { return info.param.name; });

}  // namespace
