#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/FakeServices.h"
#include "support/LogFile.h"

/// A test with a service manager that does as it is told. Unless it says otherwise, what an
/// operation does leaves no handle, lock or memory behind, and no line in the log.
class FakeServiceTest : public testing::Test {
protected:
    ~FakeServiceTest() override {
        EXPECT_THAT(services.held(), testing::UnorderedElementsAreArray(left));
        EXPECT_EQ(log.lines(), logged);
    }

    const LogFile log;
    FakeServices services;
    std::vector<std::string> left;
    std::vector<std::string> logged;
};
