#include "tools/zunobake/summary.h"

#include "navmesh/meshdefects.h"

#include <algorithm>
#include <cstdio>

namespace ZUNO::Tools {

namespace {

/// A list goes on, or something else begins.
constexpr const char* indent = "               ";

std::string rounded(double number) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.4g", number);
    return text;
}

std::string placeText(const HostKit::Position& place) {
    return rounded(double{place.mX}) + ", " + rounded(double{place.mY}) + ", " +
           rounded(double{place.mZ});
}

std::string inCells(int count, double side) {
    return rounded(count * side) + " (" + std::to_string(count) +
           (count == 1 ? " cell)" : " cells)");
}

} // namespace

Summary::Summary(const NavMesh::NavMeshContainer& mesh, const Scene& scene,
                 const BakeSettings& settings, UpAxis up)
    : mMesh(mesh), mScene(scene), mSettings(settings), mUp(up), mCounts(countMesh(mesh)) {
    findOddities(mMesh, [this](const char*) {
        ++mOddities;
        return true;
    });
}

void Summary::print(std::ostream& out, const std::string& file, std::size_t islandsLeftOut,
                    const std::vector<UnreachablePart>& unreachable) const {
    out << file << ": " << mMesh.mNodes.size() << " nodes, " << mMesh.mVertices.size()
        << " vertices\n"
        << "scene          " << mScene.triangleCount() << " triangles, " << mScene.mLeftOut
        << " faces left out\n";
    printCells(out);
    out << "borders        " << mCounts.mBorders << ", " << mCounts.mLinks
        << " of them with neighbour\n"
        << "islands        " << mCounts.mIslandSizes.size() << " (nodes:";
    constexpr std::size_t shown = 8;
    for (std::size_t i = 0; i < std::min(shown, mCounts.mIslandSizes.size()); ++i)
        out << ' ' << mCounts.mIslandSizes[i];
    out << (mCounts.mIslandSizes.size() > shown ? " ..." : "") << "), " << islandsLeftOut
        << " smaller ones left out\n";
    printUnreachable(out, unreachable);
    printClasses(out);
    out << "oddities       " << mOddities + unreachable.size()
        << (mOddities + unreachable.size() == 0 ? "" : " (zunopath check lists them)") << '\n';
}

/// What the settings became: each is rounded to whole cells.
void Summary::printCells(std::ostream& out) const {
    const CellSettings cells(mSettings);
    out << "in cells       radius " << inCells(cells.mRadius, mSettings.mCellSize) << ", climb "
        << inCells(cells.mClimb, mSettings.mCellHeight);
    for (std::size_t i = 0; i < mSettings.mAgents.size(); ++i)
        out << (i == 0 ? "; height of " : ", of ") << mSettings.mAgents[i].mName << ' '
            << inCells(cells.mAgentHeights[i], mSettings.mCellHeight);
    out << '\n';
}

void Summary::printUnreachable(std::ostream& out, const std::vector<UnreachablePart>& parts) const {
    const auto inFile = [this](const HostKit::Position& place) {
        return mUp == UpAxis::Z ? HostKit::Position{place.mX, 0.0F - place.mZ, place.mY} : place;
    };
    out << "unreachable    " << (parts.empty() ? "nothing\n" : "");
    constexpr std::size_t shown = 20;
    for (std::size_t i = 0; i < std::min(shown, parts.size()); ++i) {
        const auto& [part, passage] = parts[i];
        out << (i == 0 ? "" : indent) << "at "
            << placeText({part.mPlace.mX, part.mPlace.mY, part.mPlace.mZ}) << ": "
            << rounded(part.mArea) << " square units, " << part.mNodes
            << (part.mNodes == 1 ? " node\n" : " nodes\n");
        if (passage.has_value())
            out << indent << "  a passage at " << placeText(inFile(passage->mPlace)) << " is "
                << rounded(passage->mMeasure)
                << (passage->mFlaw == Passage::Flaw::LOW ? " high" : " wide")
                << ", the agent needs " << rounded(passage->mNeeded) << '\n';
    }
    if (parts.size() > shown)
        out << indent << "and " << parts.size() - shown << " smaller ones\n";
}

void Summary::printClasses(std::ostream& out) const {
    out << "height classes";
    for (std::size_t i = 0; i < mMesh.mHeights.size(); ++i)
        out << (i == 0 ? " " : ", ") << i << ": " << mMesh.mHeights[i];
    out << "\ncharacters    ";
    for (const auto& record : mMesh.mCharacters)
        out << ' ' << record.mName.getConstCharPtr() << " (classes from "
            << record.mMaxHeightClassID << ')';
    out << "\nsurface types ";
    for (const auto& type : mMesh.mSurfaceTypes)
        out << ' ' << type.mName.getConstCharPtr();
    out << (mMesh.mSurfaceTypes.empty() ? " none" : "") << '\n';
}

} // namespace ZUNO::Tools
