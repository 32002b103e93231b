#include "navmesh/navmeshcontainer.h"

#include <algorithm>
#include <limits>

namespace ZUNO::NavMesh {

using Common::Math::Vec2;
using Common::Math::Vec3;

namespace {

float distanceToSegment(const Vec2<float>& point, const Vec2<float>& a, const Vec2<float>& b) {
    const Vec2<float> along = b - a;
    const Vec2<float> toPoint = point - a;
    const float foot = dot(toPoint, along);
    const float squaredLength = dot(along, along);
    if (foot <= 0 || squaredLength == 0)
        return length(toPoint);
    if (foot >= squaredLength)
        return length(point - b);
    return length(toPoint - along * (foot / squaredLength));
}

} // namespace

NavMeshContainer::NavMeshContainer()
    : mVertices(mAllocator), mNodes(mAllocator), mHeights(mAllocator), mCharacters(mAllocator),
      mSurfaceTypes(mAllocator) {}

Vec3<float> NavMeshContainer::getNodeCenter(std::int32_t nodeIndex) const {
    Vec3<float> sum(0, 0, 0);
    if (!ZUNO_CHECK_AS(hasNode(nodeIndex), "nodeIndex >= 0 && nodeIndex < (int32)mNodes.size()",
                       "nodeID out of range"))
        return sum;
    const NavNode& node = nodeAt(nodeIndex);
    for (const std::uint32_t corner : node.mPolygon)
        sum = sum + mVertices[corner];
    const auto count = static_cast<float>(node.mPolygon.size());
    return {sum.mX / count, sum.mY / count, sum.mZ / count};
}

bool NavMeshContainer::isPointInNode(const Vec3<float>& point, std::int32_t nodeID) const {
    ZUNO_CHECK(nodeID >= 0, "nodeID out of range");
    if (!hasNode(nodeID) || !isFinite(point))
        return false;
    const NavNode& node = nodeAt(nodeID);
    const float height = dot(mNormal, point - mVertices[node.mPolygon[0]]);
    if (height < -2.0F * mCubeSize)
        return false;
    if (height > mHeights[static_cast<std::size_t>(node.mHeightClass)])
        return false;
    return isPointInConvexPolygon2D(point, *this, node.mPolygon, false, mXAxis, mYAxis);
}

bool isPointInConvexPolygon2D(const Vec3<float>& point, const NavMeshContainer& mesh,
                              const NavMeshContainer::Vector<std::uint32_t>& polygon,
                              bool isClockwise, const Vec3<float>& firstAxis,
                              const Vec3<float>& secondAxis) {
    const auto project = [&](const Vec3<float>& p) {
        return Vec2<float>(dot(p, firstAxis), dot(p, secondAxis));
    };
    const float sign = isClockwise ? 1.0F : -1.0F;
    const Vec2<float> projected = project(point);
    Vec2<float> start = project(mesh.mVertices[polygon.back()]);
    for (const std::uint32_t corner : polygon) {
        const Vec2<float> end = project(mesh.mVertices[corner]);
        if (signedArea(start, end, projected) * sign > 0.0F)
            return false;
        start = end;
    }
    return true;
}

std::int32_t NavMeshContainer::findNode(const Vec3<float>& point) const {
    const auto count = static_cast<std::int32_t>(mNodes.size());
    for (std::int32_t id = 0; id < count; ++id)
        if (isPointInNode(point, id))
            return id;
    return -1;
}

float NavMeshContainer::getDistanceToBorder(const Vec3<float>& point, std::int32_t nodeID) const {
    ZUNO_CHECK(nodeID >= 0, "nodeID out of range");
    float nearest = std::numeric_limits<float>::max();
    if (!hasNode(nodeID))
        return nearest;
    const auto& polygon = nodeAt(nodeID).mPolygon;
    const Vec2<float> projected = projectToPlane(point);
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Vec2<float> start = projectToPlane(mVertices[polygon[i]]);
        const Vec2<float> end = projectToPlane(mVertices[polygon[(i + 1) % polygon.size()]]);
        const float distance = distanceToSegment(projected, start, end);
        if (distance < nearest)
            nearest = distance;
    }
    return nearest;
}

void NavMeshContainer::clearGeometry() {
    mNodes.clear();
    mVertices.clear();
    mHeights.clear();
}

namespace {

template <typename Table, typename Predicate>
auto* findFirst(const Table& table, Predicate matches) {
    const auto place = std::find_if(table.begin(), table.end(), matches);
    return place != table.end() ? &*place : nullptr;
}

} // namespace

const NavMeshContainer::CharacterInfo*
NavMeshContainer::findCharacterByName(const Common::String& name) const {
    return findFirst(mCharacters, [&](const CharacterInfo& info) { return info.mName == name; });
}

const NavMeshContainer::CharacterInfo*
NavMeshContainer::findCharacterByUserID(std::int64_t userID) const {
    return findFirst(mCharacters,
                     [&](const CharacterInfo& info) { return info.mUserID == userID; });
}

const NavMeshContainer::SurfaceType*
NavMeshContainer::findSurfaceTypeByName(const Common::String& name) const {
    return findFirst(mSurfaceTypes, [&](const SurfaceType& type) { return type.mName == name; });
}

const NavMeshContainer::SurfaceType* NavMeshContainer::findSurfaceTypeByID(std::uint16_t id) const {
    return findFirst(mSurfaceTypes, [&](const SurfaceType& type) { return type.mID == id; });
}

NavMeshContainer::Vector<const NavMeshContainer::CharacterInfo*>
NavMeshContainer::getCharactersForHeightClass(std::uint32_t heightClass) const {
    Vector<const CharacterInfo*> found(mAllocator);
    for (const CharacterInfo& info : mCharacters)
        if (info.mMaxHeightClassID <= heightClass)
            found.push_back(&info);
    return found;
}

std::uint32_t NavMeshContainer::getMemoryUsage() const {
    std::size_t bytes =
        sizeof(*this) + mVertices.size() * sizeof(Vec3<float>) + mHeights.size() * sizeof(float) +
        mCharacters.size() * sizeof(CharacterInfo) + mSurfaceTypes.size() * sizeof(SurfaceType);
    for (const NavNode& node : mNodes)
        bytes += sizeof(NavNode) + 4 * (node.mPolygon.size() + node.mNeighbours.size());
    return static_cast<std::uint32_t>(bytes);
}

} // namespace ZUNO::NavMesh
