#pragma once

#include "common/callback/openstream.h"
#include "common/singleton.h"

namespace ZUNO::NavMesh {

/// What the mesh loaders draw from: the library's allocator, and the host's files.
class ResourceInterface : public Common::Singleton<ResourceInterface> {
public:
    explicit ResourceInterface(const Common::SharedPtr<Common::Callback::FileIOCallback>& fileIO)
        : mFileIO(fileIO) {}

    const Common::SharedPtr<Common::Memory::Allocator>& getAllocator() const { return mAllocator; }

    /// These open a file through the host's callback; see `CallbackFileStream::open`.
    Common::SharedPtr<Common::IO::Stream> openReadStream(const Common::String& fileName) const {
        return Common::Callback::openStream(mAllocator, mFileIO, fileName,
                                            Common::IO::FACCESS_READ);
    }
    Common::SharedPtr<Common::IO::Stream>
    openReadWriteStream(const Common::String& fileName) const {
        return Common::Callback::openStream(mAllocator, mFileIO, fileName,
                                            Common::IO::FACCESS_READWRITE);
    }
    Common::SharedPtr<Common::IO::Stream> openWriteStream(const Common::String& fileName) const {
        return Common::Callback::openStream(mAllocator, mFileIO, fileName,
                                            Common::IO::FACCESS_WRITE);
    }

private:
    Common::SharedPtr<Common::Callback::FileIOCallback> mFileIO;
};

} // namespace ZUNO::NavMesh
