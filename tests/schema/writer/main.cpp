// Writes what stands in the tree and comes from the engine's tables: the schema of scripts, and the
// tables of the reference page.

#include "../ReferencePage.h"
#include "author/schema/Schema.h"
#include "support/TestFolder.h"
#include "support/Text.h"

int wmain(int count, wchar_t** arguments) {
    if (count != 3)
        return 1;
    const wchar_t* schema = arguments[1];
    const wchar_t* page = arguments[2];
    writeFile(schema, narrow(scriptSchema()));
    writeFile(page, renewedPage(readFile(page)));
    return 0;
}
