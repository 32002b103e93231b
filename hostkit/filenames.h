/// How the names of a host's files are written.
#pragma once

#include <filesystem>
#include <string>

namespace ZUNO::HostKit {

/// On Windows a name's bytes may be meant in two ways; elsewhere both are the same.
enum class NameEncoding {
    SYSTEM, ///< the program's code page, as in the arguments of `main`
    UTF8
};

/// Returns the place that a name stands for. Throws a std::system_error on Windows for a name that
/// is not written in its encoding.
inline std::filesystem::path pathOf(const std::string& name, NameEncoding encoding) {
    if (encoding == NameEncoding::SYSTEM)
        return name;
    return std::u8string(name.begin(), name.end());
}

} // namespace ZUNO::HostKit
