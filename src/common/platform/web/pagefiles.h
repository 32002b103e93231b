#pragma once

#include <map>
#include <string>
#include <vector>

namespace ZUNO::Common::Platform {

/// What a page has for files: bytes in its memory, by name. They are the page's to put there and to
/// take away. Thread: a page has one.
using PageFiles = std::map<std::string, std::vector<unsigned char>, std::less<>>;
PageFiles& pageFiles();

} // namespace ZUNO::Common::Platform
