#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

namespace ZUNO::Tests {

/// An empty folder of this object's own; goes with it. Tests run side by side.
class TempFolder {
public:
    TempFolder() {
        std::random_device random;
        do
            mPath = std::filesystem::path(testing::TempDir()) / ("zuno" + std::to_string(random()));
        while (!std::filesystem::create_directory(mPath));
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return mPath; }

private:
    std::filesystem::path mPath;
};

} // namespace ZUNO::Tests
