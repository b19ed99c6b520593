#include "author/verify/Difference.h"

#include <algorithm>

namespace {

const Thing* find(const Picture& picture, const Thing& thing) {
    const auto place =
        std::lower_bound(picture.begin(), picture.end(), thing,
                         [](const Thing& one, const Thing& other) { return one.isBefore(other); });
    return place == picture.end() || thing.isBefore(*place) ? nullptr : &*place;
}

std::wstring changeOf(const wchar_t* what, uint64_t before, uint64_t after) {
    return std::wstring(what) + L" " + std::to_wstring(before) + L" -> " + std::to_wstring(after);
}

std::wstring changeOf(const Thing& before, const Thing& after) {
    const auto& old = before.state;
    const auto& now = after.state;
    switch (before.kind) {
        case ThingKind::file:
        case ThingKind::link:
        case ThingKind::directory:
            if (old[0] != now[0])
                return changeOf(L"size", old[0], now[0]);
            if (old[3] != now[3])
                return changeOf(L"attributes", old[3], now[3]);
            return old[1] != now[1] ? L"time" : L"written or touched; size and time are the same";
        case ThingKind::value:
            return old[0] != now[0] ? changeOf(L"type", old[0], now[0]) : L"data";
        case ThingKind::service:
            return now[0] ? L"runs now" : L"runs no more";
        case ThingKind::key:
        case ThingKind::restart:
            break;
    }
    return L"";
}

}  // namespace

std::vector<Difference> compare(const Picture& before, const Picture& installed,
                                const Picture& after) {
    std::vector<Difference> differences;
    const auto add = [&](Aftermath aftermath, const Thing& thing, const std::wstring& detail) {
        differences.push_back({aftermath, thing.kind, thing.name, detail});
    };
    for (const Thing& thing : after)
        if (!find(before, thing))
            add(Aftermath::left, thing,
                find(installed, thing) ? L"since the install" : L"since the uninstall");
    for (const Thing& thing : before)
        if (const Thing* now = find(after, thing); now && *now != thing)
            add(Aftermath::changed, thing, changeOf(thing, *now));
    for (const Thing& thing : before)
        if (!find(after, thing))
            add(Aftermath::lost, thing,
                find(installed, thing) ? L"since the uninstall" : L"since the install");
    return differences;
}

size_t countNew(ThingKind kind, const Picture& before, const Picture& after) {
    return static_cast<size_t>(std::count_if(after.begin(), after.end(), [&](const Thing& thing) {
        return thing.kind == kind && !find(before, thing);
    }));
}

const wchar_t* wordOf(ThingKind kind) {
    constexpr const wchar_t* words[] = {L"file",  L"directory", L"link",   L"key",
                                        L"value", L"service",   L"restart"};
    return words[static_cast<size_t>(kind)];
}

const wchar_t* wordOf(Aftermath aftermath) {
    constexpr const wchar_t* words[] = {L"left", L"changed", L"lost"};
    return words[static_cast<size_t>(aftermath)];
}
