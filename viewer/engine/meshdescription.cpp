#include "viewer/engine/meshdescription.h"

#include "navmesh/meshdefects.h"
#include "tools/picture/meshfigures.h"
#include "viewer/engine/guarded.h"

namespace ZUNO::Viewer {

using emscripten::val;
using NavMesh::NavMeshContainer;

namespace {

/// Returns what lists everything that is wrong with its kind, up to a thousand things.
NavMesh::DefectListener listIn(val& list, const char* kind) {
    return [&list, kind, count = 0U](const char* text) mutable {
        constexpr unsigned int most = 1000;
        val entry = val::object();
        entry.set("kind", std::string(kind));
        entry.set("text", std::string(text));
        list.call<void>("push", entry);
        return ++count < most;
    };
}

val describeTables(const NavMeshContainer& mesh) {
    val tables = val::object();
    val heights = val::array();
    for (const float height : mesh.mHeights)
        heights.call<void>("push", height);
    val characters = val::array();
    for (const auto& record : mesh.mCharacters) {
        val entry = val::object();
        entry.set("name", std::string(record.mName.getConstCharPtr()));
        entry.set("height", record.mPhysicalHeight);
        entry.set("jump", record.mJumpHeight);
        entry.set("fall", record.mFallHeight);
        entry.set("heightClass", record.mMaxHeightClassID);
        characters.call<void>("push", entry);
    }
    val surfaces = val::array();
    for (const auto& type : mesh.mSurfaceTypes) {
        val entry = val::object();
        entry.set("name", std::string(type.mName.getConstCharPtr()));
        entry.set("id", type.mID);
        surfaces.call<void>("push", entry);
    }
    tables.set("heights", heights);
    tables.set("characters", characters);
    tables.set("surfaces", surfaces);
    return tables;
}

/// The middle of those of a node's corners that have a place; NaN without any.
Common::Math::Vec3<float> findPlace(const NavMeshContainer& mesh,
                                    const std::vector<std::uint32_t>& corners) {
    Common::Math::Vec3<float> sum(0, 0, 0);
    for (const std::uint32_t corner : corners)
        sum = sum + mesh.mVertices[corner];
    const auto count = static_cast<float>(corners.size());
    return {sum.mX / count, sum.mY / count, sum.mZ / count};
}

/// The arrays to draw; of a mesh that is not fit for a world, what has a place in them.
void describeShape(const NavMeshContainer& mesh, bool isFit, val& out) {
    std::vector<float> vertices;
    for (const auto& vertex : mesh.mVertices)
        vertices.insert(vertices.end(), {vertex.mX, vertex.mY, vertex.mZ});
    std::vector<std::uint32_t> firstCorners;
    std::vector<std::uint32_t> corners;
    std::vector<std::int32_t> neighbours;
    std::vector<std::int32_t> heightClasses;
    std::vector<std::int32_t> surfaces;
    std::vector<float> centres;
    const auto nodeCount = static_cast<std::int32_t>(mesh.mNodes.size());
    for (const auto& node : mesh.mNodes) {
        firstCorners.push_back(static_cast<std::uint32_t>(corners.size()));
        std::vector<std::uint32_t> placed;
        for (std::size_t i = 0; i < node.mPolygon.size(); ++i) {
            const std::uint32_t corner = node.mPolygon[i];
            if (corner >= mesh.mVertices.size() || !isFinite(mesh.mVertices[corner]))
                continue;
            placed.push_back(corner);
            const std::int32_t other = i < node.mNeighbours.size() ? node.mNeighbours[i] : -1;
            neighbours.push_back(other < nodeCount ? other : -1);
        }
        corners.insert(corners.end(), placed.begin(), placed.end());
        heightClasses.push_back(node.mHeightClass);
        surfaces.push_back(node.mSurfaceTypeID);
        const auto centre = findPlace(mesh, placed);
        centres.insert(centres.end(), {centre.mX, centre.mY, centre.mZ});
    }
    firstCorners.push_back(static_cast<std::uint32_t>(corners.size()));
    out.set("vertices", copyOf(vertices));
    out.set("firstCorners", copyOf(firstCorners));
    out.set("corners", copyOf(corners));
    out.set("neighbours", copyOf(neighbours));
    out.set("heightClasses", copyOf(heightClasses));
    out.set("surfaceTypes", copyOf(surfaces));
    out.set("centres", copyOf(centres));
    out.set("islands", copyOf(isFit ? Tools::findIslands(mesh)
                                    : std::vector<unsigned int>(mesh.mNodes.size(), 0)));
}

} // namespace

val toArray(const Common::Math::Vec3<float>& vector) {
    val array = val::array();
    array.call<void>("push", vector.mX, vector.mY, vector.mZ);
    return array;
}

val describe(const Tools::LoadedMesh& loaded) {
    const NavMeshContainer& mesh = *loaded;
    val defects = val::array();
    const bool isFit = findDefects(mesh, listIn(defects, "defect"));
    if (isFit) {
        findOddities(mesh, listIn(defects, "odd"));
        Tools::findUnreachable(mesh, listIn(defects, "odd"));
    }

    val out = val::object();
    out.set("defects", defects);
    out.set("isFit", isFit);
    out.set("isBinary", loaded.isBinary());
    out.set("cubeSize", mesh.mCubeSize);
    out.set("normal", toArray(mesh.mNormal));
    out.set("xAxis", toArray(mesh.mXAxis));
    out.set("yAxis", toArray(mesh.mYAxis));
    out.set("tables", describeTables(mesh));
    out.set("memory", mesh.getMemoryUsage());
    describeShape(mesh, isFit, out);
    return out;
}

} // namespace ZUNO::Viewer
