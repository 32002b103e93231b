// Recast.h's functions, carried out by Recast's own module. Objects are made twice: there, and here
// as far as the baker looks into them. Both modules lay structures out in the same way.
#include "viewer/bake/recastmodule.h"

#include <array>
#include <memory>
#include <new>
#include <recastnavigation/Recast.h>
#include <vector>

namespace ZUNO::Tools {
namespace {

/// An object here, where its counterpart lies there, and the arrays that it has here.
template <typename Object, RecastObject kind>
class Mirror : public Object {
public:
    Mirror() : mOther(recast_make(kind)) {
        if (mOther == 0)
            throw std::bad_alloc();
    }
    ~Mirror() { recast_release(kind, mOther); }
    Mirror(const Mirror&) = delete;
    Mirror& operator=(const Mirror&) = delete;

    static Mirror& of(Object& object) { return static_cast<Mirror&>(object); }
    Address other() const { return mOther; }

    /// Takes over the members; arrays are still those in the other memory.
    void takeMembers() { recast_read(static_cast<Object*>(this), mOther, sizeof(Object)); }

    /// Makes a member lead to a copy of the array that it leads to in the other memory.
    template <typename Element>
    void takeArray(Element*& array, int count) {
        const std::size_t size = static_cast<std::size_t>(count) * sizeof(Element);
        auto& bytes = mArrays.emplace_back(new unsigned char[size]);
        recast_read(bytes.get(), addressOf(array), size);
        array = reinterpret_cast<Element*>(bytes.get());
    }

    /// Brings what is in an array here to the one there, or back.
    template <typename Element>
    void sendArray(Element* Object::*member, int count) const {
        recast_write(arrayThere(member), this->*member,
                     static_cast<std::size_t>(count) * sizeof(Element));
    }
    template <typename Element>
    void fetchArray(Element* Object::*member, int count) const {
        recast_read(this->*member, arrayThere(member),
                    static_cast<std::size_t>(count) * sizeof(Element));
    }

private:
    static Address addressOf(const void* there) {
        return static_cast<Address>(reinterpret_cast<std::uintptr_t>(there));
    }
    template <typename Element>
    Address arrayThere(Element* Object::*member) const {
        const Object& here = *this;
        const auto place = static_cast<Address>(reinterpret_cast<const char*>(&(here.*member)) -
                                                reinterpret_cast<const char*>(&here));
        Address array = 0;
        recast_read(&array, mOther + place, sizeof(array));
        return array;
    }

    Address mOther;
    std::vector<std::unique_ptr<unsigned char[]>> mArrays;
};

using Solid = Mirror<rcHeightfield, RecastObject::SOLID>;
using Field = Mirror<rcCompactHeightfield, RecastObject::FIELD>;
using Contours = Mirror<rcContourSet, RecastObject::CONTOURS>;
using Polygons = Mirror<rcPolyMesh, RecastObject::POLYGONS>;

/// Hands on why something went wrong there.
bool told(rcContext* context, bool isDone) {
    if (!isDone) {
        std::array<char, 256> text{};
        recast_fault(text.data(), text.size());
        context->log(RC_LOG_ERROR, text.data());
    }
    return isDone;
}

} // namespace
} // namespace ZUNO::Tools

using namespace ZUNO::Tools;

void rcContext::log(const rcLogCategory category, const char* text, ...) {
    doLog(category, text, static_cast<int>(std::char_traits<char>::length(text)));
}

// what they hold is the mirrors'
rcHeightfield::rcHeightfield() = default;
rcHeightfield::~rcHeightfield() = default;
rcCompactHeightfield::rcCompactHeightfield() = default;
rcCompactHeightfield::~rcCompactHeightfield() = default;
rcContourSet::rcContourSet() = default;
rcContourSet::~rcContourSet() = default;
rcPolyMesh::rcPolyMesh() = default;
rcPolyMesh::~rcPolyMesh() = default;

rcHeightfield* rcAllocHeightfield() {
    return new Solid;
}
void rcFreeHeightField(rcHeightfield* solid) {
    delete static_cast<Solid*>(solid);
}
rcCompactHeightfield* rcAllocCompactHeightfield() {
    return new Field;
}
void rcFreeCompactHeightfield(rcCompactHeightfield* field) {
    delete static_cast<Field*>(field);
}
rcContourSet* rcAllocContourSet() {
    return new Contours;
}
void rcFreeContourSet(rcContourSet* contours) {
    delete static_cast<Contours*>(contours);
}
rcPolyMesh* rcAllocPolyMesh() {
    return new Polygons;
}
void rcFreePolyMesh(rcPolyMesh* polygons) {
    delete static_cast<Polygons*>(polygons);
}

bool rcCreateHeightfield(rcContext* context, rcHeightfield& solid, int width, int height,
                         const float* low, const float* high, float side, float cellHeight) {
    return told(context, recast_create(Solid::of(solid).other(), width, height, low, high, side,
                                       cellHeight));
}

void rcMarkWalkableTriangles(rcContext*, const float slope, const float* vertices, int vertexCount,
                             const int* triangles, int count, unsigned char* areas) {
    recast_mark(slope, vertices, vertexCount, triangles, count, areas);
}

bool rcRasterizeTriangles(rcContext* context, const float* vertices, const int vertexCount,
                          const int* triangles, const unsigned char* areas, const int count,
                          rcHeightfield& solid, const int climb) {
    return told(context, recast_rasterise(vertices, vertexCount, triangles, areas, count,
                                          Solid::of(solid).other(), climb));
}

void rcFilterLowHangingWalkableObstacles(rcContext*, const int climb, rcHeightfield& solid) {
    recast_filter_obstacles(climb, Solid::of(solid).other());
}

void rcFilterLedgeSpans(rcContext*, const int height, const int climb, rcHeightfield& solid) {
    recast_filter_ledges(height, climb, Solid::of(solid).other());
}

bool rcBuildCompactHeightfield(rcContext* context, const int height, const int climb,
                               rcHeightfield& solid, rcCompactHeightfield& field) {
    Field& mirror = Field::of(field);
    if (!told(context, recast_compact(height, climb, Solid::of(solid).other(), mirror.other())))
        return false;
    mirror.takeMembers();
    mirror.takeArray(field.cells, field.width * field.height);
    mirror.takeArray(field.spans, field.spanCount);
    mirror.takeArray(field.areas, field.spanCount);
    field.dist = nullptr; // nobody looks at it
    return true;
}

bool rcErodeWalkableArea(rcContext* context, int radius, rcCompactHeightfield& field) {
    const Field& mirror = Field::of(field);
    mirror.sendArray(&rcCompactHeightfield::areas, field.spanCount);
    const bool isDone = told(context, recast_erode(radius, mirror.other()));
    mirror.fetchArray(&rcCompactHeightfield::areas, field.spanCount);
    return isDone;
}

bool rcBuildDistanceField(rcContext* context, rcCompactHeightfield& field) {
    const Field& mirror = Field::of(field);
    mirror.sendArray(&rcCompactHeightfield::areas, field.spanCount);
    return told(context, recast_measure(mirror.other()));
}

bool rcBuildRegions(rcContext* context, rcCompactHeightfield& field, const int border,
                    const int leastArea, const int mergedArea) {
    const Field& mirror = Field::of(field);
    const bool isDone = recast_divide(mirror.other(), border, leastArea, mergedArea);
    mirror.fetchArray(&rcCompactHeightfield::spans, field.spanCount); // with their regions
    return told(context, isDone);
}

bool rcBuildContours(rcContext* context, rcCompactHeightfield& field, const float error,
                     const int longestEdge, rcContourSet& contours, const int flags) {
    Contours& mirror = Contours::of(contours);
    const bool isDone =
        recast_contour(Field::of(field).other(), error, longestEdge, mirror.other(), flags);
    mirror.takeMembers();
    contours.conts = nullptr; // they are there alone
    return told(context, isDone);
}

bool rcBuildPolyMesh(rcContext* context, rcContourSet& contours, const int corners,
                     rcPolyMesh& polygons) {
    Polygons& mirror = Polygons::of(polygons);
    if (!told(context, recast_polygons(Contours::of(contours).other(), corners, mirror.other())))
        return false;
    mirror.takeMembers();
    mirror.takeArray(polygons.verts, polygons.nverts * 3);
    mirror.takeArray(polygons.polys, polygons.npolys * polygons.nvp * 2);
    mirror.takeArray(polygons.regs, polygons.npolys);
    mirror.takeArray(polygons.areas, polygons.npolys);
    polygons.flags = nullptr; // nobody looks at them
    return true;
}
