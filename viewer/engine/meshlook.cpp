// What the page shows of a mesh, whether or not a world can run over it.
#include "capi/check.h"
#include "capi/messages.h"
#include "common/callback/openstream.h"
#include "common/interface.h"
#include "common/memory/objectcreation.h"
#include "hostkit/foundation.h"
#include "hostkit/systemfiles.h"
#include "navmesh/meshdefects.h"
#include "navmesh/meshforms.h"
#include "tools/picture/meshfigures.h"
#include "viewer/engine/answers.h"

using namespace ZUNO;
using namespace ZUNO::CInterface;
using NavMesh::NavMeshContainer;
using Viewer::leave;

namespace {

/// What the page reads, in this order.
struct MeshLook {
    std::uint32_t mIsFit, mIsBinary, mMemory;
    float mCubeSize;
    zuno_point mNormal, mXAxis, mYAxis;
};

/// Reads a mesh with all its defects. Throws a Failure, or what the foundation raises.
Common::SharedPtr<NavMeshContainer> readAnyMesh(const char* file, bool isBinary,
                                                const HostKit::MeshFiles& files) {
    const auto& allocator = Common::getAllocator();
    const auto stream =
        Common::Callback::openStream(allocator, files, file, Common::IO::FACCESS_READ);
    Common::SharedPtr<NavMeshContainer> mesh;
    if (!isBinary)
        mesh = NavMesh::readMeshDocument(*stream, allocator);
    else if (mesh = Common::Memory::createManaged<NavMeshContainer>(allocator);
             !mesh->readBinary(stream))
        mesh = nullptr;
    if (mesh == nullptr)
        throw Failure{ZUNO_BAD_MESH, Messages::firstReport()};
    return mesh;
}

/// Returns what lists texts, each with a zero behind it, up to a thousand.
NavMesh::DefectListener listIn(std::string& list) {
    return [&list, count = 0U](const char* text) mutable {
        constexpr unsigned int most = 1000;
        list.append(text).push_back(0);
        return ++count < most;
    };
}

/// Leaves what is wrong with a mesh. Returns whether a world can run over it.
bool leaveDefects(const NavMeshContainer& mesh) {
    std::string defects;
    std::string oddities;
    const bool isFit = findDefects(mesh, listIn(defects));
    if (isFit) {
        findOddities(mesh, listIn(oddities));
        Tools::findUnreachable(mesh, listIn(oddities));
    }
    leave("defects", defects);
    leave("oddities", oddities);
    return isFit;
}

void leaveTables(const NavMeshContainer& mesh) {
    std::vector<float> sizes;
    std::vector<std::uint32_t> classes;
    std::string characters;
    for (const auto& record : mesh.mCharacters) {
        sizes.insert(sizes.end(), {record.mPhysicalHeight, record.mJumpHeight, record.mFallHeight});
        classes.push_back(record.mMaxHeightClassID);
        characters.append(record.mName.getConstCharPtr()).push_back(0);
    }
    std::vector<std::uint32_t> ids;
    std::string surfaces;
    for (const auto& type : mesh.mSurfaceTypes) {
        ids.push_back(type.mID);
        surfaces.append(type.mName.getConstCharPtr()).push_back(0);
    }
    leave("heights", std::vector<float>(mesh.mHeights.begin(), mesh.mHeights.end()));
    leave("characterSizes", sizes);
    leave("characterClasses", classes);
    leave("characterNames", characters);
    leave("surfaceIds", ids);
    leave("surfaceNames", surfaces);
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

/// Leaves what can be drawn of each node: corners that have a place, and neighbours that exist.
void leaveShapes(const NavMeshContainer& mesh) {
    std::vector<std::uint32_t> firstCorners;
    std::vector<std::uint32_t> corners;
    std::vector<std::int32_t> neighbours;
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
        const auto centre = findPlace(mesh, placed);
        centres.insert(centres.end(), {centre.mX, centre.mY, centre.mZ});
    }
    firstCorners.push_back(static_cast<std::uint32_t>(corners.size()));
    leave("firstCorners", firstCorners);
    leave("corners", corners);
    leave("neighbours", neighbours);
    leave("centres", centres);
}

void leaveNumbers(const NavMeshContainer& mesh, bool isFit) {
    std::vector<float> vertices;
    for (const auto& vertex : mesh.mVertices)
        vertices.insert(vertices.end(), {vertex.mX, vertex.mY, vertex.mZ});
    std::vector<std::int32_t> heightClasses;
    std::vector<std::int32_t> surfaceTypes;
    for (const auto& node : mesh.mNodes) {
        heightClasses.push_back(node.mHeightClass);
        surfaceTypes.push_back(node.mSurfaceTypeID);
    }
    leave("vertices", vertices);
    leave("heightClasses", heightClasses);
    leave("surfaceTypes", surfaceTypes);
    leave("islands",
          isFit ? Tools::findIslands(mesh) : std::vector<unsigned int>(mesh.mNodes.size(), 0));
}

MeshLook lookAt(const char* file) {
    const HostKit::MeshFiles files = HostKit::systemFiles(HostKit::NameEncoding::UTF8);
    const bool isBinary = HostKit::isBinaryMesh(file, files);
    const auto mesh = readAnyMesh(file, isBinary, files);
    const bool isFit = leaveDefects(*mesh);
    leaveTables(*mesh);
    leaveShapes(*mesh);
    leaveNumbers(*mesh, isFit);
    return {isFit,
            isBinary,
            mesh->getMemoryUsage(),
            mesh->mCubeSize,
            toC(mesh->mNormal),
            toC(mesh->mXAxis),
            toC(mesh->mYAxis)};
}

} // namespace

/// Looks at a mesh of either form while no session runs. Leaves a list for each part of it, as
/// src/meshlook.ts names them; texts end with a zero each.
extern "C" zuno_status ZUNO_PAGE_EXPORT(zuno_tool_mesh_look)(const char* file, MeshLook* look) {
    return inWorld(__func__, [&] {
        const HostKit::Foundation foundation;
        Messages::takeLog();
        try {
            *look = lookAt(file);
        } catch (...) {
            throw Failure(currentFailure()); // the exception goes before the foundation does
        }
        return ZUNO_OK;
    });
}
