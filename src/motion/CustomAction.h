#pragma once

/* What a custom action is: a function that a native 64-bit library exports, and that the engine
   calls for a `CustomAction` element of the install script. For C (since C11) and C++. */

/* NOLINTBEGIN(modernize-deprecated-headers, modernize-use-using): C has no other spelling. */

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The characters of the buffer for the function's message, the terminator included. */
#define CUSTOM_ACTION_MESSAGE_LENGTH 1024

/* What the function is given: 280 bytes, little-endian, without padding. */
typedef struct CustomActionParams {
    /* The directory with the Id APPLICATIONROOTDIRECTORY of the script, in the active code page,
       terminated, and ending in a separator. What stands behind the terminator is undefined. */
    char applicationRootDirectory[260];
    /* The version of Windows that the host is told of: 6.2 from Windows 8 on, unless the host's
       manifest names later ones. */
    uint32_t osMajorVersion;
    uint32_t osMinorVersion;
    /* 1 on a 64-bit Windows, else 0. */
    uint32_t is64Bit;
    /* IterfaceProduct::observerData of the host. The engine only carries it across. */
    uint64_t observerData;
} CustomActionParams;

/* The exported function. It runs on the thread of the run, which waits for it without a limit. Its
   library is loaded for this one call and unloaded behind it; `params` and `message` are the
   engine's and end with the call. In `message`, all zero at first and of `capacity` characters
   (CUSTOM_ACTION_MESSAGE_LENGTH), it can leave a terminated text, of which the host sees the first
   511 characters. No exception may leave it.

   It returns 0 for success. Any other number is a failure if the element says Return="check"; it is
   then ErrorInfo::systemError, and the result of the run when the host aborts. */
typedef uint32_t (*CustomActionEntry)(CustomActionParams* params, wchar_t* message,
                                      uint32_t capacity);

static_assert(sizeof(wchar_t) == 2, "wide text is UTF-16");
static_assert(sizeof(CustomActionParams) == 280, "size of the record");
static_assert(offsetof(CustomActionParams, applicationRootDirectory) == 0,
              "place of applicationRootDirectory");
static_assert(offsetof(CustomActionParams, osMajorVersion) == 260, "place of osMajorVersion");
static_assert(offsetof(CustomActionParams, osMinorVersion) == 264, "place of osMinorVersion");
static_assert(offsetof(CustomActionParams, is64Bit) == 268, "place of is64Bit");
static_assert(offsetof(CustomActionParams, observerData) == 272, "place of observerData");

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-deprecated-headers, modernize-use-using) */
