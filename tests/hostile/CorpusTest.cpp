// The scripts of tests/corpus, each broken in a way of its own: none may crash, hang or leak, and
// each has the outcome that the corpus tells.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <sstream>
#include <vector>

#include "engine/CContext.h"
#include "hostile/GuardedAllocation.h"
#include "hostile/Judgement.h"
#include "support/ChildProcess.h"
#include "support/TestFolder.h"
#include "support/Text.h"

namespace fs = std::filesystem;

namespace {

/// A line of the corpus's index.
struct CorpusScript {
    std::string file;
    std::string outcome;
    std::string mistake;
};

void PrintTo(const CorpusScript& script, std::ostream* out) {
    *out << script.file << ": " << script.mistake;
}

fs::path corpusFile(const std::string& name) {
    return fs::absolute(SOURCE_FOLDER) / "tests" / "corpus" / name;
}

std::vector<CorpusScript> corpus() {
    std::vector<CorpusScript> scripts;
    std::istringstream index(readFile(corpusFile("index.txt").wstring()));
    for (std::string line; std::getline(index, line);) {
        std::istringstream fields(line);
        CorpusScript script;
        fields >> script.file >> script.outcome >> std::ws;
        std::getline(fields, script.mistake);
        scripts.push_back(script);
    }
    return scripts;
}

std::string nameOf(Judgement::Outcome outcome) {
    constexpr const char* names[] = {"refused", "unloadable", "fails", "runs", "not-run"};
    return names[outcome];
}

/// What each variable's element keeps for good: itself, its node, its attributes and their texts.
constexpr size_t blocksOfAVariable = 6;

size_t variablesIn(const std::string& script) {
    size_t count = 0;
    for (size_t at = script.find("<Variable"); at != script.npos;
         at = script.find("<Variable", at + 1))
        ++count;
    return count;
}

/// What all these tests share, as it is slow to make.
struct Place {
    const DeepDirectory directory;
    const TestFolder folder;
    const std::wstring goodScript =
        folder.write(L"good.xml", "<S><Product><InstallExecuteSequence/></Product></S>");
};

class CorpusTest : public testing::TestWithParam<CorpusScript> {
protected:
    static void SetUpTestSuite() { place = std::make_unique<Place>(); }
    static void TearDownTestSuite() { place = nullptr; }

    static inline std::unique_ptr<Place> place;
    const std::wstring file = corpusFile(GetParam().file).make_preferred().wstring();
};

INSTANTIATE_TEST_SUITE_P(Each, CorpusTest, testing::ValuesIn(corpus()), [](const auto& row) {
    std::string name = row.param.file;
    for (char& letter : name)
        if (!isalnum(static_cast<unsigned char>(letter)))
            letter = '_';
    return name;
});

/// A check tells of the end, and it comes.
void expectEnd(const std::wstring& file, const std::function<bool(int)>& status) {
    EXPECT_TRUE(judgeScript(file, Care::runUnlessFound).endOfProcessFound);
    EXPECT_EXIT(
        {
            judgeScript(file);
            std::fputs("came back", stderr);
        },
        status, testing::Not(testing::HasSubstr("came back")));
}

}  // namespace

TEST_P(CorpusTest, HasItsOutcomeAndLeavesNothingBehind) {
    const std::string& outcome = GetParam().outcome;
    if (outcome == "ends")
        return expectEnd(file, endedByInvalidParameter());
    if (outcome == "overflows")
        return expectEnd(file, [](int) { return true; });  // some crashes end in 0

    const Judgement judgement = judgeScript(file);
    EXPECT_EQ(nameOf(judgement.outcome), outcome) << narrow(judgement.message) << '\n'
                                                  << judgement.findings;
    EXPECT_EQ(judgement.refusalFound, judgement.outcome == Judgement::refused)
        << judgement.findings;
    EXPECT_FALSE(judgement.endOfRunFound && judgement.outcome == Judgement::runs)
        << judgement.findings;

    const size_t keptForGood = blocksOfAVariable * variablesIn(readFile(file));
    const size_t before = liveBlocks();
    judgeScript(file);
    EXPECT_LE(liveBlocks() - before, keptForGood);
    checkReleasedBlocks();
}

TEST_P(CorpusTest, LeavesAContextThatLoadsTheNext) {
    if (GetParam().outcome == "ends" || GetParam().outcome == "overflows")
        return;
    CContext context;
    context.load(file.c_str());
    context.unload();
    EXPECT_TRUE(context.load(place->goodScript.c_str()));
}

TEST(Corpus, HasALineForEachFileWithWhatIsWrong) {
    std::vector<std::string> listed;
    for (const CorpusScript& script : corpus()) {
        listed.push_back(script.file);
        EXPECT_GT(script.mistake.size(), 5u) << script.file;
    }
    std::vector<std::string> files{"README.md", "index.txt"};
    files.insert(files.end(), listed.begin(), listed.end());
    std::vector<std::string> there;
    for (const auto& entry : fs::directory_iterator(corpusFile("")))
        there.push_back(entry.path().filename().string());
    EXPECT_THAT(there, testing::UnorderedElementsAreArray(files));
    EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end()));
    EXPECT_GE(listed.size(), 300u);
}
