#include "DraftCommands.h"

#include "Console.h"
#include "PayloadFolder.h"
#include "TextOutput.h"
#include "author/draft/Draft.h"

namespace {

/// Reads the folder and gives out what `draft` makes of it.
template <class Draft>
Ending giveDraft(const CommandLine& command, const Draft& draft) {
    Notes notes;
    std::wstring problem;
    const std::optional<Folder> folder = readPayloadFolder(command.payload, problem);
    const auto payload = folder ? payloadOf(*folder, notes, problem) : std::nullopt;
    if (!payload)
        return endWith(Ending::notCarriedOut, problem);
    const std::wstring script = draft(*payload, notes);
    for (const std::wstring& note : notes)
        write(Stream::error, L"temz: " + note + L"\n");
    return giveText(script, command.out);
}

}  // namespace

Ending giveProduct(const CommandLine& command) {
    if (const std::wstring fault = faultOfProductName(command.name); !fault.empty())
        return endWith(Ending::badCommandLine,
                       L"The product's directory can't be called " + command.name + L": " + fault);
    return giveDraft(command, [&command](const Payload& payload, Notes& notes) {
        return draftProduct(command.name, payload, notes);
    });
}

Ending givePart(const CommandLine& command) {
    return giveDraft(command, draftPart);
}
