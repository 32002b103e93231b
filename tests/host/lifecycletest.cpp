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

TEST_F(HostTest, RefusesFilesThatHoldNoMesh) {
    struct Case {
        std::string mContent;
        const char* mReport; ///< before the two of the start; "" when there is none
        const char* mException;
    };
    const std::string floor = mFiles->mFiles["floor"];
    const auto without = [&](const char* begin, const char* end, const std::string& by) {
        const std::size_t from = floor.find(begin);
        const std::size_t to = floor.find(end, from) + std::strlen(end);
        return floor.substr(0, from) + by + floor.substr(to);
    };
    const char* const ended =
        "XMLParserException: XMLParser: End of buffer reached. {Line=1} {Row=0}";
    const Case cases[] = {
        {"", "", ended},
        {"no markup", "", ended},
        {"<a><b/></a>", "In 'a' the tag 'navmesh' is required !", ""},
        {"<a><navmesh></navmesh></a>", "In 'a'->'navmesh' the tag 'heightmap' is required !", ""},
        {"<a><navmesh><heightmap><height>1</height></heightmap></navmesh></a>",
         "In 'a'->'navmesh'->'heightmap'->'height' the attribute 'id' is required !", ""},
        {without("<normal>", "</normal>", ""),
         "In 'ZUNO'->'navmesh' the tag 'normal' is required !", ""},
        {without("<nodes>", "</nodes>", "<nodes/>"), "the mesh has no nodes", ""},
        {without("<polygon>", "</polygon>", "<polygon/>"), "node 0 has no corners", ""},
        {without("<vert_id>", "</vert_id>", "<vert_id>5000</vert_id>"),
         "node 0: corner 0 refers to vertex 5000 of ", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.mContent.substr(0, 60) + " -> " + row.mReport);
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
    struct Case {
        const char* mMesh;
        std::int32_t mOpenResult;
        std::int64_t mLength;
        std::int32_t mReadResult;
        const char* mRaised;
    };
    constexpr std::int64_t length = MemoryFiles::noLength;
    constexpr std::int32_t result = MemoryFiles::noResult;
    const char* const incomplete = "IOException: XMLParser: Cannot read complete file from stream";
    for (const Case& row :
         {Case{"missing", 0, length, result,
               "FileNotFoundException: CallbackFileStream: File or path not found "
               "{Filename=missing} {FullFilename=/full/missing}"},
          {"floor", -2, length, result,
           "UnAuthorizedAccessException: CallbackFileStream: Given path is a directory, or file is "
           "read-only, but an open-for-writing operation was attempted"},
          {"floor", -3, length, result, "IOException: CallbackFileStream: Unknown file open error"},
          {"floor", 0, 100000, result, incomplete},
          {"floor", 0, length, -1, incomplete}}) {
        mFiles->mOpenResult = row.mOpenResult;
        mFiles->mLength = row.mLength;
        mFiles->mReadResult = row.mReadResult;
        EXPECT_EQ(raisedBy([&] { start(row.mMesh); }), row.mRaised);
        Interface::close();
    }
}

// As hosts write it: catch, close, look at what was caught, delete it.
TEST_F(HostTest, AnExceptionMayBeKeptOverTheClose) {
    ASSERT_TRUE(start());
    Common::Exceptions::Exception* kept = nullptr;
    try {
        Interface::runPathSearch(99, 1);
    } catch (Common::Exceptions::Exception* caught) {
        kept = caught;
    }
    Stderr reports;
    Interface::close();
    const std::string text = reports.text();
    EXPECT_NE(text.find("there are other references to the object"), std::string::npos) << text;
    ASSERT_NE(kept, nullptr);
    EXPECT_STREQ(kept->getMessage().getConstCharPtr(),
                 " invalid searchID given to runPathSearch: 99");
    delete kept;
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
    Interface::close(); // with nothing running nothing happens
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
    const std::string text = reports.text();
    const std::vector<std::string> all(11, "no world: call initWorldRepresentation first");
    EXPECT_TRUE(holdsInOrder(text, all));
    EXPECT_EQ(std::ranges::count(text, '\n'), 2 * 11) << "and no more\n" << text;
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
