#include "tests/host/hosttest.h"

#include "common/geom/ray3d.h"

#include <algorithm>
#include <map>

namespace ZUNO::Tests {

using Common::Geom::Ray2D;
using Common::Geom::Ray3D;

/// Whether the texts stand in that order.
bool holdsInOrder(const std::string& whole, const std::vector<std::string>& texts) {
    std::size_t position = 0;
    for (const std::string& text : texts) {
        position = whole.find(text, position);
        if (position == std::string::npos)
            return false;
        position += text.size();
    }
    return true;
}

TEST_F(HostTest, LeavesNothingBehindAfterNormalUseAndASecondStart) {
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(start());
        const int search = Interface::initPathSearch({1, 0, 1}, {13, 0, 13});
        EXPECT_EQ(search, 0) << "ids start again with each world";
        while (Interface::runPathSearch(search, 1) == 1) {
        }
        Vec3<float> waypoint;
        EXPECT_TRUE(Interface::getNextWaypoint(search, waypoint));
        Interface::close();
        EXPECT_EQ(mMemory->outstanding(), 0U);
    }
    Stderr reports;
    Interface::close();
    EXPECT_EQ(reports.text(), "") << "with nothing running nothing happens";
}

TEST_F(HostTest, RefusesFilesThatHoldNoMesh) {
    struct Case {
        const char* mContent;
        const char* mReport; ///< before the two of the start; "" when there is none
        const char* mException;
    };
    const std::string floor = mFiles->mFiles["floor"];
    const auto with = [&](const std::string& from, const std::string& to) {
        std::string changed = floor;
        changed.replace(changed.find(from), from.size(), to);
        return changed;
    };
    const std::string swapped = with("<normal>0/1/0</normal>", "");
    const std::string noNodes =
        floor.substr(0, floor.find("<node>")) + floor.substr(floor.rfind("</node>") + 7);
    const std::string badCorner = with("<vert_id>0</vert_id>", "<vert_id>5000</vert_id>");
    const std::string badNeighbour = with("<node_id>-1</node_id>", "<node_id>60</node_id>");
    const std::string badClass =
        with("<heightclass>0</heightclass>", "<heightclass>1</heightclass>");
    const std::string infinite = with("<pos>0/0/0</pos>", "<pos>0/1e39/0</pos>");
    const std::string noCube = with("<cubesize>0.5</cubesize>", "<cubesize/>");
    const std::string tinyCube = with("<cubesize>0.5</cubesize>", "<cubesize>1e-6</cubesize>");
    const std::string noCorners =
        with(floor.substr(floor.find("<polygon>"),
                          floor.find("</polygon>") - floor.find("<polygon>") + 10),
             "<polygon/>");
    const std::string deep = std::string("<a>") + [] {
        std::string text;
        for (int i = 0; i < 5000; ++i)
            text += "<b>";
        return text + "<c/>";
    }();
    const Case cases[] = {
        {"", "", "XMLParserException: XMLParser: End of buffer reached. {Line=1} {Row=0}"},
        {"no markup", "", "XMLParserException: XMLParser: End of buffer reached. {Line=1} {Row=0}"},
        {"<a><b/></a>", "In 'a' the tag 'navmesh' is required !", ""},
        {"<a><navmesh></navmesh></a>", "In 'a'->'navmesh' the tag 'heightmap' is required !", ""},
        {"<a><navmesh><heightmap><height>1</height></heightmap></navmesh></a>",
         "In 'a'->'navmesh'->'heightmap'->'height' the attribute 'id' is required !", ""},
        {swapped.c_str(), "In 'ZUNO'->'navmesh' the tag 'normal' is required !", ""},
        {noNodes.c_str(), "the mesh has no nodes", ""},
        {badCorner.c_str(), "node 0: corner 0 refers to vertex 5000 of ", ""},
        {badNeighbour.c_str(), " leads to node 60 of 60", ""},
        {badClass.c_str(), "node 0 has height class 1 of 1", ""},
        {infinite.c_str(), "vertex 0 is not finite", ""},
        {noCube.c_str(), "cubesize is 0; it must be above 0", ""},
        {tinyCube.c_str(), "the blocking grid would have ", ""},
        {noCorners.c_str(), "node 0 has no corners", ""},
        {deep.c_str(), "", "XMLParserException: XMLParser: Elements are nested deeper than 4096"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.mContent).substr(0, 60) + " -> " + row.mReport);
        mFiles->mFiles["bad"] = row.mContent;
        Stderr reports;
        bool isLoaded = true;
        const std::string raised = raisedBy([&] { isLoaded = start("bad"); });
        const std::string text = reports.text();
        EXPECT_EQ(raised.substr(0, std::strlen(row.mException)), row.mException);
        EXPECT_EQ(raised.empty(), *row.mException == '\0') << raised;
        if (raised.empty()) {
            EXPECT_FALSE(isLoaded);
            EXPECT_TRUE(holdsInOrder(
                text, {row.mReport, "false\nError Message: cannot load mediagraph from file: bad",
                       "false\nError Message: Cannot initialise the world representation, error "
                       "in file: bad"}))
                << text;
        }
        Interface::close();
        EXPECT_EQ(mMemory->outstanding(), 0U);
    }
}

TEST_F(HostTest, TurnsTheHostsFileErrorsIntoExceptions) {
    EXPECT_EQ(raisedBy([&] { start("missing"); }),
              "FileNotFoundException: CallbackFileStream: File or path not found "
              "{Filename=missing} {FullFilename=/full/missing}");
    Interface::close();
    mFiles->mOpenResult = -2;
    EXPECT_EQ(raisedBy([&] { start(); }),
              "UnAuthorizedAccessException: CallbackFileStream: Given path is a directory, or "
              "file is read-only, but an open-for-writing operation was attempted");
    Interface::close();
    mFiles->mOpenResult = -3;
    EXPECT_EQ(raisedBy([&] { start(); }),
              "IOException: CallbackFileStream: Unknown file open error");
    Interface::close();
    mFiles->mOpenResult = 0;
    for (const std::int64_t length :
         {std::int64_t{-1}, std::int64_t{1} << 32, std::int64_t{100000}}) {
        mFiles->mLength = length;
        EXPECT_EQ(raisedBy([&] { start(); }),
                  "IOException: XMLParser: Cannot read complete file from stream")
            << length;
        Interface::close();
    }
    mFiles->mLength = MemoryFiles::noLength;
    mFiles->mReadResult = -1;
    EXPECT_EQ(raisedBy([&] { start(); }),
              "IOException: XMLParser: Cannot read complete file from stream");
}

TEST_F(HostTest, SurvivesAMeshFileCutAtEveryLength) {
    const std::string whole = Worlds::makeFloor(3, 1).toXML("cut");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        mFiles->mFiles["cut"] = whole.substr(0, length);
        Stderr reports;
        bool isLoaded = false;
        const std::string raised = raisedBy([&] { isLoaded = start("cut"); });
        const bool isComplete = whole.substr(length).find_first_not_of('\n') == std::string::npos;
        EXPECT_EQ(isLoaded, isComplete) << length << ": " << raised;
        Interface::close();
        reports.text();
        ASSERT_EQ(mMemory->outstanding(), 0U) << length;
    }
}

TEST_F(HostTest, RefusesBlockingMapFiles) {
    EXPECT_EQ(raisedBy([&] { start("floor", "map"); }),
              "NotSupportedException: No serialization yet");
    EXPECT_EQ(Interface::initPathSearch({1, 0, 1}, {1, 0, 1}), 0) << "searches work";
    Ray2D<float, float> ray({1, 1}, {50, 1});
    Interface::traceRay(ray);
    EXPECT_EQ(ray.mHitDistance, -1);
    Stderr reports;
    EXPECT_TRUE(Interface::isBlocked({1, 1}));
    EXPECT_EQ(Interface::getGroundHeight({1, 1}), 3.4028235e38F);
    EXPECT_TRUE(holdsInOrder(reports.text(), {"pathfinder/navmeshinstance.cpp(",
                                              "mRayTracer\nError Message: please call "
                                              "initRayTracer() first",
                                              "please call initRayTracer() first"}));
    Stderr saving;
    EXPECT_EQ(raisedBy([] { Interface::saveBlockingMap(""); }),
              "NotSupportedException: No serialization yet");
    EXPECT_TRUE(
        holdsInOrder(saving.text(), {"pathfinder/interface.cpp(",
                                     "!filename.isEmpty()\nError Message: Filename for saving the "
                                     "blocking map cannot be empty"}));
}

TEST_F(HostTest, AnswersNeutrallyWithoutAWorld) {
    Stderr reports;
    Vec3<float> waypoint(1, 2, 3);
    Vec2<float> min(1, 1);
    Vec2<float> max(2, 2);
    Ray3D<float, float> ray({0, 0, 0}, {1, 0, 0});
    EXPECT_EQ(Interface::initPathSearch({0, 0, 0}, {0, 0, 0}), -1);
    EXPECT_EQ(Interface::runPathSearch(0, 1), 2);
    EXPECT_FALSE(Interface::getNextWaypoint(0, waypoint));
    EXPECT_EQ(waypoint, Vec3<float>(1, 2, 3));
    EXPECT_EQ(Interface::getPathCost(0), 0);
    EXPECT_FALSE(Interface::closePathSearch(0));
    EXPECT_TRUE(Interface::isBlocked({0, 0}));
    EXPECT_EQ(Interface::getGroundHeight({0, 0}), 3.4028235e38F);
    Ray2D<float, float> flatRay({0, 0}, {1, 0});
    ray.mHitDistance = flatRay.mHitDistance = 5;
    Interface::traceRay(ray);
    Interface::traceRay(flatRay);
    EXPECT_EQ(ray.mHitDistance, -1);
    EXPECT_EQ(flatRay.mHitDistance, -1);
    Interface::getBoundingRectangle(min, max);
    EXPECT_EQ(min, Vec2<float>(0, 0));
    EXPECT_EQ(max, Vec2<float>(0, 0));
    EXPECT_FALSE(Interface::saveBlockingMap("map"));
    EXPECT_TRUE(
        holdsInOrder(reports.text(),
                     std::vector<std::string>(11, "no world: call initWorldRepresentation first")));
}

TEST_F(HostTest, ReportsASecondStartAndLoadsTheNewMesh) {
    mFiles->mFiles["harbour"] = Worlds::makeHarbour().toXML("harbour");
    ASSERT_TRUE(start());
    const int old = Interface::initPathSearch({1, 0, 1}, {13, 0, 13});
    auto* const otherMemory = new CountingMemory;
    const SharedPtr<Common::Callback::MemoryCallback> otherCallback(otherMemory);
    Stderr reports;
    EXPECT_TRUE(Interface::initWorldRepresentation("harbour", otherCallback, {}, ""));
    const std::string text = reports.text();
    EXPECT_TRUE(holdsInOrder(text, {"gMemCallback == NULL\nError Message: Common is already "
                                    "initialized !",
                                    "NavMesh library is already initialised",
                                    "there is already an instance of this singleton object",
                                    "there is already an instance of this singleton object",
                                    "Raytracer is already initialised, deleting it first"}))
        << text;
    EXPECT_FALSE(Interface::closePathSearch(old)) << "the old mesh's searches are gone";
    EXPECT_FLOAT_EQ(Interface::getGroundHeight({20, 20}), 5);
    EXPECT_EQ(otherMemory->mRequests, 0U) << "the first start's callbacks serve on";
}

TEST_F(HostTest, RunsOnAfterASecondStartThatFails) {
    mFiles->mFiles["harbour"] = Worlds::makeHarbour().toXML("harbour");
    mFiles->mFiles["cut"] = "<a>";
    mFiles->mFiles["empty"] = "<a><navmesh/></a>";
    mFiles->mFiles["unfit"] = mFiles->mFiles["floor"];
    const std::string cubeSize = "<cubesize>0.5<";
    std::string& unfit = mFiles->mFiles["unfit"];
    unfit.replace(unfit.find(cubeSize), cubeSize.size(), "<cubesize>0<");
    ASSERT_TRUE(start());
    const int search = Interface::initPathSearch({1, 0, 1}, {13, 0, 13});
    const auto expectTheFormerWorld = [&](const std::string& after) {
        const int other = Interface::initPathSearch({1, 0, 1}, {13, 0, 13});
        EXPECT_EQ(Interface::runPathSearch(other, 1000), 0) << after;
        Interface::closePathSearch(other);
        EXPECT_EQ(Interface::runPathSearch(search, 0), 1) << after;
        EXPECT_FALSE(Interface::isBlocked({1, 1})) << after;
        EXPECT_EQ(Interface::getGroundHeight({20, 20}), 3.4028235e38F) << after;
        Vec2<float> low;
        Vec2<float> high;
        Interface::getBoundingRectangle(low, high);
        EXPECT_EQ(high, Vec2<float>(16, 18)) << after;
    };
    struct Case {
        const char* mMesh;
        const char* mBlockingMap;
        const char* mException;
    };
    Stderr reports;
    for (const Case& row : {Case{"missing", "", "FileNotFoundException"},
                            {"cut", "", "XMLParserException"},
                            {"empty", "", ""},
                            {"unfit", "", ""},
                            {"harbour", "map", "NotSupportedException"}}) {
        bool isLoaded = false;
        const std::string raised = raisedBy([&] { isLoaded = start(row.mMesh, row.mBlockingMap); });
        EXPECT_EQ(raised.substr(0, raised.find(':')), row.mException);
        EXPECT_FALSE(isLoaded);
        expectTheFormerWorld(row.mMesh);
    }
    unsigned int refused = 0;
    for (bool isLoaded = false; !isLoaded; ++refused) {
        mMemory->mRequests = 0;
        mMemory->mFailingRequest = refused + 1;
        const std::string raised = raisedBy([&] { isLoaded = start("harbour"); });
        mMemory->mFailingRequest = 0;
        if (isLoaded)
            continue;
        EXPECT_TRUE(raised.starts_with("OutOfMemoryException")) << raised;
        expectTheFormerWorld("refused request " + std::to_string(refused + 1));
    }
    EXPECT_GT(refused, 30U);
    EXPECT_LE(mMemory->mRequests, refused);
    reports.text();
}

namespace {

/// Host memory that notes during which phase each block was taken, and in which order the phases'
/// blocks came back: each phase once, by its first block.
class PhasedMemory : public CountingMemory {
public:
    void* allocateMemory(unsigned int size) override {
        void* const block = CountingMemory::allocateMemory(size);
        if (size == mGridSize)
            mPhase = "grid";
        mPhaseOf[block] = mPhase;
        return block;
    }
    void freeMemory(void* ptr) override {
        if (const std::string phase = mPhaseOf[ptr];
            std::ranges::find(mFreed, phase) == mFreed.end())
            mFreed.push_back(phase);
        CountingMemory::freeMemory(ptr);
    }

    std::string mPhase;
    unsigned int mGridSize = 0;
    std::vector<std::string> mFreed;

private:
    std::map<void*, std::string> mPhaseOf;
};

} // namespace

TEST_F(HostTest, ReleasesAWorldInItsOrder) {
    auto* const memory = new PhasedMemory;
    mMemoryCallback = SharedPtr<Common::Callback::MemoryCallback>(memory);
    mMemory = memory;
    memory->mPhase = "load";
    memory->mGridSize = 33 * 37 * 8;
    ASSERT_TRUE(start());
    for (const char* const phase : {"first", "second", "third", "fourth"}) {
        memory->mPhase = phase;
        const int id = Interface::initPathSearch({1, 0, 1}, {13, 0, 13});
        EXPECT_EQ(Interface::runPathSearch(id, 30), 1);
    }
    Interface::closePathSearch(2);
    Interface::closePathSearch(0);
    memory->mFreed.clear();
    Interface::close();
    EXPECT_EQ(memory->mFreed,
              (std::vector<std::string>{"first", "third", "second", "fourth", "grid", "load"}))
        << "the pool from its back, open searches by their ids, the grid, and the rest";
}

TEST_F(HostTest, WarnsOfAxesThatSpanNoGround) {
    std::string& floor = mFiles->mFiles["floor"];
    const std::string axis = "<yaxis>0/0/1<";
    floor.replace(floor.find(axis), axis.size(), "<yaxis>2/0/0<");
    testing::internal::CaptureStdout();
    EXPECT_TRUE(start());
    EXPECT_NE(testing::internal::GetCapturedStdout().find(
                  "The mesh's plane axes are parallel seen from above: there is no bounding "
                  "rectangle"),
              std::string::npos);
}

} // namespace ZUNO::Tests
