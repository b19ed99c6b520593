// How many elements of the script a run comes to, downwards and onwards: the measure of a walk that
// is the same on every machine.

#include <gtest/gtest.h>

#include <string>

#include "elements/raw_installerXML.h"
#include "support/MotionElementTest.h"
#include "support/ScriptTest.h"
#include "support/VisitedNodes.h"

namespace {

std::string repeated(const std::string& text, int count) {
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

class VisitedNodesTest : public ScriptTest {
protected:
    /// The nodes that a run looks at whose product has elements in place of the "$".
    uint64_t nodesOfRun(const std::string& product, const std::string& elements) {
        context.unload();
        EXPECT_TRUE(loadProduct(std::string(product).replace(product.find('$'), 1, elements)));
        // Here the table is built by which elements are found.
        EXPECT_EQ(run(), 0);
        const uint64_t before = nodesVisited();
        EXPECT_EQ(run(), 0);
        return nodesVisited() - before;
    }

    /// The nodes that each further element adds.
    uint64_t nodesOfEach(const std::string& element, const std::string& product) {
        return nodesOfRun(product, repeated(element, 2)) - nodesOfRun(product, element);
    }
};

const std::string fragment =
    "<InstallExecuteSequence><Fragment>$</Fragment></InstallExecuteSequence>";

TEST_F(VisitedNodesTest, ChildIsCountedAndVisited) {
    EXPECT_EQ(nodesOfEach("<Caution Title='t'/>", fragment), 2u);
    EXPECT_EQ(nodesOfEach("<Condition Expression='1'>" + cautions(10) + "</Condition>", fragment),
              2u + 10 * 2);
}

TEST_F(VisitedNodesTest, ChildrenOfAConditionThatDoesNotHoldAreNotLookedAt) {
    EXPECT_EQ(nodesOfEach("<Condition Expression='0'>" + cautions(10) + "</Condition>", fragment),
              2u);
}

TEST_F(VisitedNodesTest, ReferenceIsFoundWithoutASearch) {
    const std::string product =
        "<Directory Path='C:\\temz-tests'><Directory Path='a'><Component Id='C'/></Directory>"
        "</Directory><InstallExecuteSequence><Feature>$</Feature></InstallExecuteSequence>";
    EXPECT_EQ(nodesOfEach("<ComponentRef Id='C'/>", product), 2u);
}

TEST_F(VisitedNodesTest, DirectoryInATextIsFoundWithoutASearch) {
    const std::string directories =
        "<Directory Path='C:\\temz-tests'><Directory Id='D' Path='a'/></Directory>";
    EXPECT_EQ(nodesOfEach("<Caution Title='[D]'/>", directories + fragment), 2u);
}

}  // namespace
