// The command that makes the calls of a recording again.
#include "tools/zunopath/commandline.h"
#include "tools/zunopath/replay.h"

#include <memory>

namespace ZUNO::Tools {
namespace {

struct ReplayOptions {
    std::string mRecording;
    std::vector<std::string> mMeshes;
    bool mIsScript = false;
};

} // namespace

void addReplayCommand(CommandLine& line) {
    const auto options = std::make_shared<ReplayOptions>();
    CLI::App* const command = line.addWithoutMesh(
        "replay", "Make the calls of a recording again, and compare the answers", [options] {
            return options->mIsScript ? printScript(options->mRecording)
                                      : replayRecording(options->mRecording, options->mMeshes);
        });
    command->add_option("recording", options->mRecording, "the file that a host recorded")
        ->required();
    command->add_option("--mesh", options->mMeshes,
                        "where the recorded mesh is to be found (default: where it was)");
    command->add_flag("--script", options->mIsScript, "print its queries for 'run' instead");
    command->footer("Exit status: 0 every answer as recorded, 1 a difference, 2 error.");
}

} // namespace ZUNO::Tools
