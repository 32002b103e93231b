// A million searches, a thousand open at a time, and ten thousand starts.
#include "benchmarks/endurance.h"

#include <cstdio>
#include <exception>
#include <filesystem>

namespace {

using ZUNO::Benchmarks::Endurance;

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
            Endurance endurance(file, ZUNO::Worlds::makeFloor(10000, 1));
            print("searches", endurance.churn(1000000, 1000, 20));
            mistakes += endurance.mistakes();
        }
        {
            Endurance endurance(file, ZUNO::Worlds::makeFloor(1000, 1));
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
