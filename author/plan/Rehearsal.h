#pragma once

#include <type_traits>

#include "author/plan/Change.h"
#include "trace/CallEffect.h"

class Rehearsal {
public:
    explicit Rehearsal(ChangeListener& listener) : listener(listener) {}

    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* /*name*/, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        using Table = std::remove_reference_t<decltype(table)>;
        if constexpr (std::is_same_v<Table, LogCalls> || isCall<member>(&ClockCalls::Sleep)) {
            return;
        } else if constexpr (ChangingCalls::has<member>) {
            tell<member>(arguments...);
            if constexpr (std::is_void_v<Result>)
                return;
            else if constexpr (std::is_same_v<Table, RegistryCalls> ||
                               std::is_same_v<Result, HRESULT> ||
                               std::is_same_v<Table, ActionCalls>)
                return Result{};
            else if constexpr (std::is_same_v<Result, BOOL>)
                return TRUE;
            else
                return Result{};
        } else {
            return real(arguments...);
        }
    }

private:
    template <auto member, class First, class... Rest>
    void tell(First first, Rest... rest) {
        Change change{};
        if constexpr (isCall<member>(&FileCalls::CopyFileW)) {
            change.kind = ChangeKind::fileAdded;
            change.source = first;
            ((std::is_same_v<Rest, const wchar_t*> ? void(change.object = text(rest)) : void()),
             ...);
            change.bytes = 3;
            change.after = L"3 bytes";
        } else if constexpr (isCall<member>(&FileCalls::DeleteFileW)) {
            change.kind = ChangeKind::fileRemoved;
            change.object = text(first);
            change.bytesBefore = 3;
        } else if constexpr (isCall<member>(&FileCalls::CreateDirectoryW)) {
            change.kind = ChangeKind::directoryAdded;
            change.object = text(first);
        } else if constexpr (isCall<member>(&RegistryCalls::RegCreateKeyExW)) {
            change.kind = ChangeKind::keyAdded;
        } else {
            change.kind = ChangeKind::programStarted;
            change.unforeseeable = true;
        }
        listener.planned(change);
    }
    static std::wstring text(const wchar_t* t) { return t ? t : L""; }
    template <class T>
    static std::wstring text(T) {
        return {};
    }

    ChangeListener& listener;
};
