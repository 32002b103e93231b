#pragma once

#include "common/exceptions/exception.h"
#include "hostkit/exports.h"
#include "hostkit/foundation.h"
#include "hostkit/recording.h"
#include "hostkit/recordingfile.h"

namespace ZUNO::HostKit {

/// The exports, with every call and its answer written to a file (its form is in `recording.h`)
/// that `zunopath replay` runs again. An exception is an answer too, and goes on to the host.
/// Reports go past it: the library shows them itself.
///
/// A recording begins before the world's start, so that ids mean the same when it is replayed. What
/// a host asks past this object is missing in it.
/// A crash loses nothing: the arguments are in the file before the call is made, the answer after.
/// When the device is full, recording ends and the calls go on.
/// When there is no memory for reading a mesh, the start throws a std::bad_alloc before it begins.
/// Cost: some nanoseconds and 10 to 30 bytes a call; the mesh is read once more at each start, for
/// its digest.
/// Thread: that of the exports.
class Recorder : public Exports {
public:
    /// Throws a std::runtime_error when the file can't be made.
    explicit Recorder(const std::string& fileName, NameEncoding encoding = NameEncoding::SYSTEM)
        : mFile(fileName, encoding) {}

    /// Whether everything so far was recorded: false once the device was full.
    bool isRecording() const { return !mFile.isFull(); }

    bool initWorldRepresentation(const Common::String& navMeshFile, const Memory& cbMemory,
                                 const Files& cbFileIO,
                                 const Common::String& blockingMapFile) override;
    void close() override;
    int initPathSearch(const Vec3& start, const Vec3& goal) override;
    int runPathSearch(int searchID, unsigned int budget) override;
    bool getNextWaypoint(int searchID, Vec3& waypoint) override;
    float getPathCost(int searchID) override;
    bool closePathSearch(int searchID) override;
    bool isBlocked(const Vec2& position) override;
    void traceRay(Ray2D& ray) override;
    void traceRay(Ray3D& ray) override;
    float getGroundHeight(const Vec2& position) override;
    void getBoundingRectangle(Vec2& min, Vec2& max) override;
    bool saveBlockingMap(const Common::String& filename) override;

private:
    template <typename Arguments, typename Call, typename Answer>
    void record(CallKind kind, Arguments arguments, Call call, Answer answer);
    template <typename Write>
    void write(std::uint8_t kind, Write write);
    void writeRaised(std::initializer_list<std::string_view> pieces);
    void writeRaised(const Common::Exceptions::Exception& exception);

    Foundation mFoundation; ///< for texts and meshes
    RecordingFile mFile;
};

} // namespace ZUNO::HostKit
