// The files of a host in a page.
#include "hostkit/systemfiles.h"

#include "capi/callbacks.h"
#include "common/platform/web/pagefiles.h"

#include <algorithm>
#include <stdexcept>

namespace ZUNO::HostKit {

using Common::Platform::pageFiles;

namespace {

std::int64_t lengthOf(void*, const char* name) {
    const auto file = pageFiles().find(name);
    return file != pageFiles().end() ? static_cast<std::int64_t>(file->second.size()) : -1;
}

std::int32_t readPart(void*, const char* name, std::uint64_t offset, void* bytes,
                      std::uint32_t count) {
    const auto file = pageFiles().find(name);
    if (file == pageFiles().end() || offset > file->second.size())
        return -1;
    const auto part = std::min<std::uint64_t>(count, file->second.size() - offset);
    std::copy_n(file->second.begin() + static_cast<std::ptrdiff_t>(offset), part,
                static_cast<unsigned char*>(bytes));
    return static_cast<std::int32_t>(part);
}

} // namespace

MeshFiles systemFiles(NameEncoding, const char*) {
    return MeshFiles(new CInterface::HostFiles({nullptr, lengthOf, readPart}));
}

std::string readSystemFile(const std::string& name, NameEncoding) {
    const auto file = pageFiles().find(name);
    if (file == pageFiles().end())
        throw std::runtime_error(name + ": cannot be read");
    return {file->second.begin(), file->second.end()};
}

} // namespace ZUNO::HostKit
