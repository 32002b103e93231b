#include "tools/zunopath/replay.h"

#include "hostkit/replay.h"

#include <bit>
#include <charconv>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace ZUNO::Tools {

using namespace HostKit;

namespace {

std::string readFile(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    if (!in || !content)
        throw std::runtime_error(file + ": cannot be read; expected a recording");
    return content.str();
}

/// Runs an action on a recording; what is wrong with it is said with the file's name.
template <typename Action>
auto withName(const std::string& file, Action action) {
    try {
        return action();
    } catch (const RecordingError& error) {
        throw std::runtime_error(file + ": " + error.what());
    }
}

/// The coordinates from one on, with every bit.
std::string pointOf(const RecordedCall& call, std::size_t first, std::size_t count) {
    std::string text;
    for (std::size_t i = first; i < first + count; ++i) {
        char digits[32];
        const auto number = std::bit_cast<float>(call.mFloats[i]);
        text += i == first ? " " : ",";
        text.append(digits, std::to_chars(digits, digits + 32, number).ptr);
    }
    return text;
}

/// The script's lines in the making: a path's budget is that of its first run.
class Script {
public:
    void add(const RecordedCall& call) {
        switch (call.mKind) {
        case CallKind::START:
            mLines.push_back("# a world over " + call.mTexts[0]);
            break;
        case CallKind::INIT_SEARCH:
            mLines.push_back("path" + pointOf(call, 0, 3) + pointOf(call, 3, 3));
            mSearches[call.mAnswer.mNumber] = mLines.size() - 1;
            break;
        case CallKind::RUN_SEARCH:
            addBudget(call);
            break;
        case CallKind::IS_BLOCKED:
            mLines.push_back("blocked" + pointOf(call, 0, 2));
            break;
        case CallKind::GROUND_HEIGHT:
            mLines.push_back("height" + pointOf(call, 0, 2));
            break;
        case CallKind::TRACE_RAY_2D:
            mLines.push_back("ray" + pointOf(call, 0, 2) + pointOf(call, 2, 2));
            break;
        case CallKind::TRACE_RAY_3D:
            mLines.push_back("ray" + pointOf(call, 0, 3) + pointOf(call, 3, 3));
            break;
        case CallKind::BOUNDING_RECTANGLE:
            mLines.emplace_back("bounds");
            break;
        default: // what a search goes on with, and what no query asks
            break;
        }
    }

    const std::vector<std::string>& lines() const { return mLines; }

private:
    void addBudget(const RecordedCall& call) {
        const auto place = mSearches.find(call.mID);
        if (place == mSearches.end() || call.mBudget == 0)
            return;
        mLines[place->second] += ' ' + std::to_string(call.mBudget);
        mSearches.erase(place);
    }

    std::vector<std::string> mLines;
    std::map<std::int32_t, std::size_t> mSearches; ///< the lines of those that did not run yet
};

} // namespace

ExitStatus replayRecording(const std::string& file, const std::vector<std::string>& meshes) {
    const std::string recording = readFile(file);
    Exports exports;
    const ReplaySettings settings{
        .mMeshes = meshes, .mOnUnanswered = [&](std::uint64_t number, const RecordedCall& call) {
            std::cout << "call " << number << " never came back: " << describe(call) << std::endl;
        }};
    const ReplayOutcome outcome =
        withName(file, [&] { return replay(recording, exports, settings); });
    if (outcome.mDifference) {
        std::cout << file << ": " << describe(*outcome.mDifference) << '\n';
        return STATUS_NOTHING;
    }
    std::cout << file << ": " << outcome.mCalls << " calls, " << outcome.mSearches
              << " searches, every answer as recorded"
              << (outcome.mIsWhole ? "" : "; the recording was cut off there") << '\n';
    return STATUS_OK;
}

ExitStatus printScript(const std::string& file) {
    const std::string recording = readFile(file);
    Script script;
    withName(file, [&] {
        RecordingReader reader(recording);
        for (RecordedCall call; reader.next(call);)
            script.add(call);
    });
    for (const std::string& line : script.lines())
        std::cout << line << '\n';
    return STATUS_OK;
}

} // namespace ZUNO::Tools
