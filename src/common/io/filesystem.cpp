#include "common/io/filesystem.h"

#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/io/filestream.h"
#include "common/io/ioexceptions.h"
#include "common/memory/objectcreation.h"
#include "common/platform/files.h"

#include <cstdio>
#include <memory>

namespace ZUNO::Common::IO {

using Platform::FileError;

namespace {

Platform::PathParts partsOf(const String& path) {
    Platform::PathParts parts{};
    Platform::splitPath(path.getConstCharPtr(), parts);
    return parts;
}

} // namespace

SharedPtr<Stream> FileSystem::openFile(const String& filename, FileAccess fAccess, FileMode fMode) {
    return SharedPtr<Stream>(
        Memory::createManaged<FileStream>(mAllocator, filename, fAccess, fMode));
}

SharedPtr<Stream> FileSystem::openFileRead(const String& filename) {
    return openFile(filename, FACCESS_READ, FMODE_OPEN);
}

SharedPtr<Stream> FileSystem::createFile(const String& filename) {
    return openFile(filename, FACCESS_READWRITE, FMODE_CREATENEW);
}

SharedPtr<Stream> FileSystem::createTempFile() {
    char name[18];
    if (!Platform::makeTemporaryFile(name, sizeof(name)))
        throw new IOException("FileSystem: Cannot create a temporary file");
    try {
        mTemporaryNames.push_back(name);
    } catch (...) {
        Platform::removeFile(name); // a file that nobody knows of would stay for ever
        throw;
    }
    return openFile(name, FACCESS_READWRITE, FMODE_CREATE);
}

SharedPtr<Stream> FileSystem::openFileAppend(const String& filename) {
    return openFile(filename, FACCESS_READWRITE, FMODE_APPEND);
}

bool FileSystem::fileExists(const String& filename) {
    std::FILE* const file = std::fopen(filename.getConstCharPtr(), "r");
    if (file != nullptr)
        std::fclose(file);
    return file != nullptr && !Platform::isFolder(filename.getConstCharPtr());
}

void FileSystem::deleteFile(const String& filename) {
    Platform::removeFile(filename.getConstCharPtr());
}

String FileSystem::getFilename(const String& path) {
    const Platform::PathParts parts = partsOf(path);
    return String(parts.mName) + parts.mExtension;
}

String FileSystem::getBasename(const String& path) {
    return partsOf(path).mName;
}

String FileSystem::getExtension(const String& path) {
    const Platform::PathParts parts = partsOf(path);
    return parts.mExtension[0] != '\0' ? parts.mExtension + 1 : "";
}

String FileSystem::getDirectory(const String& path) {
    const Platform::PathParts parts = partsOf(path);
    return String(parts.mDrive) + parts.mDirectory;
}

String FileSystem::getFullPath(const String& path) {
    return fullPathOf(path);
}

String FileSystem::fullPathOf(const String& path) {
    char buffer[260];
    if (!Platform::makeFullPath(path.getConstCharPtr(), buffer, sizeof(buffer)))
        throw new Exceptions::ArgumentException(
            "path",
            "FileSystem: Cannot build full path for an invalid path argument '" + path + "'");
    return buffer;
}

void FileSystem::setCurrentDirectory(const String& dirName) {
    if (!dirName.isEmpty() && !Platform::changeDirectory(dirName.getConstCharPtr()))
        throw new DirectoryNotFoundException(
            dirName, "FileSystem: Cannot set current working directory to invalid directory name");
}

String FileSystem::getCurrentDirectory() {
    char buffer[1024];
    if (!Platform::getCurrentDirectory(buffer, sizeof(buffer)))
        throw new IOException(
            "FileSystem: Cannot get current working directory - internal error ?");
    return buffer;
}

void FileSystem::createDirectory(const String& dirName) {
    switch (Platform::makeDirectory(dirName.getConstCharPtr())) {
    case FileError::NONE:
        return;
    case FileError::NOT_FOUND:
        throw new Exceptions::ArgumentException("dirName",
                                                "FileSystem: Directory name is malformed");
    case FileError::EXISTS:
        throw new DirectoryExistsException(
            dirName, "FileSystem: Cannot create the directory, it already exists");
    default:
        ZUNO_REPORT("", "Unkown error code");
    }
}

void FileSystem::deleteDirectory(const String& dirName) {
    switch (Platform::removeDirectory(dirName.getConstCharPtr())) {
    case FileError::NONE:
        return;
    case FileError::NOT_FOUND:
        throw new Exceptions::ArgumentException("dirName",
                                                "FileSystem: Directory name is malformed");
    case FileError::ACCESS_DENIED:
        throw new Exceptions::UnAuthorizedAccessException(
            "FileSystem: Cannot delete directory because there is an opened file in the directory");
    case FileError::NOT_EMPTY:
        throw new DirectoryNotEmptyException(
            dirName, "FileSystem: Directory cannot be deleted because it is not empty");
    default:
        ZUNO_REPORT("", "Unkown error code");
    }
}

bool FileSystem::directoryExists(const String&) {
    ZUNO_REPORT("", "not implemented");
    return false;
}

} // namespace ZUNO::Common::IO
