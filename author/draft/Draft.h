#pragma once

#include <string>

#include "author/draft/Payload.h"

/// Why no product can be drafted under this name; empty when one can.
std::wstring faultOfProductName(const std::wstring& name);

/// A whole script that installs a payload as a product, puts its program into the start menu, and
/// takes all away at uninstall. What the product is called, its directory is called, too. The
/// program is the only one at the top of the payload, or the one that is named like the product;
/// without it there is no shortcut, which stands in `notes`.
std::wstring draftProduct(const std::wstring& name, const Payload& payload, Notes& notes);

/// The definitions of the components of a payload, and the references to them, to be put into a
/// script.
std::wstring draftPart(const Payload& payload, Notes& notes);
