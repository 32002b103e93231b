#pragma once

#include <array>
#include <string>
#include <vector>

namespace ZUNO::Worlds {

/// A scene in the making: faces of corners counter-clockwise seen from outside, with y up.
class SceneModel {
public:
    using Point = std::array<double, 3>;
    struct Face {
        std::vector<Point> mCorners;
        std::string mMaterial;
        std::string mGroup;
    };
    /// Two places, and whether someone can walk from one to the other.
    struct Journey {
        std::string mName;
        Point mFrom;
        Point mTo;
        bool mIsPossible;
    };

    /// What is added next belongs to this group, and is made of this.
    void begin(const std::string& group, const std::string& material);
    void addFace(std::vector<Point> corners);
    /// A box between two corners.
    void addBox(const Point& low, const Point& high);
    /// A slab of some thickness under a quadrangle that is given as a face seen from above.
    void addSlab(const std::array<Point, 4>& top, double thickness);

    /// The Wavefront OBJ file; `comment` stands at its top.
    std::string toObj(const std::string& comment) const;

    std::vector<Face> mFaces;
    std::vector<Journey> mJourneys;

private:
    std::string mGroup;
    std::string mMaterial;
};

/// A walled courtyard with a fountain, a gallery that stairs lead up to, and a closed shed.
SceneModel makeCourtyard();
/// A bridge that one can walk over and under, and a plateau that no ramp leads up to.
SceneModel makeBridge();
/// A ramp that winds up three storeys around a tower.
SceneModel makeSpiral();
/// A maze of `size` x `size` cells, each 2.5 wide, all of it connected but for one closed cell; the
/// same for the same numbers.
SceneModel makeMaze(int size, unsigned int seed);
/// A town of `size` x `size` plots, each 12 wide: open ground, houses, and markets of up to 23
/// small stalls, so that walkable polygons are of very unequal sizes; the same for the same
/// numbers.
SceneModel makeTown(int size, unsigned int seed);

} // namespace ZUNO::Worlds
