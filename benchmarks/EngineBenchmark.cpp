// What the engine adds to the system calls that it makes. Each figure is the median of its rounds.

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "system/FileCalls.h"
#include "system/FileOperations.h"

namespace {

constexpr int rounds = 15;
constexpr int fileCount = 500;

using Work = std::function<void()>;

/// Microseconds that one of its `operations` takes each of the works. They take turns, so that
/// whatever else the machine does meets them alike.
std::vector<double> measure(int operations, const std::vector<Work>& works) {
    std::vector<std::vector<double>> times(works.size());
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < works.size(); ++i) {
            const auto begin = std::chrono::steady_clock::now();
            works[i]();
            const std::chrono::duration<double, std::micro> time =
                std::chrono::steady_clock::now() - begin;
            times[i].push_back(time.count() / operations);
        }
    }
    std::vector<double> medians;
    for (std::vector<double>& of : times) {
        std::nth_element(of.begin(), of.begin() + rounds / 2, of.end());
        medians.push_back(of[rounds / 2]);
    }
    return medians;
}

void report(const char* what, double microseconds) {
    std::printf("%-58s %10.3f us\n", what, microseconds);
}

/// The sources lie in the directory of this program, as a host's do.
class Product {
public:
    Product()
        : program(hostProgramDirectory()),
          source(program / L"benchmark-source"),
          target(program / L"benchmark-target") {
        std::filesystem::create_directories(source);
        for (int i = 0; i < fileCount; ++i)
            std::ofstream(source / name(i)) << std::string(1000, 'x');
        writeScript();
    }
    ~Product() {
        std::filesystem::remove_all(source);
        std::filesystem::remove_all(target);
    }

    static std::string name(int i) { return "file" + std::to_string(i) + ".txt"; }
    std::wstring script() const { return source / L"script.xml"; }

    const std::filesystem::path program;
    const std::filesystem::path source;
    const std::filesystem::path target;

private:
    void writeScript() const {
        std::ofstream script(source / L"script.xml");
        script << "<S><Product><Directory Id='T' Path='" << target.string() << "'>"
               << "<Component Id='C'>";
        for (int i = 0; i < fileCount; ++i)
            script << "<File Name='" << name(i) << "' Source='benchmark-source\\" << name(i)
                   << "'/>";
        script << "</Component></Directory><InstallExecuteSequence><Feature Id='F'>"
               << "<ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product></S>";
    }
};

void copyByHand(const Product& product) {
    for (int i = 0; i < fileCount; ++i) {
        const std::wstring from = product.source / Product::name(i);
        const std::wstring to = product.target / Product::name(i);
        CreateDirectoryW(product.target.c_str(), nullptr);
        WIN32_FIND_DATAW found;
        const HANDLE search = FindFirstFileW((to + stagingSuffix).c_str(), &found);
        if (search != INVALID_HANDLE_VALUE)
            FindClose(search);
        CopyFileW(from.c_str(), to.c_str(), FALSE);
    }
}

void measureRun() {
    const Product product;
    CContext context;
    context.runMode = RUNMODE_INSTALL;
    int32_t result = 0;
    const std::vector<double> times =
        measure(fileCount, {
                               [&] {
                                   context.unload();
                                   context.load(product.script().c_str());
                               },
                               [&] { copyByHand(product); },
                               [&] { result |= context.getProduct()->run(&context); },
                           });
    if (result != 0)
        std::printf("the run failed\n");
    report("load, for each File of the script", times[0]);
    report("CreateDirectory, FindFirstFile and CopyFile, each file", times[1]);
    report("the same by a run of the script, each File", times[2]);
    std::printf("%-58s %10.2f\n", "ratio", times[2] / times[1]);
}

void measureSeam() {
    constexpr int calls = 2000;
    const std::wstring directory = hostProgramDirectory();
    DWORD seen = 0;
    const std::vector<double> times =
        measure(calls, {
                           [&] {
                               for (int i = 0; i < calls; ++i)
                                   seen |= GetFileAttributesW(directory.c_str());
                           },
                           [&] {
                               for (int i = 0; i < calls; ++i)
                                   seen |= fileCalls.GetFileAttributesW(directory.c_str());
                           },
                       });
    if (seen == INVALID_FILE_ATTRIBUTES)
        std::printf("no attributes\n");
    report("GetFileAttributesW called directly", times[0]);
    report("GetFileAttributesW called through the table", times[1]);
}

}  // namespace

int main() {
    measureRun();
    measureSeam();
}
