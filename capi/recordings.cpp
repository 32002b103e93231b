#include "capi/messages.h"
#include "capi/session.h"
#include "common/interface.h"
#include "hostkit/foundation.h"
#include "hostkit/replay.h"
#include "hostkit/systemfiles.h"

namespace ZUNO::CInterface {

namespace {

/// The exports for a replay, whose foundation is the library's, too: it runs on when the world is
/// closed.
class ReplayedExports : public Exports {
public:
    ReplayedExports() { Messages::takeLog(); }

    bool initWorldRepresentation(const Common::String& navMeshFile, const Memory& cbMemory,
                                 const Files& cbFileIO,
                                 const Common::String& blockingMapFile) override {
        const Messages::SharedStart shared;
        mIsStarted = true;
        return Exports::initWorldRepresentation(navMeshFile, cbMemory, cbFileIO, blockingMapFile);
    }
    void close() override {
        if (!mIsStarted)
            return;
        mIsStarted = false;
        Exports::close();
        Common::initLibrary({});
        Messages::takeLog();
    }

private:
    bool mIsStarted = false;
};

std::string contentOf(const char* file) {
    try {
        return HostKit::readSystemFile(file, HostKit::NameEncoding::UTF8);
    } catch (const std::runtime_error& error) {
        throw Failure{ZUNO_BAD_FILE, error.what()};
    }
}

} // namespace

} // namespace ZUNO::CInterface

using namespace ZUNO;
using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_replay(const char* recording, const char* const* meshes,
                                   std::uint32_t mesh_count, zuno_replay_result* result, char* text,
                                   std::uint32_t* size) {
    return inWorld(__func__, [&] {
        Session::requireNone();
        need(recording, "the recording's name");
        checkStruct(result, "the result");
        if (mesh_count != 0)
            need(meshes, "the meshes");
        const HostKit::Foundation foundation;
        HostKit::ReplaySettings settings;
        settings.mFiles = HostKit::systemFiles(HostKit::NameEncoding::UTF8);
        for (std::uint32_t i = 0; i < mesh_count; ++i)
            settings.mMeshes.emplace_back(&need(meshes[i], "a mesh's name"));
        const std::string bytes = contentOf(recording);
        ReplayedExports exports;
        HostKit::ReplayOutcome outcome;
        try {
            outcome = HostKit::replay(bytes, exports, settings);
        } catch (const std::runtime_error& error) {
            throw Failure{ZUNO_BAD_RECORDING, error.what()};
        }
        result->is_whole = outcome.mIsWhole ? 1 : 0;
        result->calls = outcome.mCalls;
        result->searches = outcome.mSearches;
        result->difference = outcome.mDifference ? outcome.mDifference->mNumber : 0;
        return fillText(outcome.mDifference ? HostKit::describe(*outcome.mDifference) : "", text,
                        size);
    });
}
