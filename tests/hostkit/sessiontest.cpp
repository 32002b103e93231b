#include "hostkit/session.h"
#include "common/callback/openstream.h"
#include "common/interface.h"
#include "hostkit/replay.h"
#include "tests/support/tempfolder.h"
#include "worlds/meshmodel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>

namespace ZUNO::Tests {

using namespace HostKit;
using Common::Math::Vec3;

class SessionTest : public testing::Test {
protected:
    SessionTest() {
        write("harbour.xml", Worlds::makeHarbour().toXML("harbour"));
        write("broken.xml", "<a>\n<b></a>");
        write("empty.xml", "<a><b/></a>");
        write("cut.bin", std::string(1, '\1'));
    }

    std::string at(const std::string& name) const { return mFolder.in(name); }
    void write(const std::string& name, const std::string& content) const {
        mFolder.put(name, content);
    }
    /// What a start, or a reload, throws.
    template <typename Action>
    static std::string thrownBy(Action action) {
        testing::internal::CaptureStderr(); // reports say more of a mesh that lacks something
        std::string text;
        try {
            action();
        } catch (const std::exception& error) {
            text = error.what();
        }
        testing::internal::GetCapturedStderr();
        return text;
    }
    /// A path across the harbour, in words.
    static std::string path(Exports& exports) {
        const int search = exports.initPathSearch({2, 0, 2}, {50, 5, 25});
        std::ostringstream text;
        text << search << ' ' << exports.runPathSearch(search, 100000);
        for (Vec3<float> p; exports.getNextWaypoint(search, p);)
            text << ' ' << p.mX << ',' << p.mY << ',' << p.mZ;
        exports.closePathSearch(search);
        return text.str();
    }

    Foundation mFoundation;
    TempFolder mFolder;
};

TEST_F(SessionTest, TakesEitherFormOfAMeshToTheBit) {
    const MeshFiles files(new StdioFileCallback);
    auto mesh = readMesh(at("harbour.xml"), files);
    std::mt19937 random(2); // numbers that six digits don't hold
    for (auto& vertex : mesh->mVertices)
        for (float* const number : {&vertex.mX, &vertex.mY, &vertex.mZ})
            *number += static_cast<float>(random()) * 1e-13F;
    mesh->mVertices[0].mY = -0.0F;
    mesh->mVertices[1].mY = 1e-41F;
    mesh->mCubeSize = 0.1F;
    const std::uint64_t digest = digestOf(*mesh);
    write("exact.xml", textOf(*mesh));
    mesh->writeBinary(Common::Callback::openStream(Common::getAllocator(), files,
                                                   at("exact.bin").c_str(),
                                                   Common::IO::FACCESS_WRITE),
                      1);
    EXPECT_FALSE(isBinaryMesh(at("exact.xml"), files));
    EXPECT_TRUE(isBinaryMesh(at("exact.bin"), files));
    EXPECT_EQ(digestOfFile(at("exact.xml"), files), digest);
    EXPECT_EQ(digestOfFile(at("exact.bin"), files), digest);
    // as the world is handed it
    EXPECT_EQ(digestOfFile(at("exact.bin"), MeshFiles(new MeshFileCallback(files))), digest);
    mesh->mVertices[7].mX = std::nextafter(mesh->mVertices[7].mX, 0.0F);
    EXPECT_NE(digestOf(*mesh), digest);
    mesh = nullptr;

    std::string paths[2];
    for (const bool isBinary : {false, true}) {
        Session session(at(isBinary ? "exact.bin" : "exact.xml"));
        paths[isBinary] = path(session.exports());
        EXPECT_EQ(session.close().mBlocks, 0U);
    }
    EXPECT_EQ(paths[0], paths[1]);
    EXPECT_GT(paths[0].size(), 100U);
}

TEST_F(SessionTest, SaysWhyItDidNotStart) {
    const struct {
        const char* mFile;
        std::string mReason; ///< its beginning
    } cases[] = {
        {"broken.xml", "XMLParser: Name in starttag and endtag a"},
        {"../etc/passwd", "CallbackFileStream: File or path not found"},
        {"empty.xml", "empty.xml: no usable navigation mesh"},
        {"cut.bin", "cut.bin: The stream is corrupted."},
    };
    for (const auto& row : cases) {
        const std::string reason =
            thrownBy([&] { const Session session(row.mFile, mFolder.path().string()); });
        EXPECT_EQ(reason.substr(0, row.mReason.size()), row.mReason);
    }
}

TEST_F(SessionTest, RefusesASecondOneAndLeavesTheFirstAlone) {
    Session first(at("harbour.xml"));
    const int search = first.exports().initPathSearch({2, 0, 2}, {50, 5, 25});
    EXPECT_EQ(thrownBy([&] { const Session second(at("harbour.xml")); }),
              at("harbour.xml") + ": a session is running already, and a process has one world: "
                                  "close it first, or reload it");
    EXPECT_EQ(first.exports().runPathSearch(search, 100000), 0);
    const MemoryFigures figures = first.close();
    EXPECT_GT(figures.mPeakBytes, 0U);
    Session second(at("harbour.xml"));
    EXPECT_EQ(first.close().mPeakBytes, figures.mPeakBytes) << "what is closed closes no more";
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
        const RequestId id = scheduler.add({{2, 0, 2}, {50, 5, 25}});
        const RequestId here = scheduler.add({{2, 0, 2}, {2, 0, 2}});
        scheduler.advance(FrameBudget::expansions(20));
        ASSERT_TRUE(scheduler.isOpen(id));
        const int search = session.exports().initPathSearch({2, 0, 2}, {50, 5, 25});
        for (const char* const file : {"broken.xml", "empty.xml", "cut.bin", "missing"})
            EXPECT_NE(thrownBy([&] { session.reload(at(file), &scheduler); }), "") << file;
        EXPECT_EQ(session.exports().runPathSearch(search, 100000), 0) << "the old world goes on";

        write("floor.xml", Worlds::makeFloor(1500, 5).toXML("floor"));
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
