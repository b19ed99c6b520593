#include <gmock/gmock.h>
#include <temz/IterfaceContext.h>
#include <temz/IterfaceProduct.h>

namespace {

TEST(CreateContextObjectTest, GivesAnEmptyContext) {
    IterfaceContext* context = CreateContextObject();
    ASSERT_NE(context, nullptr);

    EXPECT_EQ(context->getProduct(), nullptr);
    EXPECT_EQ(context->getLastError(), L"");

    FreeContextObject(context);
}

}  // namespace
