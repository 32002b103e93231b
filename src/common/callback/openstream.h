#pragma once

#include "common/callback/callbackfilestream.h"

namespace ZUNO::Common::Callback {

/// Opens a file of the host's as a stream in storage from `allocator`.
/// Throws what `CallbackFileStream::open` raises.
SharedPtr<IO::Stream> openStream(const SharedPtr<Memory::Allocator>& allocator,
                                 const SharedPtr<FileIOCallback>& fileIO, const String& fileName,
                                 IO::FileAccess access);

} // namespace ZUNO::Common::Callback
