#pragma once

#include "common/platform/mappedfile.h"
#include "hostkit/filenames.h"

#include <string>

namespace ZUNO::HostKit {

/// The file that a recording is written to. What was committed is in it, however the process ends.
class RecordingFile {
public:
    /// Throws a std::runtime_error when the file can't be made.
    RecordingFile(const std::string& fileName, NameEncoding encoding);
    /// Marks the recording's end and closes the file.
    ~RecordingFile();
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;

    /// Returns room for `size` bytes, at most `largest`, at the file's end; all of them are zero.
    /// Null, for good, once there is no room on the device.
    unsigned char* reserve(std::size_t size) {
        if (size > static_cast<std::size_t>(mWindowEnd - mPlace))
            moveWindow();
        return mPlace;
    }
    /// Says how far the reserved room was used.
    void commit(unsigned char* end) { mPlace = end; }

    static constexpr std::size_t largest = 16384;

    bool isFull() const { return mPlace == nullptr; }

private:
    void moveWindow();

    Common::Platform::MappedFile mFile;
    std::uint64_t mOffset = 0; ///< of the window
    unsigned char* mWindow = nullptr;
    unsigned char* mPlace = nullptr;
    unsigned char* mWindowEnd = nullptr;
};

} // namespace ZUNO::HostKit
