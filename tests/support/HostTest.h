#pragma once

#include <gtest/gtest.h>
#include <temz/IterfaceContext.h>
#include <temz/IterfaceProduct.h>

#include <map>
#include <string>
#include <string_view>

#include "support/PayloadFolder.h"
#include "support/RecordingObserver.h"
#include "support/TestFolder.h"
#include "support/Text.h"

/// A host of the DLL: a test with a folder for the product, files beside its program, and a context
/// of its own.
class HostTest : public testing::Test {
protected:
    ~HostTest() override {
        context->unload();
        FreeContextObject(context);
    }

    /// Writes the text as a script file and loads it.
    bool load(std::string_view xml) {
        return context->load(folder.write(L"script.xml", xml).c_str());
    }

    /// Runs the loaded script in a mode, with `observer` listening.
    int32_t run(int32_t mode) {
        context->runMode = mode;
        product().observer = &observer;
        const int32_t result = product().run(context);
        product().observer = nullptr;
        return result;
    }

    IterfaceProduct& product() { return *context->getProduct(); }

    /// The directory into which the scripts install.
    std::wstring app(std::wstring_view name = {}) const {
        return folder.path(name.empty() ? L"app" : L"app\\" + std::wstring(name));
    }

    /// A script whose one component, with the given attributes, holds the elements in app().
    std::string componentScript(const std::string& elements,
                                const std::string& attributes = {}) const {
        return "<Script><Product><Directory Path='" + narrow(app()) + "'><Component Id='C' " +
               attributes + ">" + elements +
               "</Component></Directory><InstallExecuteSequence><Feature><ComponentRef Id='C'/>"
               "</Feature></InstallExecuteSequence></Product></Script>";
    }

    /// A `File` whose source, which is written beside the program, holds the content.
    std::string file(std::wstring_view name, std::string_view content,
                     const std::string& attributes = {}) const {
        return "<File Name='" + narrow(name) + "' Source='" + narrow(payload.write(name, content)) +
               "' " + attributes + "/>";
    }

    /// The files in app() and below, with their contents.
    std::map<std::wstring, std::string> installedFiles() const {
        std::map<std::wstring, std::string> files;
        if (exists(app()))
            for (const auto& entry : std::filesystem::recursive_directory_iterator(app()))
                if (entry.is_regular_file())
                    files[entry.path().wstring().substr(app().size() + 1)] =
                        readFile(entry.path().wstring());
        return files;
    }

    const TestFolder folder;
    const PayloadFolder payload;
    RecordingObserver observer;
    IterfaceContext* const context = CreateContextObject();
};
