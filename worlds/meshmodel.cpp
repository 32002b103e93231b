#include "worlds/meshmodel.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>

namespace ZUNO::Worlds {

namespace {

constexpr float quarter = 0.25F;
constexpr int noSurface = 0xFFFF;

void put(std::ostream& out, int depth, const char* name, const std::string& text) {
    out << std::string(static_cast<std::size_t>(depth), '\t') << '<' << name << '>' << text << "</"
        << name << ">\n";
}

template <typename T>
std::string textOf(T number) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << number;
    return text.str();
}

std::string textOf(const MeshModel::Corner& corner) {
    const auto number = [](int quarters) { return textOf(static_cast<float>(quarters) * quarter); };
    return number(corner.mX) + '/' + number(corner.mY) + '/' + number(corner.mZ);
}

} // namespace

std::uint32_t MeshModel::vertexOf(const Corner& corner) {
    const auto [place, isNew] =
        mVertexIds.try_emplace(corner, static_cast<std::uint32_t>(mVertices.size()));
    if (isNew)
        mVertices.push_back(corner);
    return place->second;
}

void MeshModel::addPolygon(std::vector<Corner> corners, int heightClass, int surface) {
    const auto lowest = std::ranges::min_element(corners, {}, &Corner::mY);
    std::rotate(corners.begin(), lowest, corners.end());
    Node node{{}, {}, heightClass, surface};
    for (const Corner& corner : corners)
        node.mPolygon.push_back(vertexOf(corner));
    mNodes.push_back(node);
}

void MeshModel::splitBorders(Node& node) const {
    std::vector<std::uint32_t> split;
    for (std::size_t i = 0; i < node.mPolygon.size(); ++i) {
        const std::uint32_t id = node.mPolygon[i];
        const Corner& a = mVertices[id];
        const Corner& b = mVertices[node.mPolygon[(i + 1) % node.mPolygon.size()]];
        split.push_back(id);
        const Corner sum{a.mX + b.mX, a.mY + b.mY, a.mZ + b.mZ};
        if (sum.mX % 2 != 0 || sum.mY % 2 != 0 || sum.mZ % 2 != 0)
            continue;
        const auto middle = mVertexIds.find({sum.mX / 2, sum.mY / 2, sum.mZ / 2});
        if (middle != mVertexIds.end())
            split.push_back(middle->second);
    }
    node.mPolygon = split;
}

void MeshModel::connect() {
    using Border = std::pair<std::uint32_t, std::uint32_t>;
    std::map<Border, std::int32_t> owners;
    for (std::size_t id = 0; id < mNodes.size(); ++id) {
        Node& node = mNodes[id];
        splitBorders(node);
        for (std::size_t i = 0; i < node.mPolygon.size(); ++i)
            owners[{node.mPolygon[i], node.mPolygon[(i + 1) % node.mPolygon.size()]}] =
                static_cast<std::int32_t>(id);
    }
    for (Node& node : mNodes) {
        node.mNeighbours.clear();
        for (std::size_t i = 0; i < node.mPolygon.size(); ++i) {
            const auto other =
                owners.find({node.mPolygon[(i + 1) % node.mPolygon.size()], node.mPolygon[i]});
            node.mNeighbours.push_back(other != owners.end() ? other->second : -1);
        }
    }
}

std::string MeshModel::toXML(const std::string& comment) const {
    std::ostringstream out;
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<!-- " << comment
        << " -->\n<ZUNO>\n\t<navmesh version=\"2.5.0\">\n\t\t<heightmap>\n";
    for (std::size_t i = 0; i < mHeights.size(); ++i)
        out << "\t\t\t<height id=\"" << i << "\">" << textOf(mHeights[i]) << "</height>\n";
    out << "\t\t</heightmap>\n";
    put(out, 2, "normal", "0/1/0");
    out << "\t\t<vertices>\n";
    for (const Corner& corner : mVertices)
        put(out, 3, "pos", textOf(corner));
    out << "\t\t</vertices>\n\t\t<nodes>\n";
    for (const Node& node : mNodes) {
        out << "\t\t\t<node>\n";
        put(out, 4, "heightclass", textOf(node.mHeightClass));
        out << "\t\t\t\t<polygon>\n";
        for (const std::uint32_t corner : node.mPolygon)
            put(out, 5, "vert_id", textOf(corner));
        out << "\t\t\t\t</polygon>\n\t\t\t\t<neighbour>\n";
        for (const std::int32_t neighbour : node.mNeighbours)
            put(out, 5, "node_id", textOf(neighbour));
        out << "\t\t\t\t</neighbour>\n";
        if (node.mSurface != noSurface)
            put(out, 4, "surfacetypeid", textOf(node.mSurface));
        out << "\t\t\t</node>\n";
    }
    out << "\t\t</nodes>\n";
    put(out, 2, "xaxis", "1/0/0");
    put(out, 2, "yaxis", "0/0/1");
    put(out, 2, "cubesize", textOf(mCubeSize));
    out << "\t\t<characters>\n";
    int userId = 1;
    for (const auto& [name, height, jump, fall, heightClass] : mCharacters) {
        out << "\t\t\t<character>\n";
        put(out, 4, "name", name);
        put(out, 4, "userid", textOf(userId++));
        put(out, 4, "physicalheight", textOf(height));
        put(out, 4, "jumpheight", textOf(jump));
        put(out, 4, "fallheight", textOf(fall));
        put(out, 4, "maxheightclassid", textOf(heightClass));
        out << "\t\t\t</character>\n";
    }
    out << "\t\t</characters>\n\t\t<surfacetypes>\n";
    for (std::size_t i = 0; i < mSurfaceNames.size(); ++i) {
        out << "\t\t\t<surfacetype>\n";
        put(out, 4, "name", mSurfaceNames[i]);
        put(out, 4, "id", textOf(i));
        out << "\t\t\t</surfacetype>\n";
    }
    out << "\t\t</surfacetypes>\n\t</navmesh>\n</ZUNO>\n";
    return out.str();
}

std::vector<std::array<float, 3>> placesOn(const MeshModel& mesh) {
    std::vector<std::array<float, 3>> places;
    for (const MeshModel::Node& node : mesh.mNodes) {
        std::array<float, 3> sum{};
        for (const std::uint32_t id : node.mPolygon) {
            const MeshModel::Corner& corner = mesh.mVertices[id];
            sum[0] += static_cast<float>(corner.mX);
            sum[1] += static_cast<float>(corner.mY);
            sum[2] += static_cast<float>(corner.mZ);
        }
        for (float& coordinate : sum)
            coordinate *= quarter / static_cast<float>(node.mPolygon.size());
        places.push_back(sum);
    }
    return places;
}

MeshModel makeFloor(unsigned int nodeCount, unsigned int seed) {
    constexpr int side = 8; // quarters
    constexpr unsigned int holePercent = 15;
    MeshModel mesh;
    mesh.mHeights = {2};
    mesh.mCubeSize = 0.5F;
    const int columns = static_cast<int>(std::sqrt(nodeCount * 100.0 / (100 - holePercent)));
    std::mt19937 random(seed);
    for (int z = 0; mesh.mNodes.size() < nodeCount; ++z)
        for (int x = 0; x < columns && mesh.mNodes.size() < nodeCount; ++x) {
            if (random() % 100 < holePercent)
                continue;
            const int left = x * side;
            const int low = z * side;
            mesh.addPolygon({{left, 0, low},
                             {left + side, 0, low},
                             {left + side, 0, low + side},
                             {left, 0, low + side}},
                            0, noSurface);
        }
    mesh.connect();
    return mesh;
}

} // namespace ZUNO::Worlds
