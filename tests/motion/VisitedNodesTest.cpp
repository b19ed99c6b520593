// How many nodes of the script a run looks at: the measure of a walk that is the same on every
// machine.

#include <gtest/gtest.h>

#include <string>

#include "elements/raw_installerXML.h"
#include "support/MotionElementTest.h"
#include "support/ScriptTest.h"

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
        const uint64_t before = xmlNodesVisited();
        EXPECT_EQ(run(), 0);
        return xmlNodesVisited() - before;
    }

    /// The nodes that each further element adds.
    uint64_t nodesOfEach(const std::string& element, const std::string& product) {
        return nodesOfRun(product, repeated(element, 2)) - nodesOfRun(product, element);
    }
};

const std::string fragment =
    "<InstallExecuteSequence><Fragment>$</Fragment></InstallExecuteSequence>";

TEST_F(VisitedNodesTest, ChildIsCountedAndVisited) {
    EXPECT_LE(nodesOfEach("<Caution Title='t'/>", fragment), 2u);
    EXPECT_LE(nodesOfEach("<Condition Expression='1'>" + cautions(10) + "</Condition>", fragment),
              2u + 10 * 2);
}

TEST_F(VisitedNodesTest, ChildrenOfAConditionThatDoesNotHoldAreNotLookedAt) {
    EXPECT_LE(nodesOfEach("<Condition Expression='0'>" + cautions(10) + "</Condition>", fragment),
              2u);
}

TEST_F(VisitedNodesTest, ReferenceLooksAtTheDirectoriesAroundItsElement) {
    const std::string product =
        "<Directory Path='C:\\temz-tests'><Directory Path='a'><Component Id='C'/></Directory>"
        "</Directory><InstallExecuteSequence><Feature>$</Feature></InstallExecuteSequence>";
    EXPECT_LE(nodesOfEach("<ComponentRef Id='C'/>", product), 2u + 3);
}

TEST_F(VisitedNodesTest, DirectoryInATextLooksAtThoseAroundIt) {
    const std::string directories =
        "<Directory Path='C:\\temz-tests'><Directory Id='D' Path='a'/></Directory>";
    EXPECT_LE(nodesOfEach("<Caution Title='[D]'/>", directories + fragment), 2u + 2);
}

}  // namespace
