// What explains a mesh's picture beside and below it.
#include "tools/output/table.h"
#include "tools/picture/meshpicture.h"
#include "tools/picture/picturestyle.h"
#include "tools/picture/xmltext.h"

#include <cmath>

namespace ZUNO::Tools {

using namespace Style;

namespace {

/// The longest of 1, 2 and 5 times a power of ten that is no longer than `most`.
double roundLength(double most) {
    const double power = std::pow(10.0, std::floor(std::log10(most)));
    return power * (most >= 5 * power ? 5 : (most >= 2 * power ? 2 : 1));
}

} // namespace

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
    const auto hasPath = [&](auto condition) { return std::ranges::any_of(mPaths, condition); };
    entry(box(hex(tints[0], 0)), "lowest floor, " + numberText(mLowest));
    if (mHighest > mLowest)
        entry(box(hex(tints[0], 1)), "highest floor, " + numberText(mHighest));
    const std::vector<std::uint32_t>& islands = mView.islandSizes();
    constexpr std::size_t mostIslands = 6;
    for (std::size_t i = 1; i < std::min(islands.size(), 1 + mostIslands); ++i)
        entry(box(hex(tintOf(i), 0)), "island " + std::to_string(i) + ", " +
                                          std::to_string(islands[i]) +
                                          (islands[i] == 1 ? " node" : " nodes"));
    if (islands.size() > 1 + mostIslands)
        entry("", std::to_string(islands.size() - 1 - mostIslands) + " smaller islands");
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
    if (hasPath([](const DrawnPath& path) { return !path.mPlaces.empty(); }))
        entry("<path class=\"path hidden\" stroke=\"#1565c0\" d=\"M0 0h32\"/>",
              mHeights.isAll() ? "under another floor" : "on a floor not shown");
    if (hasPath([](const DrawnPath& path) { return !path.mCorners.empty(); }))
        entry("<path class=\"path faint\" stroke=\"#1565c0\" d=\"M0 0h32\"/>", "its waypoints");
    if (hasPath([](const DrawnPath& path) { return !path.mIsFound; }))
        entry("<path class=\"lost\" d=\"M0 0h32\"/>", "no path");
}

void MeshPicture::writeScale(std::ostream& out) const {
    const double length = roundLength(static_cast<double>(paper / mScale) / 5);
    const float y = header + mHeight + 24;
    const float width = static_cast<float>(length) * mScale;
    out << "<path d=\"M" << margin << ' ' << y - 5 << "v10m0 -5h" << width
        << "m0 -5v10\" fill=\"none\" stroke=\"#222\" stroke-width=\"2\"/><text x=\""
        << margin + width + 10 << "\" y=\"" << y + 5 << "\" fill=\"#222\">" << numberText(length)
        << (length == 1 ? " unit" : " units") << "</text>\n";
}

} // namespace ZUNO::Tools
