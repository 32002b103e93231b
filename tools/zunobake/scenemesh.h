#pragma once

#include "tools/picture/loadedmesh.h"
#include "tools/zunobake/baker.h"
#include "tools/zunobake/unreachable.h"

namespace ZUNO::Tools {

/// Is told of the stages of a bake as they begin, and of how far the longest one is.
struct BakeListener {
    std::function<void(const char* stage)> mOnStage;
    TileListener mOnTiles;
};

/// Which parts of a mesh can't be reached, and whether what closes the way there is looked for.
struct Exploration {
    std::vector<float> mFrom; ///< where walkers begin; empty: on the largest part
    bool mFindsPassages = true;
};

/// The mesh of a scene, and what is to be said of it.
class SceneMesh {
public:
    /// Makes the mesh; `up` is the axis that points up in it. Raises a std::runtime_error that says
    /// why there is none. Lifetime: keeps nothing of the arguments.
    SceneMesh(const Scene& scene, const BakeSettings& settings, UpAxis up,
              const Exploration& exploration, const BakeListener& listener);

    const LoadedMesh& mesh() const { return mMesh; }
    std::size_t islandsLeftOut() const { return mIslandsLeftOut; }
    const std::vector<UnreachablePart>& unreachable() const { return mUnreachable; }

private:
    LoadedMesh mMesh;
    std::size_t mIslandsLeftOut = 0;
    std::vector<UnreachablePart> mUnreachable;
};

/// Raises a std::runtime_error when a name of the scene or of an agent can't stand in an XML file,
/// which has names as they are: an opening bracket would make one that can't be read.
void requireWritableNames(const Scene& scene, const BakeSettings& settings);

} // namespace ZUNO::Tools
