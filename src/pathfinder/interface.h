/// The library's front door: everything that it exports. This header is the manual.
#pragma once

#include "common/callback/fileiocallback.h"
#include "common/callback/memorycallback.h"
#include "common/callback/reportcallback.h"
#include "common/geom/ray2d.h"
#include "common/geom/ray3d.h"
#include "common/platform/export.h"
#include "pathfinder/answers.h"

namespace ZUNO::Pathfinder {

/// What a host calls: `initWorldRepresentation` once, then any number of searches and queries, then
/// `close`; after that it may start again. A process has one world.
///
/// Before all this a host starts its own copy of the foundation (`Common::initLibrary`), which the
/// strings, shared pointers and exceptions that it makes need, and closes it behind `close`.
///
/// Units: those of the mesh, for places, lengths, costs and heights. Places in two dimensions are
/// world positions without their up component, which is the one where the mesh's normal is largest:
/// x and z when y points up.
///
/// Throws: pointers to exceptions (`Common::Exceptions::Exception*`), which the host catches, reads
/// and deletes before it calls `close`. Nothing is caught here. A function throws what stands at
/// it, and no more; what the host's callbacks throw passes through, too. After an
/// OutOfMemoryException the same call may be made again.
///
/// Reports: rules of the program that were broken. The call then goes on as it says. A report goes
/// to standard error, as "file(line): Assertion failed: expression" and "Error Message: text" (on
/// Windows to the debugger as well), or to the host, when its memory callback is a
/// `Common::Callback::ReportCallback` too. `Debug::setReportHandler` does not redirect them: it
/// sets the handler of the host's own copy of the foundation. Without a world every query reports
/// "no world: call initWorldRepresentation first", and answers as if there were no ground.
///
/// Thread: one, the same for all functions; the callbacks are called on it.
class Interface {
public:
    /// Copies nothing: there is no state here.
    ZUNO_PATHFINDER_EXPORT Interface& operator=(const Interface& other);

    /// Starts the library and loads the world from a mesh file in its XML form. `cbMemory` gives
    /// all memory and `cbFileIO` all files until `close`; both are held until then. A null memory
    /// callback is reported, and the process heap serves; a null file callback is reported, and no
    /// mesh can be read. `blockingMapFile` must be empty.
    /// Returns whether the mesh was loaded. False comes after reports that say why.
    /// Throws what opening, reading and parsing the file raise: FileNotFoundException,
    /// UnAuthorizedAccessException, IOException, XMLParserException, InvalidStateException (no file
    /// callback); OutOfMemoryException; and NotSupportedException for a `blockingMapFile` that has
    /// a name: that leaves a world which can search paths, but has no blocking map.
    /// After false or an exception: `close`.
    /// Reports a second start without a `close`. It goes through the first start's callbacks, not
    /// through its own, and loads before it replaces: after false or an exception, whatever the
    /// reason, the former world runs on with its searches and its blocking map; after true all
    /// searches are closed.
    /// Cost: reads the file once, and builds a grid with a cell for each cube size.
    ZUNO_PATHFINDER_EXPORT static bool
    initWorldRepresentation(const Common::BasicString<char>& navMeshFile,
                            const Common::SharedPtr<Common::Callback::MemoryCallback>& cbMemory,
                            const Common::SharedPtr<Common::Callback::FileIOCallback>& cbFileIO,
                            const Common::BasicString<char>& blockingMapFile);

    /// Closes all searches and the world, ends the library and gives all memory back. Does nothing
    /// when nothing runs. Works after every failure.
    /// Reports blocks of the host's memory that are still out, such as those of an exception that
    /// was not deleted yet.
    ZUNO_PATHFINDER_EXPORT static void close();

    /// Opens a search from one point to another. Each must stand on a node: within its polygon seen
    /// from above, and from two cube sizes below its first corner up to the height of its class
    /// above that. Of several nodes the first in the file is taken.
    /// Returns the search's id, or `noSearch` when a point stands on no node. Ids count from 0; one
    /// that was closed is given again, the latest closed first.
    /// Throws OutOfMemoryException.
    /// Lifetime: until `closePathSearch`, `close`, or a second start that succeeds.
    /// Cost: the location of two points; what a search needs, it takes when it runs.
    ZUNO_PATHFINDER_EXPORT static int initPathSearch(const Common::Math::Vec3<float>& start,
                                                     const Common::Math::Vec3<float>& goal);

    /// Advances a search by at most `budget` expansions of nodes; 0 advances nothing. How a search
    /// is cut into calls doesn't change its result.
    /// Returns a SearchResult: PATH_FOUND, PATH_RUNNING while it has to be called again, or
    /// PATH_NONE, which is the answer without a world, too. A search that is over says the same
    /// again.
    /// Throws ArgumentException for an id that names no search; OutOfMemoryException.
    /// Cost: proportional to the expansions.
    ZUNO_PATHFINDER_EXPORT static int runPathSearch(int searchID, unsigned int budget);

    /// Gives the next waypoint of a found path: the centre (the mean of the corners) of the next
    /// node that the path enters. Neither the start nor the goal is a waypoint, nor is the centre
    /// of the start's node; the last waypoint is the centre of the goal's node. A path within one
    /// node has none. Nothing is smoothed: from the last waypoint a character walks to the goal.
    /// Returns false, with `waypoint` as it was, after the last one and while there is no path.
    /// Throws OutOfMemoryException, at the first call for a search.
    /// Reports an id that names no search, and returns false.
    ZUNO_PATHFINDER_EXPORT static bool getNextWaypoint(int searchID,
                                                       Common::Math::Vec3<float>& waypoint);

    /// Returns the cost of a found path once `getNextWaypoint` was called for it, whatever that
    /// returned; 0 before. It counts from the start over the centres to the goal, and then from the
    /// goal to the centre of its node: so it is not the length that a character walks.
    /// Reports an id that names no search, and returns 0.
    ZUNO_PATHFINDER_EXPORT static float getPathCost(int searchID);

    /// Closes a search.
    /// Returns whether there was one; needs no memory.
    ZUNO_PATHFINDER_EXPORT static bool closePathSearch(int searchID);

    /// Returns whether nothing can stand at a place: no node covers the centre of its cell in the
    /// blocking map. True outside the world as well, and in the map's last column and row.
    /// Reports a world without a blocking map, and returns true.
    ZUNO_PATHFINDER_EXPORT static bool isBlocked(const Common::Math::Vec2<float>& position);

    /// Traces a ray over the blocking map. Sets `mHitDistance`, and reads both ends alone: the
    /// distance from the start to the first blocked cell (its corner of least coordinates), in
    /// units of the mesh's plane; to the last cell inside when the ray leaves the world; or `noHit`
    /// when it reaches its end, starts outside the world, or there is no blocking map. A ray that
    /// starts in a blocked cell is followed from one unit before its start.
    /// Cost: proportional to the cells on its way, of which open ground is leapt over.
    ZUNO_PATHFINDER_EXPORT static void traceRay(Common::Geom::Ray2D<float, float>& ray);
    ZUNO_PATHFINDER_EXPORT static void traceRay(Common::Geom::Ray3D<float, float>& ray);

    /// Returns the height of the ground, or `noGround` where no node covers the centre of the cell.
    /// There is one value a cell, and none between: the up component of the first corner of the
    /// node that covers the centre; of several nodes above each other, that of the last in the
    /// file. On slopes and on several floors a host asks its own view of the mesh
    /// (`hostkit/surface.h`).
    /// Reports a world without a blocking map, and returns `noGround`.
    ZUNO_PATHFINDER_EXPORT static float getGroundHeight(const Common::Math::Vec2<float>& position);

    /// Sets the rectangle that the mesh's vertices span.
    /// Reports a world without a blocking map, and sets the empty rectangle at the origin.
    ZUNO_PATHFINDER_EXPORT static void getBoundingRectangle(Common::Math::Vec2<float>& min,
                                                            Common::Math::Vec2<float>& max);

    /// Throws NotSupportedException: there is no format for blocking maps.
    /// Returns false without a world.
    /// Reports an empty name.
    ZUNO_PATHFINDER_EXPORT static bool saveBlockingMap(const Common::BasicString<char>& filename);
};

} // namespace ZUNO::Pathfinder
