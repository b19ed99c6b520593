#include "SchemaCommand.h"

#include "Console.h"
#include "GivenText.h"
#include "TextOutput.h"

Ending giveSchema(const CommandLine& command) {
    std::wstring schema;
    const temz_status status = takeText(temz_schema, schema);
    if (status == TEMZ_OK)
        return giveText(schema, command.out);
    write(Stream::error, std::wstring(L"temz: ") + temz_status_text(status) + L"\n");
    return Ending::notCarriedOut;
}
