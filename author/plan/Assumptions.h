#pragma once

#include <cstdint>
#include <string>
#include <vector>

class CContext;
class CVariable;

/// The variables of a script as somebody wants them for a plan: for its life any of them can be
/// given another value, also those that are const, and at its end all are again as they were,
/// whatever a plan has assigned to them.
class Assumptions {
public:
    explicit Assumptions(const CContext& context);
    Assumptions(const Assumptions&) = delete;
    Assumptions& operator=(const Assumptions&) = delete;
    ~Assumptions();

    enum class Answer { possible, unknownVariable, noInteger };

    /// Whether a variable can be given this value.
    static Answer check(const CContext& context, const wchar_t* name, const wchar_t* text);
    /// Gives it the value, which must be possible.
    static void assume(const CContext& context, const wchar_t* name, const wchar_t* text);

private:
    struct Saved {
        CVariable* variable;
        std::wstring text;   // of one with an element
        int32_t number = 0;  // of a built-in one
    };
    std::vector<Saved> saved;
};
