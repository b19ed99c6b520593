#include <gmock/gmock.h>

#include <map>

#include "elements/Vocabulary.h"
#include "support/FakeCall.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "system/RegistryCalls.h"
#include "system/ServiceCalls.h"
#include "system/ShellCalls.h"

namespace {

/// The code of an announced action and that of its failure.
using Codes = std::pair<uint32_t, uint32_t>;

class ReportedCodesTest : public ScriptTest {
protected:
    /// Runs a script whose one component, in a directory, holds the element; gives what the host is
    /// told last.
    Codes codesOf(const std::string& element, RunMode mode) {
        context.unload();
        EXPECT_TRUE(loadProduct("<Directory Id='APPLICATIONROOTDIRECTORY' Path='" +
                                narrow(folder.path(L"app")) + "'><Component Id='C'>" + element +
                                "</Component></Directory><InstallExecuteSequence><Feature>"
                                "<ComponentRef Id='C'/></Feature></InstallExecuteSequence>"));
        observer.updates = {{}};
        const bool succeeded = run(mode) == 0;
        return {observer.updates.back().code,
                succeeded ? noErrorCode : context.getProduct()->errorInfo.code};
    }

    // What would reach beyond the folder is refused.
    const FakeCall<serviceCalls, &ServiceCalls::OpenSCManagerW> openManager{
        [](auto...) { return nullptr; }};
    const FakeCall<registryCalls, &RegistryCalls::RegCreateKeyExW> createKey{
        [](HKEY, LPCWSTR key, auto...) {
            return key == std::wstring(L"allowed") ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
        }};
    const FakeCall<registryCalls, &RegistryCalls::RegOpenKeyExW> openKey{
        [](auto...) { return ERROR_ACCESS_DENIED; }};
    const FakeCall<shellCalls, &ShellCalls::CoCreateInstance> createObject{
        [](auto...) { return E_ACCESSDENIED; }};
};

TEST_F(ReportedCodesTest, AreThoseOfTheVocabulary) {
    struct Row {
        const ElementKind* kind;
        const char* element;
        RunMode mode;
    };
    const Row rows[] = {
        {&conditionKind, "<Condition Expression='+'/>", RUNMODE_INSTALL},
        {&customActionKind,
         "<CustomAction DllFile='temz_test_actions' DllEntry='countCalls' Return='check'/>",
         RUNMODE_INSTALL},
        {&fileKind, "<File Name='a' Source='absent'/>", RUNMODE_INSTALL},
        {&fileKind, "<File Name='directory' Source=''/>", RUNMODE_UNINSTALL},
        {&shortcutKind, "<Shortcut Name='directory' Description='' Target='t'/>", RUNMODE_INSTALL},
        {&shortcutKind, "<Shortcut Name='directory' Description='' Target='t'/>",
         RUNMODE_UNINSTALL},
        {&shellExcuteKind, "<ShellExcute File='' Return='sync'/>", RUNMODE_INSTALL},
        {&serviceControlKind, "<ServiceControl Name='s' Action='stop' Wait=''/>", RUNMODE_INSTALL},
        {&serviceControlKind, "<ServiceControl Name='s' Action='start' Wait=''/>", RUNMODE_INSTALL},
        {&serviceControlKind, "<ServiceControl Name='s' Action='remove' Wait=''/>",
         RUNMODE_INSTALL},
        {&registryKeyKind, "<RegistryKey Action='create' Root='HKEY_CURRENT_USER' Key='k'/>",
         RUNMODE_INSTALL},
        {&registryKeyKind, "<RegistryKey Action='remove' Root='HKEY_CURRENT_USER' Key='k'/>",
         RUNMODE_INSTALL},
        {&registryValueKind,
         "<RegistryKey Action='create' Root='HKEY_CURRENT_USER' Key='allowed'>"
         "<RegistryValue Name='n' Type='REG_SZ' Value='v'/></RegistryKey>",
         RUNMODE_INSTALL},
        {&removeDirectoryKind, "<RemoveDirectory Path=''/>", RUNMODE_INSTALL},
        {&cautionKind, "<Caution Title='t'/>", RUNMODE_INSTALL},
    };
    folder.makeDirectory(L"app\\directory");
    folder.makeDirectory(L"app\\directory.lnk");

    std::map<const ElementKind*, std::vector<Codes>> reported;
    for (const Row& row : rows)
        reported[row.kind].push_back(codesOf(row.element, row.mode));

    for (const ElementKind* kind : motionKinds()) {
        SCOPED_TRACE(kind->className);
        std::vector<Codes> expected;
        for (const ElementAction& action : kind->actions)
            expected.emplace_back(action.action, action.errorCode);
        EXPECT_EQ(reported[kind], expected);
    }
}

}  // namespace
