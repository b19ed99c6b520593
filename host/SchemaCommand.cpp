#include "SchemaCommand.h"

#include "GivenText.h"
#include "TextOutput.h"

Ending giveSchema(const CommandLine& command) {
    std::wstring schema;
    const temz_status status = takeText(temz_schema, schema);
    if (status == TEMZ_OK)
        return giveText(schema, command.out);
    return endWith(Ending::notCarriedOut, temz_status_text(status));
}
