#include "benchmarks/boundtrial.h"

#include "common/callback/reportcallback.h"
#include "common/exceptions/exception.h"
#include "hostkit/explain.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/memoryfilecallback.h"
#include "hostkit/meshfile.h"
#include "hostkit/straightpath.h"
#include "pathfinder/interface.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <functional>
#include <optional>
#include <random>

namespace ZUNO::Benchmarks {

namespace {

using Pathfinder::Interface;
using Mesh = NavMesh::NavMeshContainer;
using Point3 = Mesh::Point3;

double secondsOf(const std::function<void()>& action) {
    const std::clock_t begin = std::clock();
    action();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// Keeps the first report's text.
class ReportingMemory : public HostKit::HeapMemoryCallback,
                        public Common::Callback::ReportCallback {
public:
    void report(const char* text, const char*, unsigned int) noexcept override {
        const char* const message = std::strstr(text, "Error Message: ");
        if (mReport.empty() && message != nullptr)
            mReport = message + std::strlen("Error Message: ");
    }
    std::string mReport;
};

/// Asks a world and its view from places that lie on nodes, each with the same chance.
class Asker {
public:
    Asker(const Mesh& mesh, MeshCosts& costs) : mMesh(mesh), mCosts(costs) {}

    void askWorld() {
        const auto fourth =
            std::min<std::int32_t>(3, static_cast<std::int32_t>(mMesh.mNodes.size()) - 1);
        for (int i = 0; i < 40; ++i) {
            const Point3 from = i == 8 ? mMesh.getNodeCenter(fourth) : place();
            const Point3 to = i % 4 == 0 ? mMesh.getNodeCenter(0) : place();
            slowest(mCosts.mQuery, [&] { Interface::getGroundHeight({from.mX, from.mZ}); });
            Common::Geom::Ray2D<float, float> ray({from.mX, from.mZ}, {to.mX * 2, to.mZ});
            slowest(mCosts.mQuery, [&] { Interface::traceRay(ray); });
            int id = -1;
            slowest(mCosts.mQuery, [&] { id = Interface::initPathSearch(from, to); });
            int state = id < 0 ? 2 : 1;
            for (int k = 0; k < 30'000 && state == 1; ++k)
                slowest(mCosts.mExpansion, [&] { state = Interface::runPathSearch(id, 1); });
            Point3 waypoint(0, 0, 0);
            slowest(mCosts.mQuery, [&] { Interface::getNextWaypoint(id, waypoint); });
            slowest(mCosts.mQuery, [&] { Interface::closePathSearch(id); });
        }
    }
    void askView() {
        std::optional<HostKit::MeshView> made;
        mCosts.mView = secondsOf([&] { made.emplace(mMesh); });
        const HostKit::MeshView& view = *made;
        auto& worst = mCosts.mViewQueries;
        for (int i = 0; i < 20; ++i) {
            const Point3 from = place();
            const Point3 to = place();
            HostKit::Place at;
            slowest(worst[0], [&] { at = HostKit::findGround(view, from); });
            slowest(worst[1], [&] {
                HostKit::findNearest(view, {from.mX, 0, -to.mZ}, 1000, 1000);
            });
            slowest(worst[2], [&] { HostKit::moveAlongSurface(view, at, to); });
            slowest(worst[3], [&] { HostKit::walkStraight(view, at, to); });
            slowest(worst[4], [&] { HostKit::distanceToWall(view, at, 100); });
            slowest(worst[5], [&] { HostKit::explain(view, from, to); });
        }
    }

private:
    static void slowest(double& worst, const std::function<void()>& action) {
        worst = std::max(worst, secondsOf(action));
    }
    Point3 place() {
        const auto& polygon = mMesh.mNodes[mRandom() % mMesh.mNodes.size()].mPolygon;
        const Point3& a = mMesh.mVertices[polygon[0]];
        const Point3& b = mMesh.mVertices[polygon[polygon.size() / 2]];
        return {(a.mX + b.mX) / 2, a.mY, (a.mZ + b.mZ) / 2};
    }

    const Mesh& mMesh;
    MeshCosts& mCosts;
    std::mt19937 mRandom{3};
};

} // namespace

double MeshCosts::viewQuery() const {
    return *std::ranges::max_element(mViewQueries);
}

MeshCosts measureMesh(const std::string& file) {
    const HostKit::MeshFiles files(new HostKit::MemoryFileCallback("mesh", file));
    auto* const memory = new ReportingMemory;
    const Common::SharedPtr<Common::Callback::MemoryCallback> memoryCallback(memory);
    MeshCosts costs;
    costs.mLoad = secondsOf([&] {
        try {
            costs.mIsLoaded = Interface::initWorldRepresentation("mesh", memoryCallback, files, "");
        } catch (Common::Exceptions::Exception* exception) {
            memory->mReport = exception->getMessage().getConstCharPtr();
            delete exception;
        }
    });
    costs.mPeakBytes = memory->figures().mPeakBytes;
    costs.mReport = memory->mReport;
    if (costs.mIsLoaded) {
        const Common::SharedPtr<Mesh> mesh = HostKit::readMesh("mesh", files);
        Asker asker(*mesh, costs);
        asker.askWorld();
        asker.askView();
    }
    Interface::close();
    return costs;
}

} // namespace ZUNO::Benchmarks
