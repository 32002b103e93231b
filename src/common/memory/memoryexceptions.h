#pragma once

#include "common/exceptions/exception.h"

namespace ZUNO::Common::Memory {

/// Trouble with memory.
class MemoryException : public Exceptions::Exception {
public:
    using Exception::Exception;
    String getName() const override { return "MemoryException"; }
};

/// No memory was left for a request.
class OutOfMemoryException : public MemoryException {
public:
    using MemoryException::MemoryException;
    String getName() const override { return "OutOfMemoryException"; }
};

} // namespace ZUNO::Common::Memory
