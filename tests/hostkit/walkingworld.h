#pragma once

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

    /// The waypoints of the world's path; nothing when there is none.
    static std::optional<std::vector<HostKit::Position>> search(const HostKit::Position& from,
                                                                const HostKit::Position& to) {
        using Pathfinder::Interface;
        const int search = Interface::initPathSearch(from, to);
        if (search < 0)
            return {};
        const bool isFound = Interface::runPathSearch(search, 0xFFFFFFFF) == 0;
        std::vector<HostKit::Position> waypoints;
        for (HostKit::Position point; Interface::getNextWaypoint(search, point);)
            waypoints.push_back(point);
        Interface::closePathSearch(search);
        return isFound ? std::optional(waypoints) : std::nullopt;
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
