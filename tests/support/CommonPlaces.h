#pragma once

// Where tests have their folders and, below HKEY_CURRENT_USER, their registry keys.
inline constexpr wchar_t commonFolder[] = L"C:\\temz-tests";
inline constexpr wchar_t commonKey[] = L"Software\\temz-tests";
