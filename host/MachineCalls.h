#pragma once

#include <windows.h>

#include <sddl.h>
#include <wincrypt.h>

/// The Win32 calls by which the machine is asked; tests replace them, to have one that doesn't
/// answer.
struct MachineCalls {
    decltype(&::GetTokenInformation) GetTokenInformation = ::GetTokenInformation;
    decltype(&::ConvertSidToStringSidW) ConvertSidToStringSidW = ::ConvertSidToStringSidW;
    decltype(&::LookupAccountSidW) LookupAccountSidW = ::LookupAccountSidW;
    decltype(&::CryptAcquireContextW) CryptAcquireContextW = ::CryptAcquireContextW;
    decltype(&::CryptCreateHash) CryptCreateHash = ::CryptCreateHash;
    decltype(&::CryptHashData) CryptHashData = ::CryptHashData;
    decltype(&::CryptGetHashParam) CryptGetHashParam = ::CryptGetHashParam;
    decltype(&::ReadFile) ReadFile = ::ReadFile;
};

inline MachineCalls machineCalls;
