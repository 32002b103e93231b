// Scenes in glTF 2.0, text (.gltf) or binary (.glb), read by the library TinyGLTF.
#include "tools/zunobake/gltfreader.h"

#include "tools/zunobake/gltfmodel.h"

#include <charconv>
#include <stdexcept>

namespace ZUNO::Tools {
namespace {

/// A URI's text, in which any byte may stand as a percent sign and two digits.
std::string decoded(const std::string& uri) {
    std::string text;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        unsigned int byte = 0;
        const char* const digits = uri.data() + i + 1;
        const bool isCoded = uri[i] == '%' && i + 2 < uri.size() &&
                             std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        text += isCoded ? static_cast<char>(byte) : uri[i];
        i += isCoded ? 2 : 0;
    }
    return text;
}

/// Makes a model by `load(loader, model, error, warning)` and adds it to a scene.
template <typename Load>
void readModel(const std::string& name, const SceneOptions& options, Scene& scene, Load load) {
    tinygltf::TinyGLTF loader;
    // pictures are not looked at
    loader.SetImageLoader([](tinygltf::Image*, const int, std::string*, std::string*, int, int,
                             const unsigned char*, int, void*) { return true; },
                          nullptr);
    tinygltf::Model model;
    std::string error;
    std::string warning;
    if (!load(loader, &model, &error, &warning))
        throw std::runtime_error(
            name + ": cannot be read as glTF 2.0: " + error.substr(0, error.find('\n')));
    const std::string folder = name.substr(0, name.find_last_of("/\\") + 1);
    for (const tinygltf::Buffer& buffer : model.buffers)
        if (!buffer.uri.empty() && !buffer.uri.starts_with("data:"))
            scene.mBuffers.insert(folder + decoded(buffer.uri));
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
