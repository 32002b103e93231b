#pragma once

#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshfigures.h"
#include "tools/zunobake/baker.h"
#include "worlds/scenes.h"

#include <sstream>

namespace ZUNO::Tests {

/// A scene and the mesh that is made of it, in memory.
struct BakedScene {
    BakedScene(const Worlds::SceneModel& model, const Tools::BakeSettings& settings)
        : mSettings(settings) {
        const std::string text = model.toObj("scene");
        std::istringstream file(text);
        Tools::readObj(file, text.size(), "scene", {}, mScene);
        const Tools::TileBaker baker(mScene, mSettings);
        const Tools::BakedMesh baked(Tools::bakeTiles(baker, [](std::size_t, std::size_t) {}),
                                     mSettings, baker.cells());
        baked.fill(*mMesh.shared(), baker.grid(), mScene, Tools::UpAxis::Y);
    }

    Tools::BakeSettings mSettings;
    Tools::Scene mScene;
    Tools::LoadedMesh mMesh;
};

} // namespace ZUNO::Tests
