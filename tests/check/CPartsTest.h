#pragma once

#include <span>

#include "check/CCheckTest.h"

/// What a script has beside one directory with one component in it.
struct Parts {
    std::string component = {};
    std::string sequence = {};
    std::string product = {};
    std::string on = {};  ///< an attribute of the component
    std::string variables = {};
    /// Whether there are variables that a run can change, V and N, and one that is no number.
    bool changing = false;
};

struct Case {
    Parts parts;
    std::string told;  ///< a line each: "TZ203 text -> help"
};

inline std::string scriptOf(const Parts& parts) {
    return "<Root>" + parts.variables +
           std::string(parts.changing ? R"(<Variable Id="V" Type="string" Value="abc"/>
<Variable Id="N" Type="int" Value="7"/><VariableConst Id="W" Type="string" Value="w"/>
<VariableConst Id="BAD" Type="int" Value="bad"/>)"
                                      : "") +
           R"(<Product><Directory Id="R" Path="C:\x"><Component Id="C")" + parts.on + ">" +
           parts.component + "</Component></Directory>" + parts.product +
           "<InstallExecuteSequence>" +
           std::string(parts.changing ? R"(<Fragment>
<FileSearch Name="a" Path="C:\y" Expression="V = W"/><FileSearch Name="a" Path="C:\y" Expression="N = 1"/>
</Fragment>)"
                                      : "") +
           R"(<Feature><ComponentRef Id="C"/></Feature>)" + parts.sequence +
           R"(<Fragment On="uninstall"><RemoveDirectory Path="[R]"/></Fragment>)"
           "</InstallExecuteSequence></Product></Root>";
}

/// A file of the component, with further attributes.
inline std::string file(const std::string& name, const std::string& more = {}) {
    return "<File Name=\"" + name + "\" Source=\"a\"" + more + "/>";
}

/// A fragment of the sequence that says something under a condition.
inline std::string condition(const std::string& expression) {
    return "<Fragment><Condition Expression=\"" + expression +
           "\"><Caution Title=\"x\"/></Condition></Fragment>";
}

/// One that removes a directory at uninstall.
inline std::string removal(const std::string& directory) {
    return "<Fragment On=\"uninstall\"><RemoveDirectory Path=\"" + directory + "\"/></Fragment>";
}

/// A test that checks scripts of such parts.
class CPartsTest : public CCheckTest {
protected:
    /// What is told of a script, with its help and wherever it stands; but for variables
    /// that nothing reads.
    std::string told(const Parts& parts) {
        std::string lines;
        for (const Finding& finding : check(scriptOf(parts)))
            if (narrow(finding.kind->code) != "TZ418")
                lines += narrow(finding.kind->code) + " " + narrow(finding.text) +
                         (finding.help.empty() ? "" : " -> " + narrow(finding.help)) + "\n";
        return lines;
    }

    void expectTold(std::span<const Case> cases) {
        for (const Case& row : cases)
            EXPECT_EQ(told(row.parts), row.told) << scriptOf(row.parts);
    }
};
