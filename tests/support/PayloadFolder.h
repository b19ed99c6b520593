#pragma once

#include <string>
#include <string_view>

#include "support/TestFolder.h"

/// A folder beside the test program, where the engine looks for the files that a script installs.
class PayloadFolder {
public:
    PayloadFolder() : folder(testProgramDirectory()) {}

    /// Writes a file and gives its path as a script names it, relative to the program's directory.
    std::wstring write(std::wstring_view name, std::string_view content) const {
        return folder.write(name, content).substr(testProgramDirectory().size() + 1);
    }

private:
    TestFolder folder;
};
