#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/IterfaceObserver.h"

/// The folder of this program, which sources and scripts are put into.
std::filesystem::path programFolder();

/// A text so many times over, with the number of each copy, from 0, in place of each "$".
std::string numbered(std::string_view text, int64_t count);

/// A script with this in its product and this in its sequence, as a file for the life of the
/// object.
class ScriptFile {
public:
    ScriptFile(std::string_view product, std::string_view sequence,
               std::string_view variables = {});
    ScriptFile(const ScriptFile&) = delete;
    ScriptFile& operator=(const ScriptFile&) = delete;
    ~ScriptFile();

    const std::wstring& path() const { return file; }

private:
    const std::wstring file;
};

/// A loaded script, with an observer that only listens: without one each action is told to the log.
class LoadedScript {
public:
    explicit LoadedScript(const std::wstring& path);

    /// False when it wasn't loaded, or the run fails.
    bool run(int32_t mode = RUNMODE_INSTALL);

private:
    class SilentObserver final : public IterfaceObserver {
        void update(IterfaceProduct*) override {}
        ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }
    };

    CContext context;
    SilentObserver observer;
};
