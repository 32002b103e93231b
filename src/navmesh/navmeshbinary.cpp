// The mesh's binary form.
#include "common/memory/objectcreation.h"
#include "common/serialize/binaryserializestorage.h"
#include "navmesh/meshforms.h"

#include <algorithm>
#include <memory>

namespace ZUNO::NavMesh {

using namespace Common;
using Serialize::BinarySerializeStorage;

namespace {

constexpr std::uint32_t formatVersion = 25;

/// The names of a vector's three components.
struct VectorNames {
    explicit VectorNames(const char* base)
        : mX(base + String("_x")), mY(base + String("_y")), mZ(base + String("_z")) {}
    String mX;
    String mY;
    String mZ;
};

/// Writes one mesh. Names are made once: each item's is looked up in the storage.
class Writer {
public:
    Writer(const NavMeshContainer& mesh, BinarySerializeStorage& storage)
        : mMesh(mesh), mOut(storage) {}

    void run() {
        mOut.writeClassEnter("navmesh", "navmesh", "navmesh", formatVersion);
        writeCount("heightmapcount", mMesh.mHeights.size());
        for (const float height : mMesh.mHeights)
            mOut.writeFloat32("height", height);
        write(VectorNames("normal"), mMesh.mNormal);
        write(VectorNames("xaxis"), mMesh.mXAxis);
        write(VectorNames("yaxis"), mMesh.mYAxis);
        mOut.writeFloat32("cubesize", mMesh.mCubeSize);
        const VectorNames position("pos");
        writeCount("numvertices", mMesh.mVertices.size());
        for (const auto& vertex : mMesh.mVertices)
            write(position, vertex);
        writeCount("numnodes", mMesh.mNodes.size());
        for (const auto& node : mMesh.mNodes)
            write(node);
        writeTables();
        mOut.writeClassExit();
    }

private:
    void writeCount(const char* name, std::size_t count) {
        mOut.writeUInt32(name, static_cast<std::uint32_t>(count));
    }

    void write(const VectorNames& names, const Math::Vec3<float>& vector) {
        mOut.writeFloat32(names.mX, vector.mX);
        mOut.writeFloat32(names.mY, vector.mY);
        mOut.writeFloat32(names.mZ, vector.mZ);
    }

    void write(const NavMeshContainer::NavNode& node) {
        mOut.writeInt32(mHeightClass, node.mHeightClass);
        mOut.writeUInt16(mSurfaceType, node.mSurfaceTypeID);
        mOut.writeUInt32(mCornerCount, static_cast<std::uint32_t>(node.mPolygon.size()));
        for (const std::uint32_t corner : node.mPolygon)
            mOut.writeUInt32(mCorner, corner);
        for (std::size_t i = 0; i < node.mPolygon.size(); ++i)
            mOut.writeInt32(mNeighbour, i < node.mNeighbours.size() ? node.mNeighbours[i] : -1);
    }

    void writeTables() {
        writeCount("numcharacters", mMesh.mCharacters.size());
        for (const auto& info : mMesh.mCharacters) {
            mOut.writeBString("name", info.mName);
            mOut.writeInt64("userid", info.mUserID);
            mOut.writeFloat32("physicalheight", info.mPhysicalHeight);
            mOut.writeFloat32("jumpheight", info.mJumpHeight);
            mOut.writeFloat32("fallheight", info.mFallHeight);
            mOut.writeUInt32("maxheightclassid", info.mMaxHeightClassID);
        }
        writeCount("numsurfacetypes", mMesh.mSurfaceTypes.size());
        for (const auto& type : mMesh.mSurfaceTypes) {
            mOut.writeBString("name", type.mName);
            mOut.writeUInt16("id", type.mID);
        }
    }

    const NavMeshContainer& mMesh;
    BinarySerializeStorage& mOut;
    const String mHeightClass = "heightclass";
    const String mSurfaceType = "surfacetypeid";
    const String mCornerCount = "numpolygon";
    const String mCorner = "vert_id";
    const String mNeighbour = "node_id";
};

void reportNeighboursLeftOut(const NavMeshContainer& mesh) {
    if (const std::int32_t node = findNodeUnfitForBinary(mesh); node >= 0)
        ZUNO_REPORT("", "node " << node
                                << " has neighbours behind its last corner: the binary form leaves "
                                   "them out, and paths over them will not be found");
}

/// Reads one mesh; the names of items are not looked at.
class Reader {
public:
    /// `length`: of the stream, which bounds what a count may reserve.
    Reader(NavMeshContainer& mesh, BinarySerializeStorage& storage, std::int64_t length)
        : mMesh(mesh), mIn(storage),
          mMaxItems(static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0)) / smallestItem) {}

    void run() {
        String text;
        std::uint32_t version = 0;
        mIn.readClassEnter(mName, text, text, version);
        readAll(mMesh.mHeights, 1, [&] {
            mMesh.mHeights.push_back(0);
            mIn.readValue(mMesh.mHeights.back());
        });
        read(mMesh.mNormal);
        read(mMesh.mXAxis);
        read(mMesh.mYAxis);
        mIn.readValue(mMesh.mCubeSize);
        readAll(mMesh.mVertices, 3, [&] { read(mMesh.mVertices.emplace_back()); });
        readAll(mMesh.mNodes, 3, [&] { read(mMesh.mNodes.emplace_back(mMesh.getAllocator())); });
        readAll(mMesh.mCharacters, 6, [&] { read(mMesh.mCharacters.emplace_back()); });
        readAll(mMesh.mSurfaceTypes, 2, [&] { read(mMesh.mSurfaceTypes.emplace_back()); });
        mIn.readClassExit();
    }

private:
    static constexpr std::uint64_t smallestItem = 6; // type, name, one byte

    std::uint32_t readCount() {
        std::uint32_t count = 0;
        mIn.readValue(count);
        return count;
    }

    /// Takes room for what a count promises, as far as the stream can hold it.
    template <typename Table>
    void reserve(Table& table, std::uint32_t count, std::uint64_t itemsEach) const {
        const std::uint64_t most = table.max_size() - table.size();
        table.reserve(table.size() + static_cast<std::size_t>(std::min<std::uint64_t>(
                                         {count, mMaxItems / itemsEach, most})));
    }

    template <typename Table, typename ReadOne>
    void readAll(Table& table, std::uint64_t itemsEach, ReadOne readOne) {
        const std::uint32_t count = readCount();
        reserve(table, count, itemsEach);
        for (std::uint32_t i = 0; i < count; ++i)
            readOne();
    }

    void read(Math::Vec3<float>& vector) {
        mIn.readValue(vector.mX);
        mIn.readValue(vector.mY);
        mIn.readValue(vector.mZ);
    }

    void read(NavMeshContainer::NavNode& node) {
        mIn.readValue(node.mHeightClass);
        mIn.readValue(node.mSurfaceTypeID);
        const std::uint32_t count = readCount();
        reserve(node.mPolygon, count, 2);
        reserve(node.mNeighbours, count, 2);
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint32_t corner = 0;
            mIn.readValue(corner);
            node.mPolygon.push_back(corner);
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            std::int32_t neighbour = 0;
            mIn.readValue(neighbour);
            node.mNeighbours.push_back(neighbour);
        }
    }

    void read(NavMeshContainer::CharacterInfo& info) {
        mIn.readBString(mName, info.mName);
        mIn.readValue(info.mUserID);
        mIn.readValue(info.mPhysicalHeight);
        mIn.readValue(info.mJumpHeight);
        mIn.readValue(info.mFallHeight);
        mIn.readValue(info.mMaxHeightClassID);
    }

    void read(NavMeshContainer::SurfaceType& type) {
        mIn.readBString(mName, type.mName);
        mIn.readValue(type.mID);
    }

    NavMeshContainer& mMesh;
    BinarySerializeStorage& mIn;
    std::uint64_t mMaxItems;
    String mName;
};

} // namespace

bool NavMeshContainer::readBinary(const SharedPtr<IO::Stream>& stream) {
    constexpr int anyMarker = 2; // the stream says its own
    const std::unique_ptr<BinarySerializeStorage> storage(
        Memory::createManaged<BinarySerializeStorage>(mAllocator, Serialize::SMODE_INPUT,
                                                      anyMarker));
    storage->open(stream);
    Reader(*this, *storage, stream->getLength()).run();
    return true;
}

void NavMeshContainer::writeBinary(const SharedPtr<IO::Stream>& stream, std::int32_t option) const {
    writeBinary(stream, option, mAllocator);
}

void NavMeshContainer::writeBinary(const SharedPtr<IO::Stream>& stream, std::int32_t option,
                                   const SharedPtr<Memory::Allocator>& allocator) const {
    const std::unique_ptr<BinarySerializeStorage> storage(
        Memory::createManaged<BinarySerializeStorage>(allocator, Serialize::SMODE_OUTPUT, option));
    reportNeighboursLeftOut(*this);
    storage->open(stream);
    Writer(*this, *storage).run();
    storage->close();
}

} // namespace ZUNO::NavMesh
