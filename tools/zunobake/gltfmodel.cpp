// The triangles of a glTF file's scene, as the library TinyGLTF has read it.
#include "tools/zunobake/gltfmodel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace ZUNO::Tools {
namespace {

/// A transform, by columns.
using Matrix = std::array<double, 16>;

constexpr Matrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Matrix operator*(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t i = 0; i < 4; ++i)
                product[column * 4 + row] += a[i * 4 + row] * b[column * 4 + i];
    return product;
}

/// Whether a transform turns what is seen from outside inside out.
bool isMirrored(const Matrix& m) {
    return m[0] * (m[5] * m[10] - m[9] * m[6]) - m[4] * (m[1] * m[10] - m[9] * m[2]) +
               m[8] * (m[1] * m[6] - m[5] * m[2]) <
           0;
}

/// The node's own transform: its matrix, or translation, rotation and scale.
Matrix transformOf(const tinygltf::Node& node) {
    Matrix matrix = identity;
    if (node.matrix.size() == 16) {
        std::copy(node.matrix.begin(), node.matrix.end(), matrix.begin());
        return matrix;
    }
    if (node.rotation.size() == 4) {
        const double x = node.rotation[0];
        const double y = node.rotation[1];
        const double z = node.rotation[2];
        const double w = node.rotation[3];
        matrix = {1 - 2 * (y * y + z * z),
                  2 * (x * y + z * w),
                  2 * (x * z - y * w),
                  0,
                  2 * (x * y - z * w),
                  1 - 2 * (x * x + z * z),
                  2 * (y * z + x * w),
                  0,
                  2 * (x * z + y * w),
                  2 * (y * z - x * w),
                  1 - 2 * (x * x + y * y),
                  0,
                  0,
                  0,
                  0,
                  1};
    }
    if (node.scale.size() == 3)
        for (std::size_t i = 0; i < 12; ++i)
            matrix[i] *= node.scale[i / 4];
    if (node.translation.size() == 3)
        std::copy(node.translation.begin(), node.translation.end(), matrix.begin() + 12);
    return matrix;
}

/// Adds what a file holds to a scene.
class ModelReader {
public:
    ModelReader(const tinygltf::Model& model, const std::string& name, const SceneOptions& options,
                Scene& scene)
        : mModel(model), mName(name), mOptions(options), mScene(scene) {}

    void read() {
        if (!mModel.extensionsRequired.empty())
            fail("needs the extension " + mModel.extensionsRequired.front() +
                 ", which is not known here");
        mIsSeen.resize(mModel.nodes.size());
        const std::size_t before = mScene.triangleCount() + mScene.mLeftOut;
        if (mModel.scenes.empty()) {
            std::vector<bool> isChild(mModel.nodes.size());
            for (const tinygltf::Node& node : mModel.nodes)
                for (const int child : node.children)
                    if (child >= 0 && static_cast<std::size_t>(child) < isChild.size())
                        isChild[static_cast<std::size_t>(child)] = true;
            for (std::size_t i = 0; i < isChild.size(); ++i)
                if (!isChild[i])
                    addNode(static_cast<int>(i), identity, {});
        } else {
            for (const int node :
                 at(mModel.scenes, std::max(mModel.defaultScene, 0), "scene").nodes)
                addNode(node, identity, {});
        }
        if (mScene.triangleCount() + mScene.mLeftOut == before)
            fail("no faces");
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(mName + ": " + what);
    }

    template <typename Element>
    const Element& at(const std::vector<Element>& elements, int index, const char* what) const {
        if (index < 0 || static_cast<std::size_t>(index) >= elements.size())
            fail(std::string(what) + ' ' + std::to_string(index) + " is named and not there");
        return elements[static_cast<std::size_t>(index)];
    }

    /// What is named like an ancestor that is marked belongs to it, unless it is marked itself.
    void addNode(int index, const Matrix& parent, std::string mark) {
        const tinygltf::Node& node = at(mModel.nodes, index, "node");
        constexpr std::size_t deepest = 256;
        if (mIsSeen[static_cast<std::size_t>(index)])
            fail("node " + std::to_string(index) + " lies in two others, or in itself");
        mIsSeen[static_cast<std::size_t>(index)] = true;
        if (mDepth >= deepest)
            fail("nodes lie in each other more than 256 deep");
        const std::string mesh = node.mesh >= 0 ? at(mModel.meshes, node.mesh, "mesh").name : "";
        if (mScene.isLeftOut(node.name, mOptions)) {
            ++mScene.mLeftOut;
            return;
        }
        for (const std::string& name : {node.name, mesh})
            if (mScene.isMarked(name, mOptions))
                mark = name;
        const Matrix transform = parent * transformOf(node);
        if (node.mesh >= 0 && mScene.isLeftOut(mesh, mOptions))
            ++mScene.mLeftOut;
        else if (node.mesh >= 0)
            for (const tinygltf::Primitive& primitive : at(mModel.meshes, node.mesh, "").primitives)
                addPrimitive(primitive, transform, mark);
        ++mDepth;
        for (const int child : node.children)
            addNode(child, transform, mark);
        --mDepth;
    }

    std::string materialOf(const tinygltf::Primitive& primitive) const {
        return primitive.material >= 0 ? at(mModel.materials, primitive.material, "material").name
                                       : "";
    }

    void addPrimitive(const tinygltf::Primitive& primitive, const Matrix& transform,
                      const std::string& mark) {
        const std::string material = materialOf(primitive);
        if (mScene.isLeftOut(material, mOptions)) {
            ++mScene.mLeftOut;
            return;
        }
        const int mode = primitive.mode < 0 ? TINYGLTF_MODE_TRIANGLES : primitive.mode;
        const auto position = primitive.attributes.find("POSITION");
        if (mode < TINYGLTF_MODE_TRIANGLES || position == primitive.attributes.end())
            return; // points and lines are no ground
        const std::size_t first = mScene.mVertices.size() / 3;
        const std::size_t count = addVertices(position->second, transform);
        mSurface = mScene.surfaceFor(mark.empty() ? material : mark, !mark.empty(), mOptions);
        const std::vector<std::size_t> corners = listCorners(primitive, count);
        const bool isMirror = isMirrored(transform);
        const auto add = [&](std::size_t a, std::size_t b, std::size_t c) {
            addTriangle(first + corners[a], first + corners[isMirror ? c : b],
                        first + corners[isMirror ? b : c]);
        };
        if (mode == TINYGLTF_MODE_TRIANGLES)
            for (std::size_t i = 2; i < corners.size(); i += 3)
                add(i - 2, i - 1, i);
        else if (mode == TINYGLTF_MODE_TRIANGLE_STRIP)
            for (std::size_t i = 2; i < corners.size(); ++i)
                add(i - 2, i % 2 == 0 ? i - 1 : i, i % 2 == 0 ? i : i - 1);
        else
            for (std::size_t i = 2; i < corners.size(); ++i)
                add(0, i - 1, i);
    }

    void addTriangle(std::size_t a, std::size_t b, std::size_t c) {
        std::vector<float> positions;
        for (const std::size_t corner : {a, b, c})
            positions.insert(positions.end(), &mScene.mVertices[corner * 3],
                             &mScene.mVertices[corner * 3] + 3);
        if (triangulate(positions).empty()) { // strips have such by intention
            ++mScene.mLeftOut;
            return;
        }
        if (mScene.triangleCount() >= std::numeric_limits<int>::max() / 6)
            fail("too many triangles");
        const auto insert = [&](std::size_t x, std::size_t y, std::size_t z) {
            mScene.mTriangles.insert(
                mScene.mTriangles.end(),
                {static_cast<int>(x), static_cast<int>(y), static_cast<int>(z)});
            mScene.mSurfaces.push_back(mSurface);
        };
        insert(a, b, c);
        if (mOptions.mTakesBothSides)
            insert(a, c, b);
    }

    /// The bytes of an accessor, element by element.
    struct Elements {
        const unsigned char* mBytes;
        std::size_t mStride;
        std::size_t mCount;
        int mComponent;
    };
    Elements elementsOf(int index, int type, const char* what) const {
        const tinygltf::Accessor& accessor = at(mModel.accessors, index, "accessor");
        if (accessor.sparse.isSparse)
            fail(std::string(what) + " are in a sparse accessor, which is not taken");
        if (accessor.type != type)
            fail(std::string(what) + " are of another type than they must be");
        const tinygltf::BufferView& view =
            at(mModel.bufferViews, accessor.bufferView, "buffer view");
        const std::vector<unsigned char>& data = at(mModel.buffers, view.buffer, "buffer").data;
        const int stride = accessor.ByteStride(view);
        const int size =
            tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(accessor.componentType)) *
            tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(type));
        const std::size_t begin = view.byteOffset + accessor.byteOffset;
        const bool fits =
            stride > 0 && size > 0 && view.byteOffset <= data.size() &&
            accessor.byteOffset <= data.size() && begin <= data.size() &&
            accessor.count <= data.size() &&
            (accessor.count == 0 || (accessor.count - 1) * static_cast<std::size_t>(stride) +
                                            static_cast<std::size_t>(size) <=
                                        data.size() - begin);
        if (!fits)
            fail(std::string(what) + " reach beyond their buffer");
        return {data.data() + begin, static_cast<std::size_t>(stride), accessor.count,
                accessor.componentType};
    }

    std::size_t addVertices(int accessor, const Matrix& m) {
        const Elements elements = elementsOf(accessor, TINYGLTF_TYPE_VEC3, "positions");
        if (elements.mComponent != TINYGLTF_COMPONENT_TYPE_FLOAT)
            fail("positions are no floats");
        if (mScene.mVertices.size() / 3 + elements.mCount > std::numeric_limits<int>::max() / 3)
            fail("too many vertices");
        for (std::size_t i = 0; i < elements.mCount; ++i) {
            float p[3];
            std::memcpy(p, elements.mBytes + i * elements.mStride, sizeof(p));
            for (std::size_t row = 0; row < 3; ++row) {
                const auto value =
                    static_cast<float>(m[row] * double{p[0]} + m[4 + row] * double{p[1]} +
                                       m[8 + row] * double{p[2]} + m[12 + row]);
                if (!std::isfinite(value))
                    fail("a position is not finite");
                mScene.mVertices.push_back(value);
            }
        }
        return elements.mCount;
    }

    /// The vertices of a primitive in the order of its triangles.
    std::vector<std::size_t> listCorners(const tinygltf::Primitive& primitive,
                                         std::size_t count) const {
        std::vector<std::size_t> corners;
        if (primitive.indices < 0) {
            for (std::size_t i = 0; i < count; ++i)
                corners.push_back(i);
            return corners;
        }
        const Elements elements = elementsOf(primitive.indices, TINYGLTF_TYPE_SCALAR, "indices");
        const int bytes =
            tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(elements.mComponent));
        for (std::size_t i = 0; i < elements.mCount; ++i) {
            std::size_t corner = 0; // the bytes stand from the lowest to the highest
            for (int byte = bytes - 1; byte >= 0; --byte)
                corner = corner << 8U |
                         elements.mBytes[i * elements.mStride + static_cast<std::size_t>(byte)];
            if (corner >= count)
                fail("index " + std::to_string(corner) +
                     " is out of range: " + std::to_string(count) + " vertices");
            corners.push_back(corner);
        }
        return corners;
    }

    const tinygltf::Model& mModel;
    const std::string& mName;
    const SceneOptions& mOptions;
    Scene& mScene;
    std::vector<bool> mIsSeen; ///< for each node
    std::size_t mDepth = 0;
    std::uint16_t mSurface = Scene::noSurface;
};

} // namespace

void addModel(const tinygltf::Model& model, const std::string& name, const SceneOptions& options,
              Scene& scene) {
    ModelReader(model, name, options, scene).read();
}

} // namespace ZUNO::Tools
