// A bake as the page asks for it.
#include "tools/zunobake/scenemesh.h"
#include "tools/zunobake/summary.h"

#include <cstdlib>
#include <new>
#include <sstream>
#include <stdexcept>

namespace ZUNO::Tools {
namespace {

/// What the page is given, by the numbers that viewer/src/baker.ts knows.
enum class Result : std::int32_t {
    FAILURE,     ///< the text of what went wrong, alone
    SUMMARY,     ///< what zunobake prints
    BINARY,      ///< the mesh's file
    XML,         ///< the mesh's file, or instead of it:
    XML_FAILURE, ///< the text of why there is none
    TRIANGLES    ///< the scene, three corners of three floats each, with the up axis of its file
};

/// What the page asks for: doubles, so that its numbers come as they are.
struct Order {
    double mRadius;
    double mHeight;
    double mClimb;
    double mSlope;
    double mCellSize;
    double mCellHeight;
    double mIsZUp;
    double mTakesBothSides;
    double mSkipsDegenerate;
};

BakeSettings settingsOf(const Order& order) {
    BakeSettings settings;
    settings.mCellSize = order.mCellSize;
    settings.mCellHeight = order.mCellHeight;
    settings.mRadius = static_cast<float>(order.mRadius);
    settings.mClimb = static_cast<float>(order.mClimb);
    settings.mSlope = static_cast<float>(order.mSlope);
    settings.mAgents = {{"agent", static_cast<float>(order.mHeight)}};
    return settings;
}

SceneOptions optionsOf(const Order& order) {
    SceneOptions options;
    options.mUp = order.mIsZUp != 0 ? UpAxis::Z : UpAxis::Y;
    options.mTakesBothSides = order.mTakesBothSides != 0;
    options.mSkipsDegenerate = order.mSkipsDegenerate != 0;
    return options;
}

} // namespace
} // namespace ZUNO::Tools

using ZUNO::Tools::Order;
using ZUNO::Tools::Result;

#define ZUNO_PAGE(name) __attribute__((import_module("env"), import_name(#name))) name

extern "C" {

void ZUNO_PAGE(zuno_bake_progress)(const char* stage, std::size_t length, double done, double all);
void ZUNO_PAGE(zuno_bake_give)(Result kind, const void* bytes, std::size_t size);

__attribute__((export_name("zuno_bake"))) void zuno_bake(const char* name, char* content,
                                                         std::size_t size, const Order* order);
}

namespace ZUNO::Tools {
namespace {

void give(Result kind, std::string_view bytes) {
    zuno_bake_give(kind, bytes.data(), bytes.size());
}

void giveTriangles(const Scene& scene, UpAxis up) {
    std::vector<float> corners;
    corners.reserve(scene.mTriangles.size() * 3);
    for (const int vertex : scene.mTriangles) {
        const float* const at = &scene.mVertices[static_cast<std::size_t>(vertex) * 3];
        if (up == UpAxis::Z)
            corners.insert(corners.end(), {at[0], 0.0F - at[2], at[1]});
        else
            corners.insert(corners.end(), at, at + 3);
    }
    zuno_bake_give(Result::TRIANGLES, corners.data(), corners.size() * sizeof(float));
}

void giveXML(const SceneMesh& baked, const Scene& scene, const BakeSettings& settings) {
    try {
        requireWritableNames(scene, settings);
        give(Result::XML, baked.mesh().contentIn(MeshForm::XML));
    } catch (const std::runtime_error& error) {
        give(Result::XML_FAILURE, error.what());
    }
}

/// Bakes what is in `content`, which it gives back as soon as it is read.
void bake(const std::string& name, std::string content, const Order& order) {
    std::string stage;
    const auto show = [&](std::size_t done, std::size_t all) {
        zuno_bake_progress(stage.data(), stage.size(), static_cast<double>(done),
                           static_cast<double>(all));
    };
    const auto begin = [&](const char* next) {
        stage = next;
        show(0, 0);
    };
    const SceneOptions options = optionsOf(order);
    const BakeSettings settings = settingsOf(order);
    Scene scene;
    begin("reading");
    readScene(content, name, options, scene, show);
    std::string().swap(content);
    const SceneMesh baked(scene, settings, options.mUp, {}, {begin, show});
    begin("writing");
    give(Result::BINARY, baked.mesh().contentIn(MeshForm::BINARY));
    giveXML(baked, scene, settings);
    giveTriangles(scene, options.mUp);
    std::ostringstream text;
    Summary(*baked.mesh(), scene, settings, options.mUp)
        .print(text, name, baked.islandsLeftOut(), baked.unreachable());
    give(Result::SUMMARY, text.str());
}

} // namespace
} // namespace ZUNO::Tools

void zuno_bake(const char* name, char* content, std::size_t size, const Order* order) {
    try {
        std::string copy(content, size);
        std::free(content);
        ZUNO::Tools::bake(name, std::move(copy), *order);
    } catch (const std::bad_alloc&) {
        ZUNO::Tools::give(Result::FAILURE, "out of memory");
    } catch (const std::exception& error) {
        ZUNO::Tools::give(Result::FAILURE, error.what());
    }
}
