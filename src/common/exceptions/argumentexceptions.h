#pragma once

#include "common/exceptions/exception.h"

namespace ZUNO::Common::Exceptions {

/// An argument that the callee can't work with. Parameter "ArgumentName": which one.
class ArgumentException : public Exception {
public:
    ArgumentException(const String& argumentName, const String& message)
        : Exception(message), mArgumentName(keep(argumentName)) {}

    String getName() const override { return "ArgumentException"; }
    void getParameters(ParameterList& parameters) const override {
        Exception::getParameters(parameters);
        parameters.push_back({"ArgumentName", mArgumentName});
    }

private:
    String mArgumentName;
};

/// A null pointer where an object is needed.
class ArgumentNullException : public ArgumentException {
public:
    using ArgumentException::ArgumentException;
    String getName() const override { return "ArgumentNullException"; }
};

/// A value outside what is allowed.
class ArgumentOutOfRangeException : public ArgumentException {
public:
    using ArgumentException::ArgumentException;
    String getName() const override { return "ArgumentOutOfRangeException"; }
};

} // namespace ZUNO::Common::Exceptions
