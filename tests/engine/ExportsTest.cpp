#include <gtest/gtest.h>

#include "engine/CContext.h"
#include "logging/IterfaceProduct.h"
#include "support/TestFolder.h"

namespace {

TEST(CreateContextObjectTest, GivesAnEmptyContext) {
    IterfaceContext* context = CreateContextObject();
    ASSERT_NE(context, nullptr);

    EXPECT_EQ(context->getLastError(), L"");
    EXPECT_EQ(context->getProduct(), nullptr);

    FreeContextObject(context);
}

TEST(CreateContextObjectTest, GivesAContextOfItsOwnEachTime) {
    IterfaceContext* first = CreateContextObject();
    IterfaceContext* second = CreateContextObject();

    EXPECT_NE(first, second);

    FreeContextObject(first);
    FreeContextObject(second);
}

TEST(FreeContextObjectTest, DoesNothingWithNull) {
    FreeContextObject(nullptr);

    IterfaceContext* context = CreateContextObject();
    EXPECT_NE(context, nullptr);
    FreeContextObject(context);
}

TEST(FreeContextObjectTest, LeavesTheScriptToUnload) {
    const TestFolder folder;
    const std::wstring script =
        folder.write(L"a.xml", "<Root><Variable Id='V' Type='string' Value='v'/><Product/></Root>");
    IterfaceContext* context = CreateContextObject();
    ASSERT_TRUE(context->load(script.c_str()));
    IterfaceProduct* product = context->getProduct();
    const CVariable* variable = static_cast<CContext*>(context)->findVariable(L"V");

    FreeContextObject(context);

    EXPECT_EQ(variable->getString(), L"v");
    delete product;
}

}  // namespace
