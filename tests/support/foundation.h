#pragma once

#include "common/interface.h"
#include "common/memory/globalallocators.h"
#include "tests/support/countingmemory.h"
#include "tests/support/exceptions.h"
#include "tests/support/reports.h"

#include <gtest/gtest.h>

namespace ZUNO::Tests {

/// Runs with the foundation started on counted memory and with reports recorded.
class FoundationTest : public testing::Test {
protected:
    FoundationTest() {
        mMemory = new CountingMemory;
        mCallback = mMemory;
        Common::initLibrary(mCallback);
    }
    ~FoundationTest() override {
        EXPECT_EQ(Reports::take(), Texts{}) << "reports that no test asked for";
        Common::closeLibrary();
        EXPECT_EQ(Reports::take(), Texts{});
        EXPECT_EQ(mMemory->outstanding(), 0U);
        mCallback = nullptr;
    }

    Reports mReports;
    CountingMemory* mMemory = nullptr;
    Common::SharedPtr<Common::Callback::MemoryCallback> mCallback;
};

} // namespace ZUNO::Tests
