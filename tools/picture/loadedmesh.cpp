#include "tools/picture/loadedmesh.h"

#include "hostkit/session.h"
#include "navmesh/interface.h"
#include "navmesh/meshdefects.h"
#include "navmesh/navmeshfiles.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace ZUNO::Tools {

using namespace Common;

namespace {

/// What was reported last; tools show it as the reason of a failure.
std::string& lastReport() {
    static std::string report;
    return report;
}

void keepReport(const char* text, const char*, unsigned int) {
    constexpr const char* mark = "Error Message: ";
    const char* const message = std::strstr(text, mark);
    lastReport() = message != nullptr ? message + std::strlen(mark) : text;
}

class FirstDefect : public NavMesh::DefectListener {
public:
    bool onDefect(const char* text) override {
        mText = text;
        return false;
    }
    std::string mText;
};

} // namespace

LoadedMesh::LoadedMesh(const std::string& fileName) {
    const Debug::ReportHandler former = Debug::setReportHandler(keepReport);
    try {
        load(fileName);
    } catch (Exceptions::Exception* exception) {
        const std::string message = fileName + ": " + HostKit::takeMessage(exception);
        close();
        Debug::setReportHandler(former);
        throw std::runtime_error(message);
    } catch (...) {
        close();
        Debug::setReportHandler(former);
        throw;
    }
    Debug::setReportHandler(former);
}

void LoadedMesh::load(const std::string& fileName) {
    lastReport().clear();
    NavMesh::initLibrary(SharedPtr<Callback::MemoryCallback>(new HostKit::HeapMemoryCallback),
                         SharedPtr<Callback::FileIOCallback>(new HostKit::StdioFileCallback));
    mMesh = NavMesh::loadNavMeshXML(fileName.c_str());
    if (mMesh == nullptr)
        throw std::runtime_error(fileName + ": " + lastReport());
    FirstDefect defect;
    if (!findDefects(*mMesh, defect))
        throw std::runtime_error(fileName + ": " + defect.mText);
}

void LoadedMesh::close() {
    mMesh = nullptr;
    NavMesh::closeLibrary();
}

LoadedMesh::~LoadedMesh() {
    close();
}

std::vector<unsigned int> findIslands(const NavMesh::NavMeshContainer& mesh) {
    const std::size_t count = mesh.mNodes.size();
    std::vector<unsigned int> leader(count);
    std::iota(leader.begin(), leader.end(), 0U);
    const auto leaderOf = [&](unsigned int node) {
        while (leader[node] != node)
            node = leader[node] = leader[leader[node]];
        return node;
    };
    for (unsigned int id = 0; id < count; ++id)
        for (const std::int32_t neighbour : mesh.mNodes[id].mNeighbours)
            if (neighbour >= 0)
                leader[leaderOf(id)] = leaderOf(static_cast<unsigned int>(neighbour));
    std::vector<unsigned int> size(count);
    for (unsigned int id = 0; id < count; ++id)
        ++size[leaderOf(id)];
    std::vector<unsigned int> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::ranges::stable_sort(order,
                             [&](unsigned int a, unsigned int b) { return size[a] > size[b]; });
    std::vector<unsigned int> rank(count);
    for (unsigned int i = 0; i < count; ++i)
        rank[order[i]] = i;
    std::vector<unsigned int> islands(count);
    for (unsigned int id = 0; id < count; ++id)
        islands[id] = rank[leaderOf(id)];
    return islands;
}

} // namespace ZUNO::Tools
