#pragma once

#include "hostkit/corridor.h"
#include "hostkit/meshloading.h"
#include "hostkit/session.h"
#include "hostkit/straightpath.h"
#include "hostkit/surface.h"
#include "tests/support/tempfolder.h"
#include "worlds/meshmodel.h"

#include <gtest/gtest.h>
#include <optional>

namespace ZUNO::Tests {

/// A running world over a mesh, and the host's view of the same file.
class WalkingWorld {
public:
    explicit WalkingWorld(const Worlds::MeshModel& model) : WalkingWorld(model.toXML("test")) {}
    explicit WalkingWorld(const std::string& document) : mFile(mFolder.put("mesh.xml", document)) {
        mSession.emplace(mFile);
        mView.emplace(HostKit::loadMeshView(mFile));
    }

    /// What the running world answers when a path is searched by itself, in one go.
    static HostKit::PathAnswer search(const HostKit::Position& from, const HostKit::Position& to,
                                      HostKit::Exports& world) {
        HostKit::PathAnswer answer;
        answer.mResult = HostKit::PathResult::OFF_MESH;
        const int search = world.initPathSearch(from, to);
        if (search < 0)
            return answer;
        const bool isFound = world.runPathSearch(search, 0xFFFFFFFF) == 0;
        answer.mResult = isFound ? HostKit::PathResult::FOUND : HostKit::PathResult::NO_PATH;
        for (HostKit::Position point; world.getNextWaypoint(search, point);)
            answer.mWaypoints.push_back(point);
        answer.mCost = world.getPathCost(search);
        world.closePathSearch(search);
        return answer;
    }
    static HostKit::PathAnswer search(const HostKit::Position& from, const HostKit::Position& to) {
        HostKit::Exports world;
        return search(from, to, world);
    }
    const HostKit::MeshView& view() const { return *mView; }
    const HostKit::Session& session() const { return *mSession; }
    const std::string& file() const { return mFile; }

private:
    TempFolder mFolder;
    std::string mFile;
    std::optional<HostKit::Session> mSession;
    std::optional<HostKit::MeshView> mView;
};

/// What a host does with a character in each frame: a step of that length to the next corner.
inline void stepOn(HostKit::Corridor& corridor, float length) {
    const HostKit::Position& here = corridor.position().mPosition;
    const HostKit::Position way = corridor.nextCorner(0.1F) - here;
    const float part = length / std::max(std::hypot(way.mX, way.mZ), length);
    corridor.move(here + HostKit::Position(way.mX * part, 0, way.mZ * part));
}

/// A flat mesh of polygons given by corners (x and z in quarters), with neighbours as they stand.
inline Worlds::MeshModel
flatMesh(const std::vector<std::pair<std::vector<std::pair<int, int>>, std::vector<int>>>& nodes) {
    Worlds::MeshModel model;
    model.mHeights = {2};
    for (const auto& [corners, neighbours] : nodes) {
        std::vector<Worlds::MeshModel::Corner> ring;
        for (const auto& [x, z] : corners)
            ring.push_back({x, 0, z});
        model.addPolygon(ring, 0, 0xFFFF);
        model.mNodes.back().mNeighbours.assign(neighbours.begin(), neighbours.end());
    }
    return model;
}

} // namespace ZUNO::Tests
