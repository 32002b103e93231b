// A million searches, a thousand open at a time, and ten thousand starts.
#include "benchmarks/endurance.h"
#include "worlds/meshmodel.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace {

using ZUNO::Benchmarks::Endurance;

std::vector<Endurance::Point> writeFloor(unsigned int nodes, const std::string& file) {
    const auto mesh = ZUNO::Worlds::makeFloor(nodes, 1);
    std::ofstream(file, std::ios::binary) << mesh.toXML("endurance");
    std::vector<Endurance::Point> points;
    for (const auto& node : mesh.mNodes) {
        const auto& low = mesh.mVertices[node.mPolygon[0]];
        points.emplace_back(static_cast<float>(low.mX) / 4 + 1, 0.0F,
                            static_cast<float>(low.mZ) / 4 + 1);
    }
    return points;
}

void print(const char* what, const std::vector<Endurance::Row>& table) {
    std::printf("%12s %12s %14s\n", what, "blocks", "bytes");
    for (const auto& row : table)
        std::printf("%12llu %12llu %14llu\n", static_cast<unsigned long long>(row.mDone),
                    static_cast<unsigned long long>(row.mBlocks),
                    static_cast<unsigned long long>(row.mBytes));
}

} // namespace

int main() {
    const std::string file =
        (std::filesystem::temp_directory_path() / "zunoendurance.xml").string();
    try {
        std::uint64_t mistakes = 0;
        {
            Endurance endurance(file, writeFloor(10000, file));
            print("searches", endurance.churn(1000000, 1000, 20));
            mistakes += endurance.mistakes();
        }
        {
            Endurance endurance(file, writeFloor(1000, file));
            print("starts", endurance.restart(10000, 10));
            mistakes += endurance.mistakes();
        }
        std::filesystem::remove(file);
        std::printf("mistakes: %llu\n", static_cast<unsigned long long>(mistakes));
        return mistakes == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zunoendurance: %s\n", error.what());
        return 2;
    }
}
