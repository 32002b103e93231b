// Recordings of a host's calls, looked through call by call.
#include "capi/handles.h"
#include "hostkit/replay.h"
#include "hostkit/systemfiles.h"
#include "viewer/engine/answers.h"

using namespace ZUNO;
using namespace ZUNO::CInterface;

namespace {

class RecordedCalls : public Object {
public:
    explicit RecordedCalls(const std::string& file);

    void leaveLists() const;
    std::string textOf(std::uint32_t index) const;

private:
    std::vector<HostKit::RecordedCall> mCalls;
    bool mIsWhole = false;
};

RecordedCalls::RecordedCalls(const std::string& file) {
    const std::string bytes = HostKit::readSystemFile(file, HostKit::NameEncoding::UTF8);
    HostKit::RecordingReader reader(bytes);
    for (HostKit::RecordedCall call; reader.next(call);)
        mCalls.push_back(call);
    mIsWhole = reader.isWhole();
}

/// Appends numbers that are recorded as bits.
template <typename Bits>
void addFloats(std::vector<float>& list, const Bits& bits) {
    for (const std::uint32_t each : bits)
        list.push_back(HostKit::floatOf(each));
}

/// What can be drawn, of each call in its turn.
void RecordedCalls::leaveLists() const {
    std::vector<std::uint8_t> kinds;
    std::vector<std::int32_t> ids;
    std::vector<std::int32_t> answers;
    std::vector<float> arguments;
    std::vector<float> answerFloats;
    std::string mesh;
    for (const HostKit::RecordedCall& call : mCalls) {
        kinds.push_back(static_cast<std::uint8_t>(call.mKind));
        ids.push_back(call.mID);
        answers.push_back(call.mAnswer.mNumber);
        addFloats(arguments, call.mFloats);
        addFloats(answerFloats, call.mAnswer.mFloats);
        if (call.mKind == HostKit::CallKind::START && mesh.empty())
            mesh = call.mTexts[0];
    }
    Viewer::leave("isWhole", mIsWhole ? "1" : "");
    Viewer::leave("mesh", mesh);
    Viewer::leave("kinds", kinds);
    Viewer::leave("ids", ids);
    Viewer::leave("answers", answers);
    Viewer::leave("arguments", arguments);
    Viewer::leave("answerFloats", answerFloats);
}

std::string RecordedCalls::textOf(std::uint32_t index) const {
    const HostKit::RecordedCall& call = mCalls.at(index);
    return HostKit::describe(call) + " → " + HostKit::describe(call, call.mAnswer);
}

} // namespace

extern "C" {

/// Reads a recording, to be destroyed as all that has a handle. Leaves, with an entry for each
/// call, "kinds", "ids", "arguments" (six), "answers" and "answerFloats" (four); and "mesh", the
/// file that the host named, and "isWhole", empty for a recording that was cut off.
zuno_status ZUNO_PAGE_EXPORT(zuno_tool_recording_open)(const char* file, void** recording) {
    return guarded(__func__, [&] {
        const zuno_status status = make<RecordedCalls>(recording, file);
        get<RecordedCalls>(*recording, "the recording")->leaveLists();
        return status;
    });
}

/// Leaves "text": a call and its recorded answer in words.
zuno_status ZUNO_PAGE_EXPORT(zuno_tool_recording_text)(void* recording, std::uint32_t index) {
    return guarded(__func__, [&] {
        Viewer::leave("text", get<RecordedCalls>(recording, "the recording")->textOf(index));
        return ZUNO_OK;
    });
}
}
