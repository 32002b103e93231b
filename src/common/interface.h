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
/// A second start keeps what runs, and is reported ("Common is already initialized !") unless
/// neither start had a callback. Throws an OutOfMemoryException when there is not enough memory,
/// and leaves the foundation closed. A host starts its own copy of the foundation with this before
/// it makes a string.
void initLibrary(const SharedPtr<Callback::MemoryCallback>& cbMemory);

/// Shuts the foundation down. Everything taken from its allocators should have been given back:
/// what is still out is reported. Does nothing when the foundation is closed.
void closeLibrary();

/// The library allocator; null while the foundation is closed.
const SharedPtr<Memory::Allocator>& getAllocator();

/// Whether the foundation runs.
bool isLibraryRunning();

/// Returns the reporter of the foundation's own log messages; null while the foundation is closed,
/// and when somebody has removed it. Cost: a search by name.
Debug::LogReporter* getLogReporter();

} // namespace ZUNO::Common
