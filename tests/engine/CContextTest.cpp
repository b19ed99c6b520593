#include "engine/CContext.h"

#include "support/ScriptTest.h"

namespace {

using CContextTest = ScriptTest;

TEST_F(CContextTest, LoadsAScriptOnce) {
    ASSERT_TRUE(loadProduct(""));

    EXPECT_FALSE(loadProduct(""));

    EXPECT_EQ(context.getLastError(), L"It have already loaded.");
    EXPECT_NE(context.getProduct(), nullptr);
}

}  // namespace
