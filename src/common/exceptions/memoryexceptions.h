#pragma once

#include "common/exceptions/exception.h"

namespace ZUNO::Common::Memory {

/// Base of what is thrown about memory. A name needs no memory of the host's, which may have none.
class MemoryException : public Exceptions::Exception {
public:
    using Exception::Exception;
    String getName() const override;
};

/// No memory was left for a request.
class OutOfMemoryException : public MemoryException {
public:
    using MemoryException::MemoryException;
    String getName() const override;
};

} // namespace ZUNO::Common::Memory
