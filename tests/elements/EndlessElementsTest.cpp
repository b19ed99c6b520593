#include "elements/ElementFactory.h"
#include "elements/MakingScope.h"
#include "support/ScriptTest.h"
#include "support/VisitedNodes.h"

namespace {

// The reason that a factory gives is seen where the element in need can't do without the other one.
constexpr wchar_t withoutEnd[] = L"Elements refer to each other without end.";

class EndlessElementsTest : public ScriptTest {
protected:
    /// Loads a script with this product and asks for a directory: its path, or else the message.
    std::wstring directory(const std::string& product, const std::string& id) {
        context.unload();
        EXPECT_TRUE(loadProduct(product));
        std::wstring path;
        const std::wstring wide(id.begin(), id.end());
        return context.getProduct()->getDirectory(path, wide.c_str(), &context) ? path
                                                                                : errorMessage();
    }

    /// Runs a product that holds `definitions` and a component with a file, by reference.
    std::wstring messageOfRun(const std::string& definitions) {
        context.unload();
        EXPECT_TRUE(loadProduct(definitions +
                                "<InstallExecuteSequence><Feature Id='f'><ComponentRef Id='C'/>"
                                "</Feature></InstallExecuteSequence>"));
        EXPECT_EQ(run(), -1);
        return errorMessage();
    }

    /// Directories "D0" to "D<count>", each with the text of the one before it, `times` over.
    static std::string chain(int count, int times) {
        std::string chain = "<Directory Id='D0' Path='p'/>";
        for (int i = 1; i <= count; ++i) {
            std::string text;
            for (int time = 0; time < times; ++time)
                text += "[D" + std::to_string(i - 1) + "]";
            chain += "<Directory Id='D" + std::to_string(i) + "' Path='" + text + "'/>";
        }
        return chain;
    }

    static std::string nested(int count) {
        std::string open, close;
        for (int i = 1; i <= count; ++i) {
            open += "<Directory Id='D" + std::to_string(i) + "' Path='p'>";
            close += "</Directory>";
        }
        return open + close;
    }

    static constexpr char component[] = "<Component Id='C'><File Name='n' Source='s'/></Component>";
};

TEST_F(EndlessElementsTest, DirectoryInItsOwnTextFails) {
    EXPECT_EQ(directory("<Directory Id='D' Path='[D]'/>", "D"),
              L"Get directory error:Create Element error:[D] mismatch.");
}

TEST_F(EndlessElementsTest, DirectoriesInEachOthersTextsFail) {
    const std::string loop =
        "<Directory Id='D' Path='[E]'/><Directory Id='E' Path='[F]x'/><Directory Id='F' "
        "Path='[D]'/>";
    EXPECT_EQ(directory(loop, "D"), L"Get directory error:Create Element error:[E] mismatch.");
    EXPECT_EQ(directory(loop, "E"), L"Get directory error:Create Element error:[F] mismatch.");
}

TEST_F(EndlessElementsTest, DirectoryInTheTextOfWhatItStandsInFails) {
    EXPECT_EQ(directory("<Directory Id='D' Path='[E]'><Directory Id='E'/></Directory>", "E"),
              L"Get directory error:Create Element error:(Directory,E) can't create parent element "
              L"when get the Path attribute.");
}

// The path of an enclosing directory can be done without, so the text alone would be left.
TEST_F(EndlessElementsTest, DirectoryInsideAReferenceToItselfFails) {
    EXPECT_EQ(directory("<DirectoryRef Id='D'><Directory Id='D' Path='p'/></DirectoryRef>", "D"),
              std::wstring(L"Get directory error:Create Element error:") + withoutEnd);
}

TEST_F(EndlessElementsTest, DirectoriesInsideReferencesToEachOtherFail) {
    EXPECT_EQ(directory("<DirectoryRef Id='E'><Directory Id='D' Path='p'/></DirectoryRef>"
                        "<DirectoryRef Id='D'><Directory Id='E' Path='q'/></DirectoryRef>",
                        "E"),
              std::wstring(L"Get directory error:Create Element error:") + withoutEnd);
}

TEST_F(EndlessElementsTest, ComponentInsideSuchADirectoryFailsTheRun) {
    const std::wstring expected = std::wstring(L"Create Motion Element error:") + withoutEnd +
                                  L"(Feature,f) cann't create child element(ComponentRef)";
    for (const std::string& definitions :
         {"<Directory Id='D' Path='[D]'>" + std::string(component) + "</Directory>",
          "<DirectoryRef Id='D'>" + std::string(component) +
              "<Directory Id='D'/></DirectoryRef>"}) {
        SCOPED_TRACE(definitions);
        EXPECT_EQ(messageOfRun(definitions), expected);
    }
}

TEST_F(EndlessElementsTest, LongChainOfDirectoriesWorks) {
    EXPECT_EQ(directory(chain(250, 1), "D250"), L"p\\");
}

// In the deepest directory of a chain its parent, the product, is needed as well.
TEST_F(EndlessElementsTest, ChainAsDeepAsTheLimitWorksAndOneDeeperDoesNot) {
    const int deepest = maxMakingDepth - 2;
    const auto lastOf = [](int count) { return "D" + std::to_string(count); };

    EXPECT_EQ(directory(chain(deepest, 1), lastOf(deepest)), L"p\\");
    EXPECT_NE(directory(chain(deepest + 1, 1), lastOf(deepest + 1)), L"p\\");
}

TEST_F(EndlessElementsTest, ChainThatIsDeeperThanAScriptCanBeFails) {
    EXPECT_EQ(directory(chain(1'000, 1), "D1000"),
              L"Get directory error:Create Element error:[D999] mismatch.");
}

TEST_F(EndlessElementsTest, DirectoriesNestedAsDeepAsAScriptCanBeWork) {
    const int deepest = maxElementDepth - 2;  // inside the root and the product
    std::wstring expected;
    for (int i = 0; i < deepest; ++i)
        expected += L"p\\";

    EXPECT_EQ(directory(nested(deepest), "D" + std::to_string(deepest)), expected);
}

// An element of the sequence that is needed as a parent takes both factories.
TEST_F(EndlessElementsTest, ComponentsNestedAsDeepAsAScriptCanBeWork) {
    std::string open, close;
    for (int i = 0; i < 250; ++i) {
        open += "<Component>";
        close += "</Component>";
    }
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='p'>" + open + component + close +
                            "</Directory><InstallExecuteSequence><Feature><ComponentRef Id='C'/>"
                            "</Feature></InstallExecuteSequence>"));

    run();

    // The file knows its place, and so comes as far as its action.
    EXPECT_EQ(observer.updates.size(), 1u);
}

TEST_F(EndlessElementsTest, ChainThatDoublesAFewTimesWorks) {
    std::wstring expected;
    for (int i = 0; i < 1 << 10; ++i)
        expected += L"p\\";

    EXPECT_EQ(directory(chain(10, 2), "D10"), expected);
}

TEST_F(EndlessElementsTest, ChainThatDoublesAtEveryStepFailsAfterBoundedWork) {
    const uint64_t before = nodesVisited();

    EXPECT_EQ(directory(chain(200, 2), "D200"),
              L"Get directory error:Create Element error:[D199] mismatch.");

    EXPECT_LT(nodesVisited() - before, 100'000u);
}

TEST_F(EndlessElementsTest, NestedDoublingIsBoundedThoughEachParentCanBeDoneWithout) {
    std::string product, end;
    for (int i = 0; i < 60; ++i) {
        product +=
            "<Directory Id='D" + std::to_string(i + 1) + "' Path='[D" + std::to_string(i) + "]'>";
        end += "</Directory>";
    }
    const uint64_t before = nodesVisited();

    const std::wstring result = directory("<Directory Id='D0' Path='p'/>" + product + end, "D60");

    EXPECT_EQ(result, L"Get directory error:Create Element error:[D59] mismatch.");
    EXPECT_LT(nodesVisited() - before, 100'000u);
}

/// `count` times the same text.
std::string repeated(std::string_view text, size_t count) {
    std::string all;
    for (; count > 0; --count)
        all += text;
    return all;
}

// The directory, and for each reference this, the directory and the product as its parent.
TEST_F(EndlessElementsTest, AsManyReferencesAsTheLimitWorkAndOneMoreDoesNot) {
    constexpr size_t most = (maxMakingNeeds - 2) / 3;
    const auto product = [](size_t references) {
        return "<Directory Id='E' Path=''/><Directory Id='D' Path='" + repeated("[E]", references) +
               "'/>";
    };
    EXPECT_EQ(directory(product(most), "D"), L"");
    EXPECT_EQ(directory(product(most + 1), "D"),
              std::wstring(L"Get directory error:Create Element error:") + withoutEnd);
    EXPECT_EQ(directory(product(most + 2), "D"),
              L"Get directory error:Create Element error:[E] mismatch.");
}

// The directory and the product around it.
TEST_F(EndlessElementsTest, ReferencesToVariablesAndFoldersCountToo) {
    constexpr size_t most = maxMakingNeeds - 2;
    for (const std::string reference : {"#E", "[WindowsFolder]"}) {
        SCOPED_TRACE(reference);
        const auto loaded = [&](size_t references) {
            context.unload();
            return loadProduct("<Directory Id='D' Path='" + repeated(reference, references) + "'/>",
                               "<Variable Id='E' Type='string' Value=''/>");
        };
        std::wstring path;
        ASSERT_TRUE(loaded(most));
        EXPECT_TRUE(context.getProduct()->getDirectory(path, L"D", &context));
        ASSERT_TRUE(loaded(most + 1));
        EXPECT_FALSE(context.getProduct()->getDirectory(path, L"D", &context));
    }
}

TEST_F(EndlessElementsTest, EscapesAreNoReferences) {
    EXPECT_EQ(
        directory("<Directory Id='D' Path='" + repeated("##", maxMakingNeeds + 1) + "'/>", "D"),
        std::wstring(maxMakingNeeds + 1, L'#') + L"\\");
}

TEST_F(EndlessElementsTest, AsMuchTextAsTheLimitCanComeFromElsewhereAndNoMore) {
    constexpr size_t quarter = maxMakingText / 4;
    const auto ask = [&](size_t length) {
        context.unload();
        EXPECT_TRUE(loadProduct(
            "<Directory Id='D' Path='#E#E#E#E'/>",
            "<Variable Id='E' Type='string' Value='" + std::string(length, 'x') + "'/>"));
        std::wstring path;
        context.getProduct()->getDirectory(path, L"D", &context);
        return path.size();
    };
    EXPECT_EQ(ask(quarter), maxMakingText + 1) << "the separator, too";
    EXPECT_EQ(ask(quarter + 1), 0u);
}

TEST_F(EndlessElementsTest, TextOfItsOwnAnElementMayHaveInAnyLength) {
    const std::string path(maxMakingText + 10, 'x');
    EXPECT_EQ(directory("<Directory Id='D' Path='" + path + "'/>", "D").size(), path.size() + 1);
}

TEST_F(EndlessElementsTest, TextOfElementsThatOneNeedsCounts) {
    const std::string half(maxMakingText / 2, 'x');
    const std::wstring failure = L"Get directory error:Create Element error:";
    EXPECT_EQ(
        directory("<Directory Path='" + half + "'><Directory Id='D'/></Directory>", "D").size(),
        half.size() + 1)
        << "once where it stands, and once where it is taken over";
    for (const std::string inner : {"<Directory Id='D' Path='y'/>", "<Directory Id='D'/>",
                                    "<Caution Title='#T'><Directory Id='D'/></Caution>"}) {
        SCOPED_TRACE(inner);
        context.unload();
        ASSERT_TRUE(loadProduct(
            "<Directory Path='x" + half + "'>" + inner + "</Directory>",
            "<Variable Id='T' Type='string' Value='" + std::string(maxMakingText, 't') + "'/>"));
        std::wstring path;
        EXPECT_FALSE(context.getProduct()->getDirectory(path, L"D", &context));
        EXPECT_EQ(errorMessage().substr(0, failure.size()), failure);
    }
}

TEST_F(EndlessElementsTest, OtherElementsOfTheScriptCanStillBeMade) {
    const std::string product =
        "<Directory Id='D' Path='[D]'/><DirectoryRef Id='E'><Directory Id='E' Path='e'/>"
        "</DirectoryRef><Directory Id='F' Path='f'><Directory Id='G' Path='g'/></Directory>";
    directory(product, "D");
    std::wstring path;
    context.getProduct()->getDirectory(path, L"E", &context);

    EXPECT_TRUE(context.getProduct()->getDirectory(path, L"G", &context));

    EXPECT_EQ(path, L"f\\g\\");
}

// The bound is on what one element needs, not on a whole run.
TEST_F(EndlessElementsTest, ManyElementsThatNeedALotEachAreMade) {
    ASSERT_TRUE(loadProduct(chain(10, 2)));
    const XmlHandlePtr node = context.findElementById(L"Directory", L"D10");

    for (int i = 0; i < 50; ++i)
        ASSERT_NE(CreateElement(node.get(), context), nullptr);
}

}  // namespace
