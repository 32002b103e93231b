#pragma once

#include "common/callback/openstream.h"
#include "common/singleton.h"

namespace ZUNO::Pathfinder {

/// The pathfinder's own access to the host's files; lives as long as the world.
class ResourceInterface : public Common::Singleton<ResourceInterface> {
public:
    explicit ResourceInterface(const Common::SharedPtr<Common::Callback::FileIOCallback>& fileIO)
        : mFileIO(fileIO) {}

    /// Opens a file through the host's callback; see `CallbackFileStream::open`.
    Common::SharedPtr<Common::IO::Stream> openStream(const Common::String& fileName,
                                                     Common::IO::FileAccess access) const {
        return Common::Callback::openStream(mAllocator, mFileIO, fileName, access);
    }
    Common::SharedPtr<Common::IO::Stream> openReadStream(const Common::String& fileName) const {
        return openStream(fileName, Common::IO::FACCESS_READ);
    }
    Common::SharedPtr<Common::IO::Stream>
    openReadWriteStream(const Common::String& fileName) const {
        return openStream(fileName, Common::IO::FACCESS_READWRITE);
    }
    Common::SharedPtr<Common::IO::Stream> openWriteStream(const Common::String& fileName) const {
        return openStream(fileName, Common::IO::FACCESS_WRITE);
    }

private:
    Common::SharedPtr<Common::Callback::FileIOCallback> mFileIO;
};

} // namespace ZUNO::Pathfinder
