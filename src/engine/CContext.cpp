#include "engine/CContext.h"

#include <cwchar>
#include <optional>
#include <utility>

#include "elements/ElementFactory.h"
#include "engine/CProductElement.h"
#include "expression/CIntVariable.h"
#include "expression/CStringVariable.h"
#include "expression/CVariableElement.h"
#include "logging/Log.h"
#include "system/SystemFacts.h"

// Left undefined: the run mode is the host's to set.
CContext::CContext() = default;

CContext::~CContext() = default;

bool CContext::load(const wchar_t* scriptPath) {
    if (document) {
        lastError = L"It have already loaded.";
        return false;
    }
    document = openDocument(scriptPath);
    if (!document)
        return false;
    bool complete = false;
    try {
        complete = createOsVariables() && createScriptVariables() && createProduct();
    } catch (...) {
        unload();
        throw;
    }
    if (!complete)
        unload();
    return complete;
}

bool CContext::unload() {
    elementIndex.clear();
    product.reset();
    // With its storage, which nothing releases once the host has freed the context.
    variablesByName = decltype(variablesByName)();
    variables.clear();
    document.reset();
    return true;
}

IterfaceProduct* CContext::getProduct() {
    return product.get();
}

bool CContext::getVariable(std::wstring& value, const wchar_t* name) {
    const CVariable* variable = findVariable(name);
    if (variable == nullptr) {
        lastError = std::wstring(name) + L" variable is no exist.";
        return false;
    }
    try {
        value = variable->getString();
        return true;
    } catch (const std::wstring& message) {
        lastError = message;
        return false;
    }
}

std::wstring CContext::getReservedText() {
    return {};
}

CVariable* CContext::findVariable(const wchar_t* name) const {
    const auto found = variablesByName.find(name);
    return found == variablesByName.end() ? nullptr : found->second;
}

XmlHandlePtr CContext::findElementById(const wchar_t* elementName, const wchar_t* id) {
    return product ? elementIndex.find(elementName, id, product->getNode()) : nullptr;
}

bool CContext::getDirectory(std::wstring& path, const wchar_t* directoryId) {
    return product && product->getDirectory(path, directoryId, this);
}

CSubject& CContext::subject() {
    return *product;
}

bool CContext::createOsVariables() {
    add(makeOwned<CVariablePtr, CIntVariable>(osBitVariable, isNative64Bit() ? 64 : 32));
    const std::optional<OsVersion> version = askOsVersion();
    if (!version) {
        lastError = L"Can't get OS Version.";
        return false;
    }
    add(makeOwned<CVariablePtr, CIntVariable>(osMajorVersionVariable, version->major));
    add(makeOwned<CVariablePtr, CIntVariable>(osMinorVersionVariable, version->minor));
    return true;
}

bool CContext::createScriptVariables() {
    const XmlHandle root = rootElementOf(*document);
    for (XmlHandle child = firstChildOf(root); child; child = nextSiblingOf(child)) {
        const PassingText name(elementNameOf(child));
        if (!name)
            continue;
        const bool isConst = wcscmp(name.get(), variableConstKind.name) == 0;
        if ((isConst || wcscmp(name.get(), variableKind.name) == 0) &&
            !createScriptVariable(child, isConst))
            return false;
    }
    return true;
}

bool CContext::createScriptVariable(const XmlHandle& node, bool isConst) {
    ElementPtr made = CreateElement(&node, *this);
    if (!made) {
        lastError = getLastCreateError();
        return false;
    }
    auto* element = static_cast<CVariableElement*>(made.get());
    switch (element->getVariableType()) {
        case VARIABLE_STRING:
            add(makeOwned<CVariablePtr, CStringVariable>(element, isConst));
            break;
        case VARIABLE_INT:
            add(makeOwned<CVariablePtr, CIntVariable>(element, isConst));
            break;
        default:
            writeLog(WARNNING, element->describe(), " unknown variable type.");
            return true;
    }
    // A variable's element stays for good: unload releases the variable alone.
    if (keptElements)
        keptElements->push_back(std::move(made));
    else
        made.release();
    return true;
}

void CContext::add(CVariablePtr variable) {
    CVariable* const added = variables.emplace_back(std::move(variable)).get();
    variablesByName.try_emplace(added->getName(), added);
}

bool CContext::createProduct() {
    if (product)
        return true;
    const XmlHandle root = rootElementOf(*document);
    if (!root) {
        lastError = L"There is no root element.";
        return false;
    }
    const XmlHandle node = firstChildOf(root, productKind.name);
    if (!node) {
        lastError = L"There is no Product element.";
        return false;
    }
    ElementPtr made = CreateElement(&node, *this);
    if (!made) {
        lastError = getLastCreateError();
        return false;
    }
    product.reset(static_cast<CProductElement*>(made.release()));
    return true;
}
