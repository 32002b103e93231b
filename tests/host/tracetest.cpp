// A host and the trace viewer talk.
#include "tests/host/hosttest.h"

#include "common/debug/logmanager.h"
#include "common/debug/trace.h"
#include "tests/platform/process.h"

namespace ZUNO::Tests {

TEST_F(HostTest, TalksToTheTraceViewer) {
    const PrivateTraceChannel channel;
    EXPECT_EQ(Common::Debug::Trace::send(1, "nobody listens"), 0);
    std::FILE* const viewer = openPipe(ZUNO_TOOL_FOLDER "/zunotrace --count 10");
    char line[200] = "";
    ASSERT_NE(std::fgets(line, sizeof(line), viewer), nullptr); // it waits for messages now

    // from the library: a report, and a blocking map that is asked for, which fails the start
    EXPECT_EQ(Interface::runPathSearch(1, 1), Pathfinder::PATH_NONE);
    EXPECT_FALSE(raisedBy([&] { start("floor", "map.blk"); }).empty());
    // from this host: a log reporter, both kinds of text, and values of each type
    Common::Debug::LogReporter* const reporter =
        Common::Debug::LogManager::getInstance()->createReporter("Ai");
    reporter->log(Common::Debug::Warning, "no way home", "Npc::think", __FILE__, __LINE__);
    Common::Debug::LogManager::getInstance()->removeReporter(reporter);
    EXPECT_EQ(Common::Debug::Trace::send(0, "0123456789"), 10);
    const std::int32_t number = -5;
    const float vector[] = {1, 2.5F, -3};
    Common::Debug::Trace::sendValue(7, "count", 0, reinterpret_cast<const char*>(&number));
    Common::Debug::Trace::sendValue(8, "place", 2, reinterpret_cast<const char*>(vector));
    Common::Debug::Trace::sendValue(9, "name", 6, "harbour");
    Common::Debug::Trace::sendValue(10, "odd", 3, "");
    const std::string longText(20000, 'x');
    EXPECT_EQ(Common::Debug::Trace::send(1, longText.c_str()), 20000);

    std::string output;
    while (std::fgets(line, sizeof(line), viewer) != nullptr)
        output += line;
    EXPECT_EQ(closePipe(viewer), 0);
    const auto place = output.find(" ("); // of the report, by file and line
    ASSERT_NE(place, std::string::npos) << output;
    output.erase(place, output.find(')', place) + 1 - place);
    EXPECT_EQ(output,
              "error    report: world: no world: call initWorldRepresentation first\n"
              "message  ZUNO::Pathfinder::Raytracer::BlockingMapRayTracer::BlockingMapRayTracer : "
              "load blockingmap: map.blk\n"
              "error    the world over floor can't be started: No serialization yet\n"
              "error    (Ai) Npc::think : no way home\n"
              "error    0123456789\n"
              "value    7 count = -5\n"
              "value    8 place = 1.000000 / 2.500000 / -3.000000\n"
              "value    9 name = \"harbour\"\n"
              "error    ZUNO::Common::Debug::Trace::ZUNMessage : datatype: 3 not defined "
              "(10/odd)\n"
              "message  " +
                  longText + "\n");
}

} // namespace ZUNO::Tests
