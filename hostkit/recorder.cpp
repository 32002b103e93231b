#include "hostkit/recorder.h"

#include "hostkit/meshfile.h"

#include <atomic>

namespace ZUNO::HostKit {

namespace {

void put(RecordingWriter& out, float number) {
    out.bits(bitsOf(number));
}
void put(RecordingWriter& out, const Exports::Vec2& p) {
    put(out, p.mX);
    put(out, p.mY);
}
void put(RecordingWriter& out, const Exports::Vec3& p) {
    put(out, p.mX);
    put(out, p.mY);
    put(out, p.mZ);
}

} // namespace

/// Appends a piece: what `write` writes, and before it its kind. The kind is stored last: a piece
/// that a sudden end cuts off was never there.
template <typename Write>
void Recorder::write(std::uint8_t kind, Write write) {
    unsigned char* const place = mFile.reserve(RecordingFile::largest);
    if (place == nullptr)
        return;
    RecordingWriter out(place + 1);
    write(out);
    std::atomic_signal_fence(std::memory_order_release);
    *place = kind;
    mFile.commit(out.place());
}

void Recorder::writeRaised(std::initializer_list<std::string_view> pieces) {
    write(static_cast<std::uint8_t>(AnswerKind::RAISED),
          [&](RecordingWriter& out) { out.text(pieces); });
}

/// The name may need memory, which may be what there is none of.
void Recorder::writeRaised(const Common::Exceptions::Exception& exception) {
    const char* const message = exception.getMessage().getConstCharPtr();
    try {
        const Common::String name = exception.getName();
        writeRaised({name.getConstCharPtr(), ": ", message});
    } catch (Common::Exceptions::Exception* shortage) {
        delete shortage;
        writeRaised({"an exception: ", message});
    }
}

template <typename Arguments, typename Call, typename Answer>
void Recorder::record(CallKind kind, Arguments arguments, Call call, Answer answer) {
    write(static_cast<std::uint8_t>(kind), arguments);
    try {
        call();
    } catch (Common::Exceptions::Exception* exception) {
        writeRaised(*exception);
        throw;
    } catch (...) {
        writeRaised({"an exception of the host's"});
        throw;
    }
    write(static_cast<std::uint8_t>(AnswerKind::GIVEN), answer);
}

bool Recorder::initWorldRepresentation(const Common::String& navMeshFile, const Memory& cbMemory,
                                       const Files& cbFileIO,
                                       const Common::String& blockingMapFile) {
    const std::uint64_t digest = isRecording() && cbFileIO != nullptr
                                     ? digestOfFile(navMeshFile.getConstCharPtr(), cbFileIO)
                                     : 0;
    bool isLoaded = false;
    record(
        CallKind::START,
        [&](RecordingWriter& out) {
            out.text({navMeshFile.getConstCharPtr()});
            out.text({blockingMapFile.getConstCharPtr()});
            out.bits(static_cast<std::uint32_t>(digest));
            out.bits(static_cast<std::uint32_t>(digest >> 32U));
        },
        [&] {
            isLoaded =
                Exports::initWorldRepresentation(navMeshFile, cbMemory, cbFileIO, blockingMapFile);
        },
        [&](RecordingWriter& out) { out.number(isLoaded ? 1 : 0); });
    return isLoaded;
}

void Recorder::close() {
    record(
        CallKind::CLOSE, [](RecordingWriter&) {}, [&] { Exports::close(); },
        [](RecordingWriter&) {});
}

int Recorder::initPathSearch(const Vec3& start, const Vec3& goal) {
    int id = -1;
    record(
        CallKind::INIT_SEARCH,
        [&](RecordingWriter& out) {
            put(out, start);
            put(out, goal);
        },
        [&] { id = Exports::initPathSearch(start, goal); },
        [&](RecordingWriter& out) { out.number(id); });
    return id;
}

int Recorder::runPathSearch(int searchID, unsigned int budget) {
    int result = 0;
    record(
        CallKind::RUN_SEARCH,
        [&](RecordingWriter& out) {
            out.number(searchID);
            out.unsignedNumber(budget);
        },
        [&] { result = Exports::runPathSearch(searchID, budget); },
        [&](RecordingWriter& out) { out.number(result); });
    return result;
}

bool Recorder::getNextWaypoint(int searchID, Vec3& waypoint) {
    bool isThere = false;
    record(
        CallKind::NEXT_WAYPOINT, [&](RecordingWriter& out) { out.number(searchID); },
        [&] { isThere = Exports::getNextWaypoint(searchID, waypoint); },
        [&](RecordingWriter& out) {
            out.number(isThere ? 1 : 0);
            if (isThere)
                put(out, waypoint);
        });
    return isThere;
}

float Recorder::getPathCost(int searchID) {
    float cost = 0;
    record(
        CallKind::PATH_COST, [&](RecordingWriter& out) { out.number(searchID); },
        [&] { cost = Exports::getPathCost(searchID); },
        [&](RecordingWriter& out) { put(out, cost); });
    return cost;
}

bool Recorder::closePathSearch(int searchID) {
    bool wasOpen = false;
    record(
        CallKind::CLOSE_SEARCH, [&](RecordingWriter& out) { out.number(searchID); },
        [&] { wasOpen = Exports::closePathSearch(searchID); },
        [&](RecordingWriter& out) { out.number(wasOpen ? 1 : 0); });
    return wasOpen;
}

bool Recorder::isBlocked(const Vec2& position) {
    bool isBlocked = false;
    record(
        CallKind::IS_BLOCKED, [&](RecordingWriter& out) { put(out, position); },
        [&] { isBlocked = Exports::isBlocked(position); },
        [&](RecordingWriter& out) { out.number(isBlocked ? 1 : 0); });
    return isBlocked;
}

void Recorder::traceRay(Ray2D& ray) {
    record(
        CallKind::TRACE_RAY_2D,
        [&](RecordingWriter& out) {
            put(out, ray.mStart);
            put(out, ray.mEnd);
        },
        [&] { Exports::traceRay(ray); }, [&](RecordingWriter& out) { put(out, ray.mHitDistance); });
}

void Recorder::traceRay(Ray3D& ray) {
    record(
        CallKind::TRACE_RAY_3D,
        [&](RecordingWriter& out) {
            put(out, ray.mStart);
            put(out, ray.mEnd);
        },
        [&] { Exports::traceRay(ray); }, [&](RecordingWriter& out) { put(out, ray.mHitDistance); });
}

float Recorder::getGroundHeight(const Vec2& position) {
    float height = 0;
    record(
        CallKind::GROUND_HEIGHT, [&](RecordingWriter& out) { put(out, position); },
        [&] { height = Exports::getGroundHeight(position); },
        [&](RecordingWriter& out) { put(out, height); });
    return height;
}

void Recorder::getBoundingRectangle(Vec2& min, Vec2& max) {
    record(
        CallKind::BOUNDING_RECTANGLE, [](RecordingWriter&) {},
        [&] { Exports::getBoundingRectangle(min, max); },
        [&](RecordingWriter& out) {
            put(out, min);
            put(out, max);
        });
}

bool Recorder::saveBlockingMap(const Common::String& filename) {
    bool isSaved = false;
    record(
        CallKind::SAVE_BLOCKING_MAP,
        [&](RecordingWriter& out) { out.text({filename.getConstCharPtr()}); },
        [&] { isSaved = Exports::saveBlockingMap(filename); },
        [&](RecordingWriter& out) { out.number(isSaved ? 1 : 0); });
    return isSaved;
}

} // namespace ZUNO::HostKit
