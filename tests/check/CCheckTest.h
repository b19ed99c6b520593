#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "author/check/Finding.h"
#include "support/TestFolder.h"
#include "support/Text.h"

/// A test that checks scripts in a folder of its own.
class CCheckTest : public testing::Test {
protected:
    /// What a check of this text finds.
    std::vector<Finding> check(std::string_view script, CheckRequest request = {}) {
        request.script = folder.write(L"script.xml", script);
        std::vector<Finding> findings;
        EXPECT_EQ(checkScript(request, [&](const Finding& found) { findings.push_back(found); }),
                  CheckEnd::done);
        return findings;
    }

    /// The same, a line each: "3:17 TZ203 text".
    std::string findingsIn(std::string_view script, const CheckRequest& request = {}) {
        std::string lines;
        for (const Finding& finding : check(script, request))
            lines += std::to_string(finding.place.line) + ":" +
                     std::to_string(finding.place.column) + " " + narrow(finding.kind->code) + " " +
                     narrow(finding.text) + "\n";
        return lines;
    }

    TestFolder folder;
};
