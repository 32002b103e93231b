/// How answers are worded for people; lengths are in units of the mesh.
#pragma once

#include "common/math/vec2.h"
#include "common/math/vec3.h"

#include <string>
#include <vector>

namespace ZUNO::Tools {

/// The coordinates with blanks between them.
std::string textOf(const Common::Math::Vec2<float>& point);
std::string textOf(const Common::Math::Vec3<float>& point);

/// A length with its unit.
std::string lengthText(double length);

/// A table of the points of a way that begins at `start`, numbered from 1 on, with what has been
/// walked so far. `name` heads the numbers.
std::string wayText(const char* name, const Common::Math::Vec3<float>& start,
                    const std::vector<Common::Math::Vec3<float>>& points);

} // namespace ZUNO::Tools
