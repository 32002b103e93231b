// Reading and writing mesh files from memory, with pugixml reading the same bytes beside it.
#include "common/callback/callbackfilestream.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "hostkit/foundation.h"
#include "hostkit/heapmemorycallback.h"
#include "navmesh/interface.h"
#include "navmesh/navmeshfiles.h"
#include "tools/picture/memoryfilecallback.h"
#include "worlds/meshmodel.h"

#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <pugixml.hpp>

namespace {

using namespace ZUNO;
using Common::SharedPtr;
using Tools::MemoryFileCallback;

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
        mFile = new MemoryFileCallback(content);
        NavMesh::initLibrary(
            SharedPtr<Common::Callback::MemoryCallback>(new HostKit::HeapMemoryCallback),
            SharedPtr<Common::Callback::FileIOCallback>(mFile));
    }
    ~Library() { NavMesh::closeLibrary(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    const std::string& content() const { return mFile->content(); }

private:
    HostKit::Foundation mFoundation;
    MemoryFileCallback* mFile;
};

std::string binaryOf(std::int64_t nodes) {
    const Library library(documentOf(nodes));
    NavMesh::saveNavMeshBinary("b", NavMesh::loadNavMeshXML("x"));
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
    const SharedPtr<Common::Callback::FileIOCallback> files(new MemoryFileCallback(document));
    for (auto _ : state) {
        Common::Callback::CallbackFileStream stream(files);
        stream.open("d", 1);
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
        benchmark::DoNotOptimize(NavMesh::loadNavMeshXML("x"));
    count(state, library.content().size());
}
BENCHMARK(loadXml)->Apply(sizes);

void loadBinary(benchmark::State& state) {
    const Library library(binaryOf(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(NavMesh::loadNavMeshBinary("b"));
    count(state, library.content().size());
}
BENCHMARK(loadBinary)->Apply(sizes);

void saveXml(benchmark::State& state) {
    const Library library(documentOf(state.range(0)));
    const auto mesh = NavMesh::loadNavMeshXML("x");
    for (auto _ : state)
        NavMesh::saveNavMeshXML("x", mesh);
    count(state, library.content().size());
}
BENCHMARK(saveXml)->Apply(sizes);

void saveBinary(benchmark::State& state) {
    const Library library(binaryOf(state.range(0)));
    const auto mesh = NavMesh::loadNavMeshBinary("b");
    for (auto _ : state)
        NavMesh::saveNavMeshBinary("b", mesh);
    count(state, library.content().size());
}
BENCHMARK(saveBinary)->Apply(sizes);

} // namespace
