// Recordings that nobody recorded: any bytes are read, and their calls made of a small world.
#include "hostkit/replay.h"

#include "fuzz/ground.h"
#include "hostkit/foundation.h"
#include "hostkit/meshfile.h"
#include "worlds/meshmodel.h"

using namespace ZUNO;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceReports();
    const HostKit::Foundation foundation;
    auto* const files = new Tests::MemoryFiles;
    const HostKit::MeshFiles owner(files);
    static const std::string mesh = Worlds::makeFloor(12, 3).toXML("mesh");
    files->mFiles["mesh"] = mesh;
    const std::string_view recording(reinterpret_cast<const char*>(data), size);
    HostKit::Exports exports;
    try {
        const HostKit::ReplayOutcome outcome =
            HostKit::replay(recording, exports, {.mMeshes = {"mesh", "none"}, .mFiles = owner});
        if (outcome.mDifference)
            Fuzz::require(!HostKit::describe(*outcome.mDifference).empty(), "it is said in words");
    } catch (const std::runtime_error& error) {
        Fuzz::require(std::string(error.what()).find("recording") != std::string::npos,
                      "the error says what is wrong with the recording");
    }
    Fuzz::require(files->openCount() == 0, "all files are closed");
    return 0;
}
