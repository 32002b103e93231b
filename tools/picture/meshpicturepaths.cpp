// Who goes where over a mesh.
#include "tools/picture/meshpicture.h"
#include "tools/picture/picturestyle.h"

namespace ZUNO::Tools {

using namespace Style;

void MeshPicture::writeLine(std::ostream& out, const char* kind, const char* colour,
                            const std::vector<Common::Math::Vec3<float>>& points) const {
    out << "<polyline class=\"" << kind << "\" stroke=\"" << colour << "\" points=\"";
    for (const Common::Math::Vec3<float>& point : points) {
        const Point p = onPaper(point);
        out << p.mX << ',' << p.mY << ' ';
    }
    out << "\"/>\n";
}

void MeshPicture::writePath(std::ostream& out, const DrawnPath& path, const char* colour) const {
    std::vector<Common::Math::Vec3<float>> line{path.mStart};
    line.insert(line.end(), path.mWaypoints.begin(), path.mWaypoints.end());
    line.push_back(path.mGoal);
    writeLine(out, path.mCorners.empty() ? "path" : "path faint", colour, line);
    if (path.mPlaces.empty() && !path.mCorners.empty())
        writeLine(out, "path", colour, path.mCorners);
    for (const TrailPiece& piece : cutTrail(mView, mHeights, path.mPlaces))
        writeLine(out, piece.mIsHidden ? "path hidden" : "path", colour, piece.mPoints);
}

void MeshPicture::writePaths(std::ostream& out) const {
    for (std::size_t i = 0; i < mPaths.size(); ++i) {
        const DrawnPath& path = mPaths[i];
        const char* const colour = path.mIsFound ? pathColours[i % std::size(pathColours)] : "#555";
        const Point start = onPaper(path.mStart);
        const Point goal = onPaper(path.mGoal);
        if (path.mIsFound)
            writePath(out, path, colour);
        else
            out << "<path class=\"lost\" d=\"M" << start.mX << ' ' << start.mY << 'L' << goal.mX
                << ' ' << goal.mY << "\"/>\n";
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

} // namespace ZUNO::Tools
