#include "Cases.h"
#include "Host.h"

/* The functions that give a text, each asked for one that is there. */
static temz_status giveFailure(temz_char* buffer, size_t capacity, size_t* length) {
    return temz_last_failure(host.context, buffer, capacity, length);
}

static temz_status giveVariable(temz_char* buffer, size_t capacity, size_t* length) {
    return temz_get_variable(host.context, L"TEXT", buffer, capacity, length);
}

static temz_status giveDirectory(temz_char* buffer, size_t capacity, size_t* length) {
    return temz_get_directory(host.context, L"APPLICATIONROOTDIRECTORY", buffer, capacity, length);
}

typedef struct Getter {
    temz_status (*give)(temz_char* buffer, size_t capacity, size_t* length);
    const temz_char* text;
    size_t needed; /* for the text and its terminator */
} Getter;

#define GETTER(give, text) \
    { give, text, sizeof text / sizeof(temz_char) }
static const Getter getters[] = {
    GETTER(giveFailure, L"absent variable is no exist."),
    GETTER(giveVariable, L"a text"),
    GETTER(giveDirectory, APP L"\\"),
};
enum { GETTER_COUNT = sizeof getters / sizeof *getters };

/* What a buffer holds before it is filled. */
enum { USED = 0x5A };

typedef struct Buffer {
    temz_char text[64];
} Buffer;

static Buffer usedBuffer(void) {
    Buffer buffer;
    fillMemory(USED, &buffer, sizeof buffer);
    return buffer;
}

static bool isUntouched(const Buffer* buffer, size_t from) {
    return isFilledWith(USED, buffer->text + from, sizeof buffer->text - from * sizeof(temz_char));
}

/* Loads a script and lets a question fail, so that each of the functions has a text to give. Asking
   for the others takes the failure away again. */
static void prepare(void) {
    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"absent", NULL, 0, NULL));
}

void lengthAloneCanBeAsked(void) {
    for (int i = 0; i < GETTER_COUNT; ++i) {
        size_t length = 0;
        prepare();
        CHECK_NUMBER(TEMZ_OK, getters[i].give(NULL, 0, &length));
        CHECK_NUMBER(getters[i].needed, length);
    }
}

void exactBufferIsFilled(void) {
    for (int i = 0; i < GETTER_COUNT; ++i) {
        Buffer buffer = usedBuffer();
        const size_t needed = getters[i].needed;
        size_t length = 0;
        prepare();
        CHECK_NUMBER(TEMZ_OK, getters[i].give(buffer.text, needed, &length));
        CHECK_NUMBER(needed, length);
        CHECK_TEXT(getters[i].text, buffer.text);
        CHECK(isUntouched(&buffer, needed));
    }
}

void smallBufferIsLeftAsItIs(void) {
    for (int i = 0; i < GETTER_COUNT; ++i) {
        Buffer buffer = usedBuffer();
        const size_t capacities[] = {0, 1, getters[i].needed - 1};
        prepare();
        for (size_t j = 0; j < sizeof capacities / sizeof *capacities; ++j) {
            size_t length = 0;
            CHECK_NUMBER(TEMZ_BUFFER_TOO_SMALL,
                         getters[i].give(buffer.text, capacities[j], &length));
            CHECK_NUMBER(getters[i].needed, length);
        }
        CHECK(isUntouched(&buffer, 0));
    }
}

void textsWithoutLengthCanBeAsked(void) {
    for (int i = 0; i < GETTER_COUNT; ++i) {
        Buffer buffer = usedBuffer();
        prepare();
        CHECK_NUMBER(TEMZ_OK, getters[i].give(NULL, 0, NULL));
        CHECK_NUMBER(TEMZ_NULL_ARGUMENT, getters[i].give(NULL, 64, NULL));
        prepare();
        CHECK_NUMBER(TEMZ_BUFFER_TOO_SMALL, getters[i].give(buffer.text, 1, NULL));
        CHECK_NUMBER(TEMZ_OK, getters[i].give(buffer.text, 64, NULL));
        CHECK_TEXT(getters[i].text, buffer.text);
    }
}

static void expectLastFailure(const temz_char* text) {
    Buffer buffer = usedBuffer();
    CHECK_NUMBER(TEMZ_OK, temz_last_failure(host.context, buffer.text, 64, NULL));
    CHECK_TEXT(text, buffer.text);
}

void absentNamesAreNotFound(void) {
    Buffer buffer = usedBuffer();
    temz_char* const text = buffer.text;
    size_t length = 99;
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));

    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"absent", text, 64, &length));
    expectLastFailure(L"absent variable is no exist.");
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"text", text, 64, &length));
    expectLastFailure(L"text variable is no exist.");
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"", text, 64, &length));
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"NUMBER", text, 64, &length));
    expectLastFailure(L"It doesn't support getString method.");
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_directory(host.context, L"absent", text, 64, &length));
    expectLastFailure(L"Get directory error:can't get the absent directory");

    CHECK(isUntouched(&buffer, 0));
    CHECK_NUMBER(99, length);
}

void emptyTextNeedsItsTerminator(void) {
    Buffer buffer = usedBuffer();
    size_t length = 0;
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_BUFFER_TOO_SMALL,
                 temz_get_variable(host.context, L"EMPTY", buffer.text, 0, &length));
    CHECK_NUMBER(1, length);
    CHECK_NUMBER(TEMZ_OK, temz_get_variable(host.context, L"EMPTY", buffer.text, 1, &length));
    CHECK_TEXT(L"", buffer.text);
    CHECK(isUntouched(&buffer, 1));
}

void failureTextLastsUntilTheNextCall(void) {
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    expectLastFailure(L"");
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"absent", NULL, 0, NULL));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    expectLastFailure(L"absent variable is no exist.");
    expectLastFailure(L"absent variable is no exist.");
    CHECK_NUMBER(TEMZ_OK, temz_get_directory(host.context, L"System32Folder", NULL, 0, NULL));
    expectLastFailure(L"");
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_directory(host.context, L"absent", NULL, 0, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_get_variable(host.context, L"TEXT", NULL, 0, NULL));
    expectLastFailure(L"");
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_directory(host.context, L"absent", NULL, 0, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    expectLastFailure(L"");
}

void schemaNeedsNoContext(void) {
    static temz_char schema[0x20000];
    const size_t capacity = sizeof schema / sizeof *schema;
    size_t length = 0;
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_schema(NULL, capacity, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_schema(NULL, 0, &length));
    CHECK_NUMBER(TEMZ_BUFFER_TOO_SMALL, temz_schema(schema, length - 1, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_schema(schema, capacity, &length));
    CHECK_NUMBER(0, schema[length - 1]);
    schema[length - 1 - 1] = 0; /* the line end */
    CHECK_TEXT(L"</xs:schema>", schema + length - 1 - sizeof "</xs:schema>");
    schema[5] = 0;
    CHECK_TEXT(L"<?xml", schema);
}
