#include "Cases.h"

#include "Host.h"
#include "Report.h"

typedef struct Case {
    const char* name;
    void (*run)(void);
} Case;

#define CASE_ROW(name) {#name, name},
static const Case cases[] = {CASES(CASE_ROW)};
#undef CASE_ROW

static bool hasFailed(const Case* one) {
    const int before = failureCount();
    openHost();
    one->run();
    closeHost();
    if (failureCount() == before)
        return false;
    tell("FAILED: ");
    tell(one->name);
    tell("\n");
    return true;
}

int runCases(void) {
    const int count = sizeof cases / sizeof *cases;
    int failed = 0;
    for (int i = 0; i < count; ++i)
        if (hasFailed(&cases[i]))
            ++failed;
    tellNumber(count - failed);
    tell(" of ");
    tellNumber(count);
    tell(" cases passed.\n");
    return failed;
}
