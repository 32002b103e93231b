#include "common/report/reporttext.h"

namespace ZUNO::Common::Debug {

void ReportText::append(const char* text, std::size_t length) {
    constexpr char cutMark[] = "...";
    const std::size_t room = capacity - 1 - mLength;
    const std::size_t taken = length < room ? length : room;
    std::memcpy(mText + mLength, text, taken);
    mLength += taken;
    mText[mLength] = '\0';
    if (taken < length)
        std::memcpy(mText + capacity - sizeof(cutMark), cutMark, sizeof(cutMark));
}

} // namespace ZUNO::Common::Debug
