// What a world reads of a mesh: as text, and as one number.
#include "common/utility/floatchars.h"
#include "hostkit/bytedigest.h"
#include "hostkit/meshfile.h"

#include <charconv>
#include <cstring>

namespace ZUNO::HostKit {

namespace {

using NavMesh::NavMeshContainer;
using Point = NavMeshContainer::Point3;

/// The XML form in the making.
class Text {
public:
    Text& operator<<(const char* piece) {
        mText += piece;
        return *this;
    }
    Text& operator<<(float number) {
        char digits[32];
        mText.append(digits, Common::Utility::exactFloatToChars(digits, digits + 32, number));
        return *this;
    }
    template <std::integral T>
    Text& operator<<(T number) {
        char digits[32];
        mText.append(digits, std::to_chars(digits, digits + 32, number).ptr);
        return *this;
    }
    Text& operator<<(const Point& p) { return *this << p.mX << "/" << p.mY << "/" << p.mZ; }

    template <typename T>
    void element(const char* name, const T& value) {
        *this << "<" << name << ">" << value << "</" << name << ">";
    }
    template <typename List>
    void list(const char* name, const char* element, const List& values) {
        *this << "<" << name << ">";
        for (const auto& value : values)
            this->element(element, value);
        *this << "</" << name << ">";
    }
    std::string take() { return std::move(mText); }

private:
    std::string mText;
};

/// Over the words of a mesh, the lowest byte of each first.
class Digest {
public:
    void add(std::uint32_t word) {
        for (unsigned int shift = 0; shift < 32; shift += 8)
            mBytes.add(static_cast<std::uint8_t>(word >> shift));
    }
    void add(std::int32_t number) { add(static_cast<std::uint32_t>(number)); }
    void add(float number) {
        std::uint32_t bits = 0; // the browser's C++ library has no std::bit_cast
        std::memcpy(&bits, &number, sizeof(bits));
        add(bits);
    }
    void add(const Point& p) {
        add(p.mX);
        add(p.mY);
        add(p.mZ);
    }
    template <typename List>
    void addList(const List& values) {
        add(static_cast<std::uint32_t>(values.size()));
        for (const auto& value : values)
            add(value);
    }
    std::uint64_t value() const { return mBytes.value(); }

private:
    ByteDigest mBytes;
};

} // namespace

std::string textOf(const NavMeshContainer& mesh) {
    Text text;
    text << "<?xml version=\"1.0\"?>\n<ZUNO><navmesh version=\"2.5.0\"><heightmap>";
    int id = 0;
    for (const float height : mesh.mHeights)
        text << "<height id=\"" << id++ << "\">" << height << "</height>";
    text << "</heightmap>";
    text.element("normal", mesh.mNormal);
    text.list("vertices", "pos", mesh.mVertices);
    text << "<nodes>";
    for (const auto& node : mesh.mNodes) {
        text << "<node>";
        text.element("heightclass", node.mHeightClass);
        text.list("polygon", "vert_id", node.mPolygon);
        text.list("neighbour", "node_id", node.mNeighbours);
        text << "</node>\n";
    }
    text << "</nodes>";
    text.element("xaxis", mesh.mXAxis);
    text.element("yaxis", mesh.mYAxis);
    text.element("cubesize", mesh.mCubeSize);
    text << "</navmesh></ZUNO>\n";
    return text.take();
}

std::uint64_t digestOf(const NavMeshContainer& mesh) {
    Digest digest;
    digest.addList(mesh.mHeights);
    digest.add(mesh.mNormal);
    digest.addList(mesh.mVertices);
    digest.add(static_cast<std::uint32_t>(mesh.mNodes.size()));
    for (const auto& node : mesh.mNodes) {
        digest.add(node.mHeightClass);
        digest.addList(node.mPolygon);
        digest.addList(node.mNeighbours);
    }
    digest.add(mesh.mXAxis);
    digest.add(mesh.mYAxis);
    digest.add(mesh.mCubeSize);
    return digest.value();
}

} // namespace ZUNO::HostKit
