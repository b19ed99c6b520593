#include "Payload.h"

#include <fstream>
#include <random>

#include "system/FileOperations.h"

namespace {

constexpr int64_t directoryCount = 20;

/// So many bytes that can't be compressed, the same each time.
std::string randomBytes(int64_t size) {
    std::string bytes;
    bytes.reserve(static_cast<size_t>(size));
    for (std::mt19937 random; static_cast<int64_t>(bytes.size()) < size;)
        bytes += static_cast<char>(random());
    return bytes;
}

}  // namespace

Payload::Payload(int64_t count, int64_t bytesEach)
    : folderName(L"payload-" + std::to_wstring(count) + L"-" + std::to_wstring(bytesEach)),
      sources(programFolder() / folderName),
      targets(programFolder() / L"target") {
    for (int64_t place = 0; place < directoryCount; ++place) {
        const std::wstring directory = L"directory" + std::to_wstring(place);
        for (int64_t i = place; i < count; i += directoryCount) {
            const std::wstring name = L"file" + std::to_wstring(i) + L".bin";
            const std::wstring target = targets / directory / name;
            all.push_back(
                {sources / directory / name, targets / directory, target, target + stagingSuffix});
        }
    }
    if (!std::filesystem::exists(script()))
        layOut(randomBytes(bytesEach));
}

void Payload::clear() const {
    std::filesystem::remove_all(targets);
    std::filesystem::create_directory(targets);
}

void Payload::layOut(const std::string& content) const {
    std::string components, references;
    for (size_t i = 0; i < all.size(); ++i) {
        const std::filesystem::path source = all[i].source;
        std::filesystem::create_directories(source.parent_path());
        std::ofstream(source, std::ios::binary) << content;

        const std::string id = "Id='C" + std::to_string(i) + "'";
        if (i == 0 || all[i].directory != all[i - 1].directory) {
            components += (i == 0 ? "" : "</Component></Directory>\n") +
                          ("<Directory Path='" + source.parent_path().filename().string()) +
                          "'><Component " + id + ">\n";
            references += "<ComponentRef " + id + "/>\n";
        }
        components += "<File Name='" + source.filename().string() + "' Source='" +
                      std::filesystem::relative(source, programFolder()).string() + "'/>\n";
    }
    const ScriptFile script("<Directory Path='" + targets.string() + "'>\n" + components +
                                "</Component></Directory></Directory>\n",
                            "<Feature>\n" + references + "</Feature>\n");
    std::filesystem::copy_file(script.path(), this->script());
}
