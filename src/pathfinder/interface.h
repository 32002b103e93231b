/// The library's front door: everything that it exports.
#pragma once

#include "common/callback/fileiocallback.h"
#include "common/callback/memorycallback.h"
#include "common/geom/ray2d.h"
#include "common/geom/ray3d.h"
#include "common/platform/export.h"
#include "pathfinder/noground.h"

namespace ZUNO::Pathfinder {

/// What a host calls, all from one thread: `initWorldRepresentation` once, then any number of
/// searches and queries, then `close`; after that it may start again.
///
/// Exceptions are thrown as pointers (`Common::Exceptions::Exception*`) and never caught here; the
/// host deletes them before it calls `close`. Broken rules are reported, and the call then goes on
/// as it says. Positions in two dimensions are world positions without their up component (with y
/// up: x and z). Queries without a world are reported and answer as if there were no ground: -1,
/// no path, false, 0, blocked, 3.4028235e38, no hit, an empty rectangle.
class Interface {
public:
    /// Copies nothing: there is no state here.
    ZUNO_PATHFINDER_EXPORT Interface& operator=(const Interface& other);

    /// Starts the library and loads the world from an XML mesh file.
    /// `cbMemory` (null: the process heap) gives all memory and `cbFileIO` all files until `close`.
    /// `blockingMapFile` must be empty: a name raises a NotSupportedException and leaves a world
    /// that can search paths but has no blocking map.
    /// Returns whether the mesh was loaded.
    /// Throws what opening, reading and parsing the file raise (FileNotFoundException,
    /// UnAuthorizedAccessException, IOException, XMLParserException), and OutOfMemoryException.
    /// After false or an exception `close` it.
    /// Reports a second start without a `close`. It goes through the first start's callbacks, not
    /// through its own, and loads before it replaces: after false or an exception, whatever the
    /// reason, the former world runs on with its searches and its blocking map.
    ZUNO_PATHFINDER_EXPORT static bool
    initWorldRepresentation(const Common::BasicString<char>& navMeshFile,
                            const Common::SharedPtr<Common::Callback::MemoryCallback>& cbMemory,
                            const Common::SharedPtr<Common::Callback::FileIOCallback>& cbFileIO,
                            const Common::BasicString<char>& blockingMapFile);

    /// Ends the world and the library and gives all memory back. Does nothing when nothing runs.
    ZUNO_PATHFINDER_EXPORT static void close();

    /// Opens a search and returns its id, or -1 when a point stands on no node.
    ZUNO_PATHFINDER_EXPORT static int initPathSearch(const Common::Math::Vec3<float>& start,
                                                     const Common::Math::Vec3<float>& goal);

    /// Advances a search by at most `budget` expansions. Returns 0 for a path found, 1 for not
    /// done yet, 2 for no path. Raises an ArgumentException for an id that names no search.
    ZUNO_PATHFINDER_EXPORT static int runPathSearch(int searchID, unsigned int budget);

    /// Gives the next waypoint of a found path: the centre of the next node that it enters. False,
    /// with `waypoint` as it was, after the last one and while there is no path.
    ZUNO_PATHFINDER_EXPORT static bool getNextWaypoint(int searchID,
                                                       Common::Math::Vec3<float>& waypoint);

    /// The cost of a found path, once `getNextWaypoint` was called; 0 before.
    ZUNO_PATHFINDER_EXPORT static float getPathCost(int searchID);

    /// Closes a search, whose id may then be given again; returns whether there was one.
    ZUNO_PATHFINDER_EXPORT static bool closePathSearch(int searchID);

    /// Whether nothing can stand at the position; true outside the world.
    ZUNO_PATHFINDER_EXPORT static bool isBlocked(const Common::Math::Vec2<float>& position);

    /// Sets `mHitDistance`: how far the ray runs until it meets something blocked, in units of
    /// the mesh's plane; -1 when it reaches its end, or starts outside the world.
    ZUNO_PATHFINDER_EXPORT static void traceRay(Common::Geom::Ray2D<float, float>& ray);
    ZUNO_PATHFINDER_EXPORT static void traceRay(Common::Geom::Ray3D<float, float>& ray);

    /// The height of the ground at the position, or `noGround` (3.4028235e38) where there is none.
    ZUNO_PATHFINDER_EXPORT static float getGroundHeight(const Common::Math::Vec2<float>& position);

    /// The rectangle that the world's corners span.
    ZUNO_PATHFINDER_EXPORT static void getBoundingRectangle(Common::Math::Vec2<float>& min,
                                                            Common::Math::Vec2<float>& max);

    /// Raises a NotSupportedException: there is no format for blocking maps.
    ZUNO_PATHFINDER_EXPORT static bool saveBlockingMap(const Common::BasicString<char>& filename);
};

} // namespace ZUNO::Pathfinder
