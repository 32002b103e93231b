#pragma once

#include "common/basicstring.h"

#include <algorithm>
#include <array>
#include <string>

namespace ZUNO::Reference {

/// A few strings beside the standard library's.
class StringModel {
public:
    /// Changes both as `choices` has it (`goesOn()`, `below(count)`). Returns what differs, and
    /// null when nothing does.
    template <typename Choices>
    const char* compare(Choices& choices) {
        while (mDifference == nullptr && choices.goesOn()) {
            const std::size_t a = choices.below(count);
            const std::size_t b = choices.below(count);
            change(choices, a, b);
            const std::string& text = mModel[a];
            expect(text == mStrings[a].getConstCharPtr(), "texts differ");
            expect(text.size() == mStrings[a].getLength(), "lengths differ");
            expect(text.empty() == mStrings[a].isEmpty(), "emptiness differs");
            expect((mStrings[a] == mStrings[b]) == (text == mModel[b]), "equality differs");
            expect((mStrings[a] < mStrings[b]) == isSmaller(text, mModel[b]), "the order differs");
        }
        return mDifference;
    }

private:
    static constexpr std::size_t count = 4;
    static constexpr std::size_t longest = 512;

    template <typename Choices>
    void change(Choices& choices, std::size_t a, std::size_t b) {
        switch (choices.below(8)) {
        case 0:
        case 1:
            mModel[a] = drawText(choices);
            mStrings[a] = mModel[a].c_str();
            break;
        case 2:
            append(a, b);
            break;
        case 3: {
            const int number = static_cast<int>(choices.below(2000000)) - 1000000;
            mModel[a] = std::to_string(number);
            mStrings[a] = Common::String(number);
            break;
        }
        case 4:
            mModel[a] = mModel[b];
            mStrings[a] = mStrings[b];
            break;
        case 5:
            mModel[a].clear();
            mStrings[a].clear();
            break;
        case 6:
            for (char& c : mModel[a])
                c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
            mStrings[a] = mStrings[a].toLower();
            break;
        default:
            expect(mModel[a] + mModel[b] == (mStrings[a] + mStrings[b]).getConstCharPtr(),
                   "sums differ");
        }
    }

    void append(std::size_t a, std::size_t b) {
        if (mModel[a].size() + mModel[b].size() > longest)
            return;
        mModel[a] += mModel[b];
        mStrings[a] += mStrings[b];
    }

    /// Any bytes but the zero, often the same ones.
    template <typename Choices>
    static std::string drawText(Choices& choices) {
        std::string text(choices.below(64), '\0');
        for (char& c : text)
            c = static_cast<char>(1 + choices.below(choices.below(2) == 0 ? 255 : 100));
        return text;
    }

    static bool isSmaller(const std::string& a, const std::string& b) {
        return std::ranges::lexicographical_compare(a, b, [](char x, char y) {
            return static_cast<signed char>(x) < static_cast<signed char>(y);
        });
    }

    void expect(bool holds, const char* difference) {
        if (!holds && mDifference == nullptr)
            mDifference = difference;
    }

    std::array<Common::String, count> mStrings;
    std::array<std::string, count> mModel;
    const char* mDifference = nullptr;
};

} // namespace ZUNO::Reference
