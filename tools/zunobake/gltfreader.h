#pragma once

#include "tools/zunobake/scene.h"

namespace ZUNO::Tools {

/// Whether a file's name says that it is glTF, and whether it is the binary form.
bool isGltf(const std::string& fileName);
bool isBinaryGltf(const std::string& fileName);

/// Adds the triangles of a glTF 2.0 file's scene to a scene, each where its nodes' transforms put
/// it. Up is y there, whatever the options say. Triangles without area are left out. Names of
/// nodes, meshes and materials are those that the options leave out or mark; a node that is left
/// out takes its children with it. Raises a std::runtime_error with the file and what is wrong:
/// also for extensions that a file can't do without, and for everything where TinyGLTF was not
/// there when this was built.
void readGltf(const std::string& fileName, const SceneOptions& options, Scene& scene);
/// The same of a file's content, at most 4 GB; buffers in other files are not found.
void readGltf(const std::string& content, const std::string& name, const SceneOptions& options,
              Scene& scene);

} // namespace ZUNO::Tools
