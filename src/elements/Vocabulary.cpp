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
constexpr ElementAction conditionActions[] = {{ACTION_CONDITION, ERROR_CODE_MESSAGE}};

constexpr AttributeDeclaration customActionDeclared[] = {{L"DllFile", required},
                                                         {L"DllEntry", required},
                                                         {L"Return", required},
                                                         {L"On", optional},
                                                         {L"Title", optional}};
constexpr AttributeDeclaration customActionFetched[] = {
    {L"DllFile", required}, {L"DllEntry", required}, {L"Return", required}, {L"Title", optional}};
constexpr ElementAction customActionActions[] = {{ACTION_CUSTOM_ACTION, ACTION_CUSTOM_ACTION}};

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
constexpr ElementAction fileActions[] = {{ACTION_COPY_FILE, ACTION_COPY_FILE},
                                         {ACTION_DELETE_FILE, ACTION_DELETE_FILE}};

constexpr AttributeDeclaration shortcutDeclared[] = {{L"Name", required},
                                                     {L"Description", required},
                                                     {L"Target", required},
                                                     {L"WorkingDirectory", optional},
                                                     {L"IcoFile", optional}};
constexpr AttributeDeclaration shortcutDerived[] = {{L"Path", required}};
constexpr AttributeDeclaration shortcutFetched[] = {{L"Path", required},
                                                    {L"Name", required},
                                                    {L"Description", required},
                                                    {L"Target", required},
                                                    {L"WorkingDirectory", optional},
                                                    {L"IcoFile", optional}};
constexpr ElementAction shortcutActions[] = {{ACTION_SHORTCUT, ACTION_SHORTCUT},
                                             {ACTION_SHORTCUT, ERROR_CODE_REMOVE_SHORTCUT}};

constexpr AttributeDeclaration shellExcuteDeclared[] = {
    {L"File", required}, {L"Return", required}, {L"ExeCommand", optional}, {L"On", optional},
    {L"Show", optional}, {L"Title", optional},  {L"Vital", optional}};
constexpr AttributeDeclaration shellExcuteFetched[] = {{L"File", required},
                                                       {L"Return", required},
                                                       {L"ExeCommand", optional},
                                                       {L"Show", optional},
                                                       {L"Title", optional}};
constexpr ElementAction shellExcuteActions[] = {{ACTION_SHELL_EXCUTE, ACTION_SHELL_EXCUTE}};

constexpr AttributeDeclaration serviceControlDeclared[] = {{L"Name", required},
                                                           {L"Action", required},
                                                           {L"Wait", required},
                                                           {L"On", optional},
                                                           {L"Vital", optional}};
constexpr AttributeDeclaration serviceControlFetched[] = {
    {L"Name", required}, {L"Action", required}, {L"Wait", required}};
constexpr ElementAction serviceControlActions[] = {{ACTION_STOP_SERVICE, ACTION_STOP_SERVICE},
                                                   {ACTION_START_SERVICE, ACTION_START_SERVICE},
                                                   {ACTION_REMOVE_SERVICE, ACTION_REMOVE_SERVICE}};

constexpr AttributeDeclaration copyFileDeclared[] = {{L"DestinationName", required},
                                                     {L"SourceName", required}};

constexpr AttributeDeclaration fileSearchDeclared[] = {
    {L"Name", required}, {L"Path", required}, {L"Expression", required}, {L"MinVersion", optional}};

constexpr AttributeDeclaration registryKeyDeclared[] = {
    {L"Action", required}, {L"Key", required},   {L"Root", optional},
    {L"On", optional},     {L"Vital", optional}, {L"Title", optional}};
constexpr AttributeDeclaration registryKeyDerived[] = {{L"Root", required}};
constexpr AttributeDeclaration registryKeyFetched[] = {
    {L"Action", required}, {L"Key", required}, {L"Root", required}, {L"Title", optional}};
constexpr const wchar_t* registryKeyChildren[] = {L"RegistryKey", L"RegistryValue", L"Condition"};
constexpr ElementAction registryKeyActions[] = {
    {ACTION_CREATE_REGISTRY_KEY, ACTION_CREATE_REGISTRY_KEY},
    {ACTION_REMOVE_REGISTRY_KEY, ACTION_REMOVE_REGISTRY_KEY}};

constexpr AttributeDeclaration registryValueDeclared[] = {
    {L"Name", required}, {L"Type", required}, {L"Value", required}, {L"Vital", optional}};
constexpr AttributeDeclaration registryValueDerived[] = {{L"Key", required}, {L"Root", required}};
constexpr AttributeDeclaration registryValueFetched[] = {{L"Name", required},
                                                         {L"Type", required},
                                                         {L"Value", required},
                                                         {L"Key", required},
                                                         {L"Root", required}};
constexpr ElementAction registryValueActions[] = {{ACTION_REGISTRY_VALUE, ACTION_REGISTRY_VALUE}};

constexpr AttributeDeclaration removeDirectoryDeclared[] = {
    {L"Path", required}, {L"On", optional}, {L"Vital", optional}, {L"Title", optional}};
constexpr AttributeDeclaration removeDirectoryFetched[] = {{L"Path", required},
                                                           {L"Title", optional}};
constexpr ElementAction removeDirectoryActions[] = {
    {ACTION_REMOVE_DIRECTORY, ACTION_REMOVE_DIRECTORY}};

constexpr AttributeDeclaration cautionDeclared[] = {{L"Title", required}, {L"On", optional}};
constexpr AttributeDeclaration cautionFetched[] = {{L"Title", required}};
constexpr ElementAction cautionActions[] = {{ACTION_CAUTION, noErrorCode}};

constexpr AttributeDeclaration directoryDeclared[] = {{L"Path", optional}};
constexpr AttributeDeclaration directoryDerived[] = {{L"Path", required}};

constexpr AttributeDeclaration variableDeclared[] = {{L"Value", required}, {L"Type", required}};

// In the order in which names are tested.
constexpr const ElementKind* motion[] = {
    &installKind,      &fragmentKind,   &featureKind,     &componentKind,     &conditionKind,
    &customActionKind, &fileKind,       &shortcutKind,    &shellExcuteKind,   &serviceControlKind,
    &copyFileKind,     &fileSearchKind, &registryKeyKind, &registryValueKind, &removeDirectoryKind,
    &cautionKind};
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

constexpr ActionKeyword keywordsOfServiceAction[] = {{L"stop", ACTION_STOP_SERVICE},
                                                     {L"start", ACTION_START_SERVICE},
                                                     {L"remove", ACTION_REMOVE_SERVICE}};
constexpr ActionKeyword keywordsOfKeyAction[] = {{L"create", ACTION_CREATE_REGISTRY_KEY},
                                                 {L"remove", ACTION_REMOVE_REGISTRY_KEY}};

// The numbers of the system's predefined keys and of its value types.
constexpr RegistryKeyword keywordsOfRoot[] = {{L"HKEY_CLASSES_ROOT", 0x80000000},
                                              {L"HKEY_CURRENT_USER", 0x80000001},
                                              {L"HKEY_LOCAL_MACHINE", 0x80000002},
                                              {L"HKEY_USERS", 0x80000003},
                                              {L"HKEY_CURRENT_CONFIG", 0x80000005}};
constexpr RegistryKeyword keywordsOfValueType[] = {
    {L"REG_SZ", 1}, {L"REG_DWORD", 4}, {L"REG_MULTI_SZ", 7}};

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
    .isTransparent = true,
};
constinit const ElementKind customActionKind = {
    .name = L"CustomAction",
    .className = "CCustomActionMtElement",
    .declared = customActionDeclared,
    .fetched = customActionFetched,
    .actions = customActionActions,
};
constinit const ElementKind fileKind = {
    .name = L"File",
    .className = "CFileMtElement",
    .declared = fileDeclared,
    .derived = fileDerived,
    .fetched = fileFetched,
    .actions = fileActions,
};
constinit const ElementKind shortcutKind = {
    .name = L"Shortcut",
    .className = "CShortcutMtElement",
    .declared = shortcutDeclared,
    .derived = shortcutDerived,
    .fetched = shortcutFetched,
    .actions = shortcutActions,
};
constinit const ElementKind shellExcuteKind = {
    .name = L"ShellExcute",
    .className = "CShellExcuteMtElement",
    .declared = shellExcuteDeclared,
    .fetched = shellExcuteFetched,
    .actions = shellExcuteActions,
};
constinit const ElementKind serviceControlKind = {
    .name = L"ServiceControl",
    .className = "CServiceControlMtElement",
    .declared = serviceControlDeclared,
    .fetched = serviceControlFetched,
    .actions = serviceControlActions,
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
constinit const ElementKind registryKeyKind = {
    .name = L"RegistryKey",
    .className = "CRegistryKeyMtElement",
    .declared = registryKeyDeclared,
    .derived = registryKeyDerived,
    .fetched = registryKeyFetched,
    .children = registryKeyChildren,
    .actions = registryKeyActions,
};
constinit const ElementKind registryValueKind = {
    .name = L"RegistryValue",
    .className = "CRegistryValueMtElement",
    .declared = registryValueDeclared,
    .derived = registryValueDerived,
    .fetched = registryValueFetched,
    .actions = registryValueActions,
};
constinit const ElementKind removeDirectoryKind = {
    .name = L"RemoveDirectory",
    .className = "CRemoveDirectoryMtElement",
    .declared = removeDirectoryDeclared,
    .fetched = removeDirectoryFetched,
    .actions = removeDirectoryActions,
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

bool ElementKind::declares(const wchar_t* attributeName) const {
    return std::any_of(declared.begin(), declared.end(), [attributeName](const auto& declaration) {
        return wcscmp(declaration.name, attributeName) == 0;
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
std::span<const ActionKeyword> serviceActionKeywords() {
    return keywordsOfServiceAction;
}
std::span<const ActionKeyword> registryKeyActionKeywords() {
    return keywordsOfKeyAction;
}
std::span<const RegistryKeyword> registryRootKeywords() {
    return keywordsOfRoot;
}
std::span<const RegistryKeyword> registryTypeKeywords() {
    return keywordsOfValueType;
}
std::span<const VariableTypeKeyword> variableTypeKeywords() {
    return keywordsOfType;
}
