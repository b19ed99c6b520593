#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "engine/IterfaceContext.h"
#include "expression/VariableType.h"
#include "logging/IterfaceProduct.h"

// The language of install scripts as data: which elements there are, what may stand in them, which
// attributes they have, and the words with a meaning. All names are exact and case-sensitive.

/// The attribute by which elements are referred to, and the one that places them on the disk.
inline constexpr wchar_t idAttribute[] = L"Id";
inline constexpr wchar_t pathAttribute[] = L"Path";

/// An attribute that an element wants.
struct AttributeDeclaration {
    wchar_t name[256];
    bool required;
};

/// An action that an element announces, and the ErrorInfo code that tells of its failure.
struct ElementAction {
    ActionCode action;
    uint32_t errorCode;
};
/// The error code of an action that can't fail.
inline constexpr uint32_t noErrorCode = 0;

/// One kind of element.
struct ElementKind {
    const wchar_t* name;    ///< as the script spells it
    const char* className;  ///< the class that stands for it

    /// Read from the element's own XML.
    std::span<const AttributeDeclaration> declared = {};
    /// Taken from the parent when the element itself has none.
    std::span<const AttributeDeclaration> derived = {};
    /// What the action asks for when it runs, in the order of its texts.
    std::span<const AttributeDeclaration> fetched = {};
    /// The elements that may stand in it.
    std::span<const wchar_t* const> children = {};
    /// What it reports to the host.
    std::span<const ElementAction> actions = {};
    /// Whether questions for attributes that aren't its own go on to the element around it.
    bool isTransparent = false;

    bool allowsChild(const wchar_t* childName) const;
    bool declares(const wchar_t* attributeName) const;
};

/// That of an element that declares nothing and that nothing may stand in.
inline constexpr ElementKind noKind = {L"", ""};

/// An element that stands for the one of another kind that has the same `Id`.
struct ReferenceKind {
    const wchar_t* name;
    const ElementKind* target;
};

extern const ElementKind installKind;
extern const ElementKind fragmentKind;
extern const ElementKind featureKind;
extern const ElementKind componentKind;
extern const ElementKind conditionKind;
extern const ElementKind customActionKind;
extern const ElementKind fileKind;
extern const ElementKind shortcutKind;
extern const ElementKind shellExcuteKind;
extern const ElementKind serviceControlKind;
extern const ElementKind copyFileKind;
extern const ElementKind fileSearchKind;
extern const ElementKind registryKeyKind;
extern const ElementKind registryValueKind;
extern const ElementKind removeDirectoryKind;
extern const ElementKind cautionKind;
extern const ElementKind directoryKind;
extern const ElementKind productKind;
extern const ElementKind variableKind;
extern const ElementKind variableConstKind;

/// The elements that a run executes, and those that are looked up.
std::span<const ElementKind* const> motionKinds();
std::span<const ElementKind* const> lookedUpKinds();
std::span<const ReferenceKind> motionReferences();
extern const ReferenceKind directoryReference;

/// The keyword of a list that is this word; null when it is none of them.
template <class Keyword>
const Keyword* findKeyword(std::span<const Keyword> keywords, const std::wstring& word) {
    for (const Keyword& keyword : keywords)
        if (word == keyword.word)
            return &keyword;
    return nullptr;
}

/// A value of `On` and the run modes in which it lets an element pass.
struct OnKeyword {
    wchar_t word[16];
    uint32_t modes;  ///< one bit for each, 1 << RunMode

    constexpr bool passesIn(int32_t runMode) const {
        return runMode >= RUNMODE_INSTALL && runMode <= RUNMODE_UPGRADE && (modes >> runMode & 1);
    }
};
std::span<const OnKeyword> onKeywords();

/// The value that `Vital`, `KillProcess`, `SupportDelayInstall` and `Wait` know.
inline constexpr wchar_t yesKeyword[] = L"yes";
/// What an absent `KillProcess` or `SupportDelayInstall` stands for.
inline constexpr wchar_t noKeyword[] = L"no";

/// The values of `Return` with a meaning: a CustomAction's number counts, a program is waited for.
inline constexpr wchar_t checkKeyword[] = L"check";
inline constexpr wchar_t syncKeyword[] = L"sync";

/// A value of `Action`, and the action that it asks for.
struct ActionKeyword {
    wchar_t word[8];
    ActionCode action;
};
std::span<const ActionKeyword> serviceActionKeywords();
std::span<const ActionKeyword> registryKeyActionKeywords();

/// A value of `Root` or of `Type` of a registry value, and the system's number for it.
struct RegistryKeyword {
    wchar_t word[24];
    uint32_t number;
};
std::span<const RegistryKeyword> registryRootKeywords();
std::span<const RegistryKeyword> registryTypeKeywords();

/// A value of `Type` of a variable.
struct VariableTypeKeyword {
    wchar_t word[8];
    VariableType type;
};
std::span<const VariableTypeKeyword> variableTypeKeywords();
