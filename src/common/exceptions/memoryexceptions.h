#pragma once

#include "common/exceptions/exception.h"

namespace ZUNO::Common::Memory {

/// Trouble with memory.
class MemoryException : public Exceptions::Exception {
public:
    using Exception::Exception;
    String getName() const override { return {"MemoryException", processHeap()}; }
};

/// No memory was left for a request.
class OutOfMemoryException : public MemoryException {
public:
    using MemoryException::MemoryException;
    /// Needs no memory of the host's, which has none to give.
    String getName() const override { return {"OutOfMemoryException", processHeap()}; }
};

} // namespace ZUNO::Common::Memory
