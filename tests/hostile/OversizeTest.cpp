// Every field of a fixed size into which the engine copies a text whole: one character less than it
// holds passes, and one more ends the process before anything is written.

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <sstream>

#include "elements/CElement.h"
#include "expression/CIntVariable.h"
#include "support/ChildProcess.h"
#include "support/FakeCall.h"
#include "support/FakeLinkShell.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "system/FileOperations.h"
#include "system/ProcessCalls.h"
#include "system/ProcessOperations.h"
#include "system/ShellCalls.h"
#include "system/ShellLink.h"
#include "system/ShellOperations.h"
#include "system/TextFields.h"

namespace fs = std::filesystem;
using testing::ElementsAreArray;

namespace {

std::wstring letters(size_t count) {
    return std::wstring(count, L'x');
}

std::string narrowLetters(size_t count) {
    return std::string(count, 'x');
}

/// Runs a product; what becomes of it doesn't matter, so long as the process goes on.
void runProduct(const std::string& content) {
    const TestFolder folder;
    const std::wstring script =
        folder.write(L"script.xml", "<S><Product>" + content + "</Product></S>");
    CContext context;
    context.runMode = RUNMODE_INSTALL;
    ASSERT_TRUE(context.load(script.c_str()));
    context.getProduct()->run(&context);
}

void runInSequence(const std::string& content, const std::string& beside = {}) {
    runProduct(beside + "<InstallExecuteSequence><Fragment>" + content +
               "</Fragment></InstallExecuteSequence>");
}

/// Fills a field of the system's, which has no room for a terminator behind its last character.
template <size_t capacity>
void fillSystemField(wchar_t (&field)[capacity], size_t length) {
    std::fill_n(field, std::min(length, capacity), L'x');
    if (length < capacity)
        field[length] = L'\0';
}

HANDLE anySnapshot() {
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

/// One place of the sources where a text must fit.
struct Field {
    const char* source;
    const char* line;  ///< that copies, or ends the process
    size_t capacity;   ///< in characters, with the terminator
    void (*fill)(size_t length);
};

const Field fields[] = {
    {"src/elements/CElement.cpp", "copyBounded(record.name, name);", 256,
     [](size_t length) {
         AttributeRecord record;
         fillAttributeRecord(record, letters(length).c_str(), L"value");
     }},
    {"src/elements/CElement.cpp", "failInvalidParameter();", 1,
     [](size_t length) {
         AttributeRecord record;
         fillAttributeRecord(record, L"name", length == 0 ? L"" : nullptr);
     }},
    {"src/elements/CElement.cpp", "copyBounded(name, elementName.get());", 256,
     [](size_t length) {
         // A child that isn't known is refused by its name before; the parent of a place is made.
         const std::string name = narrowLetters(length);
         CContext context;
         const XmlDocumentPtr document = makeDocument();
         const std::string script = "<" + name + "/>";
         ASSERT_TRUE(parseDocument(*document, std::wstring(script.begin(), script.end()).c_str()));
         const CElement element(*getRootElement(*document), context);
     }},
    {"src/elements/CElement.cpp", "copyBounded(id, elementId.get());", 256,
     [](size_t length) { runInSequence("<Fragment Id='" + narrowLetters(length) + "'/>"); }},
    {"src/expression/CIntVariable.cpp", "copyBounded(name, builtInName);", 64,
     [](size_t length) { const CIntVariable variable(letters(length).c_str(), 1); }},
    {"src/motion/CMotionElement.cpp", "copyBounded(info.text1, text1.c_str());", 512,
     [](size_t length) {
         runInSequence("<Condition Expression='" + std::string(length, '1') + "'/>");
     }},
    {"src/motion/CMotionElement.cpp", "copyBounded(info.text2, text2.c_str());", 512,
     [](size_t length) { runInSequence("<Caution Title='" + narrowLetters(length) + "'/>"); }},
    {"src/motion/CCustomActionMtElement.cpp",
     "copyBounded(params.applicationRootDirectory, "
     "toNarrowTextOrThrow(rootDirectory.c_str()).get());",
     260,
     [](size_t length) {
         runInSequence("<CustomAction DllFile='none' DllEntry='none' Return='check'/>",
                       "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" +
                           narrowLetters(length - 1) + "\\'/>");
     }},
    {"src/system/FileOperations.cpp", "failInvalidParameter();", 260 - 2,  // for what it adds
     [](size_t length) { removeDirectoryTree((L"Q:\\" + letters(length - 3)).c_str()); }},
    {"src/system/ProcessOperations.cpp", "copyBounded(name, baseName(path));", 260,
     [](size_t length) {
         uint32_t id = 0;
         findProcessByPath(id, (L"C:\\" + letters(length)).c_str());
     }},
    {"src/system/ProcessOperations.cpp",
     "copyBounded(buffer, pathBufferLength, executable.szExePath);", 260,
     [](size_t length) {
         const FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> snapshot(
             [](auto...) { return anySnapshot(); });
         const FakeCall<processCalls, &ProcessCalls::Module32FirstW> first(
             [length](HANDLE, MODULEENTRY32W* module) {
                 fillSystemField(module->szExePath, length);
                 return TRUE;
             });
         wchar_t path[260];
         getProcessImagePath(path, 260, 1);
     }},
    {"src/system/ShellLink.cpp", "copyBounded(path, linkPath);", 260,
     [](size_t length) {
         FakeLinkShell shell;
         createShellLink((L"C:\\" + letters(length - 3)).c_str(), L"C:\\app.exe", L"", L"");
     }},
    {"src/system/ShellOperations.cpp", "copyBounded(buffer, pathBufferLength, path);", 260,
     [](size_t length) {
         const FakeCall<shellCalls, &ShellCalls::SHGetSpecialFolderPathW> folder(
             [length](HWND, wchar_t* path, int, BOOL) {
                 fillSystemField(*reinterpret_cast<wchar_t(*)[260]>(path), length);
                 return TRUE;
             });
         wchar_t path[260];
         getFolderPath(0, path);
     }},
};

void PrintTo(const Field& field, std::ostream* out) {
    *out << field.source << ": " << field.line;
}

class OversizeTest : public testing::TestWithParam<Field> {};
INSTANTIATE_TEST_SUITE_P(EachField, OversizeTest, testing::ValuesIn(fields));

/// A field at the end of what can be written, filled with stars: whoever writes behind it ends with
/// an access violation.
template <class Character>
Character* fieldBeforeGuard(size_t capacity, bool mayBeWritten) {
    constexpr size_t pageSize = 4096;
    auto* const pages = static_cast<std::byte*>(
        VirtualAlloc(nullptr, 2 * pageSize, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    auto* const field = reinterpret_cast<Character*>(pages + pageSize) - capacity;
    std::fill_n(field, capacity, Character{'*'});
    DWORD before = 0;
    EXPECT_TRUE(VirtualProtect(pages + pageSize, pageSize, PAGE_NOACCESS, &before));
    if (!mayBeWritten) {
        EXPECT_TRUE(VirtualProtect(pages, pageSize, PAGE_READONLY, &before));
    }
    return field;
}

template <class Character>
void expectNothingWrittenBehind(size_t capacity) {
    using Text = std::basic_string<Character>;
    const Text longest(capacity - 1, 'x');
    Character* const field = fieldBeforeGuard<Character>(capacity, true);
    copyBounded(field, capacity, longest.c_str());
    EXPECT_EQ(field, longest);

    for (const size_t length : {capacity, capacity + 1, size_t{100'000}}) {
        SCOPED_TRACE(length);
        EXPECT_EXIT(copyBounded(fieldBeforeGuard<Character>(capacity, false), capacity,
                                Text(length, 'x').c_str()),
                    endedByInvalidParameter(), "");
    }
}

std::string trimmed(const std::string& line) {
    const size_t start = line.find_first_not_of(' ');
    return start == std::string::npos ? "" : line.substr(start);
}

/// The lines of the sources that copy a text whole into a field, or refuse one.
std::multiset<std::string> linesWithFields() {
    std::multiset<std::string> lines;
    for (const char* room : {"src", "capi", "host", "author", "trace"})
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(SOURCE_FOLDER) / room)) {
            const std::string name = fs::relative(entry.path(), SOURCE_FOLDER).generic_string();
            if (!entry.is_regular_file() || name.starts_with("src/system/TextFields."))
                continue;
            std::istringstream text(readFile(entry.path().wstring()));
            for (std::string line; std::getline(text, line);)
                if (line.find("copyBounded(") != line.npos ||
                    line.find("failInvalidParameter(") != line.npos)
                    lines.insert(name + ": " + trimmed(line));
        }
    return lines;
}

}  // namespace

TEST_P(OversizeTest, OneCharacterLessThanItsSizePasses) {
    EXPECT_EXIT(
        {
            GetParam().fill(GetParam().capacity - 1);
            std::exit(HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
        },
        testing::ExitedWithCode(EXIT_SUCCESS), "");
}

// So much more would meet the end of the stack, or of the heap, if any of it were written.
TEST_P(OversizeTest, AnyLongerTextEndsTheProcess) {
    EXPECT_EXIT(GetParam().fill(GetParam().capacity), endedByInvalidParameter(), "");
    EXPECT_EXIT(GetParam().fill(1'000'000), endedByInvalidParameter(), "");
}

TEST(OversizeFieldTest, IsNotWrittenAndNothingBehindIt) {
    std::set<size_t> capacities;
    for (const Field& field : fields)
        capacities.insert(field.capacity);
    for (const size_t capacity : capacities) {
        SCOPED_TRACE(capacity);
        expectNothingWrittenBehind<wchar_t>(capacity);
    }
    expectNothingWrittenBehind<char>(260);
}

TEST(OversizeFieldTest, HasARowInTheTable) {
    std::multiset<std::string> rows;
    for (const Field& field : fields)
        rows.insert(std::string(field.source) + ": " + field.line);
    EXPECT_THAT(linesWithFields(), ElementsAreArray(rows));
}
