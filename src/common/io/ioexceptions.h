#pragma once

#include "common/exceptions/exception.h"

namespace ZUNO::Common::IO {

/// Input or output failed.
class IOException : public Exceptions::Exception {
public:
    using Exception::Exception;
    String getName() const override { return "IOException"; }
};

/// Trouble with one file. Parameters "Filename" (as given) and "FullFilename" (absolute).
class FileException : public IOException {
public:
    FileException(const String& filename, const String& fullFilename, const String& message)
        : IOException(message), mFilename(keep(filename)), mFullFilename(keep(fullFilename)) {}

    String getName() const override { return "FileException"; }
    void getParameters(Exceptions::ParameterList& parameters) const override {
        IOException::getParameters(parameters);
        parameters.push_back({"Filename", mFilename});
        parameters.push_back({"FullFilename", mFullFilename});
    }

private:
    String mFilename;
    String mFullFilename;
};

class FileNotFoundException : public FileException {
public:
    using FileException::FileException;
    String getName() const override { return "FileNotFoundException"; }
};

class FileExistException : public FileException {
public:
    using FileException::FileException;
    String getName() const override { return "FileExistException"; }
};

/// The device has no room left.
class OutOfSpaceException : public IOException {
public:
    using IOException::IOException;
    String getName() const override { return "OutOfSpaceException"; }
};

/// Trouble with one folder. Parameter "Directory": which one.
class DirectoryException : public IOException {
public:
    DirectoryException(const String& directory, const String& message)
        : IOException(message), mDirectory(keep(directory)) {}

    String getName() const override { return "DirectoryException"; }
    void getParameters(Exceptions::ParameterList& parameters) const override {
        IOException::getParameters(parameters);
        parameters.push_back({"Directory", mDirectory});
    }

private:
    String mDirectory;
};

class DirectoryExistsException : public DirectoryException {
public:
    using DirectoryException::DirectoryException;
    String getName() const override { return "DirectoryExistsException"; }
};

class DirectoryNotEmptyException : public DirectoryException {
public:
    using DirectoryException::DirectoryException;
    String getName() const override { return "DirectoryNotEmptyException"; }
};

class DirectoryNotFoundException : public DirectoryException {
public:
    using DirectoryException::DirectoryException;
    String getName() const override { return "DirectoryNotFoundException"; }
};

} // namespace ZUNO::Common::IO
