#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace ZUNO::Tools {

struct SceneOptions;

/// The triangles of a scene, right-handed with y up, and what each is made of.
struct Scene {
    static constexpr std::uint16_t noSurface = 0xFFFF;

    std::size_t triangleCount() const { return mSurfaces.size(); }
    /// The index of a surface's name, which is added when it is new.
    std::uint16_t surfaceOf(const std::string& name);
    /// The surface of what has a material, or is marked by a name: noSurface where materials are
    /// ignored, or for an empty name. Raises a std::runtime_error when there are too many.
    std::uint16_t surfaceFor(const std::string& name, bool isMarked, const SceneOptions& options);
    /// Whether what has a name is to be left out, or marked; keeps in mind that the name occurred.
    bool isLeftOut(const std::string& name, const SceneOptions& options);
    bool isMarked(const std::string& name, const SceneOptions& options);

    std::vector<float> mVertices;         ///< x, y, z of each
    std::vector<int> mTriangles;          ///< three vertices each, counter-clockwise from outside
    std::vector<std::uint16_t> mSurfaces; ///< of each triangle, or noSurface
    std::vector<std::string> mSurfaceNames;
    std::size_t mLeftOut = 0;            ///< faces that were skipped as they were asked to be
    std::set<std::string> mNames;        ///< of what was left out or marked
    std::set<std::string> mFurtherFiles; ///< where glTF's buffers and pictures are looked for
};

/// The axis of a file that points up.
enum class UpAxis { Y, Z };

/// How a scene's files are to be read.
struct SceneOptions {
    UpAxis mUp = UpAxis::Y;
    bool mTakesBothSides = false; ///< every triangle faces both ways
    bool mIgnoresMaterials = false;
    bool mSkipsDegenerate = false;     ///< faces without area are left out; else they are an error
    std::vector<std::string> mWithout; ///< groups, objects and materials that are left out
    std::vector<std::string> mMarked;  ///< groups and objects that are surface types of their own
};

/// Is told every now and then how many bytes of all are read.
using ReadListener = std::function<void(std::size_t done, std::size_t all)>;

/// Adds what is in a file to a scene: glTF by its suffix (.glb, .gltf), else Wavefront OBJ. Raises
/// a std::runtime_error with the file and what is wrong.
void readScene(const std::string& fileName, const SceneOptions& options, Scene& scene,
               const ReadListener& listener = {});
/// The same of a file's content, which has its form by `name`; messages call it by that name. Files
/// that glTF refers to are not found.
void readScene(const std::string& content, const std::string& name, const SceneOptions& options,
               Scene& scene, const ReadListener& listener);

/// Adds the faces of a Wavefront OBJ file to a scene. Raises a std::runtime_error with file, line
/// and what is wrong.
void readObj(const std::string& fileName, const SceneOptions& options, Scene& scene,
             const ReadListener& listener = {});
/// The same of a stream of so many bytes; messages call it by its name.
void readObj(std::istream& file, std::size_t size, const std::string& name,
             const SceneOptions& options, Scene& scene, const ReadListener& listener = {});

/// Cuts a simple polygon, given by its corners' positions, into triangles of its corners' indices:
/// one triangle for each corner beyond the second. A polygon without area gives none.
std::vector<int> triangulate(std::span<const float> corners);

} // namespace ZUNO::Tools
