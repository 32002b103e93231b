#pragma once

#include "navmesh/navmeshcontainer.h"

#include <nlohmann/json.hpp>
#include <string>

namespace ZUNO::Tools {

/// What is in a mesh, for machines: "mesh" (the file), counts, "heightclasses", "islands" (their
/// sizes in nodes, the largest first), names.
nlohmann::ordered_json summaryOf(const NavMesh::NavMeshContainer& mesh, const std::string& file);

/// The same for people, with units. Each line is one of `more`, a name and what is to be said, or
/// of the summary; a table of the height classes follows. Lengths are in units of the mesh.
std::string textOf(const nlohmann::ordered_json& summary,
                   const std::vector<std::pair<std::string, std::string>>& more);

} // namespace ZUNO::Tools
