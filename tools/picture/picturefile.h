#pragma once

#include <string>

namespace ZUNO::Tools {

/// Throws a std::runtime_error when the name's suffix is none that a picture can have: ".svg",
/// ".png" or none, which is SVG. An empty name is none.
void requirePictureName(const std::string& fileName);

/// Saves an SVG document; as PNG when the name ends so, by the program rsvg-convert. Throws a
/// std::runtime_error, also when that program is not there; the target is then as it was.
void savePicture(const std::string& fileName, const std::string& svg);

} // namespace ZUNO::Tools
