#include "Script.h"

#include <fstream>

#include "system/FileOperations.h"

std::filesystem::path programFolder() {
    return hostProgramDirectory();
}

std::string numbered(std::string_view text, int64_t count) {
    std::string all;
    for (int64_t number = 0; number < count; ++number)
        for (const char letter : text)
            letter == '$' ? all += std::to_string(number) : all += letter;
    return all;
}

ScriptFile::ScriptFile(std::string_view product, std::string_view sequence,
                       std::string_view variables)
    : file(programFolder() / L"script.xml") {
    std::ofstream(std::filesystem::path(file), std::ios::binary)
        << "<?xml version='1.0' encoding='UTF-8'?>\n<Script>\n"
        << variables << "<Product>\n"
        << product << "<InstallExecuteSequence>\n"
        << sequence << "</InstallExecuteSequence>\n</Product>\n</Script>\n";
}

ScriptFile::~ScriptFile() {
    std::filesystem::remove(file);
}

LoadedScript::LoadedScript(const std::wstring& path) {
    if (context.load(path.c_str()))
        context.getProduct()->observer = &observer;
}

bool LoadedScript::run(int32_t mode) {
    context.runMode = mode;
    return context.getProduct() && context.getProduct()->run(&context) == 0;
}
