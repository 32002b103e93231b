#include "tools/picture/meshpicture.h"

#include "navmesh/planegrid.h"
#include "tools/picture/meshfigures.h"
#include "tools/picture/xmltext.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <numeric>
#include <sstream>

namespace ZUNO::Tools {

namespace {

constexpr float paper = 1200; // the longer side of the drawing
constexpr float margin = 30;
constexpr float header = 56;
constexpr float legendWidth = 250;
constexpr float maxSquares = 400; // along the longer side

using Colour = std::array<int, 3>;
constexpr Colour lowGround{226, 217, 196};
constexpr Colour highGround{246, 178, 96};
constexpr Colour island{190, 190, 200};
constexpr const char* pathColours[] = {"#c2185b", "#1565c0", "#2e7d32", "#6a1b9a",
                                       "#00838f", "#d84315", "#283593", "#827717"};

std::string hex(const Colour& from, const Colour& to, float share) {
    std::string text = "#";
    constexpr char digits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < 3; ++i) {
        const float mixed =
            static_cast<float>(from[i]) + share * static_cast<float>(to[i] - from[i]);
        const auto value = static_cast<unsigned int>(std::clamp(mixed, 0.0F, 255.0F));
        text += digits[value / 16];
        text += digits[value % 16];
    }
    return text;
}

} // namespace

MeshPicture::MeshPicture(const NavMesh::NavMeshContainer& mesh, const std::string& title)
    : mMesh(mesh), mTitle(title), mIslands(findIslands(mesh)) {
    const Common::Math::Rect bounds = NavMesh::measurePlane(mesh).mBounds;
    const Point size = bounds.mMax - bounds.mMin;
    mMin = bounds.mMin;
    mScale = paper / std::max({size.mX, size.mY, 1e-20F});
    mWidth = size.mX * mScale;
    mHeight = size.mY * mScale;
    mLowest = mHighest = heightOf(mesh.mNodes.front());
    for (const auto& node : mesh.mNodes) {
        mLowest = std::min(mLowest, heightOf(node));
        mHighest = std::max(mHighest, heightOf(node));
    }
}

MeshPicture::Point MeshPicture::onPaper(const Point& point) const {
    return Point(margin, header) + (point - mMin) * mScale;
}

MeshPicture::Point MeshPicture::onPaper(const Common::Math::Vec3<float>& point) const {
    return onPaper(mMesh.projectToPlane(point));
}

float MeshPicture::heightOf(const NavMesh::NavMeshContainer::NavNode& node) const {
    float sum = 0;
    for (const std::uint32_t corner : node.mPolygon)
        sum += dot(mMesh.mVertices[corner], mMesh.mNormal);
    return sum / static_cast<float>(node.mPolygon.size());
}

void MeshPicture::addBlockedCells(const std::function<bool(const Point&)>& isBlocked) {
    const float extent = paper / mScale;
    const float step = std::max(mMesh.mCubeSize, extent / maxSquares);
    const int columns = static_cast<int>(mWidth / mScale / step) + 1;
    const int rows = static_cast<int>(mHeight / mScale / step) + 1;
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x) {
            const auto corner = [&](int column) {
                return mMin + Point(static_cast<float>(column), static_cast<float>(y)) * step;
            };
            const int first = x;
            const Point half(step / 2, step / 2);
            while (x < columns && isBlocked(corner(x) + half))
                ++x;
            if (x > first)
                mBlocked.push_back({onPaper(corner(first)),
                                    static_cast<float>(x - first) * step * mScale, step * mScale});
        }
}

std::string MeshPicture::fillOf(std::size_t node) const {
    if (mIslands[node] != 0)
        return hex(island, island, 0);
    const float range = mHighest - mLowest;
    return hex(lowGround, highGround,
               range > 0 ? (heightOf(mMesh.mNodes[node]) - mLowest) / range : 0);
}

void MeshPicture::writeNode(std::ostream& out, std::size_t id) const {
    const auto& node = mMesh.mNodes[id];
    out << "<polygon points=\"";
    for (const std::uint32_t corner : node.mPolygon) {
        const Point p = onPaper(mMesh.mVertices[corner]);
        out << p.mX << ',' << p.mY << ' ';
    }
    out << "\" fill=\"" << fillOf(id) << "\"><title>node " << id << "</title></polygon>\n";
    for (std::size_t i = 0; i < node.mPolygon.size() && i < node.mNeighbours.size(); ++i) {
        if (node.mNeighbours[i] >= 0)
            continue;
        const Point a = onPaper(mMesh.mVertices[node.mPolygon[i]]);
        const Point b = onPaper(mMesh.mVertices[node.mPolygon[(i + 1) % node.mPolygon.size()]]);
        out << "<path class=\"wall\" d=\"M" << a.mX << ' ' << a.mY << 'L' << b.mX << ' ' << b.mY
            << "\"/>\n";
    }
}

void MeshPicture::writeNodes(std::ostream& out) const {
    std::vector<std::size_t> order(mMesh.mNodes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) {
        return heightOf(mMesh.mNodes[a]) < heightOf(mMesh.mNodes[b]);
    });
    // what lies clearly above the lowest floor shows what is under it
    const float upper = mLowest + (mHighest - mLowest) * 0.25F;
    const char* openGroup = "";
    for (const std::size_t id : order) {
        const char* const group = heightOf(mMesh.mNodes[id]) > upper ? "upper" : "node";
        if (std::string(group) != openGroup) {
            out << (*openGroup != '\0' ? "</g>\n" : "") << "<g class=\"" << group << "\">\n";
            openGroup = group;
        }
        writeNode(out, id);
    }
    out << "</g>\n";
}

void MeshPicture::writeBlocked(std::ostream& out) const {
    if (mBlocked.empty())
        return;
    out << "<path class=\"blocked\" d=\"";
    for (const Square& square : mBlocked)
        out << 'M' << square.mCorner.mX << ' ' << square.mCorner.mY << 'h' << square.mWidth << 'v'
            << square.mHeight << 'h' << -square.mWidth << 'z';
    out << "\"/>\n";
}

void MeshPicture::writeLine(std::ostream& out, const char* kind, const char* colour,
                            const std::vector<Common::Math::Vec3<float>>& points) const {
    out << "<polyline class=\"" << kind << "\" stroke=\"" << colour << "\" points=\"";
    for (const Common::Math::Vec3<float>& point : points) {
        const Point p = onPaper(point);
        out << p.mX << ',' << p.mY << ' ';
    }
    out << "\"/>\n";
}

void MeshPicture::writePaths(std::ostream& out) const {
    for (std::size_t i = 0; i < mPaths.size(); ++i) {
        const DrawnPath& path = mPaths[i];
        const char* const colour = path.mIsFound ? pathColours[i % std::size(pathColours)] : "#555";
        const Point start = onPaper(path.mStart);
        const Point goal = onPaper(path.mGoal);
        if (path.mIsFound) {
            std::vector<Common::Math::Vec3<float>> line{path.mStart};
            line.insert(line.end(), path.mWaypoints.begin(), path.mWaypoints.end());
            line.push_back(path.mGoal);
            writeLine(out, path.mCorners.empty() ? "path" : "path faint", colour, line);
            if (!path.mCorners.empty())
                writeLine(out, "path", colour, path.mCorners);
        } else {
            out << "<path class=\"lost\" d=\"M" << start.mX << ' ' << start.mY << 'L' << goal.mX
                << ' ' << goal.mY << "\"/>\n";
        }
        out << "<circle cx=\"" << start.mX << "\" cy=\"" << start.mY
            << "\" r=\"4\" fill=\"#fff\" stroke-width=\"2\" stroke=\"" << colour << "\"/>\n"
            << "<path d=\"M" << goal.mX << ' ' << goal.mY - 6 << "l6 6l-6 6l-6 -6z\" fill=\""
            << colour << "\" stroke=\"#fff\"/>\n";
    }
}

void MeshPicture::writeWalks(std::ostream& out) const {
    for (std::size_t i = 0; i < mWalks.size(); ++i) {
        out << "<circle r=\"5\" stroke=\"#fff\" fill=\"" << pathColours[i % std::size(pathColours)]
            << "\"><animateMotion calcMode=\"linear\" repeatCount=\"indefinite\" dur=\""
            << mWalkSeconds << "s\" values=\"";
        const char* separator = "";
        for (const Common::Math::Vec3<float>& position : mWalks[i].mPositions) {
            const Point p = onPaper(position);
            out << separator << p.mX << ',' << p.mY;
            separator = ";";
        }
        out << "\"/></circle>\n";
    }
}

void MeshPicture::writeLegend(std::ostream& out) const {
    const float x = margin + mWidth + 30;
    float y = header + 14;
    const auto entry = [&](const std::string& sign, const std::string& text) {
        out << "<g transform=\"translate(" << x << ' ' << y << ")\">" << sign
            << "<text x=\"44\" y=\"5\">" << xmlTextOf(text) << "</text></g>\n";
        y += 28;
    };
    const auto box = [](const std::string& fill) {
        return "<rect y=\"-8\" width=\"32\" height=\"16\" stroke=\"#777\" fill=\"" + fill + "\"/>";
    };
    const auto height = [](float value) {
        std::string text = std::to_string(value);
        return text.substr(0, text.find('.') + 2);
    };
    entry(box(hex(lowGround, highGround, 0)), "lowest floor, " + height(mLowest));
    if (mHighest > mLowest)
        entry(box(hex(lowGround, highGround, 1)), "highest floor, " + height(mHighest));
    if (std::ranges::any_of(mIslands, [](unsigned int number) { return number != 0; }))
        entry(box(hex(island, island, 0)), "island apart from the largest");
    entry("<path d=\"M0 0h32\" stroke=\"#fff\" stroke-width=\"2\"/>", "border with a neighbour");
    entry("<path class=\"wall\" d=\"M0 0h32\"/>", "border without");
    if (!mBlocked.empty())
        entry(box("url(#hatch)"), "blocked for rays");
    if (!mWalks.empty())
        entry("<circle cx=\"16\" r=\"5\" fill=\"#1565c0\" stroke=\"#fff\"/>", "character");
    if (mPaths.empty())
        return;
    entry("<circle cx=\"16\" r=\"4\" fill=\"#fff\" stroke=\"#333\" stroke-width=\"2\"/>", "start");
    entry("<path d=\"M16 -6l6 6l-6 6l-6 -6z\" fill=\"#333\"/>", "goal");
    entry("<path class=\"path\" stroke=\"#1565c0\" d=\"M0 0h32\"/>", "path found");
    if (std::ranges::any_of(mPaths, [](const DrawnPath& path) { return !path.mCorners.empty(); }))
        entry("<path class=\"path faint\" stroke=\"#1565c0\" d=\"M0 0h32\"/>", "its waypoints");
    if (std::ranges::any_of(mPaths, [](const DrawnPath& path) { return !path.mIsFound; }))
        entry("<path class=\"lost\" d=\"M0 0h32\"/>", "no path");
}

std::string MeshPicture::text() const {
    std::ostringstream out;
    const float width = mWidth + 2 * margin + legendWidth;
    const float height = std::max(mHeight + header + margin, 400.0F);
    out.imbue(std::locale::classic());
    out << std::fixed << std::setprecision(1)
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
        << "\" font-family=\"sans-serif\" font-size=\"14\">\n"
        << "<style>.node polygon{stroke:#fff;stroke-width:1}"
           ".upper polygon{stroke:#fff;stroke-width:1;fill-opacity:.82}"
           ".wall{stroke:#4e4a42;stroke-width:2;stroke-linecap:round}"
           ".blocked{fill:url(#hatch);stroke:none}"
           ".path{fill:none;stroke-width:2.2;stroke-opacity:.75;stroke-linejoin:round}"
           ".faint{stroke-width:1;stroke-opacity:.4}"
           ".lost{stroke:#555;stroke-width:1.2;stroke-dasharray:5 5}</style>\n"
           "<defs><pattern id=\"hatch\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\">"
           "<rect width=\"8\" height=\"8\" fill=\"#c9dde8\"/>"
           "<path d=\"M0 8L8 0\" stroke=\"#9dbccb\" stroke-width=\"1\"/></pattern></defs>\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"#f7f9fa\"/>\n<text x=\"" << margin
        << "\" y=\"34\" font-size=\"20\" fill=\"#222\">" << xmlTextOf(mTitle) << "</text>\n";
    writeBlocked(out);
    writeNodes(out);
    writePaths(out);
    writeWalks(out);
    writeLegend(out);
    out << "</svg>\n";
    return out.str();
}

} // namespace ZUNO::Tools
