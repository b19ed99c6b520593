#pragma once

#include "Abi.h"

#include <cstdint>
#include <string>

class IterfaceProduct;

/// What a run does with the product. The host writes it into IterfaceContext::runMode before it
/// starts a run; any other value matches no `On` and makes files fail.
enum RunMode : int32_t {
    RUNMODE_INSTALL = 0,  ///< elements whose On is "install" or "installupgrade", or that have none
    RUNMODE_UNINSTALL = 1,  ///< elements whose On is "uninstall", or that have none
    RUNMODE_UPGRADE = 2,  ///< elements whose On is "upgrade" or "installupgrade", or that have none
};

/// One install script and what the engine makes of it. A context belongs to one thread at a time,
/// and a process uses one context at a time. Host and engine must be built with the same compiler
/// and runtime library, since they share std::wstring and the layout of this class.
///
/// Exhausted memory leaves load, getVariable and the operations of the product as std::bad_alloc;
/// call unload then.
class IterfaceContext {
public:
    /// Opens and reads a script. The path is converted to the active code page. False when it
    /// fails: `lastError` then tells why, but for a file that can't be opened, is no XML or is
    /// nested more than 256 elements deep, where it keeps what it held. A failed load leaves
    /// nothing behind, and a script that was loaded before stays loaded.
    virtual bool load(const wchar_t* scriptPath) = 0;

    /// Releases the script; what getProduct has given is then gone. Safe at any time, and due
    /// before FreeContextObject. Always true.
    virtual bool unload() = 0;

    /// The product of the loaded script, owned by the context; null when none is loaded.
    virtual IterfaceProduct* getProduct() = 0;

    /// Reads a string variable of the script. False, with the reason in `lastError` and `value`
    /// untouched, when there is no variable of that name or it isn't a string. `name` isn't null.
    virtual bool getVariable(std::wstring& value, const wchar_t* name) = 0;

    /// Always an empty text.
    virtual std::wstring getReservedText() = 0;

    /// The text of the last failure of load or getVariable. A success doesn't clear it.
    std::wstring getLastError() const { return lastError; }
    int32_t getRunMode() const { return runMode; }

    std::wstring lastError;
    int32_t runMode;  ///< one of RunMode, written by the host; undefined until it does

protected:
    IterfaceContext() = default;
    ~IterfaceContext() = default;
};

extern "C" {

/// Makes an engine object, to be released with FreeContextObject. Null when memory is exhausted.
IterfaceContext* CreateContextObject();

/// Releases the object and `lastError`, and nothing that load has built: call unload first. A null
/// pointer does nothing.
void FreeContextObject(IterfaceContext* context);
}
