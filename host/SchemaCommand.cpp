#include "SchemaCommand.h"

#include <temz/temz.h>

#include "TextOutput.h"

Ending giveSchema(const CommandLine& command) {
    size_t length = 0;
    temz_schema(nullptr, 0, &length);
    std::wstring schema(length, L'\0');
    temz_schema(schema.data(), schema.size(), nullptr);
    schema.resize(length - 1);
    return giveText(schema, command.out);
}
