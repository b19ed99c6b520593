#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "elements/CElement.h"
#include "elements/CElementIndex.h"
#include "elements/raw_installerXML.h"
#include "engine/IterfaceContext.h"
#include "expression/CVariable.h"

class CProductElement;
class CSubject;

/// The integer variables that every script finds, made from the facts of the machine.
inline constexpr wchar_t osBitVariable[] = L"OS_BIT";
inline constexpr wchar_t osMajorVersionVariable[] = L"OS_MAJOR_VERSION";
inline constexpr wchar_t osMinorVersionVariable[] = L"OS_MINOR_VERSION";

/// The engine object behind IterfaceContext: one loaded script, with its document, its product and
/// its variables. There is no element tree; elements are made from the document when needed.
class CContext final : public IterfaceContext {
public:
    CContext();
    CContext(const CContext&) = delete;
    CContext& operator=(const CContext&) = delete;
    /// Unloads. A context that the host releases through FreeContextObject never comes here.
    ~CContext();

    bool load(const wchar_t* scriptPath) override;
    bool unload() override;
    IterfaceProduct* getProduct() override;
    bool getVariable(std::wstring& value, const wchar_t* name) override;
    std::wstring getReservedText() override;

    /// The first variable of that name, in the order of their making; null if there is none.
    CVariable* findVariable(const wchar_t* name) const;

    /// All variables, in the order of their making.
    const std::vector<CVariablePtr>& getVariables() const { return variables; }

    /// The first element below the product with this name and `Id`; null if there is none.
    XmlHandlePtr findElementById(const wchar_t* elementName, const wchar_t* id);

    /// getDirectory of the product; false while there is no product.
    bool getDirectory(std::wstring& path, const wchar_t* directoryId);

    /// The product as the subject of notifications. Only while a script is loaded.
    CSubject& subject();

    /// Has the elements of variables, which load makes and unload leaves behind, added to a list
    /// from now on. Where nobody keeps them they belong to nobody.
    void keepVariableElements(std::vector<ElementPtr>& list) { keptElements = &list; }

private:
    bool createOsVariables();
    bool createScriptVariables();
    bool createProduct();
    bool createScriptVariable(const XmlHandle& node, bool isConst);
    void add(CVariablePtr variable);

    XmlDocumentPtr document;
    std::unique_ptr<CProductElement> product;
    std::vector<CVariablePtr> variables;
    // The first of each name, as the variables themselves spell it.
    std::unordered_map<std::wstring_view, CVariable*> variablesByName;
    CElementIndex elementIndex;
    std::vector<ElementPtr>* keptElements = nullptr;
};
