#include "viewer/engine/meshdescription.h"

#include "navmesh/meshdefects.h"

namespace ZUNO::Viewer {

using emscripten::val;
using NavMesh::NavMeshContainer;

namespace {

/// Lists what is wrong, with its kind.
class DefectList : public NavMesh::DefectListener {
public:
    DefectList(val& list, const char* kind) : mList(list), mKind(kind) {}

private:
    bool onDefect(const char* text) override {
        constexpr unsigned int most = 1000;
        val entry = val::object();
        entry.set("kind", mKind);
        entry.set("text", std::string(text));
        mList.call<void>("push", entry);
        return ++mCount < most;
    }

    val& mList;
    std::string mKind;
    unsigned int mCount = 0;
};

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

} // namespace

val toArray(const Common::Math::Vec3<float>& vector) {
    val array = val::array();
    array.call<void>("push", vector.mX, vector.mY, vector.mZ);
    return array;
}

val describe(const Tools::LoadedMesh& loaded) {
    const NavMeshContainer& mesh = *loaded;
    val defects = val::array();
    DefectList found(defects, "defect");
    DefectList odd(defects, "odd");
    const bool isFit = findDefects(mesh, found);
    if (isFit)
        findOddities(mesh, odd);

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
    if (!isFit)
        return out;

    std::vector<float> vertices;
    for (const auto& vertex : mesh.mVertices)
        vertices.insert(vertices.end(), {vertex.mX, vertex.mY, vertex.mZ});
    std::vector<std::uint32_t> firstCorners;
    std::vector<std::uint32_t> corners;
    std::vector<std::int32_t> neighbours;
    std::vector<std::int32_t> heightClasses;
    std::vector<std::int32_t> surfaces;
    std::vector<float> centres;
    for (std::size_t id = 0; id < mesh.mNodes.size(); ++id) {
        const auto& node = mesh.mNodes[id];
        firstCorners.push_back(static_cast<std::uint32_t>(corners.size()));
        corners.insert(corners.end(), node.mPolygon.begin(), node.mPolygon.end());
        neighbours.insert(neighbours.end(), node.mNeighbours.begin(), node.mNeighbours.end());
        neighbours.resize(corners.size(), -1);
        heightClasses.push_back(node.mHeightClass);
        surfaces.push_back(node.mSurfaceTypeID);
        const auto centre = mesh.getNodeCenter(static_cast<std::int32_t>(id));
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
    out.set("islands", copyOf(Tools::findIslands(mesh)));
    return out;
}

} // namespace ZUNO::Viewer
