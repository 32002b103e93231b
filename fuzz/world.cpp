// The whole library over any mesh file: what loads is searched, traced and asked.
#include "fuzz/ground.h"
#include "pathfinder/interface.h"
#include "reference/anyplace.h"

using namespace ZUNO;
using Pathfinder::Interface;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceReports();
    auto* const memory = Fuzz::makeBoundedMemory();
    const Common::SharedPtr<Common::Callback::MemoryCallback> memoryCallback(memory);
    auto* const files = new Tests::MemoryFiles;
    const Common::SharedPtr<Common::Callback::FileIOCallback> fileCallback(files);
    files->mFiles["d"].assign(reinterpret_cast<const char*>(data), size);
    for (int i = 0; i < 2; ++i) { // what failed can be started again
        Fuzz::succeeds([&] {
            if (!Interface::initWorldRepresentation("d", memoryCallback, fileCallback, ""))
                return;
            Interface world;
            const char* const failure = Reference::AnyPlace(world).ask();
            Fuzz::require(failure == nullptr, failure);
        });
        Interface::close();
        Fuzz::requireAllBack(*memory, *files);
    }
    return 0;
}
