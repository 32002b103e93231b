#pragma once

#include "hostkit/meshfile.h"

#include <map>

namespace ZUNO::HostKit {

/// A host's files, where meshes in the binary form are read as XML text: a world loads that form
/// alone. All else is as the host's own callback does it.
/// Lifetime: the foundation must run. Thread: that of the exports.
class MeshFileCallback : public Common::Callback::FileIOCallback {
public:
    explicit MeshFileCallback(const MeshFiles& files) : mFiles(files) {}

    using Handle = Common::Callback::FileHandle;
    using String = Common::String;

    bool isValidHandle(Handle handle) override { return mFiles->isValidHandle(handle); }
    Handle getInvalidHandle() override { return mFiles->getInvalidHandle(); }
    /// A binary file that holds no usable mesh gives -3; `failure` then says why.
    /// Throws an OutOfMemoryException when there is no memory for the text.
    std::int32_t openFile(Handle* handle, const String& filename, std::int32_t mode) override;
    void closeFile(Handle handle) override;
    std::int64_t getFileLength(Handle handle) override;
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) override;
    std::int32_t writeFile(const void* srcBuffer, std::uint32_t numBytes, Handle handle) override {
        return mFiles->writeFile(srcBuffer, numBytes, handle);
    }
    std::int64_t getFilePosition(Handle handle) override;
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override;
    String getFullPathName(const String& filename) override {
        return mFiles->getFullPathName(filename);
    }

    /// Why the last conversion failed; empty when it didn't.
    const std::string& failure() const { return mFailure; }

private:
    struct Text {
        std::string mContent;
        std::size_t mPosition = 0;
    };
    Text* textOf(Handle handle);
    bool isBinary(const String& filename);

    MeshFiles mFiles;
    std::map<Handle, Text> mTexts; ///< of the meshes that are open
    std::string mFailure;
};

} // namespace ZUNO::HostKit
