#include "hostkit/recordingfile.h"

#include "hostkit/recording.h"

#include <algorithm>
#include <stdexcept>

namespace ZUNO::HostKit {

namespace {

constexpr std::size_t windowSize = 16 * Common::Platform::MappedFile::granularity;

} // namespace

RecordingFile::RecordingFile(const std::string& fileName, NameEncoding encoding) {
    if (mFile.create(pathOf(fileName, encoding)))
        mWindow = mFile.map(0, windowSize);
    if (mWindow == nullptr)
        throw std::runtime_error(fileName + ": the recording can't be written");
    mWindowEnd = mWindow + windowSize;
    mPlace = std::copy(recordingMagic.begin(), recordingMagic.end(), mWindow);
}

/// Moves the window on to where the file ends.
void RecordingFile::moveWindow() {
    if (isFull())
        return;
    const auto used = static_cast<std::size_t>(mPlace - mWindow);
    const std::size_t step = used / Common::Platform::MappedFile::granularity *
                             Common::Platform::MappedFile::granularity;
    mWindow = mFile.map(mOffset + step, windowSize);
    if (mWindow == nullptr) {
        mFile.close(mOffset + used);
        mPlace = mWindowEnd = nullptr;
        return;
    }
    mOffset += step;
    mPlace = mWindow + (used - step);
    mWindowEnd = mWindow + windowSize;
}

RecordingFile::~RecordingFile() {
    if (unsigned char* const place = reserve(1); place != nullptr) {
        *place = recordingEnd;
        mFile.close(mOffset + static_cast<std::uint64_t>(place + 1 - mWindow));
    }
}

} // namespace ZUNO::HostKit
