#include "tools/output/wordchecks.h"

#include "tools/output/wording.h"

#include <algorithm>
#include <charconv>

namespace ZUNO::Tools {

namespace {

/// The shortest text of a number, without an exponent.
std::string textOf(double number) {
    char digits[32];
    return {digits,
            std::to_chars(digits, digits + sizeof(digits), number, std::chars_format::fixed).ptr};
}

/// Numbers of a range: `kind` names them in a message, and `range` stands in the help.
template <typename Number>
CLI::Validator numberIn(Number least, Number most, const std::string& kind,
                        const std::string& range) {
    const auto check = [=](const std::string& word) -> std::string {
        Number number{};
        const char* const end = word.data() + word.size();
        const auto [behind, error] = std::from_chars(word.data(), end, number);
        const bool isRight =
            error == std::errc() && behind == end && number >= least && number <= most;
        return isRight ? "" : "expected " + kind + " instead of '" + shown(word) + "'";
    };
    return CLI::Validator(check, range);
}

} // namespace

CLI::Validator wholeNumber(std::int64_t least, std::int64_t most, bool isMostNamed) {
    const std::string range = isMostNamed ? std::to_string(least) + " to " + std::to_string(most)
                                          : std::to_string(least) + " or more";
    const std::string kind = isMostNamed ? "a whole number from " : "a whole number of ";
    return numberIn(least, most, kind + range, range);
}

CLI::Validator numberBetween(double least, double most) {
    const std::string range = textOf(least) + " to " + textOf(most);
    return numberIn(least, most, "a number from " + range, range);
}

CLI::Validator oneOf(const std::vector<std::string>& words) {
    std::string choice;
    std::string range;
    for (std::size_t i = 0; i < words.size(); ++i) {
        choice += (i == 0 ? "" : (i + 1 == words.size() ? " or " : ", ")) + words[i];
        range += (i == 0 ? "" : "|") + words[i];
    }
    const auto check = [=](const std::string& word) -> std::string {
        if (std::ranges::find(words, word) != words.end())
            return "";
        return "expected " + choice + " instead of '" + shown(word) + "'" + suggestion(word, words);
    };
    return CLI::Validator(check, range);
}

} // namespace ZUNO::Tools
