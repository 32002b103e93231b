// Floating point is a promise: every system gives the same bits.
#include "reference/fixedqueries.h"
#include "tests/host/hosttest.h"
#include "tests/support/tempfolder.h"
#include "tests/support/turnedmesh.h"

#include <cstdlib>
#include <fstream>

namespace ZUNO::Tests {

namespace {

/// Keeps the log in the file that ZUNO_QUERY_LOG names, or else, when something differs, here.
std::string keepLog(const std::string& log, bool isAsExpected) {
    const char* const wanted = std::getenv("ZUNO_QUERY_LOG");
    if (wanted == nullptr && isAsExpected)
        return "";
    const std::string name = wanted != nullptr ? wanted : "queries.log";
    std::ofstream(name, std::ios::binary) << log;
    return "every query is in " + name + "; `./run queries` compares two systems' logs";
}

} // namespace

TEST_F(HostTest, GivesTheSameBitsOnEverySystem) {
    mFiles->mFiles["turned"] = turned(Worlds::makeFloor(1500, 5));
    mFiles->mFiles["harbour"] = Worlds::makeHarbour().toXML("harbour");
    std::string made;
    std::string log;
    for (const char* const mesh : {"harbour", "turned"}) {
        ASSERT_TRUE(start(mesh));
        Interface world;
        Reference::FixedQueries queries(world, mesh);
        made += mesh + std::string("\n") + queries.ask(3000);
        log += queries.log();
        Interface::close();
    }
    const std::string expected = contentOf(ZUNO_SOURCE_FOLDER "/tests/host/digests.txt");
    const std::string note = keepLog(log, made == expected);
    EXPECT_EQ(made, expected) << note;
}

} // namespace ZUNO::Tests
