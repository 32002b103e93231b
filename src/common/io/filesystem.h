#pragma once

#include "common/io/stream.h"
#include "common/memory/stlallocator.h"

#include <list>

namespace ZUNO::Common::IO {

/// Opens files by name, answers questions about paths, and manages folders. Streams come from the
/// allocator that this object came from, and stay open until the last pointer to them goes. What
/// `FileStream::open` raises leaves the functions that open. One thread at a time.
class FileSystem : public Memory::MemoryManaged {
public:
    FileSystem() : mTemporaryNames(mAllocator) {}

    virtual bool isAvailable() { return true; }
    virtual SharedPtr<Stream> openFile(const String& filename, FileAccess fAccess, FileMode fMode);
    /// An existing file, to read.
    virtual SharedPtr<Stream> openFileRead(const String& filename);
    /// A new file, to read and write.
    virtual SharedPtr<Stream> createFile(const String& filename);
    /// A new file of a name of its own, which no other process can have slipped in. It stays when
    /// this object goes. Raises an IOException when there is none to be had.
    virtual SharedPtr<Stream> createTempFile();
    /// An existing file, to read, and to write at its end.
    virtual SharedPtr<Stream> openFileAppend(const String& filename);
    /// Whether the file can be opened for reading.
    virtual bool fileExists(const String& filename);
    /// A failure is ignored.
    virtual void deleteFile(const String& filename);

    /// Name with extension, name without, and extension without its dot.
    virtual String getFilename(const String& path);
    virtual String getBasename(const String& path);
    virtual String getExtension(const String& path);
    /// The absolute path. Raises an ArgumentException when it does not fit 260 characters.
    virtual String getFullPath(const String& path);
    /// Drive and folders, with the last separator.
    virtual String getDirectory(const String& path);

    /// An empty name does nothing. Raises a DirectoryNotFoundException.
    virtual void setCurrentDirectory(const String& dirName);
    virtual String getCurrentDirectory();
    /// Raises a DirectoryExistsException, or an ArgumentException for a path that does not exist.
    virtual void createDirectory(const String& dirName);
    /// Raises a DirectoryNotEmptyException, an UnAuthorizedAccessException or an ArgumentException.
    virtual void deleteDirectory(const String& dirName);
    /// Not implemented: reports that and answers false.
    virtual bool directoryExists(const String& dirName);

    /// What `getFullPath` gives.
    static String fullPathOf(const String& path);

private:
    std::list<String, Memory::STLAllocator<String>> mTemporaryNames;
};

} // namespace ZUNO::Common::IO
