#include "elements/Vocabulary.h"

#include <algorithm>
#include <cwchar>

namespace {

constexpr bool required = true;
constexpr bool optional = false;

constexpr const wchar_t* installChildren[] = {L"Feature", L"FeatureRef", L"Fragment",
                                              L"FragmentRef", L"Condition"};

constexpr AttributeDeclaration fragmentDeclared[] = {{L"On", optional}};
constexpr const wchar_t* fragmentChildren[] = {
    L"Fragment",       L"FragmentRef", L"Condition", L"CustomAction",    L"ShellExcute",
    L"ServiceControl", L"FileSearch",  L"CopyFile",  L"RemoveDirectory", L"Caution"};

constexpr const wchar_t* featureChildren[] = {L"Feature", L"Condition", L"ComponentRef",
                                              L"Component"};

constexpr AttributeDeclaration componentDeclared[] = {{L"On", optional},
                                                      {L"SupportDelayInstall", optional}};
constexpr AttributeDeclaration componentDerived[] = {{L"Path", optional}};
constexpr const wchar_t* componentChildren[] = {
    L"File",       L"Shortcut",     L"RegistryKey",     L"RegistryValue",
    L"Condition",  L"CustomAction", L"ShellExcute",     L"ServiceControl",
    L"FileSearch", L"CopyFile",     L"RemoveDirectory", L"Caution"};

constexpr AttributeDeclaration conditionDeclared[] = {{L"Expression", required}};
constexpr const wchar_t* conditionChildren[] = {
    L"Condition",      L"Feature",         L"Fragment", L"CustomAction", L"ShellExcute",
    L"ServiceControl", L"FileSearch",      L"CopyFile", L"FeatureRef",   L"FragmentRef",
    L"Component",      L"ComponentRef",    L"File",     L"Shortcut",     L"RegistryKey",
    L"RegistryValue",  L"RemoveDirectory", L"Caution"};
constexpr ActionCode conditionActions[] = {ACTION_CONDITION};

constexpr AttributeDeclaration fileDeclared[] = {{L"Name", required},
                                                 {L"Source", required},
                                                 {L"SupportDelayInstall", optional},
                                                 {L"KillProcess", optional},
                                                 {L"Vital", optional}};
constexpr AttributeDeclaration fileDerived[] = {{L"Path", required},
                                                {L"SupportDelayInstall", optional}};
constexpr AttributeDeclaration fileFetched[] = {{L"Path", required},
                                                {L"Name", required},
                                                {L"Source", required},
                                                {L"SupportDelayInstall", optional},
                                                {L"KillProcess", optional}};
constexpr ActionCode fileActions[] = {ACTION_COPY_FILE, ACTION_DELETE_FILE};

constexpr AttributeDeclaration copyFileDeclared[] = {{L"DestinationName", required},
                                                     {L"SourceName", required}};

constexpr AttributeDeclaration fileSearchDeclared[] = {
    {L"Name", required}, {L"Path", required}, {L"Expression", required}, {L"MinVersion", optional}};

constexpr AttributeDeclaration cautionDeclared[] = {{L"Title", required}, {L"On", optional}};
constexpr AttributeDeclaration cautionFetched[] = {{L"Title", required}};
constexpr ActionCode cautionActions[] = {ACTION_CAUTION};

constexpr AttributeDeclaration directoryDeclared[] = {{L"Path", optional}};
constexpr AttributeDeclaration directoryDerived[] = {{L"Path", required}};

constexpr AttributeDeclaration variableDeclared[] = {{L"Value", required}, {L"Type", required}};

// In the order in which names are tested.
constexpr const ElementKind* motion[] = {&installKind,   &fragmentKind,   &featureKind,
                                         &componentKind, &conditionKind,  &fileKind,
                                         &copyFileKind,  &fileSearchKind, &cautionKind};
constexpr const ElementKind* lookedUp[] = {&directoryKind, &productKind, &variableKind,
                                           &variableConstKind};
constexpr ReferenceKind references[] = {{L"FragmentRef", &fragmentKind},
                                        {L"FeatureRef", &featureKind},
                                        {L"ComponentRef", &componentKind}};

constexpr uint32_t inInstall = 1u << RUNMODE_INSTALL;
constexpr uint32_t inUninstall = 1u << RUNMODE_UNINSTALL;
constexpr uint32_t inUpgrade = 1u << RUNMODE_UPGRADE;
constexpr OnKeyword keywordsOfOn[] = {{L"install", inInstall},
                                      {L"uninstall", inUninstall},
                                      {L"upgrade", inUpgrade},
                                      {L"installupgrade", inInstall | inUpgrade}};

constexpr VariableTypeKeyword keywordsOfType[] = {{L"string", VARIABLE_STRING},
                                                  {L"int", VARIABLE_INT}};

}  // namespace

constinit const ElementKind installKind = {
    .name = L"InstallExecuteSequence",
    .className = "CInstallMtElement",
    .children = installChildren,
};
constinit const ElementKind fragmentKind = {
    .name = L"Fragment",
    .className = "CFragmentMtElement",
    .declared = fragmentDeclared,
    .children = fragmentChildren,
};
constinit const ElementKind featureKind = {
    .name = L"Feature",
    .className = "CFeatureMtElement",
    .children = featureChildren,
};
constinit const ElementKind componentKind = {
    .name = L"Component",
    .className = "CComponentMtElement",
    .declared = componentDeclared,
    .derived = componentDerived,
    .children = componentChildren,
};
constinit const ElementKind conditionKind = {
    .name = L"Condition",
    .className = "CConditionMtElement",
    .declared = conditionDeclared,
    .children = conditionChildren,
    .actions = conditionActions,
};
constinit const ElementKind fileKind = {
    .name = L"File",
    .className = "CFileMtElement",
    .declared = fileDeclared,
    .derived = fileDerived,
    .fetched = fileFetched,
    .actions = fileActions,
};
constinit const ElementKind copyFileKind = {
    .name = L"CopyFile",
    .className = "CCopyFileMtElement",
    .declared = copyFileDeclared,
};
constinit const ElementKind fileSearchKind = {
    .name = L"FileSearch",
    .className = "CFileSearchMtElement",
    .declared = fileSearchDeclared,
    .fetched = fileSearchDeclared,
};
constinit const ElementKind cautionKind = {
    .name = L"Caution",
    .className = "CCautionMtElement",
    .declared = cautionDeclared,
    .fetched = cautionFetched,
    .actions = cautionActions,
};
constinit const ElementKind directoryKind = {
    .name = L"Directory",
    .className = "CDirectoryElement",
    .declared = directoryDeclared,
    .derived = directoryDerived,
};
constinit const ElementKind productKind = {
    .name = L"Product",
    .className = "CProductElement",
};
constinit const ElementKind variableKind = {
    .name = L"Variable",
    .className = "CVariableElement",
    .declared = variableDeclared,
};
constinit const ElementKind variableConstKind = {
    .name = L"VariableConst",
    .className = "CVariableElement",
    .declared = variableDeclared,
};
constinit const ReferenceKind directoryReference = {L"DirectoryRef", &directoryKind};

bool ElementKind::allowsChild(const wchar_t* childName) const {
    return std::any_of(children.begin(), children.end(), [childName](const wchar_t* allowed) {
        return wcscmp(allowed, childName) == 0;
    });
}

std::span<const ElementKind* const> motionKinds() {
    return motion;
}
std::span<const ElementKind* const> lookedUpKinds() {
    return lookedUp;
}
std::span<const ReferenceKind> motionReferences() {
    return references;
}
std::span<const OnKeyword> onKeywords() {
    return keywordsOfOn;
}
std::span<const VariableTypeKeyword> variableTypeKeywords() {
    return keywordsOfType;
}
