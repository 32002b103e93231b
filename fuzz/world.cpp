// The whole library over any mesh file: what loads is searched, traced and asked.
#include "fuzz/ground.h"
#include "pathfinder/interface.h"
#include "reference/anyplace.h"

using namespace ZUNO;
using Pathfinder::Interface;

namespace {

constexpr const char* square =
    "<a><navmesh><heightmap><height id=\"0\">2</height></heightmap><normal>0/1/0</normal>"
    "<vertices><pos>0/0/0</pos><pos>4/0/0</pos><pos>4/0/4</pos><pos>0/0/4</pos></vertices>"
    "<nodes><node><heightclass>0</heightclass><polygon><vert_id>0</vert_id><vert_id>1</vert_id>"
    "<vert_id>2</vert_id><vert_id>3</vert_id></polygon><neighbour/></node></nodes>"
    "<xaxis>1/0/0</xaxis><yaxis>0/0/1</yaxis><cubesize>1</cubesize></navmesh></a>";

/// A world that runs on from input to input, each of which is to take its place. With the first
/// input, and then with every 64th, it is closed to see whether everything comes back.
class Runner {
public:
    void run(const std::uint8_t* data, std::size_t size) {
        if (mMemory == nullptr)
            start();
        mFiles->mFiles["d"].assign(reinterpret_cast<const char*>(data), size);
        Fuzz::succeeds(
            [&] { Interface::initWorldRepresentation("d", mMemoryCallback, mFileCallback, ""); });
        Interface world;
        const char* const failure = Reference::AnyPlace(world).ask(askEvery);
        Fuzz::require(failure == nullptr, failure);
        if (mInputs++ % 64 == 0)
            close();
    }

private:
    static constexpr std::size_t askEvery = 7;

    void start() {
        Fuzz::silenceReports();
        mMemory = Fuzz::makeBoundedMemory();
        mMemoryCallback = mMemory;
        mFiles = new Tests::MemoryFiles;
        mFileCallback = mFiles;
        mFiles->mFiles["square"] = square;
        Fuzz::require(
            Interface::initWorldRepresentation("square", mMemoryCallback, mFileCallback, ""),
            "a square loads");
    }
    void close() {
        Interface::close();
        Fuzz::requireAllBack(*mMemory, *mFiles);
        mMemory = nullptr;
    }

    Tests::CountingMemory* mMemory = nullptr; ///< null while there is no world
    Tests::MemoryFiles* mFiles = nullptr;
    Common::SharedPtr<Common::Callback::MemoryCallback> mMemoryCallback;
    Common::SharedPtr<Common::Callback::FileIOCallback> mFileCallback;
    unsigned int mInputs = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Runner runner;
    runner.run(data, size);
    return 0;
}
