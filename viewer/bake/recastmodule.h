/// Recast as a page has it: a module of its own, with a memory of its own. These functions are the
/// page's (viewer/src/bakerecast.ts). An Address is a place in Recast's memory, a pointer one in
/// ours; what has both copies.
#pragma once

#include <cstddef>
#include <cstdint>

#define ZUNO_RECAST(name) __attribute__((import_module("env"), import_name(#name))) name

namespace ZUNO::Tools {

using Address = std::uint32_t;

/// The objects that are made there.
enum class RecastObject : std::int32_t { SOLID, FIELD, CONTOURS, POLYGONS };

} // namespace ZUNO::Tools

extern "C" {

using ZUNO::Tools::Address;
using ZUNO::Tools::RecastObject;

/// 0 when there is no memory.
Address ZUNO_RECAST(recast_make)(RecastObject kind);
void ZUNO_RECAST(recast_release)(RecastObject kind, Address object);
void ZUNO_RECAST(recast_read)(void* to, Address from, std::size_t size);
void ZUNO_RECAST(recast_write)(Address to, const void* from, std::size_t size);
/// Puts the last error that Recast told of there, with a zero, as far as there is room.
void ZUNO_RECAST(recast_fault)(char* text, std::size_t room);

bool ZUNO_RECAST(recast_create)(Address solid, int width, int height, const float* low,
                                const float* high, float side, float cellHeight);
/// The vertices are copied once: they must stay as they are as long as Recast's module lives.
void ZUNO_RECAST(recast_mark)(float slope, const float* vertices, int vertexCount,
                              const int* triangles, int count, unsigned char* areas);
bool ZUNO_RECAST(recast_rasterise)(const float* vertices, int vertexCount, const int* triangles,
                                   const unsigned char* areas, int count, Address solid, int climb);
void ZUNO_RECAST(recast_filter_obstacles)(int climb, Address solid);
void ZUNO_RECAST(recast_filter_ledges)(int height, int climb, Address solid);
bool ZUNO_RECAST(recast_compact)(int height, int climb, Address solid, Address field);
bool ZUNO_RECAST(recast_erode)(int radius, Address field);
bool ZUNO_RECAST(recast_measure)(Address field);
bool ZUNO_RECAST(recast_divide)(Address field, int border, int leastArea, int mergedArea);
bool ZUNO_RECAST(recast_contour)(Address field, float error, int longestEdge, Address contours,
                                 int flags);
bool ZUNO_RECAST(recast_polygons)(Address contours, int corners, Address polygons);
}
