#include "Cases.h"
#include "Host.h"

#define PRODUCT L"C:\\Program Files\\Example Works\\Greeter"

/* Takes away what the product leaves to its user. */
#define CLEAR_UP                                                                          \
    SCRIPT(                                                                               \
        L"<Feature><Component><RemoveDirectory Path='C:\\Program Files\\Example Works'/>" \
        L"<RegistryKey Action='remove' Root='HKEY_LOCAL_MACHINE'"                         \
        L" Key='Software\\Example Works'/></Component></Feature>")

/* How far the run has come. */
static uint32_t furthest = 0;

static void progressGoesOn(const temz_outcome* now) {
    CHECK(now->progress >= furthest && now->progress <= 100);
    CHECK(now->action.code != 0);
    furthest = now->progress;
}

static void runProduct(temz_mode mode) {
    furthest = 0;
    host.updates = 0;
    CHECK_NUMBER(TEMZ_OK, run(mode));
    CHECK_NUMBER(0, host.outcome.result);
    CHECK(host.updates > 10);
}

/* What the product consists of, besides what is its user's: its files, what its service and its
   custom action write, and its shortcut. */
static void expectProduct(bool there) {
    static const temz_char* const files[] = {
        PRODUCT L"\\greeter.txt",
        PRODUCT L"\\greeter-service.exe",
        PRODUCT L"\\tools.txt",
        PRODUCT L"\\welcome.txt",
        PRODUCT L"\\cache\\greeting.txt",
        PRODUCT L"\\doc\\manual.txt",
        L"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\Example Works\\Greeter.lnk",
    };
    for (size_t i = 0; i < sizeof files / sizeof *files; ++i)
        CHECK_NUMBER(there, isThere(files[i]));
    CHECK(isThere(PRODUCT L"\\doc\\notes.txt"));
}

void productIsInstalledUpgradedAndRemoved(void) {
    temz_char text[TEMZ_TEXT_LENGTH];
    host.inUpdate = progressGoesOn;
    CHECK_NUMBER(TEMZ_OK, temz_load(host.context, L"install.xml"));
    CHECK_NUMBER(TEMZ_OK,
                 temz_get_variable(host.context, L"PRODUCT", text, TEMZ_TEXT_LENGTH, NULL));
    CHECK_TEXT(L"Greeter", text);
    CHECK_NUMBER(TEMZ_OK, temz_get_directory(host.context, L"APPLICATIONROOTDIRECTORY", text,
                                             TEMZ_TEXT_LENGTH, NULL));
    CHECK_TEXT(PRODUCT L"\\", text);

    runProduct(TEMZ_INSTALL);
    expectProduct(true);
    CHECK(removeFile(PRODUCT L"\\greeter.txt"));
    runProduct(TEMZ_UPGRADE);
    expectProduct(true);
    runProduct(TEMZ_UNINSTALL);
    expectProduct(false);

    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_OK, load(CLEAR_UP));
    host.inUpdate = NULL;
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK(!isThere(PRODUCT));
}
