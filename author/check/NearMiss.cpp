#include "author/check/NearMiss.h"

#include <algorithm>
#include <cwctype>
#include <utility>
#include <vector>

namespace {

constexpr size_t longestWord = 64;

size_t difference(size_t a, size_t b) {
    return a > b ? a - b : b - a;
}

}  // namespace

// A third of the letters may be wrong, but no more than three.
size_t NearMiss::limitFor(std::wstring_view word) {
    return std::clamp<size_t>(word.size() / 3, 1, 3);
}

bool NearMiss::spend(std::wstring_view word, std::wstring_view other) {
    const bool worthwhile = word.size() <= longestWord && other.size() <= longestWord &&
                            difference(word.size(), other.size()) <= limitFor(word);
    return spend(worthwhile ? word.size() * other.size() + 1 : 1) && worthwhile;
}

bool NearMiss::spend(size_t cost) {
    const bool isLeft = budget >= cost;
    budget = isLeft ? budget - cost : 0;
    return isLeft;
}

// More than half of the word, but no fewer than three letters.
size_t NearMiss::leastBeginning(std::wstring_view word) {
    return std::max<size_t>(3, word.size() / 2 + 1);
}

size_t NearMiss::commonBeginning(std::wstring_view word, std::wstring_view other) {
    const auto [end, ignored] =
        std::mismatch(word.begin(), word.end(), other.begin(), other.end(),
                      [](wchar_t a, wchar_t b) { return std::towlower(a) == std::towlower(b); });
    return static_cast<size_t>(end - word.begin());
}

// Letters that are missing, in excess, others or swapped; those that differ in nothing but case
// cost nothing, so a word in another case is always the nearest.
size_t NearMiss::distanceBetween(std::wstring_view word, std::wstring_view other, size_t limit) {
    const auto same = [](wchar_t a, wchar_t b) { return std::towlower(a) == std::towlower(b); };
    std::vector<size_t> beforeLast(other.size() + 1);
    std::vector<size_t> last(other.size() + 1);
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j <= other.size(); ++j)
        last[j] = j;
    for (size_t i = 1; i <= word.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= other.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1,
                               last[j - 1] + (same(word[i - 1], other[j - 1]) ? 0 : 1)});
            if (i > 1 && j > 1 && same(word[i - 1], other[j - 2]) &&
                same(word[i - 2], other[j - 1]))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        if (*std::min_element(row.begin(), row.end()) >= limit)
            return limit;
        std::swap(beforeLast, last);
        std::swap(last, row);
    }
    return last[other.size()];
}

std::wstring didYouMean(const std::wstring& word) {
    return word.empty() ? L"" : L"did you mean `" + word + L"`?";
}
