#include "hostkit/replay.h"

#include "common/exceptions/exception.h"
#include "hostkit/foundation.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/meshfilecallback.h"
#include "hostkit/systemfiles.h"

#include <memory>
#include <new>

namespace ZUNO::HostKit {

namespace {

using Floats = std::array<std::uint32_t, 6>;

float floatAt(const Floats& bits, std::size_t index) {
    return floatOf(bits[index]);
}
Exports::Vec2 planeAt(const Floats& bits, std::size_t index) {
    return {floatAt(bits, index), floatAt(bits, index + 1)};
}
Exports::Vec3 spaceAt(const Floats& bits, std::size_t index) {
    return {floatAt(bits, index), floatAt(bits, index + 1), floatAt(bits, index + 2)};
}

std::string hex(std::uint64_t number) {
    std::string digits(16, '0');
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, number >>= 4U)
        *digit = "0123456789abcdef"[number & 15U];
    return digits;
}

class Replay {
public:
    Replay(Exports& exports, const ReplaySettings& settings)
        : mExports(exports), mSettings(settings) {
        const Exports::Files files = settings.mFiles != nullptr ? settings.mFiles : systemFiles();
        mFiles = Exports::Files(new MeshFileCallback(files));
        mHeap = new HeapMemoryCallback;
        mMemory = Exports::Memory(mHeap);
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;
    ~Replay() { mExports.close(); }

    ReplayOutcome run(RecordingReader& reader) {
        ReplayOutcome outcome;
        RecordedCall call;
        while (!outcome.mDifference && reader.next(call)) {
            ++outcome.mCalls;
            if (call.mAnswer.mKind == AnswerKind::NONE && mSettings.mOnUnanswered)
                mSettings.mOnUnanswered(outcome.mCalls, call);
            const RecordedAnswer answer = ask(call);
            const bool differs = call.mAnswer.mKind != AnswerKind::NONE && call.mAnswer != answer;
            if (differs && hasRunShort(answer))
                throw std::bad_alloc(); // the difference is that there is no memory here
            if (differs)
                outcome.mDifference = {outcome.mCalls, call, answer, searchOf(call)};
            keepState(call, answer);
            outcome.mSearches += call.mKind == CallKind::INIT_SEARCH ? 1 : 0;
        }
        outcome.mIsWhole = reader.isWhole();
        return outcome;
    }

private:
    RecordedAnswer ask(const RecordedCall& call) {
        RecordedAnswer answer;
        answer.mKind = AnswerKind::GIVEN;
        try {
            make(call, answer);
        } catch (Common::Exceptions::Exception* exception) {
            const std::unique_ptr<Common::Exceptions::Exception> owner(exception);
            answer = {.mKind = AnswerKind::RAISED};
            answer.mException = std::string(exception->getName().getConstCharPtr()) + ": " +
                                exception->getMessage().getConstCharPtr();
            answer.mException.resize(std::min(answer.mException.size(), longestRecordedText));
        }
        return answer;
    }

    /// Memory ends in the world, or already where a binary mesh is converted for it.
    bool hasRunShort(const RecordedAnswer& answer) const {
        return mHeap->figures().mRefused != 0 ||
               answer.mException.starts_with("OutOfMemoryException");
    }

    void make(const RecordedCall& call, RecordedAnswer& answer) {
        const auto put = [&](std::size_t index, float number) {
            answer.mFloats[index] = bitsOf(number);
        };
        const Floats& floats = call.mFloats;
        switch (call.mKind) {
        case CallKind::START:
            answer.mNumber = start(call) ? 1 : 0;
            break;
        case CallKind::CLOSE:
            mExports.close();
            break;
        case CallKind::INIT_SEARCH:
            answer.mNumber = mExports.initPathSearch(spaceAt(floats, 0), spaceAt(floats, 3));
            break;
        case CallKind::RUN_SEARCH:
            answer.mNumber = mExports.runPathSearch(call.mID, call.mBudget);
            break;
        case CallKind::NEXT_WAYPOINT: {
            Exports::Vec3 waypoint(0, 0, 0);
            answer.mNumber = mExports.getNextWaypoint(call.mID, waypoint) ? 1 : 0;
            put(0, waypoint.mX);
            put(1, waypoint.mY);
            put(2, waypoint.mZ);
            break;
        }
        case CallKind::PATH_COST:
            put(0, mExports.getPathCost(call.mID));
            break;
        case CallKind::CLOSE_SEARCH:
            answer.mNumber = mExports.closePathSearch(call.mID) ? 1 : 0;
            break;
        case CallKind::IS_BLOCKED:
            answer.mNumber = mExports.isBlocked(planeAt(floats, 0)) ? 1 : 0;
            break;
        case CallKind::TRACE_RAY_2D: {
            Exports::Ray2D ray(planeAt(floats, 0), planeAt(floats, 2));
            mExports.traceRay(ray);
            put(0, ray.mHitDistance);
            break;
        }
        case CallKind::TRACE_RAY_3D: {
            Exports::Ray3D ray(spaceAt(floats, 0), spaceAt(floats, 3));
            mExports.traceRay(ray);
            put(0, ray.mHitDistance);
            break;
        }
        case CallKind::GROUND_HEIGHT:
            put(0, mExports.getGroundHeight(planeAt(floats, 0)));
            break;
        case CallKind::BOUNDING_RECTANGLE: {
            Exports::Vec2 min(0, 0);
            Exports::Vec2 max(0, 0);
            mExports.getBoundingRectangle(min, max);
            put(0, min.mX);
            put(1, min.mY);
            put(2, max.mX);
            put(3, max.mY);
            break;
        }
        case CallKind::SAVE_BLOCKING_MAP:
            answer.mNumber = mExports.saveBlockingMap(call.mTexts[0].c_str()) ? 1 : 0;
            break;
        }
    }

    bool start(const RecordedCall& call) {
        return mExports.initWorldRepresentation(findMesh(call).c_str(), mMemory, mFiles,
                                                call.mTexts[1].c_str());
    }

    /// The file that holds the recorded mesh, or one that can't be read when that couldn't either.
    std::string findMesh(const RecordedCall& call) const {
        std::vector<std::string> files = mSettings.mMeshes;
        if (files.empty() || call.mDigest == 0)
            files.push_back(call.mTexts[0]);
        std::string found;
        for (const std::string& file : files) {
            const std::uint64_t digest = digestOfFile(file, mFiles);
            if (digest == call.mDigest)
                return file;
            found += "; " + file + (digest != 0 ? " has " + hex(digest) : " can't be read");
        }
        throw std::runtime_error("the recording was made with the mesh " + call.mTexts[0] +
                                 ", digest " + hex(call.mDigest) + found);
    }

    std::optional<ReplayedSearch> searchOf(const RecordedCall& call) const {
        const auto place = mSearches.find(call.mID);
        return formOf(call.mKind).mHasID && place != mSearches.end() ? std::optional(place->second)
                                                                     : std::nullopt;
    }

    void keepState(const RecordedCall& call, const RecordedAnswer& answer) {
        if (call.mKind == CallKind::INIT_SEARCH)
            mSearches[answer.mNumber] = {.mPoints = call.mFloats};
        const auto place = mSearches.find(call.mID);
        if (!formOf(call.mKind).mHasID || place == mSearches.end())
            return;
        ReplayedSearch& search = place->second;
        if (call.mKind == CallKind::RUN_SEARCH) {
            ++search.mRuns;
            search.mBudget += call.mBudget;
            search.mResult = answer.mNumber;
        } else if (call.mKind == CallKind::NEXT_WAYPOINT) {
            search.mWaypoints += answer.mNumber != 0 ? 1 : 0;
        } else if (call.mKind == CallKind::CLOSE_SEARCH) {
            mSearches.erase(place);
        }
    }

    Exports& mExports;
    const ReplaySettings& mSettings;
    Foundation mFoundation; ///< outlives the texts and pointers here
    Exports::Files mFiles;
    Exports::Memory mMemory;
    HeapMemoryCallback* mHeap = nullptr; ///< the same
    std::map<std::int32_t, ReplayedSearch> mSearches;
};

} // namespace

ReplayOutcome replay(std::string_view recording, Exports& exports, const ReplaySettings& settings) {
    RecordingReader reader(recording);
    return Replay(exports, settings).run(reader);
}

} // namespace ZUNO::HostKit
