// The promise on the stack: what a script may hold, an engine called with 1 MiB of it carries out
// or refuses.

#include <gmock/gmock.h>
#include <windows.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "DeepScripts.h"
#include "support/HostTest.h"
#include "support/OwnStack.h"
#include "support/TestKey.h"

using testing::ElementsAre;
using testing::Values;

namespace {

/// Whose stack is used: both have the same size.
enum Thread { MainThread, ThreadOfItsOwn };

std::wstring wide(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

class StackTest : public HostTest, public testing::WithParamInterface<Thread> {
protected:
    void onStack(const std::function<void()>& action) {
        if (GetParam() == MainThread)
            action();
        else
            onStackOf(stackSize, action);
    }

    bool loadProduct(const std::string& content) {
        return load("<Script><Product>" + content + "</Product></Script>");
    }

    /// Runs a sequence in a product with these definitions.
    int32_t runSequence(const std::string& definitions, const std::string& sequence) {
        EXPECT_TRUE(loadProduct(definitions + "<InstallExecuteSequence>" + sequence +
                                "</InstallExecuteSequence>"));
        return run(RUNMODE_UNINSTALL);
    }

    /// Runs it down to a `Caution` with the title "deep".
    void expectCautionReached(const std::string& definitions, const std::string& sequence) {
        observer.updates.clear();
        onStack([&] {
            EXPECT_EQ(runSequence(definitions, sequence), 0);
            context->unload();
        });
        ASSERT_FALSE(observer.updates.empty());
        EXPECT_EQ(observer.updates.back().text2, L"deep");
    }

    /// Loads a product on the stack and asks it for a directory: the path, or else the message.
    std::wstring directory(const std::string& content, const std::string& id) {
        std::wstring answer;
        onStack([&] {
            EXPECT_TRUE(loadProduct(content));
            if (!product().getDirectory(answer, wide(id).c_str(), context))
                answer = product().errorInfo.message;
            context->unload();
        });
        return answer;
    }
};

INSTANTIATE_TEST_SUITE_P(, StackTest, Values(MainThread, ThreadOfItsOwn), [](const auto& info) {
    return info.param == MainThread ? "MainThread" : "ThreadOfItsOwn";
});

constexpr wchar_t refusal[] = L"Get directory error:Create Element error:";

TEST(MainThreadTest, HasAStackOfOneMebibyte) {
    const auto* base = reinterpret_cast<const char*>(GetModuleHandleW(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);

    EXPECT_EQ(headers->OptionalHeader.SizeOfStackReserve, stackSize);
}

// What the making of one element needs.

TEST_P(StackTest, IsEnoughForADirectoryThatNeedsItself) {
    EXPECT_EQ(directory("<Directory Id='D' Path='[D]'/>", "D"),
              std::wstring(refusal) + L"[D] mismatch.");
    EXPECT_EQ(directory("<DirectoryRef Id='D'><Directory Id='D'/></DirectoryRef>", "D"),
              std::wstring(refusal) +
                  L"(Directory,D) can't create parent element when get the Path attribute.");
}

TEST_P(StackTest, IsEnoughForTheLongestChainOfTexts) {
    EXPECT_EQ(directory(directories(longestChain, byText), lastOfChain), L"p\\");
}

TEST_P(StackTest, IsEnoughForTheRefusalOfALongerChainOfTexts) {
    EXPECT_EQ(directory(directories(longestChain + 1, byText), oneTooMany),
              std::wstring(refusal) + L"[" + wide(lastOfChain) + L"] mismatch.");
}

TEST_P(StackTest, IsEnoughForTheLongestChainOfReferences) {
    EXPECT_EQ(directory(directories(longestChain, byReference), lastOfChain), L"p\\");
}

TEST_P(StackTest, IsEnoughForTheRefusalOfALongerChainOfReferences) {
    EXPECT_EQ(directory(directories(longestChain + 1, byReference), oneTooMany),
              std::wstring(refusal) + L"(Directory," + wide(oneTooMany) +
                  L") can't create parent element when get the Path attribute.");
}

TEST_P(StackTest, IsEnoughForTheRefusalOfChainsThatDoubleAtEveryStep) {
    EXPECT_EQ(
        directory(directories(longestChain, "<Directory Id='D$' Path='[D^][D^]'/>"), lastOfChain),
        std::wstring(refusal) + L"[D510] mismatch.");
}

TEST_P(StackTest, IsEnoughForNestedDirectoriesWithTexts) {
    const std::string tree = "<Directory Id='D' Path='p'/>" +
                             numbered(1, 254, "<Directory Id='D$' Path='[D]'>") +
                             repeated<std::string>("</Directory>", 254);

    EXPECT_EQ(directory(tree, "D254"), repeated<std::wstring>(L"p\\", 254));
}

// Each is needed by the one in it, and takes both factories.
TEST_P(StackTest, IsEnoughForTheParentsOfAComponentReachedByReference) {
    const std::string component = "<Component Id='C'><File Name='n' Source='s'/></Component>";

    onStack([&] {
        EXPECT_EQ(
            runSequence("<Directory Path='C:\\'>" +
                            nested(251, "<Component>", "</Component>", component) + "</Directory>",
                        "<Feature><ComponentRef Id='C'/></Feature>"),
            0);
    });

    ASSERT_EQ(observer.updates.size(), 1u);
    EXPECT_EQ(observer.updates.back().text1, L"n");
}

// The walk.

TEST_P(StackTest, IsEnoughForFragmentsAsDeepAsAScriptCanBe) {
    expectCautionReached("", nested(252, "<Fragment>", "</Fragment>", caution));
}

TEST_P(StackTest, IsEnoughForFeaturesAsDeepAsAScriptCanBe) {
    expectCautionReached("", nested(251, "<Feature>", "</Feature>",
                                    "<Component>" + std::string(caution) + "</Component>"));
}

TEST_P(StackTest, IsEnoughForConditionsAsDeepAsAScriptCanBe) {
    expectCautionReached("", nested(252, "<Condition Expression='1'>", "</Condition>", caution));
}

TEST_P(StackTest, IsEnoughForRegistryKeysAsDeepAsAScriptCanBe) {
    const TestKey key;

    expectCautionReached(
        "",
        "<Condition Expression='1'><RegistryKey Root='HKEY_CURRENT_USER' Action='create' Key='" +
            narrow(key.path(L"made")) + "'>" +
            nested(249, "<RegistryKey Action='create' Key=''>", "</RegistryKey>",
                   "<Condition Expression='1'>" + std::string(caution) + "</Condition>") +
            "</RegistryKey></Condition>");

    EXPECT_THAT(key.keys(), ElementsAre(L"made"));
}

TEST_P(StackTest, IsEnoughForAMixtureAsDeepAsAScriptCanBe) {
    expectCautionReached("", nested(126, "<Condition Expression='1'><Fragment>",
                                    "</Fragment></Condition>", caution));
    expectCautionReached(
        "", nested(125, "<Feature><Condition Expression='1'>", "</Condition></Feature>", caution));
}

TEST_P(StackTest, IsEnoughForTheLongestChainAtTheDeepestPlace) {
    onStack([&] {
        EXPECT_EQ(
            runSequence(directories(longestChain - 1, byText),
                        nested(252, "<Fragment>", "</Fragment>", "<Caution Title='[D510]'/>")),
            0);
    });

    ASSERT_EQ(observer.updates.size(), 1u);
    EXPECT_EQ(observer.updates.back().text2, L"p\\");
}

TEST_P(StackTest, IsEnoughForAThousandReferencesInARow) {
    expectCautionReached(numbered(2, 1000, "<Fragment Id='F^'><FragmentRef Id='F$'/></Fragment>") +
                             "<Fragment Id='F1000'>" + caution + "</Fragment>",
                         "<FragmentRef Id='F1'/>");
    expectCautionReached(
        numbered(2, 1000,
                 "<Feature Id='F^'><Condition Expression='1'><FeatureRef Id='F$'/></Condition>"
                 "</Feature>") +
            "<Feature Id='F1000'><Component>" + caution + "</Component></Feature>",
        "<FeatureRef Id='F1'/>");
}

// What isn't the walk.

TEST_P(StackTest, IsEnoughForReadingAndSearchingTheDeepestScript) {
    EXPECT_EQ(directory(nested(254, "<a Id='i'>", "</a>", ""), "absent"),
              L"Get directory error:can't get the absent directory");
    onStack([&] { EXPECT_FALSE(loadProduct(nested(255, "<a>", "</a>", ""))); });
}

TEST_P(StackTest, IsEnoughForTheDeepestDirectoryTree) {
    const std::wstring root = folder.makeDirectory(L"tree");
    constexpr size_t longestPath = MAX_PATH - 3;  // with a separator and "*" behind it
    std::wstring path = root;
    for (; path.size() + 2 <= longestPath; path += L"\\d")
        ASSERT_TRUE(CreateDirectoryW((path + L"\\d").c_str(), nullptr));

    onStack([&] {
        EXPECT_EQ(
            runSequence("", "<Fragment><RemoveDirectory Path='" + narrow(root) + "'/></Fragment>"),
            0);
    });

    EXPECT_FALSE(exists(root));
}

TEST_P(StackTest, IsEnoughForTheDeepestRegistryTree) {
    const TestKey key;
    HKEY above = nullptr;
    RegCreateKeyW(HKEY_CURRENT_USER, key.path(L"tree").c_str(), &above);
    for (int level = 0; level < 500; ++level) {
        HKEY below = nullptr;
        ASSERT_EQ(RegCreateKeyW(above, L"k", &below), ERROR_SUCCESS);
        RegCloseKey(std::exchange(above, below));
    }
    RegCloseKey(above);

    onStack([&] {
        EXPECT_EQ(runSequence("",
                              "<Condition Expression='1'><RegistryKey Root='HKEY_CURRENT_USER'"
                              " Action='remove' Key='" +
                                  narrow(key.path(L"tree")) + "'/></Condition>"),
                  0);
    });

    EXPECT_FALSE(keyExists(key.path(L"tree")));
}

}  // namespace
