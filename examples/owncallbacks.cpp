// A host with callbacks of its own for memory, files and reports. It includes three headers of the
// library's and links zuno::pathfinder alone.
#include "common/exceptions/exception.h"
#include "common/interface.h"
#include "pathfinder/interface.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>

using namespace ZUNO::Common;
using ZUNO::Pathfinder::Interface;

namespace {

/// The C library's memory, counted. The library's reports go to standard output.
class Memory : public Callback::MemoryCallback, public Callback::ReportCallback {
public:
    void* allocateMemory(unsigned int size) override {
        void* const block = std::malloc(size);
        mBlocks += block != nullptr ? 1 : 0;
        return block;
    }
    void freeMemory(void* block) override {
        mBlocks -= block != nullptr ? 1 : 0;
        std::free(block);
    }
    void report(const char* text, const char* file, unsigned int line) noexcept override {
        std::printf("reported by %s, line %u: %s\n", file, line, text);
    }

    long mBlocks = 0; ///< outstanding
};

/// Files to be read, by the streams of the C++ library.
class Files : public Callback::FileIOCallback {
    using Handle = Callback::FileHandle;

public:
    bool isValidHandle(Handle handle) override { return mOpen.contains(handle); }
    Handle getInvalidHandle() override { return 0; }
    std::int32_t openFile(Handle* handle, const String& name, std::int32_t mode) override {
        if (mode != IO::FACCESS_READ)
            return Callback::FILE_ACCESS_DENIED;
        std::ifstream file(name.getConstCharPtr(), std::ios::binary);
        if (!file)
            return Callback::FILE_NOT_FOUND;
        *handle = ++mLastHandle;
        mOpen[mLastHandle] = std::move(file);
        return 0;
    }
    void closeFile(Handle handle) override { mOpen.erase(handle); }
    std::int64_t getFileLength(Handle handle) override {
        const std::int64_t position = getFilePosition(handle);
        const std::int64_t length = seekFile(0, IO::ORIGIN_END, handle);
        seekFile(position, IO::ORIGIN_BEGIN, handle);
        return length;
    }
    std::int32_t readFile(void* buffer, std::uint32_t size, Handle handle) override {
        std::ifstream& file = mOpen[handle];
        file.read(static_cast<char*>(buffer), static_cast<std::int32_t>(size));
        const auto count = static_cast<std::int32_t>(file.gcount());
        file.clear(); // the end of the file is no failure
        return count;
    }
    std::int32_t writeFile(const void*, std::uint32_t, Handle) override { return -1; }
    std::int64_t getFilePosition(Handle handle) override { return mOpen[handle].tellg(); }
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override {
        const std::ios::seekdir from = origin == IO::ORIGIN_CURRENT ? std::ios::cur
                                       : origin == IO::ORIGIN_END   ? std::ios::end
                                                                    : std::ios::beg;
        std::ifstream& file = mOpen[handle];
        const std::int64_t position = file.seekg(offset, from).tellg();
        file.clear();
        return position >= 0 ? position : std::int64_t{Callback::FILE_OUT_OF_RANGE};
    }
    String getFullPathName(const String& name) override { return name; }

private:
    std::map<Handle, std::ifstream> mOpen;
    Handle mLastHandle = 0;
};

void ask() {
    Math::Vec2<float> min;
    Math::Vec2<float> max;
    Interface::getBoundingRectangle(min, max);
    std::printf("from %g %g to %g %g\n", min.mX, min.mY, max.mX, max.mY);
    Geom::Ray2D<float, float> ray(min, max);
    Interface::traceRay(ray);
    if (ray.mHitDistance != ZUNO::Pathfinder::noHit)
        std::printf("a wall stops who goes there after %g\n", ray.mHitDistance);
    Interface::getPathCost(7); // breaks a rule, to be told so: there is no such search
}

int run(const char* mesh) {
    auto* const memory = new Memory; // the pointers that follow own both
    const SharedPtr<Callback::MemoryCallback> memoryCallback(memory);
    const SharedPtr<Callback::FileIOCallback> fileCallback(new Files);
    bool isReady = false;
    try {
        isReady = Interface::initWorldRepresentation(mesh, memoryCallback, fileCallback, "");
        if (isReady)
            ask();
    } catch (Exceptions::Exception* exception) {
        std::printf("%s: %s\n", exception->getName().getConstCharPtr(),
                    exception->getMessage().getConstCharPtr());
        delete exception; // it is the library's memory, which `close` counts
    }
    Interface::close();
    std::printf("left behind: %ld blocks\n", memory->mBlocks);
    return isReady ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: owncallbacks MESH\n", stderr);
        return 2;
    }
    initLibrary({}); // the host's own foundation, for its strings and pointers
    const int status = run(argv[1]);
    closeLibrary();
    return status;
}
