#pragma once

#include <stdbool.h>
#include <stdint.h>
#include <temz/temz.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What a case expects. An expectation that fails is told on the standard output and fails the case,
   which goes on. */
#define CHECK(condition) checkTrue((condition), #condition, __FILE__, __LINE__)
#define CHECK_NUMBER(expected, actual) \
    checkNumber((expected), (actual), #expected " == " #actual, __FILE__, __LINE__)
#define CHECK_TEXT(expected, actual) \
    checkText((expected), (actual), #expected " == " #actual, __FILE__, __LINE__)

void checkTrue(bool holds, const char* expectation, const char* file, int line);
void checkNumber(int64_t expected, int64_t actual, const char* expectation, const char* file,
                 int line);
void checkText(const temz_char* expected, const temz_char* actual, const char* expectation,
               const char* file, int line);

/* The expectations that have failed so far. */
int failureCount(void);

void tell(const char* text);
void tellNumber(int64_t number);

#ifdef __cplusplus
}
#endif
