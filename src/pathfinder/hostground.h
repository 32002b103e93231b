/// What a world stands on: the foundation, memory of the host's, and a place for reports.
#pragma once

#include "common/callback/memorycallback.h"
#include "common/memory/allocator.h"

namespace ZUNO::Pathfinder {

/// Whether a start is in force: from its beginning, whatever came of it, until `leaveHostGround`.
bool isOnHostGround();

/// Begins a start. Reports go to the callback from here on when it is a ReportCallback, too.
///
/// The foundation is started on the callback. One that runs already is the host's own: host and
/// library share one copy of it in a program that links the library statically. It stays as it is,
/// and an allocator of the world's own is put over the callback.
///
/// A start while another one is in force is reported and changes nothing.
/// Throws an OutOfMemoryException, and no start is in force then.
void enterHostGround(const Common::SharedPtr<Common::Callback::MemoryCallback>& cbMemory);

/// The allocator for the world and its mesh. Null when no start is in force.
const Common::SharedPtr<Common::Memory::Allocator>& getWorldAllocator();

/// Ends a start: closes the foundation if it was started here, and reports memory of the host's
/// that is still out. Then lets go of the callback.
void leaveHostGround();

} // namespace ZUNO::Pathfinder
