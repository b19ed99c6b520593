#include "Cases.h"
#include "Host.h"

#define VERSION(major, minor, patch) ((uint32_t)(major) << 24 | (uint32_t)(minor) << 12 | (patch))

void versionsOfHeaderAndLibraryAgree(void) {
    CHECK_NUMBER(TEMZ_VERSION, temz_version());
    CHECK_NUMBER(VERSION(TEMZ_VERSION_MAJOR, TEMZ_VERSION_MINOR, TEMZ_VERSION_PATCH), TEMZ_VERSION);
    CHECK_NUMBER(TEMZ_OK, temz_check_version(TEMZ_VERSION));
}

void olderHeadersOfTheMajorVersionAreServed(void) {
    CHECK_NUMBER(TEMZ_OK, temz_check_version(VERSION(TEMZ_VERSION_MAJOR, 0, 0)));
}

void otherMajorAndNewerVersionsAreRefused(void) {
    const uint32_t refused[] = {
        VERSION(TEMZ_VERSION_MAJOR + 1, 0, 0),
        VERSION(TEMZ_VERSION_MAJOR + 1, TEMZ_VERSION_MINOR, TEMZ_VERSION_PATCH),
        VERSION((TEMZ_VERSION_MAJOR - 1) & 0xFF, TEMZ_VERSION_MINOR, TEMZ_VERSION_PATCH),
        VERSION(TEMZ_VERSION_MAJOR, TEMZ_VERSION_MINOR + 1, 0),
        VERSION(TEMZ_VERSION_MAJOR, TEMZ_VERSION_MINOR, TEMZ_VERSION_PATCH + 1),
        0xFFFFFFFF,
    };
    for (size_t i = 0; i < sizeof refused / sizeof *refused; ++i)
        CHECK_NUMBER(TEMZ_VERSION_MISMATCH, temz_check_version(refused[i]));
}

void eachStatusHasItsText(void) {
#define CHECK_STATUS_TEXT(name, number, text) CHECK_TEXT(L##text, temz_status_text(name));
    TEMZ_STATUS_LIST(CHECK_STATUS_TEXT)
#undef CHECK_STATUS_TEXT
}

void unknownStatusHasATextToo(void) {
    const temz_status unknown[] = {-1, TEMZ_STATUS_END_, 1000, INT32_MAX, INT32_MIN};
    for (size_t i = 0; i < sizeof unknown / sizeof *unknown; ++i)
        CHECK_TEXT(L"Unknown status.", temz_status_text(unknown[i]));
}
