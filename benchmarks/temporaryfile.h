#pragma once

#include "tools/output/outputfile.h"

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>

namespace ZUNO::Benchmarks {

/// A file for as long as the object lives, under a name that no other run has.
class TemporaryFile {
public:
    /// Throws a std::runtime_error when it can't be written whole.
    explicit TemporaryFile(std::string_view content) {
        std::random_device random;
        const auto number = std::uint64_t{random()} << 32U | random();
        mName = (std::filesystem::temp_directory_path() /
                 ("zunopeers" + std::to_string(number) + ".xml"))
                    .string();
        Tools::saveFile(mName, content);
    }
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(mName, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& name() const { return mName; }

private:
    std::string mName;
};

} // namespace ZUNO::Benchmarks
