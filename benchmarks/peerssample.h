#pragma once

#include "benchmarks/temporaryfile.h"
#include "reference/questions.h"
#include "tools/picture/loadedmesh.h"

#include <optional>
#include <random>
#include <string>
#include <vector>

namespace ZUNO::Benchmarks {

using Reference::Journey;

/// A mesh on disk, loaded beside the runtime's own, and journeys over it.
class Sample {
public:
    /// The mesh of a file, and the journeys of another one: a line of six numbers each, start and
    /// goal. Without one (an empty name) they are drawn. Throws a std::runtime_error.
    explicit Sample(const std::string& file, const std::string& journeys = {});
    /// A floor of about so many squares with holes, its cube size a 1000th of its extent.
    static Sample floor(unsigned int nodes) { return Sample("floor", makeFloor(nodes)); }
    /// A town of so many plots a side, baked: polygons of very unequal sizes.
    static Sample town(int plots) { return Sample("town", bakeTown(plots)); }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    const NavMesh::NavMeshContainer& mesh() const { return *mMesh; }
    Common::SharedPtr<NavMesh::NavMeshContainer> shared() const { return mMesh.shared(); }
    const std::string& file() const { return mName; }
    /// "floor of 60 nodes"
    std::string label() const { return mKind + " of " + std::to_string(nodes()) + " nodes"; }
    std::size_t nodes() const { return mMesh->mNodes.size(); }
    /// Returns the centre of any node.
    NavMesh::NavMeshContainer::Point3 pick(std::mt19937& random) const;

    /// Returns the journeys that were given, or none.
    const std::vector<Journey>& journeys() const { return mJourneys; }

    /// Returns the mesh's text with so many cells along its extent.
    std::string withCells(unsigned int cells) const;

private:
    struct Text {
        std::string mContent;
    };
    Sample(const char* kind, const Text& text);

    static Text makeFloor(unsigned int nodes);
    static Text bakeTown(int plots);
    static std::vector<Journey> readJourneys(const std::string& file);

    std::string mKind = "mesh";
    std::optional<TemporaryFile> mOwnFile;
    std::string mName;
    Tools::LoadedMesh mMesh;
    std::vector<Journey> mJourneys;
};

} // namespace ZUNO::Benchmarks
