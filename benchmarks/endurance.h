/// A host that goes on for long: what it holds must stay the same, and so must the answers.
#pragma once

#include "hostkit/session.h"
#include "worlds/meshmodel.h"

#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace ZUNO::Benchmarks {

class Endurance {
public:
    using Point = Common::Math::Vec3<float>;

    /// What the library held of the host's memory after so many searches or starts.
    struct Row {
        std::uint64_t mDone;
        std::uint64_t mBlocks;
        std::uint64_t mBytes;
    };

    /// Writes the mesh to the file and works out the right answers in a world of its own.
    Endurance(const std::string& meshFile, const Worlds::MeshModel& mesh) : mMeshFile(meshFile) {
        constexpr unsigned int pairs = 300;
        std::ofstream(meshFile, std::ios::binary) << mesh.toXML("endurance");
        std::vector<Point> points;
        for (const auto& [x, y, z] : Worlds::placesOn(mesh))
            points.emplace_back(x, y, z);
        const HostKit::Session session(mMeshFile);
        for (unsigned int i = 0; i < pairs; ++i) {
            Route route{points[mRandom() % points.size()], points[mRandom() % points.size()], 0, 0};
            const int id = open(route);
            while (Interface::runPathSearch(id, 1000) == Pathfinder::PATH_RUNNING) {
            }
            read(id, route.mCost, route.mWaypoints);
            Interface::closePathSearch(id);
            mRoutes.push_back(route);
        }
    }

    /// Opens searches until `total` were opened, with `atOnce` open at a time; advances them in
    /// slices, reads those that are done, abandons one in ten before.
    std::vector<Row> churn(std::uint64_t total, std::size_t atOnce, unsigned int rows) {
        std::vector<Row> table;
        const HostKit::Session session(mMeshFile);
        std::vector<Search> searches;
        for (std::uint64_t opened = 0; opened < total;) {
            if (searches.size() < atOnce) {
                searches.push_back(begin());
                ++opened;
                if (opened % (total / rows) == 0)
                    table.push_back({opened, session.memory().mBlocks, session.memory().mBytes});
                continue;
            }
            const std::size_t which = mRandom() % searches.size();
            if (advance(searches[which]))
                continue;
            Interface::closePathSearch(searches[which].mId);
            mOpen.erase(searches[which].mId);
            searches[which] = searches.back();
            searches.pop_back();
        }
        mOpen.clear();
        return table;
    }

    /// Starts and closes the library `total` times, with a query each.
    std::vector<Row> restart(std::uint64_t total, unsigned int rows) {
        std::vector<Row> table;
        for (std::uint64_t i = 1; i <= total; ++i) {
            HostKit::Session session(mMeshFile);
            Search search = begin();
            while (advance(search)) {
            }
            mOpen.clear();
            const HostKit::MemoryFigures left = session.close();
            if (i % (total / rows) == 0)
                table.push_back({i, left.mBlocks, left.mBytes});
        }
        return table;
    }

    /// Answers that were not those of a fresh world, and ids that were given twice.
    std::uint64_t mistakes() const { return mMistakes; }

private:
    using Interface = Pathfinder::Interface;

    struct Route {
        Point mFrom;
        Point mTo;
        float mCost;
        unsigned int mWaypoints;
    };
    struct Search {
        int mId;
        std::size_t mRoute;
    };

    static int open(const Route& route) {
        return Interface::initPathSearch(route.mFrom, route.mTo);
    }

    static void read(int id, float& cost, unsigned int& waypoints) {
        Point waypoint(0, 0, 0);
        while (Interface::getNextWaypoint(id, waypoint))
            ++waypoints;
        cost = Interface::getPathCost(id);
    }

    Search begin() {
        const std::size_t route = mRandom() % mRoutes.size();
        const int id = open(mRoutes[route]);
        mMistakes += id < 0 || !mOpen.insert(id).second ? 1 : 0;
        return {id, route};
    }

    /// Whether the search is to go on.
    bool advance(const Search& search) {
        if (mRandom() % 10 == 0)
            return false; // abandoned
        if (Interface::runPathSearch(search.mId, static_cast<unsigned int>(mRandom() % 400)) ==
            Pathfinder::PATH_RUNNING)
            return true;
        float cost = 0;
        unsigned int waypoints = 0;
        read(search.mId, cost, waypoints);
        const Route& route = mRoutes[search.mRoute];
        mMistakes += cost != route.mCost || waypoints != route.mWaypoints ? 1 : 0;
        return false;
    }

    std::string mMeshFile;
    std::vector<Route> mRoutes;
    std::unordered_set<int> mOpen;
    std::mt19937 mRandom{17};
    std::uint64_t mMistakes = 0;
};

} // namespace ZUNO::Benchmarks
