// Scenes in glTF 2.0, text (.gltf) or binary (.glb), read by the library TinyGLTF.
#include "tools/zunobake/gltfreader.h"

#include "tools/zunobake/gltfmodel.h"

#include <set>
#include <stdexcept>

namespace ZUNO::Tools {
namespace {

/// Makes a model by `load(loader, model, error, warning)` and adds it to a scene.
template <typename Load>
void readModel(const std::string& name, const SceneOptions& options, Scene& scene, Load load) {
    tinygltf::TinyGLTF loader;
    // pictures are not looked at
    loader.SetImageLoader([](tinygltf::Image*, const int, std::string*, std::string*, int, int,
                             const unsigned char*, int, void*) { return true; },
                          nullptr);
#ifndef TINYGLTF_NO_FS // the page has no files
    const auto isThere = [](const std::string& file, void* files) {
        static_cast<std::set<std::string>*>(files)->insert(file);
        return tinygltf::FileExists(file, nullptr);
    };
    loader.SetFsCallbacks({isThere, tinygltf::ExpandFilePath, tinygltf::ReadWholeFile,
                           tinygltf::WriteWholeFile, &scene.mFurtherFiles});
#endif
    tinygltf::Model model;
    std::string error;
    std::string warning;
    if (!load(loader, &model, &error, &warning))
        throw std::runtime_error(
            name + ": cannot be read as glTF 2.0: " + error.substr(0, error.find('\n')));
    addModel(model, name, options, scene);
}

} // namespace

void readGltf(const std::string& fileName, const SceneOptions& options, Scene& scene) {
    readModel(fileName, options, scene, [&](tinygltf::TinyGLTF& loader, auto... results) {
        return isBinaryGltf(fileName) ? loader.LoadBinaryFromFile(results..., fileName)
                                      : loader.LoadASCIIFromFile(results..., fileName);
    });
}

void readGltf(const std::string& content, const std::string& name, const SceneOptions& options,
              Scene& scene) {
    const auto size = static_cast<unsigned int>(content.size());
    readModel(name, options, scene, [&](tinygltf::TinyGLTF& loader, auto... results) {
        return isBinaryGltf(name)
                   ? loader.LoadBinaryFromMemory(
                         results..., reinterpret_cast<const unsigned char*>(content.data()), size)
                   : loader.LoadASCIIFromString(results..., content.data(), size, "");
    });
}

} // namespace ZUNO::Tools
