#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace ZUNO::Worlds {

/// A mesh in the making, with y up: the plane's axes are x and z, and polygons run
/// counter-clockwise in them. Coordinates are counted in quarters, so that equal corners meet and
/// the text form keeps them exactly.
class MeshModel {
public:
    struct Corner {
        int mX;
        int mY;
        int mZ;
        auto operator<=>(const Corner&) const = default;
    };
    struct Node {
        std::vector<std::uint32_t> mPolygon;
        std::vector<std::int32_t> mNeighbours;
        int mHeightClass;
        int mSurface; ///< 0xFFFF: none
    };

    /// Adds a polygon. Its ring is turned so that it starts at its lowest corner, from which
    /// heights are measured.
    void addPolygon(std::vector<Corner> corners, int heightClass, int surface);

    /// Inserts the corners of others that lie in the middle of a polygon's straight borders, and
    /// makes nodes with a common border each other's neighbours.
    void connect();

    /// The mesh file; `comment` stands at its top.
    std::string toXML(const std::string& comment) const;

    std::vector<Node> mNodes;
    std::vector<Corner> mVertices;
    std::vector<float> mHeights;
    float mCubeSize = 0.25F;
    std::vector<std::string> mSurfaceNames;
    /// name, physical height, jump, fall, highest class
    std::vector<std::tuple<std::string, float, float, float, int>> mCharacters;

private:
    std::uint32_t vertexOf(const Corner& corner);
    void splitBorders(Node& node) const;

    std::map<Corner, std::uint32_t> mVertexIds;
};

/// A place on each node: the mean of its corners, as x, y and z.
std::vector<std::array<float, 3>> placesOn(const MeshModel& mesh);

/// A flat floor of about `nodeCount` squares of 2 x 2 with scattered holes; the same for the same
/// numbers, and all of it connected but for pockets that the holes cut off.
MeshModel makeFloor(unsigned int nodeCount, unsigned int seed);

/// A harbour of two storeys, with ramps, buildings, piers and an island that no path reaches.
MeshModel makeHarbour();

} // namespace ZUNO::Worlds
