#include "author/verify/Difference.h"

#include <gmock/gmock.h>

#include <tuple>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Told = std::tuple<std::wstring, std::wstring, std::wstring>;  // what, name, detail

std::vector<Told> told(const Picture& before, const Picture& installed, const Picture& after) {
    std::vector<Told> all;
    for (const Difference& one : compare(before, installed, after))
        all.emplace_back(wordOf(one.aftermath), one.name, one.detail);
    return all;
}

Thing file(const std::wstring& name, const std::array<uint64_t, 4>& state = {}) {
    return {ThingKind::file, name, state};
}

/// How a change of one thing is told.
std::wstring change(ThingKind kind, const std::array<uint64_t, 4>& before,
                    const std::array<uint64_t, 4>& after) {
    const auto all = told({{kind, L"a", before}}, {}, {{kind, L"a", after}});
    return all.size() == 1 && std::get<0>(all[0]) == L"changed" ? std::get<2>(all[0]) : L"?";
}

TEST(Difference, IsNoneBetweenEqualPictures) {
    const Picture picture{file(L"a", {1, 2, 3, 4}), {ThingKind::key, L"a"}};
    EXPECT_THAT(told(picture, {}, picture), IsEmpty());
    EXPECT_THAT(told({}, picture, {}), IsEmpty());
}

TEST(Difference, TellsWhatIsLeftAndSinceWhen) {
    EXPECT_THAT(told({file(L"b")}, {file(L"a"), file(L"b")}, {file(L"a"), file(L"b"), file(L"c")}),
                ElementsAre(Told(L"left", L"a", L"since the install"),
                            Told(L"left", L"c", L"since the uninstall")));
}

TEST(Difference, TellsWhatIsLostAndSinceWhen) {
    EXPECT_THAT(told({file(L"a"), file(L"b"), file(L"c")}, {file(L"b"), file(L"c")}, {file(L"c")}),
                ElementsAre(Told(L"lost", L"a", L"since the install"),
                            Told(L"lost", L"b", L"since the uninstall")));
}

TEST(Difference, TellsKindsOfOneNameApart) {
    EXPECT_THAT(told({file(L"a")}, {}, {{ThingKind::service, L"a"}}),
                ElementsAre(Told(L"left", L"a", L"since the uninstall"),
                            Told(L"lost", L"a", L"since the install")));
}

TEST(Difference, TellsWhatHasChanged) {
    EXPECT_EQ(change(ThingKind::file, {1, 2, 3, 0}, {5, 6, 7, 0}), L"size 1 -> 5");
    EXPECT_EQ(change(ThingKind::file, {1, 2, 3, 0}, {1, 2, 7, 1}), L"attributes 0 -> 1");
    EXPECT_EQ(change(ThingKind::file, {1, 2, 3, 0}, {1, 6, 7, 0}), L"time");
    EXPECT_EQ(change(ThingKind::link, {1, 2, 3, 0}, {1, 2, 7, 0}),
              L"written or touched; size and time are the same");
    EXPECT_EQ(change(ThingKind::directory, {0, 0, 0, 2}, {0, 0, 0, 3}), L"attributes 2 -> 3");
    EXPECT_EQ(change(ThingKind::value, {1, 2}, {1, 3}), L"data");
    EXPECT_EQ(change(ThingKind::value, {1, 2}, {4, 3}), L"type 1 -> 4");
    EXPECT_EQ(change(ThingKind::service, {1}, {0}), L"runs no more");
    EXPECT_EQ(change(ThingKind::service, {0}, {1}), L"runs now");
    for (const ThingKind kind : {ThingKind::key, ThingKind::restart})
        EXPECT_EQ(change(kind, {0}, {1}), L"");
}

TEST(Difference, CountsWhatIsNewOfAKind) {
    const Picture before{file(L"b")};
    const Picture after{file(L"a"), file(L"b"), file(L"c"), {ThingKind::key, L"d"}};
    EXPECT_EQ(countNew(ThingKind::file, before, after), 2u);
    EXPECT_EQ(countNew(ThingKind::key, before, after), 1u);
    EXPECT_EQ(countNew(ThingKind::link, before, after), 0u);
}

}  // namespace
