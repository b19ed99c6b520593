#include "interruption/Product.h"

#include <temz/IterfaceContext.h>

#include "support/Picture.h"
#include "support/Text.h"

namespace {

constexpr int directories = 10;
constexpr int filesInEach = 10;
constexpr int keyCount = 40;

std::string attribute(const std::string& name, std::wstring_view value) {
    return " " + name + "='" + narrow(value) + "'";
}

std::wstring fileName(int directory, int number) {
    return L"f" + std::to_wstring(directory * filesInEach + number) + L".txt";
}

std::string element(const std::string& name, const std::string& attributes,
                    const std::string& children = {}) {
    return "<" + name + " " + attributes + ">" + children + "</" + name + ">";
}

}  // namespace

void Product::beginLife() {
    letGo();
    service.reset();
    std::filesystem::remove_all(folder.path(L"app"));
    RegDeleteTreeW(HKEY_CURRENT_USER, key.path(L"product").c_str());
    service = std::make_unique<TestService>();
    folder.write(L"app\\shared.dll", "another's");
    // Every stage finds the files of both versions beside the host program.
    scripts.write(L"1.xml", script("1"));
    scripts.write(L"2.xml", script("2"));
}

void Product::prepare(Stage next) {
    stage = next;
    switch (stage) {
        case Stage::install:
            inUse.emplace(app(L"shared.dll"));
            break;
        case Stage::upgrade:
            inUse.emplace(app(L"shared.dll"));
            running.emplace(app(L"program.exe"));
            break;
        case Stage::uninstall:
            for (int i = 0; i < directories * filesInEach; ++i)
                folder.write(
                    L"app\\data\\" + std::to_wstring(i % directories) + L"\\" + std::to_wstring(i),
                    "the user's");
            SetFileAttributesW(app(L"d0\\" + fileName(0, 0)).c_str(), FILE_ATTRIBUTE_READONLY);
            break;
    }
}

void Product::letGo() {
    inUse.reset();
    running.reset();
}

std::wstring Product::argumentsFor(Stage stage) const {
    const int32_t mode = stage == Stage::install   ? RUNMODE_INSTALL
                         : stage == Stage::upgrade ? RUNMODE_UPGRADE
                                                   : RUNMODE_UNINSTALL;
    return L"\"" + scripts.path(stage == Stage::install ? L"1.xml" : L"2.xml") + L"\" " +
           std::to_wstring(mode);
}

MachineState Product::state() const {
    // One that is removed goes as soon as its process has ended.
    if (stage == Stage::uninstall)
        service->waitFor(TestService::gone);
    MachineState state;
    addFiles(folder.path(), state);
    addKey(HKEY_CURRENT_USER, key.path(), state);
    state.insert(L"the service: " + std::to_wstring(service->state()));
    state.insert(running && running->isRunning() ? L"the program runs" : L"the program has ended");
    addReplacements(state);
    return state;
}

std::string Product::file(const std::wstring& name, const std::string& version,
                          const std::string& content, const std::string& attributes) const {
    const std::wstring source = name + std::wstring(version.begin(), version.end());
    return element("File", attribute("Name", name) +
                               attribute("Source", payload.write(source, content)) + " " +
                               attributes);
}

std::string Product::files(const std::string& version) const {
    std::string all;
    for (int i = 0; i < directories; ++i) {
        const std::string number = std::to_string(i);
        std::string ofDirectory;
        // Empty ones are among them, and some that take more than one block of a copy.
        for (int j = 0; j < filesInEach; ++j)
            ofDirectory += file(fileName(i, j), version,
                                std::string(static_cast<size_t>(i * j * 100), version[0]));
        all += element("Directory", "Path='d" + number + "'",
                       element("Component", "Id='Files" + number + "'", ofDirectory));
    }
    return all;
}

/// Files that others hold, and the program that runs. They go with the directory.
std::string Product::filesInUse(const std::string& version) const {
    return element(
        "Component", "Id='InUse' On='installupgrade'",
        element("File", "Name='program.exe' Source='temz_sleeper.exe' KillProcess='yes'") +
            file(L"shared.dll", version, "shared " + version, "SupportDelayInstall='yes'"));
}

std::string Product::shortcuts(const std::string& version) const {
    std::string all = file(L"icon.ico", version, "an icon");
    for (const wchar_t* name : {L"with icon", L"other", L"third"})
        all += element(
            "Shortcut",
            "Description=''" + attribute("Name", name) + attribute("Target", app(L"program.exe")) +
                (all.find("Shortcut") == std::string::npos ? attribute("IcoFile", app(L"icon.ico"))
                                                           : ""));
    return element("Component", "Id='Shortcuts'", all);
}

std::string Product::keys(const std::string& version) const {
    std::string all;
    for (int i = 0; i < keyCount; ++i) {
        const std::string number = std::to_string(i);
        std::string values;
        for (const std::string type : {"REG_SZ", "REG_DWORD", "REG_MULTI_SZ"})
            values += element("RegistryValue", "Name='" + type + "' Type='" + type + "' Value='" +
                                                   version + number + "'");
        all += element("RegistryKey", "Action='create' Key='k" + number + "'", values);
    }
    const std::string place = " Root='HKEY_CURRENT_USER'" + attribute("Key", key.path(L"product"));
    return element("Component", "Id='Keys'",
                   element("RegistryKey", "On='installupgrade' Action='create'" + place, all) +
                       element("RegistryKey", "On='uninstall' Action='remove'" + place));
}

std::string Product::serviceAction(const std::string& action) const {
    return element("ServiceControl",
                   "Wait='yes' Action='" + action + "'" + attribute("Name", service->name()));
}

std::string Product::installedLast() const {
    return element("CustomAction", "DllEntry='set' Return='check'" +
                                       attribute("DllFile", testProgramDirectory() +
                                                                L"\\temz_setting_action.dll")) +
           element("ShellExcute",
                   "File='[System32Folder]cmd.exe' Return='sync'" +
                       attribute("ExeCommand", L"/c echo started> " + app(L"started.txt"))) +
           serviceAction("start");
}

std::string Product::script(const std::string& version) const {
    std::string references;
    for (int i = 0; i < directories; ++i)
        references += "<ComponentRef Id='Files" + std::to_string(i) + "'/>";
    return "<Script><Product>" +
           element("Directory",
                   "Id='APPLICATIONROOTDIRECTORY'" + attribute("Path", folder.path(L"app")),
                   files(version) + filesInUse(version) + shortcuts(version) + keys(version)) +
           "<InstallExecuteSequence>" + element("Fragment", "On='upgrade'", serviceAction("stop")) +
           element("Fragment", "On='uninstall'", serviceAction("stop")) +
           element("Feature", "",
                   references +
                       "<ComponentRef Id='InUse'/><ComponentRef Id='Shortcuts'/>"
                       "<ComponentRef Id='Keys'/>") +
           element("Fragment", "On='installupgrade'", installedLast()) +
           element(
               "Fragment", "On='uninstall'",
               serviceAction("remove") + "<RemoveDirectory Path='[APPLICATIONROOTDIRECTORY]'/>") +
           "</InstallExecuteSequence></Product></Script>";
}
