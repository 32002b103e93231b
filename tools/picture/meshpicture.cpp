#include "tools/picture/meshpicture.h"

#include "navmesh/planegrid.h"
#include "tools/picture/picturestyle.h"
#include "tools/picture/xmltext.h"

#include <algorithm>
#include <iomanip>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace ZUNO::Tools {

using namespace Style;

namespace {

constexpr float maxSquares = 400; // along the longer side

} // namespace

MeshPicture::MeshPicture(const NavMesh::NavMeshContainer& mesh, const std::string& title,
                         const HeightRange& heights)
    : mMesh(mesh), mView(mesh), mTitle(title), mHeights(heights) {
    for (std::uint32_t node = 0; node < mView.nodeCount(); ++node)
        if (heights.holds(mView, node))
            mNodes.push_back(node);
    if (mNodes.empty())
        throw std::runtime_error("no node lies within these heights");
    std::ranges::stable_sort(mNodes, {}, [&](std::size_t node) { return heightOf(node); });
    mLowest = heightOf(mNodes.front());
    mHighest = heightOf(mNodes.back());
    const Common::Math::Rect bounds = NavMesh::measurePlane(mesh).mBounds;
    const Point size = bounds.mMax - bounds.mMin;
    mMin = bounds.mMin;
    mScale = paper / std::max({size.mX, size.mY, 1e-20F});
    mWidth = size.mX * mScale;
    mHeight = size.mY * mScale;
}

float MeshPicture::step() const {
    constexpr float paperStep = 3;
    return paperStep / mScale;
}

MeshPicture::Point MeshPicture::onPaper(const Point& point) const {
    return Point(margin, header) + (point - mMin) * mScale;
}

MeshPicture::Point MeshPicture::onPaper(const Common::Math::Vec3<float>& point) const {
    return onPaper(mMesh.projectToPlane(point));
}

float MeshPicture::heightOf(std::size_t node) const {
    const auto& polygon = mMesh.mNodes[node].mPolygon;
    float sum = 0;
    for (const std::uint32_t corner : polygon)
        sum += dot(mMesh.mVertices[corner], mMesh.mNormal);
    return sum / static_cast<float>(polygon.size());
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
    const float range = mHighest - mLowest;
    return hex(tintOf(mView.islandOf(static_cast<std::uint32_t>(node))),
               range > 0 ? (heightOf(node) - mLowest) / range : 0);
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
    // what lies clearly above the lowest floor shows what is under it
    const float upper = mLowest + (mHighest - mLowest) * 0.25F;
    const char* openGroup = "";
    for (const std::size_t id : mNodes) {
        const char* const group = heightOf(id) > upper ? "upper" : "node";
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

std::string MeshPicture::text() const {
    std::ostringstream out;
    const float width = mWidth + 2 * margin + legendWidth;
    const float height = std::max(mHeight + header + footer, 440.0F);
    out.imbue(std::locale::classic());
    out << std::fixed << std::setprecision(1)
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
        << "\" font-family=\"sans-serif\" font-size=\"14\">\n"
        << "<style>.node polygon{stroke:#fff;stroke-width:1}"
           ".upper polygon{stroke:#fff;stroke-width:1;fill-opacity:.82}"
           ".wall{stroke:#4e4a42;stroke-width:2;stroke-linecap:round}"
           ".blocked{fill:url(#hatch);stroke:none}"
           ".path{fill:none;stroke-width:2.2;stroke-opacity:.75;stroke-linejoin:round}"
           ".hidden{stroke-dasharray:1 5;stroke-linecap:round}"
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
    writeScale(out);
    out << "</svg>\n";
    return out.str();
}

} // namespace ZUNO::Tools
