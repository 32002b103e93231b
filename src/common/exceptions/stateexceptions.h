#pragma once

#include "common/exceptions/exception.h"

namespace ZUNO::Common::Exceptions {

/// The object is not in a state in which the call makes sense.
class InvalidStateException : public Exception {
public:
    using Exception::Exception;
    String getName() const override { return "InvalidStateException"; }
};

/// The object does not offer the operation.
class NotSupportedException : public Exception {
public:
    using Exception::Exception;
    String getName() const override { return "NotSupportedException"; }
};

/// The system refused the access.
class UnAuthorizedAccessException : public Exception {
public:
    using Exception::Exception;
    String getName() const override { return "UnAuthorizedAccessException"; }
};

} // namespace ZUNO::Common::Exceptions
