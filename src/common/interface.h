/// Start-up and shut-down of the foundation, and its library allocator.
#pragma once

#include "common/callback/memorycallback.h"
#include "common/memory/allocator.h"

namespace ZUNO::Common {

namespace Debug {
class LogReporter;
}

/// Starts the foundation on the host's memory, or on the process heap for a null pointer: the
/// library allocator, the global allocators, the trace channel and the log.
/// A second start is reported ("Common is already initialized !") and keeps what runs. Without
/// enough memory it raises an OutOfMemoryException and leaves the foundation closed.
/// A host starts its own copy of the foundation with this before it makes a string.
void initLibrary(const SharedPtr<Callback::MemoryCallback>& cbMemory);

/// Shuts the foundation down. Everything taken from its allocators must have been given back:
/// what is still out is reported. Does nothing when the foundation is closed.
void closeLibrary();

/// The library allocator; null while the foundation is closed.
const SharedPtr<Memory::Allocator>& getAllocator();

/// Whether the foundation runs.
bool isLibraryRunning();

/// The reporter of the foundation's own log messages; null while it is closed.
Debug::LogReporter* getLogReporter();

} // namespace ZUNO::Common
