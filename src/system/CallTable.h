#pragma once

// The engine calls the machine through tables of pointers, one for each group of calls:
// `fileCalls.CopyFileW(source, target, FALSE)`. So any single call can be replaced while all others
// stay real, and a tool can find all of them. A group is written down once, as a list of names, of
// which TEMZ_CALL_TABLE makes
//
//     struct FileCalls {
//         static constexpr const char* group = "file";
//         decltype(&::CopyFileW) CopyFileW = ::CopyFileW;
//         ...
//         template <class Visitor> static void visitCalls(Visitor&& visit);
//     };
//     inline FileCalls fileCalls;
//
// visitCalls calls `visit.template operator()<&FileCalls::CopyFileW>("CopyFileW")` for each.
//
// Not every compiler takes the address of an imported function for a constant, so a table may be
// filled while the library is loaded: nothing calls through one before that.
#define TEMZ_CALL_TABLE(Table, variable, groupName, LIST, MEMBER) \
    struct Table {                                                \
        static constexpr const char* group = groupName;           \
        LIST(MEMBER)                                              \
        template <class Visitor>                                  \
        static void visitCalls(Visitor&& visit) {                 \
            using Visited = Table;                                \
            LIST(TEMZ_VISIT_CALL)                                 \
        }                                                         \
    };                                                            \
    inline Table variable;

// NOLINTBEGIN(bugprone-macro-parentheses): a name in parentheses declares nothing.

/// The member for a call of Win32, and for one that the engine words itself, in the namespace
/// `own`.
#define TEMZ_WIN32_CALL(name) decltype(&::name) name = ::name;
#define TEMZ_OWN_CALL(name) decltype(&own::name) name = own::name;

// NOLINTEND(bugprone-macro-parentheses)

#define TEMZ_VISIT_CALL(name) visit.template operator()<&Visited::name>(#name);
