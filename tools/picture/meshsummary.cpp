#include "tools/picture/meshsummary.h"

#include "tools/output/table.h"
#include "tools/picture/meshfigures.h"

#include <algorithm>
#include <map>

namespace ZUNO::Tools {

using nlohmann::ordered_json;

namespace {

/// The texts or numbers of a list; "none" for an empty one, "..." for what is too much to read.
std::string listText(const ordered_json& list) {
    constexpr std::size_t most = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(list.size(), most); ++i)
        text += (i == 0 ? "" : ", ") +
                (list[i].is_string() ? list[i].get<std::string>() : list[i].dump());
    return text.empty() ? "none" : text + (list.size() > most ? ", ..." : "");
}

std::string islandsText(const ordered_json& sizes) {
    return std::to_string(sizes.size()) + " (" + listText(sizes) + " nodes)";
}

std::string classesText(const ordered_json& classes) {
    Table table({"height class", "height, units", "nodes"});
    for (const ordered_json& each : classes)
        table.add({each["class"].dump(), numberText(each["height"]), each["nodes"].dump()});
    return table.text();
}

} // namespace

ordered_json summaryOf(const NavMesh::NavMeshContainer& mesh, const std::string& file) {
    const MeshCounts counts = countMesh(mesh);
    std::map<std::int32_t, unsigned int> classes;
    for (const auto& node : mesh.mNodes)
        ++classes[node.mHeightClass];
    ordered_json json = {{"mesh", file},
                         {"nodes", mesh.mNodes.size()},
                         {"vertices", mesh.mVertices.size()},
                         {"borders", counts.mBorders},
                         {"links", counts.mLinks},
                         {"cubesize", mesh.mCubeSize}};
    for (const char* const list : {"heightclasses", "islands", "characters", "surfacetypes"})
        json[list] = ordered_json::array();
    for (const auto& [number, count] : classes)
        json["heightclasses"].push_back(
            {{"class", number},
             {"height", mesh.mHeights[static_cast<std::size_t>(number)]},
             {"nodes", count}});
    for (const std::size_t size : counts.mIslandSizes)
        json["islands"].push_back(size);
    for (const auto& info : mesh.mCharacters)
        json["characters"].push_back(info.mName.getConstCharPtr());
    for (const auto& type : mesh.mSurfaceTypes)
        json["surfacetypes"].push_back(type.mName.getConstCharPtr());
    return json;
}

std::string textOf(const ordered_json& summary,
                   const std::vector<std::pair<std::string, std::string>>& more) {
    std::vector<std::pair<std::string, std::string>> lines = {
        {"mesh", summary["mesh"].get<std::string>()},
        {"nodes", summary["nodes"].dump()},
        {"vertices", summary["vertices"].dump()},
        {"borders",
         summary["borders"].dump() + ", " + summary["links"].dump() + " of them with a neighbour"},
        {"islands", islandsText(summary["islands"])},
        {"characters", listText(summary["characters"])},
        {"surface types", listText(summary["surfacetypes"])},
        {"cube size", numberText(summary["cubesize"]) + " units"}};
    lines.insert(lines.end(), more.begin(), more.end());
    std::string text;
    constexpr std::size_t column = 15;
    for (const auto& [name, value] : lines)
        text.append(name).append(column - name.size(), ' ').append(value).append("\n");
    return text + '\n' + classesText(summary["heightclasses"]) + '\n';
}

} // namespace ZUNO::Tools
