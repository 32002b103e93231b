// How the runtime stands against what a user would pick instead: ratios of medians, measured turn
// by turn in one run, with the goals that were set for them.
#include "benchmarks/peers.h"

#include "benchmarks/detourpeer.h"

#include <cstdio>
#include <ctime>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace ZUNO::Benchmarks {
namespace {

/// What figures without their machine are of no worth without.
void printMachine() {
    const std::time_t now = std::time(nullptr);
    char date[16] = {};
    std::strftime(date, sizeof(date), "%Y-%m-%d", std::localtime(&now));
    std::string processor = "unknown processor";
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("model name")) {
            processor = line.substr(line.find(':') + 2);
            break;
        }
    std::printf("%s, %s, %u cores, compiler %s\n", date, processor.c_str(),
                std::thread::hardware_concurrency(), __VERSION__);
}

void compareAll(const Sample& sample) {
    try {
        compareWithDetour(sample);
    } catch (const DetourPeer::Refusal& refusal) { // whatever else is thrown ends the run
        std::printf("    not compared: %s\n", refusal.what());
    }
    compareWithPlainForms(sample);
    showMemory(sample);
}

/// Each mesh may be followed by --pairs FILE, its journeys.
void compareFiles(const std::vector<std::string>& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& mesh = words[i];
        std::string journeys;
        if (i + 1 < words.size() && words[i + 1] == "--pairs") {
            if (i + 2 == words.size())
                throw std::runtime_error("--pairs: expected a file");
            journeys = words[i + 2];
            i += 2;
        }
        std::printf("%s\n", mesh.c_str());
        compareAll(Sample(mesh, journeys));
    }
}

} // namespace
} // namespace ZUNO::Benchmarks

// usage: zunopeers [MESH [--pairs FILE]]...: over these meshes, or over floors and towns of our own
int main(int argc, char** argv) {
    using namespace ZUNO::Benchmarks;
    try {
        printMachine();
        printHead();
        if (argc > 1) {
            compareFiles({argv + 1, argv + argc});
            return 0;
        }
        for (const unsigned int nodes : {60U, 4000U, 21000U})
            compareAll(Sample::floor(nodes));
        for (const int plots : {14, 37}) // some 3,300 and 21,100 nodes
            compareAll(Sample::town(plots));
        compareGrowth();
        compareLoading();
        compareManySearches();
        measureDoomedSearches();
        measureFrameTails();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zunopeers: %s\n", error.what());
        return 2;
    }
    return 0;
}
