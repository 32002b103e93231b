#pragma once

#include "common/exceptions/exception.h"

#include <cstdint>

namespace ZUNO::Common::Serialize {

/// A stream does not hold what a storage can read.
class SerializeException : public Exceptions::Exception {
public:
    using Exception::Exception;
    String getName() const override { return "SerializeException"; }
};

/// The stream has another format version. Parameters "FoundVersion" and "ExpectedVersion".
class VersionMismatchException : public SerializeException {
public:
    VersionMismatchException(const String& message, std::uint32_t found, std::uint32_t expected)
        : SerializeException(message), mFound(found), mExpected(expected) {}

    String getName() const override { return "VersionMismatchException"; }
    void getParameters(Exceptions::ParameterList& parameters) const override {
        SerializeException::getParameters(parameters);
        parameters.push_back({"FoundVersion", String(mFound)});
        parameters.push_back({"ExpectedVersion", String(mExpected)});
    }

private:
    std::uint32_t mFound;
    std::uint32_t mExpected;
};

/// The next item has another type. Parameters "FoundType" and "ExpectedType".
class TypeMismatchException : public SerializeException {
public:
    TypeMismatchException(const String& message, const String& found, const String& expected)
        : SerializeException(message), mFound(keep(found)), mExpected(keep(expected)) {}

    String getName() const override { return "TypeMismatchException"; }
    void getParameters(Exceptions::ParameterList& parameters) const override {
        SerializeException::getParameters(parameters);
        parameters.push_back({"FoundType", mFound});
        parameters.push_back({"ExpectedType", mExpected});
    }

private:
    String mFound;
    String mExpected;
};

} // namespace ZUNO::Common::Serialize
