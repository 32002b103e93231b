/// What the fuzzers stand on.
#pragma once

#include "common/callback/callbackfilestream.h"
#include "common/exceptions/exception.h"
#include "common/interface.h"
#include "common/memory/globalallocators.h"
#include "common/memory/objectcreation.h"
#include "common/report/report.h"
#include "tests/support/countingmemory.h"
#include "tests/support/memoryfiles.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>

namespace ZUNO::Fuzz {

/// Ends the program when something that must hold does not.
inline void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Host memory that ends after 64 MB.
inline Tests::CountingMemory* makeBoundedMemory() {
    auto* const memory = new Tests::CountingMemory;
    memory->mLimit = std::uint64_t{64} << 20U;
    return memory;
}

/// What must hold of a host's callbacks when the library is closed.
inline void requireAllBack(const Tests::CountingMemory& memory, const Tests::MemoryFiles& files) {
    require(memory.mWrongFrees == 0, "what is freed was allocated");
    require(memory.outstanding() == 0, "all memory comes back");
    require(files.openCount() == 0, "all files are closed");
}

/// Reports are part of what broken input may cause, and not shown.
inline void silenceReports() {
    Common::Debug::setReportHandler([](const char*, const char*, unsigned int) {});
}

/// The foundation on bounded memory. It runs on from input to input, for starting it costs as much
/// as most inputs; with the first one, and then with every 128th, it is closed to see whether all
/// memory comes back.
class Ground {
public:
    Ground() : mState(state()) {
        if (mState.mMemory != nullptr)
            return;
        silenceReports();
        mState.mMemory = makeBoundedMemory();
        mState.mCallback = mState.mMemory;
        mState.mFiles = new Tests::MemoryFiles;
        mState.mFileCallback = mState.mFiles;
        Common::initLibrary(mState.mCallback);
    }
    ~Ground() {
        require(mState.mFiles->openCount() == 0, "all files are closed");
        mState.mFiles->mFiles.clear();
        if (mState.mInputs++ % 128 != 0)
            return;
        Common::closeLibrary();
        requireAllBack(*mState.mMemory, *mState.mFiles);
        mState.mMemory = nullptr;
    }
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;

    void put(const char* name, const std::uint8_t* data, std::size_t size) const {
        mState.mFiles->mFiles[name].assign(reinterpret_cast<const char*>(data), size);
    }
    std::string& file(const char* name) const { return mState.mFiles->mFiles[name]; }
    Common::SharedPtr<Common::IO::Stream> open(const char* name, int mode) const {
        auto* const stream = Common::Memory::createManaged<Common::Callback::CallbackFileStream>(
            Common::gObjectAllocator, mState.mFileCallback);
        Common::SharedPtr<Common::IO::Stream> shared(stream);
        stream->open(name, mode);
        return shared;
    }
    const Common::SharedPtr<Common::Callback::FileIOCallback>& files() const {
        return mState.mFileCallback;
    }

private:
    struct State {
        Tests::CountingMemory* mMemory = nullptr; ///< null while the foundation is closed
        Tests::MemoryFiles* mFiles = nullptr;
        Common::SharedPtr<Common::Callback::MemoryCallback> mCallback;
        Common::SharedPtr<Common::Callback::FileIOCallback> mFileCallback;
        unsigned int mInputs = 0;
    };
    static State& state() {
        static State state;
        return state;
    }

    State& mState;
};

/// Lets the input decide what a comparison does next, until it is used up.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : mInput(data, size) {}
    bool goesOn() { return mInput.remaining_bytes() != 0; }
    std::size_t below(std::size_t count) {
        return mInput.ConsumeIntegralInRange<std::size_t>(0, count - 1);
    }

private:
    FuzzedDataProvider mInput;
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
