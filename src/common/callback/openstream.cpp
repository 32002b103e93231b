#include "common/callback/openstream.h"

#include "common/memory/objectcreation.h"

#include <memory>

namespace ZUNO::Common::Callback {

SharedPtr<IO::Stream> openStream(const SharedPtr<Memory::Allocator>& allocator,
                                 const SharedPtr<FileIOCallback>& fileIO, const String& fileName,
                                 IO::FileAccess access) {
    std::unique_ptr<CallbackFileStream> stream(
        Memory::createManaged<CallbackFileStream>(allocator, fileIO));
    stream->open(fileName, access);
    return SharedPtr<IO::Stream>(stream.release());
}

} // namespace ZUNO::Common::Callback
