#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace ZUNO::Tests {

/// What a file holds; nothing when it can't be read.
inline std::string contentOf(const std::filesystem::path& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

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
    /// The path of a name in it.
    std::string in(const std::string& name) const { return (mPath / name).string(); }
    /// Writes a file; returns its path.
    std::string put(const std::string& name, const std::string& content) const {
        std::ofstream(mPath / name, std::ios::binary) << content;
        return in(name);
    }
    std::string get(const std::string& name) const { return contentOf(mPath / name); }
    /// How many files and folders lie in it.
    std::ptrdiff_t count() const {
        return std::distance(std::filesystem::directory_iterator(mPath),
                             std::filesystem::directory_iterator());
    }

private:
    std::filesystem::path mPath;
};

} // namespace ZUNO::Tests
