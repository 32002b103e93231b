// A recording in words.
#include "common/utility/floatchars.h"
#include "hostkit/replay.h"

namespace ZUNO::HostKit {

namespace {

std::string textOf(std::uint32_t bits) {
    char digits[32];
    char* const end = Common::Utility::exactFloatToChars(digits, digits + 32, floatOf(bits));
    return std::string(digits, end);
}

template <typename Bits>
std::string textOf(const Bits& bits, std::size_t first, std::size_t count) {
    std::string text;
    for (std::size_t i = first; i < first + count; ++i)
        text += (i == first ? "" : ",") + textOf(bits[i]);
    return text;
}

/// Numbers that look the same may differ in their bits.
std::string exactTextOf(std::uint32_t bits) {
    std::string digits;
    for (unsigned int shift = 32; shift != 0; shift -= 4)
        digits += "0123456789abcdef"[bits >> (shift - 4) & 15U];
    return textOf(bits) + " (0x" + digits + ")";
}

} // namespace

std::string describe(const RecordedCall& call) {
    const CallForm& form = formOf(call.mKind);
    std::string arguments;
    const auto add = [&](const std::string& argument) {
        arguments += (arguments.empty() ? "" : ", ") + argument;
    };
    for (std::size_t i = 0; i < form.mTexts; ++i)
        add('"' + call.mTexts[i] + '"');
    if (form.mHasID)
        add(std::to_string(call.mID));
    if (form.mHasBudget)
        add(std::to_string(call.mBudget));
    // two points, or one
    const std::size_t dimension = form.mFloats == 6 ? 3 : 2;
    for (std::size_t i = 0; i < form.mFloats; i += dimension)
        add(textOf(call.mFloats, i, dimension));
    return std::string(form.mName) + "(" + arguments + ")";
}

std::string describe(const RecordedCall& call, const RecordedAnswer& answer) {
    const CallForm& form = formOf(call.mKind);
    if (answer.mKind == AnswerKind::RAISED)
        return "raised " + answer.mException;
    if (answer.mKind == AnswerKind::NONE)
        return "no answer";
    std::string text = form.mAnswersNumber ? std::to_string(answer.mNumber) : "";
    const bool hasFloats = !form.mFloatsNeedFlag || answer.mNumber != 0;
    for (std::size_t i = 0; hasFloats && i < form.mAnswerFloats; ++i)
        text += (text.empty() ? "" : ", ") + exactTextOf(answer.mFloats[i]);
    return text.empty() ? "done" : text;
}

std::string describe(const ReplayDifference& difference) {
    const RecordedCall& call = difference.mCall;
    std::string text = "call " + std::to_string(difference.mNumber) + ": " + describe(call) +
                       "\n  recorded: " + describe(call, call.mAnswer) +
                       "\n  now:      " + describe(call, difference.mAnswer);
    if (!difference.mSearch)
        return text;
    const ReplayedSearch& search = *difference.mSearch;
    const char* const results[] = {"found", "running", "no path"};
    return text + "\n  search " + std::to_string(call.mID) + ": from " +
           textOf(search.mPoints, 0, 3) + " to " + textOf(search.mPoints, 3, 3) + ", " +
           (search.mResult >= 0 && search.mResult < 3 ? results[search.mResult] : "?") + " after " +
           std::to_string(search.mRuns) + " runs of " + std::to_string(search.mBudget) +
           " expansions in all, " + std::to_string(search.mWaypoints) + " waypoints read";
}

} // namespace ZUNO::HostKit
