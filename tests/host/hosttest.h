#pragma once

#include "common/interface.h"
#include "pathfinder/interface.h"
#include "tests/support/countingmemory.h"
#include "tests/support/exceptions.h"
#include "tests/support/memoryfiles.h"
#include "worlds/meshmodel.h"

#include <gtest/gtest.h>

namespace ZUNO::Tests {

using Common::SharedPtr;
using Common::Math::Vec2;
using Common::Math::Vec3;
using Pathfinder::Interface;

/// A host that sees the exports alone, with its own copy of the foundation, counted memory, and
/// files in memory: "floor", a floor of 60 nodes, and what a test adds.
class HostTest : public testing::Test {
protected:
    HostTest() {
        Common::initLibrary({});
        mMemory = new CountingMemory;
        mMemoryCallback = SharedPtr<Common::Callback::MemoryCallback>(mMemory);
        mFiles = new MemoryFiles;
        mFileCallback = SharedPtr<Common::Callback::FileIOCallback>(mFiles);
        mFiles->mFiles["floor"] = Worlds::makeFloor(60, 3).toXML("floor");
    }
    ~HostTest() override {
        Interface::close();
        EXPECT_EQ(mMemory->outstanding(), 0U) << "blocks left behind";
        EXPECT_EQ(mMemory->mWrongFrees, 0U);
        EXPECT_EQ(mFiles->openCount(), 0U);
        mMemoryCallback = nullptr;
        mFileCallback = nullptr;
        Common::closeLibrary();
    }

    bool start(const char* mesh = "floor", const char* blockingMap = "") {
        return Interface::initWorldRepresentation(mesh, mMemoryCallback, mFileCallback,
                                                  blockingMap);
    }

    SharedPtr<Common::Callback::MemoryCallback> mMemoryCallback;
    SharedPtr<Common::Callback::FileIOCallback> mFileCallback;
    CountingMemory* mMemory = nullptr;
    MemoryFiles* mFiles = nullptr;
};

/// Standard error while it lives: there the library's reports appear.
class Stderr {
public:
    Stderr() { testing::internal::CaptureStderr(); }
    std::string text() { return testing::internal::GetCapturedStderr(); }
};

} // namespace ZUNO::Tests
