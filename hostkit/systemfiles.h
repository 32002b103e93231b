#pragma once

#include "hostkit/filenames.h"
#include "hostkit/meshfile.h"

#include <string>

namespace ZUNO::HostKit {

/// Returns the files of a host that has no callback for them: the C library's, none of them outside
/// of the base folder, if one is given; in a page, those that it holds in memory.
/// Throws a std::runtime_error for a folder that can't be one.
MeshFiles systemFiles(NameEncoding encoding = NameEncoding::SYSTEM,
                      const char* baseFolder = nullptr);

/// Returns the bytes of one of them. Throws a std::runtime_error that names it.
std::string readSystemFile(const std::string& name, NameEncoding encoding);

} // namespace ZUNO::HostKit
