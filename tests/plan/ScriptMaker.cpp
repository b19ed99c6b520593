#include "plan/ScriptMaker.h"

namespace {

const char* const directories[] = {"app", "app\\sub", "app\\sub\\deep", "other"};
const char* const fileNames[] = {"a.txt", "b.txt", "tool.exe", "lib.dll", "A.TXT"};
const char* const keyNames[] = {"One", "Two", "One\\Deep", "ONE"};
const char* const expressions[] = {"FOUND E 0", "FOUND E 1", "OS_BIT E 64"};

}  // namespace

std::string ScriptMaker::make() {
    std::string definitions;
    std::string references;
    for (size_t i = 0; i < std::size(directories); ++i) {
        const std::string id = "C" + std::to_string(i);
        const std::string component =
            "<Component Id='" + id + "'" + on() + ">" + actions(true, 0) + "</Component>";
        definitions += "<Directory Path='" + places.folder + "\\" + directories[i] + "'>" +
                       component + "</Directory>";
        references += "<ComponentRef Id='" + id + "'/>";
    }
    return "<Root><Variable Id='FOUND' Type='int' Value='0'/><Product Id='P'>"
           "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" +
           places.folder + "\\app'/>" + definitions +
           "<InstallExecuteSequence><Fragment Id='Before'>" + actions(false, 0) +
           "</Fragment><Feature Id='F'>" + references + "</Feature><Fragment Id='After'" + on() +
           ">" + actions(false, 0) + "</Fragment></InstallExecuteSequence></Product></Root>";
}

std::string ScriptMaker::actions(bool inComponent, int depth) {
    std::string made;
    for (size_t count = random.below(5); count > 0; --count)
        made += action(inComponent, depth);
    return made;
}

std::string ScriptMaker::action(bool inComponent, int depth) {
    const size_t kind = random.below(100);
    if (inComponent && kind < 40)
        return file();
    if (inComponent && kind < 50)
        return shortcut();
    if (inComponent && kind < 70)
        return key(0);
    if (kind < 76)
        return depth < 2 ? condition(inComponent, depth)
                         : "<CopyFile DestinationName='a' SourceName='b'/>";
    if (kind < 82)
        return search();
    if (kind < 88)
        return "<RemoveDirectory Path='" + path() + "'" + on() + yesOrNo("Vital") + "/>";
    if (kind < 91)
        return program();
    if (kind < 95)
        return customAction();
    if (kind < 98 && !places.services.empty())
        return service();
    return "<Caution Title='Mind'" + on() + "/>";
}

std::string ScriptMaker::condition(bool inComponent, int depth) {
    return std::string("<Condition Expression='") + random.pick(expressions) + "'>" +
           actions(inComponent, depth + 1) + "</Condition>";
}

std::string ScriptMaker::file() {
    return std::string("<File Name='") + random.pick(fileNames) + "' Source='" +
           random.pick(places.sources) + "'" + yesOrNo("SupportDelayInstall") +
           yesOrNo("KillProcess") + yesOrNo("Vital") + "/>";
}

std::string ScriptMaker::shortcut() {
    std::string attributes;
    if (random.percent(50))
        attributes = " IcoFile='" + path() + "\\" + random.pick(fileNames) + "'";
    return "<Shortcut Name='Link' Description='' Target='" + path() + "\\tool.exe'" + attributes +
           "/>";
}

std::string ScriptMaker::key(int depth) {
    const std::string root = depth == 0 || random.percent(20) ? " Root='HKEY_CURRENT_USER'" : "";
    const std::string above = depth == 0 ? places.key + "\\" : "";
    std::string inside;
    for (size_t count = random.below(3); count > 0; --count)
        inside += depth < 2 && random.percent(40) ? key(depth + 1) : value();
    return std::string("<RegistryKey Action='") + (random.percent(70) ? "create" : "remove") +
           "' Key='" + above + random.pick(keyNames) + "'" + root + on() + ">" + inside +
           "</RegistryKey>";
}

std::string ScriptMaker::value() {
    const bool isNumber = random.percent(40);
    return std::string("<RegistryValue Name='") + random.pick(fileNames) + "' Type='" +
           (isNumber             ? "REG_DWORD"
            : random.percent(50) ? "REG_SZ"
                                 : "REG_MULTI_SZ") +
           "' Value='" + std::to_string(random.below(100)) + "'" + yesOrNo("Vital") + "/>";
}

std::string ScriptMaker::search() {
    const std::string name = random.percent(20) ? "*.txt" : random.pick(fileNames);
    const std::string version = random.percent(50) ? " MinVersion='1.5'" : "";
    return "<FileSearch Name='" + name + "' Path='" + path() + "'" + version +
           " Expression='FOUND = 1'/>";
}

std::string ScriptMaker::program() {
    const std::string file =
        random.percent(50) ? "[System32Folder]cmd.exe" : path() + "\\" + random.pick(fileNames);
    // A document would open a program that stays.
    return file.ends_with(".txt") || file.ends_with(".TXT") || file.ends_with(".dll") ||
                   file.ends_with("tool.exe")
               ? "<ShellExcute File='" + places.folder + "\\none.exe' Return='sync'" + on() + "/>"
               : "<ShellExcute File='" + file + "' ExeCommand='/c exit' Return='sync'" + on() +
                     "/>";
}

std::string ScriptMaker::customAction() {
    return "<CustomAction DllFile='" + path() + "\\" + random.pick(fileNames) + "' DllEntry='" +
           (random.percent(70) ? "countCalls" : "none") + "' Return='no'" + on() + "/>";
}

std::string ScriptMaker::service() {
    const char* const kinds[] = {"start", "stop", "remove"};
    return "<ServiceControl Name='" + random.pick(places.services) + "' Action='" +
           random.pick(kinds) + "'" + " Wait='yes'" + yesOrNo("Vital") + "/>";
}

std::string ScriptMaker::on() {
    const char* const words[] = {
        "", "", "", " On='install'", " On='uninstall'", " On='installupgrade'"};
    return random.pick(words);
}

std::string ScriptMaker::yesOrNo(const char* attribute) {
    const size_t choice = random.below(3);
    return choice == 0 ? "" : std::string(" ") + attribute + (choice == 1 ? "='yes'" : "='no'");
}

std::string ScriptMaker::path() {
    return places.folder + "\\" + random.pick(directories);
}
