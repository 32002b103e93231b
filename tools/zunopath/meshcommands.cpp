// The commands about a mesh as it is: what is in it, what is wrong with it, its other form.
#include "navmesh/meshdefects.h"
#include "navmesh/meshforms.h"
#include "tools/picture/meshfigures.h"
#include "tools/zunopath/commandline.h"
#include "tools/zunopath/world.h"

#include <filesystem>
#include <iostream>
#include <map>
#include <memory>

namespace ZUNO::Tools {
namespace {

ExitStatus check(const std::string& file) {
    const LoadedMesh mesh(file, LoadedMesh::Defects::ACCEPTED);
    const auto printAs = [&](const char* kind, std::size_t& count) {
        return [&, kind](const char* text) {
            std::cout << file << ": " << kind << ": " << text << '\n';
            ++count;
            return true;
        };
    };
    std::size_t defects = 0;
    std::size_t oddities = 0;
    if (findDefects(*mesh, printAs("defect", defects))) {
        findOddities(*mesh, printAs("odd", oddities));
        findUnreachable(*mesh, printAs("odd", oddities));
    }
    std::cout << file << ": " << mesh->mNodes.size() << " nodes, " << defects << " defects, "
              << oddities << " oddities\n";
    return defects + oddities == 0 ? STATUS_OK : STATUS_NOTHING;
}

/// Says what the binary form can't hold of a mesh.
void warnOfLoss(const NavMesh::NavMeshContainer& mesh, const std::string& output) {
    if (const std::int32_t node = NavMesh::findNodeUnfitForBinary(mesh); node >= 0)
        std::cerr << "zunopath: " << output << ": node " << node
                  << " has more neighbours than corners, and the binary form holds one for each "
                     "corner: paths over the others are lost\n";
}

/// Tells what goes on with files that take their time.
void showStage(const std::string& stage, const std::string& file) {
    constexpr std::uintmax_t large = 1 << 20;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (!error && size >= large)
        std::cerr << stage << ' ' << file << " (" << size / large << " MB)\n";
}

ExitStatus convert(const std::string& input, const std::string& output) {
    const MeshForm form = formOf(output); // before anything takes its time
    showStage("reading", input);
    const LoadedMesh mesh(input, LoadedMesh::Defects::ACCEPTED);
    mesh.save(output);
    if (form == MeshForm::BINARY)
        warnOfLoss(*mesh, output);
    showStage("written", output);
    std::cout << output << ": " << mesh->mNodes.size() << " nodes, " << mesh->mVertices.size()
              << " vertices\n";
    return STATUS_OK;
}

ExitStatus showInfo(const std::string& file, bool isJson) {
    const World world(file);
    const NavMesh::NavMeshContainer& mesh = world.mesh();
    const MeshCounts counts = countMesh(mesh);
    std::map<std::int32_t, unsigned int> classes;
    for (const auto& node : mesh.mNodes)
        ++classes[node.mHeightClass];
    const Answer bounds = ask({});
    nlohmann::ordered_json json = {{"mesh", file},
                                   {"nodes", mesh.mNodes.size()},
                                   {"vertices", mesh.mVertices.size()},
                                   {"borders", counts.mBorders},
                                   {"links", counts.mLinks},
                                   {"cubesize", mesh.mCubeSize},
                                   {"bounds", {bounds.mJson["min"], bounds.mJson["max"]}}};
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
    json["memory"] = {{"mesh", mesh.getMemoryUsage()},
                      {"world", world.session().memory().mBytes},
                      {"peak", world.session().memory().mPeakBytes}};
    if (isJson) {
        std::cout << json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                  << '\n';
        return STATUS_OK;
    }
    for (const auto& [key, value] : json.items())
        std::cout << key << std::string(15 - key.size(), ' ')
                  << (value.is_string()
                          ? value.get<std::string>()
                          : value.dump(-1, ' ', false,
                                       nlohmann::ordered_json::error_handler_t::replace))
                  << '\n';
    return STATUS_OK;
}

} // namespace

void addMeshCommands(CommandLine& line) {
    line.addWithJson("info", "Tell what is in a mesh",
                     [&line] { return showInfo(line.mesh(), line.isJson()); });
    const auto output = std::make_shared<std::string>();
    line.add("convert", "Save a mesh in the other form, or in the same anew",
             [&line, output] { return convert(line.mesh(), *output); })
        ->add_option("output", *output, "the file to write: .xml or .bin")
        ->required();
    line.add("check", "List everything that is wrong or odd about a mesh",
             [&line] { return check(line.mesh()); })
        ->footer("Exit status: 0 nothing found, 1 something found, 2 no mesh at all.");
}

} // namespace ZUNO::Tools
