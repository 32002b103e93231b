#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace ZUNO::Common::Platform {

/// A new file that is written through memory. What was stored there is the system's from that
/// moment on: it reaches the file even when the program ends in the next one, however it ends.
/// (When the machine itself stops, as much is lost as the system had not written yet.)
class MappedFile {
public:
    /// Windows into the file begin at multiples of this.
    static constexpr std::size_t granularity = 65536;

    MappedFile() = default;
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    /// Makes the file, or empties the one that is there. Returns whether that was possible.
    bool create(const std::filesystem::path& name) noexcept;

    /// Makes room in the file for `size` bytes from `offset` on, a multiple of `granularity`, and
    /// returns their memory, zero where nothing was written yet. The window before is given up.
    /// Null when there is no room, or no file.
    unsigned char* map(std::uint64_t offset, std::size_t size) noexcept;

    /// Cuts the file to `length` and closes it. Returns whether all of that went well.
    bool close(std::uint64_t length) noexcept;

private:
    void unmap() noexcept;

    void* mWindow = nullptr;
    std::size_t mWindowSize = 0;
    std::intptr_t mFile = -1;
};

} // namespace ZUNO::Common::Platform
