#include "VerifyReport.h"

#include <algorithm>

#include "Console.h"
#include "JsonLine.h"
#include "Version.h"

namespace {

constexpr ThingKind kinds[] = {ThingKind::file,   ThingKind::directory, ThingKind::link,
                               ThingKind::key,    ThingKind::value,     ThingKind::service,
                               ThingKind::restart};
constexpr Aftermath aftermaths[] = {Aftermath::left, Aftermath::changed, Aftermath::lost};

auto countOf(const std::vector<Difference>& differences, Aftermath aftermath) {
    return std::count_if(differences.begin(), differences.end(),
                         [aftermath](const Difference& one) { return one.aftermath == aftermath; });
}

class TextReport final : public VerifyReport {
public:
    void started(const std::wstring& /*script*/) override {}

    void runBegins(const std::wstring& mode, const std::wstring& script) override {
        write(Stream::output, L"--- " + mode + L" " + script + L"\n");
    }

    void runEnded(const std::wstring& /*mode*/, const std::wstring& /*script*/,
                  int exitCode) override {
        write(Stream::output, L"Exit code " + std::to_wstring(exitCode) + L"\n");
    }

    void installed(const Picture& before, const Picture& after) override {
        std::wstring list;
        for (const ThingKind kind : kinds)
            if (const size_t count = countNew(kind, before, after))
                list += (list.empty() ? L"" : L", ") + std::wstring(wordOf(kind)) + L" " +
                        std::to_wstring(count);
        write(Stream::output,
              L"New on the machine: " + (list.empty() ? L"nothing" : list) + L".\n");
    }

    void refused(const std::wstring& /*reason*/, Ending /*ending*/) override {}

    void finished(const std::vector<Difference>& differences, Ending ending) override {
        write(Stream::output, L"--- the machine, compared with before the install\n");
        for (const Aftermath aftermath : aftermaths)
            tell(differences, aftermath);
        if (differences.empty())
            write(Stream::output, L"It is as it was.\n");
        if (ending == Ending::failed)
            write(Stream::error, L"temz: A run has failed.\n");
    }

private:
    static const wchar_t* headOf(Aftermath aftermath) {
        constexpr const wchar_t* heads[] = {L"Left behind:\n", L"Changed:\n",
                                            L"No longer there:\n"};
        return heads[static_cast<size_t>(aftermath)];
    }

    static void tell(const std::vector<Difference>& differences, Aftermath aftermath) {
        if (countOf(differences, aftermath) > 0)
            write(Stream::output, headOf(aftermath));
        for (const Difference& difference : differences)
            if (difference.aftermath == aftermath) {
                std::wstring line = std::wstring(L"    ") + wordOf(difference.kind);
                line.resize(14, L' ');
                write(Stream::output, line + difference.name + L"  (" + difference.detail + L")\n");
            }
    }
};

class JsonReport final : public VerifyReport {
public:
    void started(const std::wstring& script) override {
        writeJsonLine(jsonEvent(L"start")
                          .add(L"schema", std::wstring(L"temz-verify-1"))
                          .add(L"version", programVersion())
                          .add(L"script", script));
    }

    void runBegins(const std::wstring& /*mode*/, const std::wstring& /*script*/) override {}

    void runEnded(const std::wstring& mode, const std::wstring& script, int exitCode) override {
        writeJsonLine(
            jsonEvent(L"run").add(L"mode", mode).add(L"script", script).add(L"exitCode", exitCode));
    }

    void installed(const Picture& before, const Picture& after) override {
        JsonObject line = jsonEvent(L"installed");
        for (const ThingKind kind : kinds)
            line.add(wordOf(kind), countNew(kind, before, after));
        writeJsonLine(line);
    }

    void refused(const std::wstring& reason, Ending ending) override { end({}, ending, reason); }

    void finished(const std::vector<Difference>& differences, Ending ending) override {
        for (const Difference& difference : differences)
            writeJsonLine(jsonEvent(L"difference")
                              .add(L"what", std::wstring(wordOf(difference.aftermath)))
                              .add(L"kind", std::wstring(wordOf(difference.kind)))
                              .add(L"name", difference.name)
                              .add(L"detail", difference.detail));
        end(differences, ending, L"");
    }

private:
    static void end(const std::vector<Difference>& differences, Ending ending,
                    const std::wstring& reason) {
        JsonObject line = jsonEvent(L"end");
        line.add(L"exitCode", exitCodeOf(ending));
        for (const Aftermath aftermath : aftermaths)
            line.add(wordOf(aftermath), countOf(differences, aftermath));
        line.add(L"reason", reason);
        writeJsonLine(line);
    }
};

}  // namespace

std::unique_ptr<VerifyReport> makeVerifyReport(bool json) {
    if (json)
        return std::make_unique<JsonReport>();
    return std::make_unique<TextReport>();
}
