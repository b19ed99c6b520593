/* A host that loads the library by itself, and looks its functions up by their names. */

#include <stdio.h>
#include <temz/temz.h>
#include <windows.h>

typedef temz_status (*create_type)(temz_context**);
typedef temz_status (*load_type)(temz_context*, const temz_char*);
typedef temz_status (*run_type)(temz_context*, temz_mode, temz_outcome*);
typedef temz_status (*free_type)(temz_context*);

static FARPROC find(HMODULE library, const char* name) {
    FARPROC function = GetProcAddress(library, name);
    if (function == NULL)
        printf("There is no %s.\n", name);
    return function;
}

int main(void) {
    HMODULE library = LoadLibraryW(L"TEMZC.dll");
    if (library == NULL)
        return 1;
    create_type create = (create_type)(void*)find(library, "temz_create");
    load_type load = (load_type)(void*)find(library, "temz_load");
    run_type run = (run_type)(void*)find(library, "temz_run");
    free_type release = (free_type)(void*)find(library, "temz_free");
    temz_context* context = NULL;
    if (!create || !load || !run || !release || create(&context) != TEMZ_OK ||
        load(context, L"install.xml") != TEMZ_OK)
        return 1;
    temz_status installed = run(context, TEMZ_INSTALL, NULL);
    temz_status removed = run(context, TEMZ_UNINSTALL, NULL);
    if (installed != TEMZ_OK || removed != TEMZ_OK || release(context) != TEMZ_OK)
        return 1;
    printf("Installed and removed\n");
    return FreeLibrary(library) ? 0 : 1;
}
