#pragma once

#include "tools/zunobake/bakedmesh.h"
#include "tools/zunobake/unreachable.h"

#include <ostream>

namespace ZUNO::Tools {

/// What the command prints of a bake: the settings as they came out in cells, what the written file
/// holds, and which parts of it can't be reached.
class Summary {
public:
    /// Looks the mesh over. All of them must outlive the summary.
    Summary(const NavMesh::NavMeshContainer& mesh, const Scene& scene, const BakeSettings& settings,
            UpAxis up);

    void print(std::ostream& out, const std::string& file, std::size_t islandsLeftOut,
               const std::vector<UnreachablePart>& unreachable) const;

private:
    void printCells(std::ostream& out) const;
    void printClasses(std::ostream& out) const;
    void printUnreachable(std::ostream& out, const std::vector<UnreachablePart>& parts) const;

    const NavMesh::NavMeshContainer& mMesh;
    const Scene& mScene;
    const BakeSettings& mSettings;
    UpAxis mUp;
    MeshCounts mCounts;
    std::size_t mOddities = 0;
};

} // namespace ZUNO::Tools
