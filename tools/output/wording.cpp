#include "tools/output/wording.h"

#include <algorithm>
#include <numeric>

namespace ZUNO::Tools {

namespace {

/// How many characters to add, drop or change make one word of the other.
std::size_t editsBetween(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1); // from the beginning of `a` to each of `b`'s
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string shown(std::string_view word) {
    constexpr std::size_t most = 60;
    std::string text(word.substr(0, most));
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    return word.size() > most ? text + "..." : text;
}

std::string suggestion(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr std::size_t longest = 40; // a longer word is no misspelt one
    if (word.size() > longest)
        return "";
    std::size_t tooMany = word.size() > 2 ? 3 : 1; // edits; else any short word is near
    const std::string* nearest = nullptr;
    for (const std::string& candidate : candidates) {
        const auto [shorter, longer] = std::minmax({word.size(), candidate.size()});
        const std::size_t edits =
            longer - shorter < tooMany ? editsBetween(word, candidate) : tooMany;
        if (edits < tooMany) {
            tooMany = edits;
            nearest = &candidate;
        }
    }
    return nearest != nullptr ? "; did you mean '" + *nearest + "'?" : "";
}

} // namespace ZUNO::Tools
