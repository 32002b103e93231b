#pragma once

#include "tools/picture/meshfigures.h"
#include "tools/zunobake/passages.h"

namespace ZUNO::Tools {

/// A part of a mesh that can't be reached, and what closes the way to it if one agent's height or
/// radius does.
struct UnreachablePart {
    MeshPart mPart;
    std::optional<Passage> mPassage;
};

/// Lists the parts that can't be reached from where walkers begin, the largest first. `from` is a
/// place on the mesh, as x, y and z; when it is empty, they begin on the part of the largest area.
/// Passages are looked for to the first `mostExplained` parts, unless `passages` is null. Raises a
/// std::runtime_error when there is no ground at `from`.
std::vector<UnreachablePart> listUnreachable(const NavMesh::NavMeshContainer& mesh,
                                             const std::vector<float>& from,
                                             PassageFinder* passages);
inline constexpr std::size_t mostExplained = 8;

} // namespace ZUNO::Tools
