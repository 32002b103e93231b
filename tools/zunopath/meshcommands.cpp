// The commands about a mesh as it is: what is in it, what is wrong with it, its other form.
#include "navmesh/meshdefects.h"
#include "navmesh/meshforms.h"
#include "tools/output/jsonline.h"
#include "tools/output/table.h"
#include "tools/picture/meshfigures.h"
#include "tools/picture/meshsummary.h"
#include "tools/zunopath/commandline.h"
#include "tools/zunopath/world.h"

#include <filesystem>
#include <iostream>
#include <memory>

namespace ZUNO::Tools {
namespace {

ExitStatus check(const std::string& file, bool isJson) {
    const LoadedMesh mesh(file, LoadedMesh::Defects::ACCEPTED);
    std::vector<std::string> defects;
    std::vector<std::string> oddities;
    const auto addTo = [](std::vector<std::string>& findings) {
        return [&](const char* text) {
            findings.emplace_back(text);
            return true;
        };
    };
    if (findDefects(*mesh, addTo(defects))) {
        findOddities(*mesh, addTo(oddities));
        findUnreachable(*mesh, addTo(oddities));
    }
    const ExitStatus status = defects.empty() && oddities.empty() ? STATUS_OK : STATUS_NOTHING;
    if (isJson) {
        std::cout << lineOf({{"mesh", file},
                             {"nodes", mesh->mNodes.size()},
                             {"defects", defects},
                             {"oddities", oddities}});
        return status;
    }
    for (const std::string& defect : defects)
        std::cout << file << ": defect: " << defect << '\n';
    for (const std::string& oddity : oddities)
        std::cout << file << ": odd: " << oddity << '\n';
    std::cout << file << ": " << mesh->mNodes.size() << " nodes, " << defects.size() << " defects, "
              << oddities.size() << " oddities\n";
    return status;
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
    const HostKit::MemoryFigures& memory = world.session().memory();
    const Answer bounds = ask({});
    nlohmann::ordered_json json = summaryOf(world.mesh(), file);
    json["bounds"] = {bounds.mJson["min"], bounds.mJson["max"]};
    json["memory"] = {{"mesh", world.mesh().getMemoryUsage()},
                      {"world", memory.mBytes},
                      {"peak", memory.mPeakBytes}};
    if (isJson) {
        std::cout << lineOf(json);
        return STATUS_OK;
    }
    std::cout << textOf(json, {{"bounds", bounds.mText},
                               {"memory", bytesText(memory.mBytes) + " for the world, " +
                                              bytesText(memory.mPeakBytes) + " while it started"}});
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
    line.addWithJson("check", "List everything that is wrong or odd about a mesh",
                     [&line] { return check(line.mesh(), line.isJson()); })
        ->footer("Exit status: 0 nothing found, 1 something found, 2 no mesh at all.");
}

} // namespace ZUNO::Tools
