// Recordings of a host's calls: looked through call by call, and run again.
#include "hostkit/foundation.h"
#include "hostkit/memoryfilecallback.h"
#include "hostkit/replay.h"
#include "viewer/engine/guarded.h"
#include "viewer/engine/world.h"

#include <emscripten/bind.h>

namespace ZUNO::Viewer {

using namespace HostKit;
using emscripten::val;

namespace {

struct Recording {
    std::string mBytes;
    std::vector<RecordedCall> mCalls;
};

Recording& theRecording() {
    static Recording recording;
    return recording;
}

/// Appends numbers that are recorded as bits.
template <typename Bits>
void addFloats(std::vector<float>& list, const Bits& bits) {
    for (const std::uint32_t each : bits)
        list.push_back(floatOf(each));
}

/// Reads a recording. Returns, in arrays with an entry for each call, what can be drawn: kind, id,
/// six arguments, the answer's number, its four floats; and the mesh that the host named.
val openRecording(const std::string& bytes) {
    return guarded([&] {
        Recording& recording = theRecording();
        recording = {bytes, {}};
        RecordingReader reader(recording.mBytes);
        RecordedCall call;
        std::vector<std::uint8_t> kinds;
        std::vector<std::int32_t> ids;
        std::vector<std::int32_t> answers;
        std::vector<float> arguments;
        std::vector<float> answerFloats;
        std::string mesh;
        while (reader.next(call)) {
            recording.mCalls.push_back(call);
            kinds.push_back(static_cast<std::uint8_t>(call.mKind));
            ids.push_back(call.mID);
            answers.push_back(call.mAnswer.mNumber);
            addFloats(arguments, call.mFloats);
            addFloats(answerFloats, call.mAnswer.mFloats);
            if (call.mKind == CallKind::START && mesh.empty())
                mesh = call.mTexts[0];
        }
        val out = val::object();
        out.set("isWhole", reader.isWhole());
        out.set("mesh", mesh);
        out.set("kinds", copyOf(kinds));
        out.set("ids", copyOf(ids));
        out.set("answers", copyOf(answers));
        out.set("arguments", copyOf(arguments));
        out.set("answerFloats", copyOf(answerFloats));
        return out;
    });
}

/// A call of the recording in words.
std::string callText(unsigned int index) {
    return guarded([&] { return describe(theRecording().mCalls.at(index)); });
}

/// Its recorded answer in words.
std::string answerText(unsigned int index) {
    return guarded([&] {
        const RecordedCall& call = theRecording().mCalls.at(index);
        return describe(call, call.mAnswer);
    });
}

/// Makes the calls again over a mesh, given by its file's bytes, in an engine without a world.
/// Returns how many were made, and the first difference: the call's number, and lines of text.
val runRecording(const std::string& mesh) {
    return guarded([&] {
        const Foundation foundation;
        const ReplaySettings settings{
            .mMeshes = {"mesh"},
            .mFiles = Exports::Files(new MemoryFileCallback("mesh", mesh)),
        };
        const ReplayOutcome outcome = replay(theRecording().mBytes, theWorld().mExports, settings);
        val out = val::object();
        out.set("calls", static_cast<double>(outcome.mCalls));
        out.set("searches", static_cast<double>(outcome.mSearches));
        out.set("difference", val::null());
        if (outcome.mDifference) {
            val difference = val::object();
            difference.set("call", static_cast<double>(outcome.mDifference->mNumber));
            difference.set("text", describe(*outcome.mDifference));
            out.set("difference", difference);
        }
        return out;
    });
}

EMSCRIPTEN_BINDINGS(recordings) {
    emscripten::function("openRecording", &openRecording);
    emscripten::function("callText", &callText);
    emscripten::function("answerText", &answerText);
    emscripten::function("runRecording", &runRecording);
}

} // namespace
} // namespace ZUNO::Viewer
