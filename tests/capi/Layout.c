/* Where every field of every record lies, in bytes, and what every constant is: hosts in other
   languages have written these numbers down, so whoever changes one breaks them. Compiled by each
   compiler that a host may use. */

#include <temz/temz.h>

#ifdef __cplusplus
#define STAYS(condition) static_assert(condition, #condition)
#else
#define STAYS(condition) _Static_assert(condition, #condition)
#endif

#define RECORDS(RECORD, RECORD_FIELD)                  \
    RECORD_FIELD(temz_action, code, 0, 4)              \
    RECORD_FIELD(temz_action, text1, 4, 1024)          \
    RECORD_FIELD(temz_action, text2, 1028, 1024)       \
    RECORD(temz_action, 2052, 4)                       \
    RECORD_FIELD(temz_error, code, 0, 4)               \
    RECORD_FIELD(temz_error, system_error, 4, 4)       \
    RECORD_FIELD(temz_error, text1, 8, 1024)           \
    RECORD_FIELD(temz_error, text2, 1032, 1024)        \
    RECORD_FIELD(temz_error, message, 2056, 1024)      \
    RECORD(temz_error, 3080, 4)                        \
    RECORD_FIELD(temz_outcome, size, 0, 4)             \
    RECORD_FIELD(temz_outcome, result, 4, 4)           \
    RECORD_FIELD(temz_outcome, restart, 8, 4)          \
    RECORD_FIELD(temz_outcome, progress, 12, 4)        \
    RECORD_FIELD(temz_outcome, action, 16, 2052)       \
    RECORD_FIELD(temz_outcome, error, 2068, 3080)      \
    RECORD(temz_outcome, 5148, 4)                      \
    RECORD_FIELD(temz_observer, size, 0, 4)            \
    RECORD_FIELD(temz_observer, user, 8, 8)            \
    RECORD_FIELD(temz_observer, update, 16, 8)         \
    RECORD_FIELD(temz_observer, ask, 24, 8)            \
    RECORD(temz_observer, 32, 8)                       \
    RECORD_FIELD(temz_call, size, 0, 4)                \
    RECORD_FIELD(temz_call, failed, 4, 4)              \
    RECORD_FIELD(temz_call, system_error, 8, 4)        \
    RECORD_FIELD(temz_call, argument_count, 12, 4)     \
    RECORD_FIELD(temz_call, group, 16, 8)              \
    RECORD_FIELD(temz_call, name, 24, 8)               \
    RECORD_FIELD(temz_call, arguments, 32, 8)          \
    RECORD_FIELD(temz_call, result, 40, 8)             \
    RECORD_FIELD(temz_call, duration, 48, 8)           \
    RECORD_FIELD(temz_call, changes, 56, 4)            \
    RECORD(temz_call, 64, 8)                           \
    RECORD_FIELD(temz_tracer, size, 0, 4)              \
    RECORD_FIELD(temz_tracer, user, 8, 8)              \
    RECORD_FIELD(temz_tracer, call, 16, 8)             \
    RECORD_FIELD(temz_tracer, permit, 24, 8)           \
    RECORD(temz_tracer, 32, 8)                         \
    RECORD_FIELD(temz_finding, size, 0, 4)             \
    RECORD_FIELD(temz_finding, severity, 4, 4)         \
    RECORD_FIELD(temz_finding, ends_run, 8, 4)         \
    RECORD_FIELD(temz_finding, line, 12, 4)            \
    RECORD_FIELD(temz_finding, column, 16, 4)          \
    RECORD_FIELD(temz_finding, length, 20, 4)          \
    RECORD_FIELD(temz_finding, code, 24, 8)            \
    RECORD_FIELD(temz_finding, file, 32, 8)            \
    RECORD_FIELD(temz_finding, text, 40, 8)            \
    RECORD_FIELD(temz_finding, help, 48, 8)            \
    RECORD_FIELD(temz_finding, source_line, 56, 8)     \
    RECORD(temz_finding, 64, 8)                        \
    RECORD_FIELD(temz_finding_kind, size, 0, 4)        \
    RECORD_FIELD(temz_finding_kind, severity, 4, 4)    \
    RECORD_FIELD(temz_finding_kind, code, 8, 8)        \
    RECORD_FIELD(temz_finding_kind, meaning, 16, 8)    \
    RECORD_FIELD(temz_finding_kind, remedy, 24, 8)     \
    RECORD(temz_finding_kind, 32, 8)                   \
    RECORD_FIELD(temz_check_request, size, 0, 4)       \
    RECORD_FIELD(temz_check_request, script, 8, 8)     \
    RECORD_FIELD(temz_check_request, payload, 16, 8)   \
    RECORD_FIELD(temz_check_request, previous, 24, 8)  \
    RECORD_FIELD(temz_check_request, user, 32, 8)      \
    RECORD_FIELD(temz_check_request, finding, 40, 8)   \
    RECORD(temz_check_request, 48, 8)                  \
    RECORD_FIELD(temz_step, size, 0, 4)                \
    RECORD_FIELD(temz_step, kind, 4, 4)                \
    RECORD_FIELD(temz_step, depth, 8, 4)               \
    RECORD_FIELD(temz_step, line, 12, 4)               \
    RECORD_FIELD(temz_step, element, 16, 8)            \
    RECORD_FIELD(temz_step, id, 24, 8)                 \
    RECORD_FIELD(temz_step, object, 32, 8)             \
    RECORD_FIELD(temz_step, detail, 40, 8)             \
    RECORD_FIELD(temz_step, before, 48, 8)             \
    RECORD_FIELD(temz_step, after, 56, 8)              \
    RECORD_FIELD(temz_step, message, 64, 8)            \
    RECORD_FIELD(temz_step, bytes, 72, 8)              \
    RECORD_FIELD(temz_step, bytes_before, 80, 8)       \
    RECORD_FIELD(temz_step, code, 88, 4)               \
    RECORD_FIELD(temz_step, system_error, 92, 4)       \
    RECORD_FIELD(temz_step, holds, 96, 4)              \
    RECORD_FIELD(temz_step, fate, 100, 4)              \
    RECORD_FIELD(temz_step, same_content, 104, 4)      \
    RECORD_FIELD(temz_step, unforeseeable, 108, 4)     \
    RECORD_FIELD(temz_step, elements, 112, 4)          \
    RECORD_FIELD(temz_step, files, 116, 4)             \
    RECORD(temz_step, 120, 8)                          \
    RECORD_FIELD(temz_assumption, name, 0, 8)          \
    RECORD_FIELD(temz_assumption, value, 8, 8)         \
    RECORD(temz_assumption, 16, 8)                     \
    RECORD_FIELD(temz_planner, size, 0, 4)             \
    RECORD_FIELD(temz_planner, assumption_count, 4, 4) \
    RECORD_FIELD(temz_planner, assumptions, 8, 8)      \
    RECORD_FIELD(temz_planner, user, 16, 8)            \
    RECORD_FIELD(temz_planner, step, 24, 8)            \
    RECORD(temz_planner, 32, 8)

#define ALIGNED_BEHIND_A_BYTE(record) \
    struct behind_a_byte_##record {   \
        char byte;                    \
        record aligned;               \
    }

#define RECORD_STAYS(record, bytes, alignment) \
    ALIGNED_BEHIND_A_BYTE(record);             \
    STAYS(sizeof(record) == (bytes));          \
    STAYS(offsetof(struct behind_a_byte_##record, aligned) == (alignment));
#define FIELD_STAYS(record, field, offset, bytes) \
    STAYS(offsetof(record, field) == (offset));   \
    STAYS(sizeof(((record*)0)->field) == (bytes));

RECORDS(RECORD_STAYS, FIELD_STAYS)

#define CONSTANTS(CONSTANT)                       \
    CONSTANT(TEMZ_OK, 0)                          \
    CONSTANT(TEMZ_RUN_FAILED, 1)                  \
    CONSTANT(TEMZ_STOPPED, 2)                     \
    CONSTANT(TEMZ_LOAD_FAILED, 3)                 \
    CONSTANT(TEMZ_NOT_FOUND, 4)                   \
    CONSTANT(TEMZ_BUFFER_TOO_SMALL, 5)            \
    CONSTANT(TEMZ_NO_MEMORY, 6)                   \
    CONSTANT(TEMZ_NULL_ARGUMENT, 7)               \
    CONSTANT(TEMZ_BAD_CONTEXT, 8)                 \
    CONSTANT(TEMZ_BAD_SIZE, 9)                    \
    CONSTANT(TEMZ_BAD_MODE, 10)                   \
    CONSTANT(TEMZ_NOT_LOADED, 11)                 \
    CONSTANT(TEMZ_ALREADY_LOADED, 12)             \
    CONSTANT(TEMZ_IN_CALLBACK, 13)                \
    CONSTANT(TEMZ_BUSY, 14)                       \
    CONSTANT(TEMZ_VERSION_MISMATCH, 15)           \
    CONSTANT(TEMZ_INTERNAL, 16)                   \
    CONSTANT(TEMZ_NOT_READABLE, 17)               \
    CONSTANT(TEMZ_SEVERITY_ERROR, 0)              \
    CONSTANT(TEMZ_SEVERITY_WARNING, 1)            \
    CONSTANT(TEMZ_SEVERITY_NOTE, 2)               \
    CONSTANT(TEMZ_BAD_VALUE, 18)                  \
    CONSTANT(TEMZ_INSTALL, 0)                     \
    CONSTANT(TEMZ_UNINSTALL, 1)                   \
    CONSTANT(TEMZ_UPGRADE, 2)                     \
    CONSTANT(TEMZ_CONTINUE, 0)                    \
    CONSTANT(TEMZ_STOP, 1)                        \
    CONSTANT(TEMZ_RETRY, 0)                       \
    CONSTANT(TEMZ_ABORT, 1)                       \
    CONSTANT(TEMZ_IGNORE, 2)                      \
    CONSTANT(TEMZ_ERROR_MESSAGE, 1)               \
    CONSTANT(TEMZ_ACTION_CONDITION, 2)            \
    CONSTANT(TEMZ_ACTION_COPY_FILE, 3)            \
    CONSTANT(TEMZ_ACTION_DELETE_FILE, 4)          \
    CONSTANT(TEMZ_ACTION_STOP_SERVICE, 5)         \
    CONSTANT(TEMZ_ACTION_START_SERVICE, 6)        \
    CONSTANT(TEMZ_ACTION_REMOVE_SERVICE, 7)       \
    CONSTANT(TEMZ_ACTION_SHORTCUT, 8)             \
    CONSTANT(TEMZ_ERROR_REMOVE_SHORTCUT, 9)       \
    CONSTANT(TEMZ_ACTION_CUSTOM_ACTION, 10)       \
    CONSTANT(TEMZ_ACTION_SHELL_EXCUTE, 11)        \
    CONSTANT(TEMZ_ACTION_CREATE_REGISTRY_KEY, 12) \
    CONSTANT(TEMZ_ACTION_REMOVE_REGISTRY_KEY, 13) \
    CONSTANT(TEMZ_ACTION_REGISTRY_VALUE, 14)      \
    CONSTANT(TEMZ_ACTION_REMOVE_DIRECTORY, 15)    \
    CONSTANT(TEMZ_ACTION_CAUTION, 16)             \
    CONSTANT(TEMZ_STEP_GROUP, 1)                  \
    CONSTANT(TEMZ_STEP_ELEMENT, 2)                \
    CONSTANT(TEMZ_STEP_CONDITION, 3)              \
    CONSTANT(TEMZ_STEP_SEARCH, 4)                 \
    CONSTANT(TEMZ_STEP_ACTION, 5)                 \
    CONSTANT(TEMZ_STEP_CHANGE, 6)                 \
    CONSTANT(TEMZ_STEP_FAILURE, 7)                \
    CONSTANT(TEMZ_STEP_LEFT_OUT, 8)               \
    CONSTANT(TEMZ_CHANGE_FILE_ADDED, 1)           \
    CONSTANT(TEMZ_CHANGE_FILE_REPLACED, 2)        \
    CONSTANT(TEMZ_CHANGE_FILE_REMOVED, 3)         \
    CONSTANT(TEMZ_CHANGE_FILE_AT_RESTART, 4)      \
    CONSTANT(TEMZ_CHANGE_ATTRIBUTES, 5)           \
    CONSTANT(TEMZ_CHANGE_DIRECTORY_ADDED, 6)      \
    CONSTANT(TEMZ_CHANGE_DIRECTORY_REMOVED, 7)    \
    CONSTANT(TEMZ_CHANGE_KEY_ADDED, 8)            \
    CONSTANT(TEMZ_CHANGE_KEY_REMOVED, 9)          \
    CONSTANT(TEMZ_CHANGE_VALUE_SET, 10)           \
    CONSTANT(TEMZ_CHANGE_SERVICE_STARTED, 11)     \
    CONSTANT(TEMZ_CHANGE_SERVICE_STOPPED, 12)     \
    CONSTANT(TEMZ_CHANGE_SERVICE_REMOVED, 13)     \
    CONSTANT(TEMZ_CHANGE_SERVICE_CHANGED, 14)     \
    CONSTANT(TEMZ_CHANGE_LINK_WRITTEN, 15)        \
    CONSTANT(TEMZ_CHANGE_PROCESS_ENDED, 16)       \
    CONSTANT(TEMZ_CHANGE_PROGRAM_STARTED, 17)     \
    CONSTANT(TEMZ_CHANGE_LIBRARY_LOADED, 18)      \
    CONSTANT(TEMZ_CHANGE_ACTION_CALLED, 19)       \
    CONSTANT(TEMZ_FAILURE_VITAL, 0)               \
    CONSTANT(TEMZ_FAILURE_NOT_VITAL, 1)           \
    CONSTANT(TEMZ_FAILURE_ENDS_RUN, 2)            \
    CONSTANT(TEMZ_TEXT_LENGTH, 512)

#define CONSTANT_STAYS(name, number) STAYS((name) == (number));

CONSTANTS(CONSTANT_STAYS)

STAYS(sizeof(temz_char) == 2 && sizeof(*L"") == 2);
STAYS(sizeof(temz_status) == 4 && (temz_status)-1 < 0);
STAYS(sizeof(temz_severity) == 4 && (temz_severity)-1 < 0);
STAYS(sizeof(temz_mode) == 4 && (temz_mode)-1 < 0);
STAYS(sizeof(temz_answer) == 4 && (temz_answer)-1 < 0);
