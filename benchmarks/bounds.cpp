// Meshes of at most 1 MB that are made to cost much: what a load takes of time and memory, and the
// slowest query and expansion of those that run. Or a search for meshes that cost more.
#include "benchmarks/boundseek.h"
#include "benchmarks/boundtrial.h"
#include "benchmarks/costlymesh.h"
#include "hostkit/foundation.h"
#include "hostkit/meshfile.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>

namespace {

using namespace ZUNO;
using namespace Benchmarks;

struct Case {
    const char* mName;
    float mCubeSize;
    std::function<void(CostlyMesh&)> mFill;
};

const Case theCases[] = {
    {"a grid of 5000 x 5000", 1, [](CostlyMesh& m) { fillGrid(m, 4999, 4999); }},
    {"a grid of 23000 x 23000", 1, [](CostlyMesh& m) { fillGrid(m, 22999, 22999); }},
    {"one row of 25 million", 1, [](CostlyMesh& m) { fillGrid(m, 8388608, 0.5F); }},
    {"covered 100 times", 1, [](CostlyMesh& m) { fillStack(m, 100, 2000, 1); }},
    {"covered 13 times, fine", 1, [](CostlyMesh& m) { fillStack(m, 13, 4999, 1); }},
    {"5,000 nodes on one spot", 1, [](CostlyMesh& m) { fillStack(m, 5000, 100, 4); }},
    {"25 nodes, all linked", 1, [](CostlyMesh& m) { fillStack(m, 12, 100, 4000); }},
    {"9,000 corners", 1, [](CostlyMesh& m) { fillRound(m, 9000, 2000); }},
    {"20,000 corners, small", 1, [](CostlyMesh& m) { fillRound(m, 18000, 50); }},
    {"4,500 slivers", 1, [](CostlyMesh& m) { fillFan(m, 4500, 2000); }},
    {"a tangle", 1, [](CostlyMesh& m) { fillTangle(m, 3000, 6, 2000); }},
    {"a tangle, goal at 1e6", 1000, [](CostlyMesh& m) { fillTangle(m, 3000, 6, 1e6F); }},
    {"a tangle, goal at 1e9", 1e6F, [](CostlyMesh& m) { fillTangle(m, 3000, 6, 1e9F); }},
    {"a dense tangle", 1, [](CostlyMesh& m) { fillTangle(m, 200, 200, 2000); }},
    {"a dense tangle, 1e9", 1e6F, [](CostlyMesh& m) { fillTangle(m, 200, 200, 1e9F); }},
    {"savings for 4,000 nodes", 1e6F, [](CostlyMesh& m) { fillSavings(m, 4000, 60); }},
    {"4,000 leaves in a row", 1000, [](CostlyMesh& m) { fillRow(m, 4000); }},
    {"4,000, the farthest first", 1000, [](CostlyMesh& m) { fillRow(m, 4000, true); }},
    {"savings, doubling 10 times", 1e12F, [](CostlyMesh& m) { fillDoubling(m, 10, 1e15F); }},
    {"savings, doubling 20 times", 1e12F, [](CostlyMesh& m) { fillDoubling(m, 20, 1e15F); }},
    {"hubs", 1, [](CostlyMesh& m) { fillHubs(m, 11, 4000); }},
    {"many hubs", 1, [](CostlyMesh& m) { fillHubs(m, 210, 210); }},
};

void show(const char* name, const std::string& file) {
    const MeshCosts costs = measureMesh(file);
    std::printf("%-28s %7.0f %8.3f %7.0f", name, static_cast<double>(file.size()) / 1000,
                costs.mLoad, static_cast<double>(costs.mPeakBytes) / (1 << 20));
    if (costs.mIsLoaded) {
        std::printf(" %9.3f %9.0f %8.3f", costs.mQuery * 1e3, costs.mExpansion * 1e6, costs.mView);
        for (const double seconds : costs.mViewQueries)
            std::printf(" %7.2f", seconds * 1e3);
    } else {
        std::printf("  refused: %.110s", costs.mReport.c_str());
    }
    std::printf("\n");
    std::fflush(stdout);
}

void showHead() {
    std::printf("%-28s %7s %8s %7s %9s %9s %8s  view's: ground nearest move straight wall "
                "explain [ms]\n",
                "mesh", "KB", "load [s]", "MB", "query[ms]", "exp. [us]", "view [s]");
}

/// Those whose name holds the text.
void showCases(const std::string& part) {
    for (const Case& row : theCases) {
        if (std::string(row.mName).find(part) == std::string::npos)
            continue;
        CostlyMesh mesh(row.mCubeSize);
        mesh.beginShape(0, 0, 0);
        row.mFill(mesh);
        show(row.mName, HostKit::textOf(mesh.finish()));
    }
}

void showDocuments() {
    const auto repeated = [](const std::string& piece) {
        std::string text = "<a>";
        while (text.size() < 1'000'000)
            text += piece;
        return text + "</a>";
    };
    show("nested as deep as it goes", repeated("<a>"));
    show("a name of a megabyte", "<" + std::string(1'000'000, 'n') + "/>");
    show("elements alone", repeated("<a/>"));
    show("line feeds alone", repeated("\n"));
    show("comments alone", repeated("<!---->"));
    show("attributes alone", "<a " + repeated("b=\"\" "));
}

bool showFile(const char* name) {
    std::ifstream file(name, std::ios::binary);
    const std::string content(std::istreambuf_iterator<char>(file), {});
    if (!file)
        return false;
    showHead();
    show(name, content);
    return true;
}

} // namespace

// zunobounds [PART_OF_A_NAME | MESH] | --seek MINUTES [SEED]
int main(int argc, char** argv) {
    const HostKit::Foundation foundation;
    if (argc == 1) {
        showHead();
        showCases("");
        showDocuments();
        return 0;
    }
    if (std::strcmp(argv[1], "--seek") == 0) {
        const double minutes = argc > 2 ? std::strtod(argv[2], nullptr) : 0;
        if (!(minutes > 0) || argc > 4) {
            std::fprintf(stderr, "usage: zunobounds --seek MINUTES [SEED]\n");
            return 2;
        }
        const char* const seed = argc > 3 ? argv[3] : "1";
        return seekCostlyMeshes(minutes,
                                static_cast<unsigned int>(std::strtoul(seed, nullptr, 10)));
    }
    if (argc == 2 && showFile(argv[1]))
        return 0;
    showHead();
    showCases(argv[1]);
    return 0;
}
