#pragma once

#include "pathfinder/interface.h"

namespace ZUNO::HostKit {

/// The library's exports as an object: each function calls the export of its name, with the same
/// arguments, answers, reports and exceptions (see `pathfinder/interface.h`). Classes that stand
/// between a host and the library, such as the recorder, override what they need. What the host kit
/// asks of the library, it asks through a reference to such an object.
/// Thread: that of the exports.
class Exports {
public:
    using Vec2 = Common::Math::Vec2<float>;
    using Vec3 = Common::Math::Vec3<float>;
    using Ray2D = Common::Geom::Ray2D<float, float>;
    using Ray3D = Common::Geom::Ray3D<float, float>;
    using Memory = Common::SharedPtr<Common::Callback::MemoryCallback>;
    using Files = Common::SharedPtr<Common::Callback::FileIOCallback>;

    Exports() = default;
    virtual ~Exports() = default;
    Exports(const Exports&) = delete;
    Exports& operator=(const Exports&) = delete;

    virtual bool initWorldRepresentation(const Common::String& navMeshFile, const Memory& cbMemory,
                                         const Files& cbFileIO,
                                         const Common::String& blockingMapFile);
    virtual void close();
    virtual int initPathSearch(const Vec3& start, const Vec3& goal);
    virtual int runPathSearch(int searchID, unsigned int budget);
    virtual bool getNextWaypoint(int searchID, Vec3& waypoint);
    virtual float getPathCost(int searchID);
    virtual bool closePathSearch(int searchID);
    virtual bool isBlocked(const Vec2& position);
    virtual void traceRay(Ray2D& ray);
    virtual void traceRay(Ray3D& ray);
    virtual float getGroundHeight(const Vec2& position);
    virtual void getBoundingRectangle(Vec2& min, Vec2& max);
    virtual bool saveBlockingMap(const Common::String& filename);
};

} // namespace ZUNO::HostKit
