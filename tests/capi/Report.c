#include "Report.h"

#include "Kernel32.h"
#include "Machine.h"

static int failures = 0;

int failureCount(void) {
    return failures;
}

void tell(const char* text) {
    uint32_t size = 0;
    uint32_t written = 0;
    while (text[size] != '\0')
        ++size;
    WriteFile(GetStdHandle((uint32_t)STANDARD_OUTPUT), text, size, &written, NULL);
}

void tellNumber(int64_t number) {
    char digits[24];
    char* first = digits + sizeof digits - 1;
    uint64_t rest = number < 0 ? 0 - (uint64_t)number : (uint64_t)number;
    *first = '\0';
    do {
        *--first = (char)('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (number < 0)
        *--first = '-';
    tell(first);
}

static void tellText(const temz_char* text) {
    char narrow[3 * TEMZ_TEXT_LENGTH];
    if (WideCharToMultiByte(UTF8_CODE_PAGE, 0, text, -1, narrow, sizeof narrow, NULL, NULL) == 0)
        tell("(a long text)");
    else
        tell(narrow);
}

static void tellFailure(const char* expectation, const char* file, int line) {
    ++failures;
    tell(file);
    tell(":");
    tellNumber(line);
    tell(": ");
    tell(expectation);
    tell("\n");
}

void checkTrue(bool holds, const char* expectation, const char* file, int line) {
    if (!holds)
        tellFailure(expectation, file, line);
}

void checkNumber(int64_t expected, int64_t actual, const char* expectation, const char* file,
                 int line) {
    if (expected == actual)
        return;
    tellFailure(expectation, file, line);
    tell("    expected ");
    tellNumber(expected);
    tell(", is ");
    tellNumber(actual);
    tell("\n");
}

void checkText(const temz_char* expected, const temz_char* actual, const char* expectation,
               const char* file, int line) {
    if (isSameText(expected, actual))
        return;
    tellFailure(expectation, file, line);
    tell("    expected \"");
    tellText(expected);
    tell("\", is \"");
    tellText(actual);
    tell("\"\n");
}
