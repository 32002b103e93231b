#include "tools/picture/loadedmesh.h"

#include "common/callback/callbackfilestream.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmltreebuilder.h"
#include "common/parser/xml/xmlwriter.h"
#include "hostkit/session.h"
#include "navmesh/interface.h"
#include "navmesh/meshdefects.h"
#include "navmesh/navmeshfiles.h"

#include "tools/picture/memoryfilecallback.h"

#include <algorithm>
#include <fstream>
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

/// The binary form begins with its byte order, 0 or 1, which no document does.
bool isBinaryFile(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    const int first = file.get();
    return first == 0 || first == 1;
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

LoadedMesh::LoadedMesh(const std::string& fileName, Defects defects) {
    const Debug::ReportHandler former = Debug::setReportHandler(keepReport);
    try {
        load(fileName, defects);
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

LoadedMesh::LoadedMesh() {
    startLibrary();
    mMesh = Memory::createManaged<NavMesh::NavMeshContainer>(NavMesh::getAllocator());
}

void LoadedMesh::startLibrary() {
    NavMesh::initLibrary(SharedPtr<Callback::MemoryCallback>(new HostKit::HeapMemoryCallback),
                         SharedPtr<Callback::FileIOCallback>(new HostKit::StdioFileCallback));
}

void LoadedMesh::load(const std::string& fileName, Defects defects) {
    lastReport().clear();
    startLibrary();
    mIsBinary = isBinaryFile(fileName);
    mMesh = mIsBinary ? NavMesh::loadNavMeshBinary(fileName.c_str())
                      : NavMesh::loadNavMeshXML(fileName.c_str());
    if (mMesh == nullptr)
        throw std::runtime_error(fileName + ": " + lastReport());
    FirstDefect defect;
    if (defects == Defects::REFUSED && !findDefects(*mMesh, defect))
        throw std::runtime_error(fileName + ": " + defect.mText);
}

void LoadedMesh::save(const std::string& fileName) const {
    const MeshForm form = formOf(fileName);
    try {
        if (form == MeshForm::BINARY)
            NavMesh::saveNavMeshBinary(fileName.c_str(), mMesh);
        else
            NavMesh::saveNavMeshXML(fileName.c_str(), mMesh);
    } catch (Exceptions::Exception* exception) {
        throw std::runtime_error(fileName + ": " + HostKit::takeMessage(exception));
    }
}

std::string LoadedMesh::toXML() const {
    auto* const file = new MemoryFileCallback;
    const SharedPtr<Callback::FileIOCallback> files(file);
    Callback::CallbackFileStream stream(files);
    stream.open("", IO::FACCESS_WRITE);
    Parser::XML::XMLTreeBuilder builder;
    builder.begin("ZUNO", true);
    mMesh->writeXML(builder);
    Parser::XML::XMLWriter writer;
    writer.writeHeader(stream);
    writer.write(stream, builder.getRoot());
    return file->content();
}

MeshForm formOf(const std::string& fileName) {
    if (fileName.ends_with(".xml"))
        return MeshForm::XML;
    if (fileName.ends_with(".bin"))
        return MeshForm::BINARY;
    throw std::runtime_error(fileName + ": expected a name that ends in .xml or .bin");
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
    std::stable_sort(order.begin(), order.end(),
                     [&](unsigned int a, unsigned int b) { return size[a] > size[b]; });
    std::vector<unsigned int> rank(count);
    for (unsigned int i = 0; i < count; ++i)
        rank[order[i]] = i;
    std::vector<unsigned int> islands(count);
    for (unsigned int id = 0; id < count; ++id)
        islands[id] = rank[leaderOf(id)];
    return islands;
}

MeshCounts countMesh(const NavMesh::NavMeshContainer& mesh) {
    MeshCounts counts;
    for (const auto& node : mesh.mNodes) {
        counts.mBorders += node.mPolygon.size();
        for (const std::int32_t neighbour : node.mNeighbours)
            counts.mLinks += neighbour >= 0 ? 1 : 0;
    }
    for (const unsigned int island : findIslands(mesh)) {
        counts.mIslandSizes.resize(std::max<std::size_t>(counts.mIslandSizes.size(), island + 1));
        ++counts.mIslandSizes[island];
    }
    return counts;
}

Math::Vec2<float> positionAt(const NavMesh::NavMeshContainer& mesh,
                             const Math::Vec2<float>& point) {
    const Math::Vec3<float>& x = mesh.mXAxis;
    const Math::Vec3<float>& y = mesh.mYAxis;
    const Math::Vec3<float> position(x.mX * point.mX + y.mX * point.mY,
                                     x.mY * point.mX + y.mY * point.mY,
                                     x.mZ * point.mX + y.mZ * point.mY);
    return position.killComponent(mesh.mNormal.getDominantAxis());
}

} // namespace ZUNO::Tools
