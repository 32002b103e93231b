#include "common/report/reporttext.h"

#include <algorithm>

namespace ZUNO::Common::Debug {

void ReportText::append(const char* text, std::size_t length) {
    constexpr char cutMark[] = "...";
    if (length >= mRoom - mLength)
        grow(mLength + length + 1);
    const std::size_t taken = std::min(length, mRoom - mLength - 1);
    std::memcpy(mText + mLength, text, taken);
    mLength += taken;
    mText[mLength] = '\0';
    if (taken < length)
        std::memcpy(mText + mRoom - sizeof(cutMark), cutMark, sizeof(cutMark));
}

void ReportText::grow(std::size_t length) {
    const std::size_t room = std::max(length, 2 * mRoom);
    auto* const text = static_cast<char*>(std::malloc(room));
    if (text == nullptr)
        return;
    std::memcpy(text, mText, mLength);
    if (mText != mInPlace)
        std::free(mText);
    mText = text;
    mRoom = room;
}

} // namespace ZUNO::Common::Debug
