// Reading and writing mesh files from memory, with pugixml reading the same bytes beside it.
#include "common/callback/callbackfilestream.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "hostkit/foundation.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/memoryfilecallback.h"
#include "navmesh/interface.h"
#include "navmesh/navmeshfiles.h"
#include "worlds/meshmodel.h"

#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <pugixml.hpp>

namespace {

using namespace ZUNO;
using Common::SharedPtr;
using HostKit::MemoryFileCallback;

const std::string& documentOf(std::int64_t nodes) {
    static std::map<std::int64_t, std::string> documents;
    std::string& document = documents[nodes];
    if (document.empty())
        document = Worlds::makeFloor(static_cast<unsigned int>(nodes), 1).toXML("benchmark");
    return document;
}

/// The mesh library over one file in memory.
class Library {
public:
    explicit Library(const std::string& content) {
        mFiles = new MemoryFileCallback("mesh", content);
        NavMesh::initLibrary(
            SharedPtr<Common::Callback::MemoryCallback>(new HostKit::HeapMemoryCallback),
            SharedPtr<Common::Callback::FileIOCallback>(mFiles));
    }
    ~Library() { NavMesh::closeLibrary(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    const std::string& content() const { return mFiles->mFiles["mesh"]; }

private:
    HostKit::Foundation mFoundation;
    MemoryFileCallback* mFiles;
};

std::string binaryOf(std::int64_t nodes) {
    const Library library(documentOf(nodes));
    NavMesh::saveNavMeshBinary("mesh", NavMesh::loadNavMeshXML("mesh"));
    return library.content();
}

void count(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
    state.counters["nodes/s"] = benchmark::Counter(
        static_cast<double>(state.iterations() * state.range(0)), benchmark::Counter::kIsRate);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

void parseXml(benchmark::State& state) {
    const std::string& document = documentOf(state.range(0));
    const Library library(document);
    const SharedPtr<Common::Callback::FileIOCallback> files(
        new MemoryFileCallback("mesh", document));
    for (auto _ : state) {
        Common::Callback::CallbackFileStream stream(files);
        stream.open("mesh", 1);
        const std::unique_ptr<Common::Parser::XML::XMLParser> parser(
            Common::Memory::createManaged<Common::Parser::XML::XMLParser>(NavMesh::getAllocator()));
        benchmark::DoNotOptimize(parser->parse(&stream));
    }
    count(state, document.size());
}
BENCHMARK(parseXml)->Apply(sizes);

void parsePugixml(benchmark::State& state) {
    const std::string& document = documentOf(state.range(0));
    for (auto _ : state) {
        std::string copy = document; // it parses in place too
        pugi::xml_document tree;
        benchmark::DoNotOptimize(tree.load_buffer_inplace(copy.data(), copy.size()));
    }
    count(state, document.size());
}
BENCHMARK(parsePugixml)->Apply(sizes);

void loadXml(benchmark::State& state) {
    const Library library(documentOf(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(NavMesh::loadNavMeshXML("mesh"));
    count(state, library.content().size());
}
BENCHMARK(loadXml)->Apply(sizes);

void loadBinary(benchmark::State& state) {
    const Library library(binaryOf(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(NavMesh::loadNavMeshBinary("mesh"));
    count(state, library.content().size());
}
BENCHMARK(loadBinary)->Apply(sizes);

void saveXml(benchmark::State& state) {
    const Library library(documentOf(state.range(0)));
    const auto mesh = NavMesh::loadNavMeshXML("mesh");
    for (auto _ : state)
        NavMesh::saveNavMeshXML("mesh", mesh);
    count(state, library.content().size());
}
BENCHMARK(saveXml)->Apply(sizes);

void saveBinary(benchmark::State& state) {
    const Library library(binaryOf(state.range(0)));
    const auto mesh = NavMesh::loadNavMeshBinary("mesh");
    for (auto _ : state)
        NavMesh::saveNavMeshBinary("mesh", mesh);
    count(state, library.content().size());
}
BENCHMARK(saveBinary)->Apply(sizes);

} // namespace
