/// What the fuzzers stand on.
#pragma once

#include "common/callback/callbackfilestream.h"
#include "common/exceptions/exception.h"
#include "common/interface.h"
#include "common/memory/globalallocators.h"
#include "common/memory/objectcreation.h"
#include "common/report/report.h"
#include "tests/support/memoryfiles.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unordered_map>

namespace ZUNO::Fuzz {

/// Ends the program when something that must hold does not.
inline void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Host memory that ends after 64 MB, and knows its blocks.
class BoundedMemory : public Common::Callback::MemoryCallback {
public:
    void* allocateMemory(unsigned int size) override {
        constexpr std::size_t limit = std::size_t{64} << 20U;
        if (mBytes + size > limit)
            return nullptr;
        void* const block = std::malloc(size != 0 ? size : 1);
        mBlocks[block] = size;
        mBytes += size;
        return block;
    }
    void freeMemory(void* ptr) override {
        const auto place = mBlocks.find(ptr);
        require(place != mBlocks.end(), "what is freed was allocated");
        mBytes -= place->second;
        mBlocks.erase(place);
        std::free(ptr);
    }
    bool isEmpty() const { return mBlocks.empty(); }

private:
    std::unordered_map<void*, std::size_t> mBlocks;
    std::size_t mBytes = 0;
};

/// Reports are part of what broken input may cause, and not shown.
inline void silenceReports() {
    Common::Debug::setReportHandler([](const char*, const char*, unsigned int) {});
}

/// The foundation on bounded memory; whatever happened, all of it comes back.
class Ground {
public:
    Ground() {
        silenceReports();
        mMemory = new BoundedMemory;
        mCallback = mMemory;
        mFiles = new Tests::MemoryFiles;
        mFileCallback = mFiles;
        Common::initLibrary(mCallback);
    }
    ~Ground() {
        Common::closeLibrary();
        require(mMemory->isEmpty(), "all memory comes back");
        require(mFiles->openCount() == 0, "all files are closed");
    }
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;

    void put(const char* name, const std::uint8_t* data, std::size_t size) const {
        mFiles->mFiles[name].assign(reinterpret_cast<const char*>(data), size);
    }
    std::string& file(const char* name) const { return mFiles->mFiles[name]; }
    Common::SharedPtr<Common::IO::Stream> open(const char* name, int mode) const {
        auto* const stream = Common::Memory::createManaged<Common::Callback::CallbackFileStream>(
            Common::gObjectAllocator, mFileCallback);
        Common::SharedPtr<Common::IO::Stream> shared(stream);
        stream->open(name, mode);
        return shared;
    }

    Common::SharedPtr<Common::Callback::MemoryCallback> mCallback;
    Common::SharedPtr<Common::Callback::FileIOCallback> mFileCallback;

private:
    BoundedMemory* mMemory;
    Tests::MemoryFiles* mFiles;
};

/// Runs an action that may fail with an exception of the library's; returns whether it did not.
template <typename Action>
bool succeeds(Action action) {
    try {
        action();
        return true;
    } catch (Common::Exceptions::Exception* exception) {
        require(exception->getReport(0).getLength() != 0, "exceptions say what happened");
        delete exception;
        return false;
    }
}

} // namespace ZUNO::Fuzz
