#pragma once

#include "common/basicstring.h"
#include "common/math/vec3.h"
#include "common/memory/memorymanaged.h"
#include "common/memory/stlallocator.h"
#include "common/referencecounted.h"

#include <cstdint>
#include <vector>

namespace ZUNO::Common::Parser::XML {
class XMLNodeElements;
class XMLTreeBuilder;
} // namespace ZUNO::Common::Parser::XML

namespace ZUNO::Common::IO {
class Stream;
} // namespace ZUNO::Common::IO

namespace ZUNO::NavMesh {

/// A surface type's id that means none.
inline constexpr std::uint16_t noSurfaceType = 0xFFFF;

/// One loaded navigation mesh: corner positions, convex polygons over them ("nodes"), the
/// neighbours of each, height classes, the plane's axes, and two descriptive tables.
/// Held through `SharedPtr`; read-only once loaded, and then free to be queried from any number of
/// threads. Queries trust the mesh: see `meshdefects.h` for what makes one unfit.
class NavMeshContainer : public Common::Memory::MemoryManaged, public Common::ReferenceCounted {
public:
    template <typename T>
    using Vector = std::vector<T, Common::Memory::STLAllocator<T>>;
    using Point3 = Common::Math::Vec3<float>;
    using Point2 = Common::Math::Vec2<float>;

    /// A walkable polygon. Its index among the nodes is its id.
    struct NavNode {
        explicit NavNode(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
            : mPolygon(allocator), mNeighbours(allocator) {}

        Vector<std::uint32_t> mPolygon;   ///< corners, counter-clockwise in the plane
        Vector<std::int32_t> mNeighbours; ///< a node per border; negative where there is none
        std::int32_t mHeightClass = -1;
        std::uint16_t mSurfaceTypeID = noSurfaceType;
    };

    /// A class of characters that the mesh was made for. Searches don't read it.
    struct CharacterInfo {
        Common::String mName;
        std::int64_t mUserID = 0;
        float mPhysicalHeight = 0;
        float mJumpHeight = 0;
        float mFallHeight = 0;
        std::uint32_t mMaxHeightClassID = 0;
    };

    /// A named kind of ground. Searches don't read it.
    struct SurfaceType {
        Common::String mName = "Default";
        std::uint16_t mID = noSurfaceType;
    };

    /// An empty mesh; its arrays draw from the allocator that the object came from.
    NavMeshContainer();

    /// The mean of the node's corners. An id out of range is reported and gives the origin.
    Point3 getNodeCenter(std::int32_t nodeIndex) const;

    /// Whether the point stands on the node: over or on the border of its polygon, at most twice
    /// the cube size below the plane through its first corner, at most its class's height above.
    /// A negative id is reported; an id out of range, or a point that is not finite, gives false.
    bool isPointInNode(const Point3& point, std::int32_t nodeID) const;

    /// The lowest id of a node that the point stands on, or -1. Cost: one pass over all nodes.
    std::int32_t findNode(const Point3& point) const;

    /// The distance in the plane to the nearest border of the node; 3.4028235e38 for an id out of
    /// range (a negative one is reported).
    float getDistanceToBorder(const Point3& point, std::int32_t nodeID) const;

    /// The point's coordinates in the plane of the two axes.
    Point2 projectToPlane(const Point3& point) const {
        return {dot(point, mXAxis), dot(point, mYAxis)};
    }

    /// Empties nodes, vertices and heights; the rest stays.
    void clearGeometry();

    /// The first record that matches, or null; valid while the tables don't change.
    const CharacterInfo* findCharacterByName(const Common::String& name) const;
    const CharacterInfo* findCharacterByUserID(std::int64_t userID) const;
    const SurfaceType* findSurfaceTypeByName(const Common::String& name) const;
    const SurfaceType* findSurfaceTypeByID(std::uint16_t id) const;

    /// The characters whose highest height class is at most `heightClass`, in their order.
    Vector<const CharacterInfo*> getCharactersForHeightClass(std::uint32_t heightClass) const;

    /// An estimate of the bytes held.
    std::uint32_t getMemoryUsage() const;

    /// Fills the mesh from a "navmesh" element, in place of former nodes, vertices and heights, and
    /// of the tables that the element has. Returns false, after a report, when something that must
    /// be there is missing; values are taken as they are.
    bool readXML(const Common::Parser::XML::XMLNodeElements& element);
    /// Appends the "navmesh" element to a document that copies its strings. Floats keep six
    /// significant digits.
    void writeXML(Common::Parser::XML::XMLTreeBuilder& builder) const;

    /// Fills a new mesh from its binary form; keeps every bit. Returns true. Throws what the
    /// storage throws: for a stream that is cut or no such mesh.
    bool readBinary(const Common::SharedPtr<Common::IO::Stream>& stream);
    /// `option` is the byte order to write (1: little-endian). The form has one count for a node's
    /// corners and neighbours: missing neighbours become -1, those behind the last corner are left
    /// out. Reports the first node that loses one so. The storage comes from `allocator`, or from
    /// the mesh's own.
    void writeBinary(const Common::SharedPtr<Common::IO::Stream>& stream,
                     std::int32_t option) const;
    void writeBinary(const Common::SharedPtr<Common::IO::Stream>& stream, std::int32_t option,
                     const Common::SharedPtr<Common::Memory::Allocator>& allocator) const;

    const Common::SharedPtr<Common::Memory::Allocator>& getAllocator() const { return mAllocator; }

    Vector<Point3> mVertices;
    Vector<NavNode> mNodes;
    Vector<float> mHeights;  ///< per class: how far above a node's plane one still stands on it
    Point3 mNormal{0, 0, 0}; ///< up
    Point3 mXAxis{0, 0, 0};
    Point3 mYAxis{0, 0, 0};
    float mCubeSize = 0;
    Vector<CharacterInfo> mCharacters;
    Vector<SurfaceType> mSurfaceTypes;

private:
    bool hasNode(std::int32_t nodeID) const {
        return nodeID >= 0 && static_cast<std::size_t>(nodeID) < mNodes.size();
    }
    const NavNode& nodeAt(std::int32_t nodeID) const {
        return mNodes[static_cast<std::size_t>(nodeID)];
    }
};

/// Whether a point lies in a convex polygon, both seen along two axes. Points on the border do.
/// The polygon runs counter-clockwise in the plane of the axes, or clockwise as the flag says.
bool isPointInConvexPolygon2D(const Common::Math::Vec3<float>& point, const NavMeshContainer& mesh,
                              const NavMeshContainer::Vector<std::uint32_t>& polygon,
                              bool isClockwise, const Common::Math::Vec3<float>& firstAxis,
                              const Common::Math::Vec3<float>& secondAxis);

} // namespace ZUNO::NavMesh
