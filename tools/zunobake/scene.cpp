#include "tools/zunobake/scene.h"

#include "tools/zunobake/gltfreader.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool endsIn(std::string name, std::string_view suffix) {
    std::transform(name.begin(), name.end(), name.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return name.ends_with(suffix);
}

} // namespace

std::uint16_t Scene::surfaceOf(const std::string& name) {
    const auto place = std::find(mSurfaceNames.begin(), mSurfaceNames.end(), name);
    const auto index = static_cast<std::uint16_t>(place - mSurfaceNames.begin());
    if (index == mSurfaceNames.size())
        mSurfaceNames.push_back(name);
    return index;
}

std::uint16_t Scene::surfaceFor(const std::string& name, bool isMarked,
                                const SceneOptions& options) {
    if (name.empty() || (options.mIgnoresMaterials && !isMarked))
        return noSurface;
    if (mSurfaceNames.size() == noSurface)
        throw std::runtime_error("more than 65,535 materials");
    return surfaceOf(name);
}

bool Scene::isLeftOut(const std::string& name, const SceneOptions& options) {
    const bool isNamed = contains(options.mWithout, name);
    if (isNamed)
        mNames.insert(name);
    return isNamed;
}

bool Scene::isMarked(const std::string& name, const SceneOptions& options) {
    const bool isNamed = contains(options.mMarked, name);
    if (isNamed)
        mNames.insert(name);
    return isNamed;
}

bool isBinaryGltf(const std::string& fileName) {
    return endsIn(fileName, ".glb");
}

bool isGltf(const std::string& fileName) {
    return isBinaryGltf(fileName) || endsIn(fileName, ".gltf");
}

void readScene(const std::string& fileName, const SceneOptions& options, Scene& scene,
               const ReadListener& listener) {
    if (isGltf(fileName))
        readGltf(fileName, options, scene);
    else
        readObj(fileName, options, scene, listener);
}

void readScene(const std::string& content, const std::string& name, const SceneOptions& options,
               Scene& scene, const ReadListener& listener) {
    if (isGltf(name))
        return readGltf(content, name, options, scene);
    std::istringstream stream(content);
    readObj(stream, content.size(), name, options, scene, listener);
}

} // namespace ZUNO::Tools
