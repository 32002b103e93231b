// The command for people: asks a mesh what a host would ask, through the same exports.
#include "hostkit/exceptiontext.h"
#include "tools/zunopath/commandline.h"

#include <stdexcept>

namespace {

int run(int argc, char** argv) {
    using namespace ZUNO::Tools;
    CommandLine line;
    addQueryCommands(line);
    addMeshCommands(line);
    addDrawCommand(line);
    addReplayCommand(line);
    try {
        return line.run(argc, argv);
    } catch (ZUNO::Common::Exceptions::Exception* exception) {
        throw std::runtime_error(ZUNO::HostKit::takeMessage(exception));
    }
}

} // namespace

int main(int argc, char** argv) {
    return ZUNO::Tools::runTool("zunopath", [&] { return run(argc, argv); });
}
