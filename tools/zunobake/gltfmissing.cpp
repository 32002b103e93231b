// Takes the place of gltfreader.cpp where TinyGLTF is not there.
#include "tools/zunobake/gltfreader.h"

#include <stdexcept>

namespace ZUNO::Tools {

void readGltf(const std::string& fileName, const SceneOptions&, Scene&) {
    throw std::runtime_error(fileName + ": this zunobake was built without TinyGLTF and can't read "
                                        "glTF: convert the scene to Wavefront OBJ");
}

void readGltf(const std::string&, const std::string& name, const SceneOptions& options,
              Scene& scene) {
    readGltf(name, options, scene);
}

} // namespace ZUNO::Tools
