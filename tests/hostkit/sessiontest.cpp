#include "hostkit/session.h"
#include "hostkit/replay.h"
#include "tests/hostkit/walkingworld.h"
#include "tests/support/quiet.h"
#include "tools/picture/loadedmesh.h"

#include <cmath>
#include <random>

namespace ZUNO::Tests {

using namespace HostKit;

class SessionTest : public testing::Test {
protected:
    SessionTest() {
        mFolder.put("harbour.xml", Worlds::makeHarbour().toXML("harbour"));
        mFolder.put("broken.xml", "<a>\n<b></a>");
        mFolder.put("empty.xml", "<a><b/></a>");
        mFolder.put("cut.bin", "\1");
        Worlds::MeshModel defect = Worlds::makeFloor(4, 1);
        defect.mNodes[2].mPolygon[1] = 99;
        mFolder.put("defect.xml", defect.toXML(""));
    }

    std::string at(const std::string& name) const { return mFolder.in(name); }
    const Position mStart{2, 0, 2}; ///< of a path across the harbour
    const Position mGoal{50, 5, 25};
    Foundation mFoundation;
    TempFolder mFolder;
};

TEST_F(SessionTest, TakesEitherFormOfAMeshToTheBit) {
    const MeshFiles files(new StdioFileCallback);
    const Tools::LoadedMesh loaded(at("harbour.xml"));
    NavMesh::NavMeshContainer& mesh = *loaded.shared();
    std::mt19937 random(2); // numbers that six digits don't hold
    for (auto& vertex : mesh.mVertices)
        for (float* const number : {&vertex.mX, &vertex.mY, &vertex.mZ})
            *number += static_cast<float>(random()) * 1e-13F;
    mesh.mVertices[0].mY = -0.0F;
    mesh.mVertices[1].mY = 1e-41F;
    mesh.mCubeSize = 0.1F;
    const std::uint64_t digest = digestOf(mesh);
    mFolder.put("exact.xml", loaded.toXML());
    loaded.save(at("exact.bin"));
    EXPECT_FALSE(isBinaryMesh(at("exact.xml"), files));
    EXPECT_TRUE(isBinaryMesh(at("exact.bin"), files));
    EXPECT_EQ(digestOfFile(at("exact.xml"), files), digest);
    EXPECT_EQ(digestOfFile(at("exact.bin"), files), digest);
    // as the world is handed it
    EXPECT_EQ(digestOfFile(at("exact.bin"), MeshFiles(new MeshFileCallback(files))), digest);
    mesh.mVertices[7].mX = std::nextafter(mesh.mVertices[7].mX, 0.0F);
    EXPECT_NE(digestOf(mesh), digest);

    std::vector<std::vector<Position>> paths;
    for (const char* const file : {"exact.xml", "exact.bin"}) {
        Session session(at(file));
        paths.push_back(WalkingWorld::search(mStart, mGoal).mWaypoints);
        EXPECT_EQ(session.close().mBlocks, 0U);
    }
    EXPECT_EQ(paths[0], paths[1]);
    EXPECT_GT(paths[0].size(), 10U);
}

TEST_F(SessionTest, SaysWhyAMeshCantBeRunOrViewed) {
    const struct {
        const char* mFile;
        const char* mReason;      ///< of a session, in its beginning
        const char* mViewsReason; ///< in it
    } cases[] = {
        {"broken.xml", "XMLParser: Name in starttag and endtag a", "broken.xml: XMLParser: Name"},
        {"../etc/passwd", "CallbackFileStream: File or path not found", "File or path not found"},
        {"empty.xml", "empty.xml: no usable navigation mesh", "no usable navigation mesh"},
        {"cut.bin", "cut.bin: The stream is corrupted.", "cut.bin: The stream is corrupted."},
        {"defect.xml", "defect.xml: no usable navigation mesh",
         "node 2: corner 1 refers to vertex 99 of"},
    };
    for (const auto& row : cases) {
        const std::string reason =
            errorOf([&] { const Session session(row.mFile, mFolder.path().string()); });
        EXPECT_TRUE(reason.starts_with(row.mReason)) << reason;
        const std::string viewsReason = errorOf([&] { loadMeshView(at(row.mFile)); });
        EXPECT_NE(viewsReason.find(row.mViewsReason), std::string::npos) << viewsReason;
    }
}

TEST_F(SessionTest, RefusesASecondOneAndLeavesTheFirstAlone) {
    Session first(at("harbour.xml"));
    const int search = first.exports().initPathSearch(mStart, mGoal);
    EXPECT_EQ(errorOf([&] { const Session second(at("harbour.xml")); }),
              at("harbour.xml") + ": a session is running already, and a process has one world: "
                                  "close it first, or reload it");
    EXPECT_EQ(first.exports().runPathSearch(search, 100000), 0);
    const MemoryFigures figures = first.close();
    EXPECT_GT(figures.mPeakBytes, 0U);
    Session second(at("harbour.xml"));
    EXPECT_EQ(first.close().mPeakBytes, figures.mPeakBytes) << "what is closed closes no more";
    EXPECT_EQ(first.memory().mPeakBytes, figures.mPeakBytes);
    EXPECT_EQ(errorOf([&] { first.reload(at("harbour.xml")); }),
              at("harbour.xml") + ": the session is closed");
    EXPECT_EQ(second.exports().getGroundHeight({20, 20}), 5);
}

TEST_F(SessionTest, TellsTheHostWhatIsReportedUntilItIsClosed) {
    std::vector<std::string> reports;
    const auto keep = [&](const char* text, const char*, unsigned int) { reports.push_back(text); };
    testing::internal::CaptureStderr();
    Session session(at("harbour.xml"), SessionSettings{.mOnReport = keep});
    session.exports().getPathCost(7);
    session.close();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(reports, std::vector<std::string>{
                           "isValidID(id)\nError Message: ID '7' points to an invalid item"});
    testing::internal::CaptureStderr();
    session.exports().getPathCost(7);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("no world"), std::string::npos);
    EXPECT_EQ(reports.size(), 1U);
}

TEST_F(SessionTest, ReloadsAndCarriesOpenRequestsOver) {
    std::string recording;
    {
        Session session(at("harbour.xml"), SessionSettings{.mRecording = at("recording")});
        Scheduler scheduler(session.exports());
        const RequestId id = scheduler.add({mStart, mGoal});
        const RequestId here = scheduler.add({mStart, mStart});
        scheduler.advance(FrameBudget::expansions(20));
        ASSERT_TRUE(scheduler.isOpen(id));
        const int search = session.exports().initPathSearch(mStart, mGoal);
        for (const char* const file :
             {"broken.xml", "empty.xml", "cut.bin", "defect.xml", "missing"})
            EXPECT_NE(errorOf([&] { session.reload(at(file), &scheduler); }), "") << file;
        EXPECT_EQ(session.exports().runPathSearch(search, 100000), 0) << "the old world goes on";

        mFolder.put("floor.xml", Worlds::makeFloor(1500, 5).toXML("floor"));
        session.reload(at("floor.xml"), &scheduler);
        scheduler.advance(FrameBudget::expansions(100000));
        ASSERT_TRUE(scheduler.find(id) && scheduler.find(here));
        EXPECT_EQ(scheduler.find(id)->mResult, PathResult::OFF_MESH) << "5 is above the floor";
        EXPECT_EQ(scheduler.find(here)->mResult, PathResult::FOUND);
        session.reload(at("harbour.xml"), &scheduler);
        scheduler.advance(FrameBudget::expansions(100000));
        EXPECT_EQ(scheduler.find(id)->mResult, PathResult::FOUND);
    }
    Exports exports;
    const ReplayOutcome outcome = replay(mFolder.get("recording"), exports, {});
    EXPECT_FALSE(outcome.mDifference) << describe(*outcome.mDifference);
    EXPECT_TRUE(outcome.mIsWhole);
    EXPECT_EQ(outcome.mSearches, 6U);
}

} // namespace ZUNO::Tests
