#pragma once

#include "capi/zuno.h"
#include "worlds/meshmodel.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace ZUNO::Tests {

template <typename Struct>
Struct sized() {
    Struct made{};
    made.size = sizeof made;
    return made;
}

inline zuno_error lastError() {
    auto error = sized<zuno_error>();
    EXPECT_GE(zuno_last_error(&error), ZUNO_OK);
    return error;
}

/// Expects a call to succeed.
#define EXPECT_OK(call) EXPECT_EQ(call, ZUNO_OK) << lastError().text
#define ASSERT_OK(call) ASSERT_EQ(call, ZUNO_OK) << lastError().text

/// A host in C, with files in memory: "floor", a floor of 60 nodes, and what a test adds. Its
/// reports and log lines are kept.
class CApiTest : public testing::Test {
protected:
    CApiTest() {
        mFiles["floor"] = Worlds::makeFloor(60, 3).toXML("floor");
        mSettings.files = &mFileFunctions;
        EXPECT_OK(zuno_set_log(
            [](void* user, std::int32_t, const char* text, const char*, std::uint32_t) {
                static_cast<CApiTest*>(user)->mMessages.emplace_back(text);
            },
            this));
    }
    ~CApiTest() override {
        if (mSession == nullptr)
            return;
        auto left = sized<zuno_memory>();
        EXPECT_OK(zuno_close(mSession, &left));
        EXPECT_EQ(left.blocks, 0U);
        EXPECT_EQ(left.bytes, 0U);
        EXPECT_OK(zuno_set_log(nullptr, nullptr));
    }

    zuno_status start(const char* mesh = "floor") {
        return zuno_start(&mSettings, mesh, &mSession);
    }

    std::map<std::string, std::string> mFiles;
    std::vector<std::string> mMessages;
    zuno_settings mSettings = sized<zuno_settings>();
    zuno_session* mSession = nullptr;
    const zuno_file_functions mFileFunctions{
        this,
        [](void* user, const char* name) -> std::int64_t {
            const auto& files = static_cast<CApiTest*>(user)->mFiles;
            const auto place = files.find(name);
            return place != files.end() ? static_cast<std::int64_t>(place->second.size()) : -1;
        },
        [](void* user, const char* name, std::uint64_t offset, void* bytes, std::uint32_t count) {
            std::memcpy(bytes, static_cast<CApiTest*>(user)->mFiles[name].data() + offset, count);
            return static_cast<std::int32_t>(count);
        }};
};

} // namespace ZUNO::Tests
