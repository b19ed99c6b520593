#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <temz/temz.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Files, texts and threads, for cases that must do without a C runtime. */

bool isThere(const temz_char* path);
bool removeFile(const temz_char* path);

/* Writes a text as a file, in the active code page. */
bool writeText(const temz_char* path, const temz_char* text);

/* Makes the directory of the program the current one. */
void enterProgramDirectory(void);

bool isSameText(const temz_char* one, const temz_char* other);
bool endsIn(const temz_char* text, const temz_char* end);
/* Copies as much as fits. */
void copyText(temz_char* target, size_t capacity, const temz_char* text);

bool isSameMemory(const void* one, const void* other, size_t size);
bool isFilledWith(unsigned char byte, const void* memory, size_t size);
void fillMemory(unsigned char byte, void* memory, size_t size);

/* Calls a function on another thread and waits for it, though not for ever: gives whether it has
   returned. */
bool callOnThread(void (*function)(void));

#ifdef __cplusplus
}
#endif
