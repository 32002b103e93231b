#include "tools/picture/loadedmesh.h"

#include "common/memory/objectcreation.h"
#include "hostkit/exceptiontext.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/meshfile.h"
#include "hostkit/stdiofilecallback.h"
#include "navmesh/interface.h"
#include "navmesh/meshdefects.h"
#include "navmesh/meshforms.h"
#include "navmesh/navmeshfiles.h"

#include <cstring>
#include <fstream>
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

/// While it lives, reports are kept instead of shown: tools say in their own words what is wrong.
class ReportKeeper {
public:
    ReportKeeper() : mFormer(Debug::setReportHandler(keepReport)) { lastReport().clear(); }
    ~ReportKeeper() { Debug::setReportHandler(mFormer); }
    ReportKeeper(const ReportKeeper&) = delete;
    ReportKeeper& operator=(const ReportKeeper&) = delete;

private:
    Debug::ReportHandler mFormer;
};

bool isBinaryFile(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    return NavMesh::beginsBinaryForm(file.get());
}

} // namespace

LoadedMesh::LoadedMesh(const std::string& fileName, Defects defects) {
    const ReportKeeper keeper;
    try {
        load(fileName, defects);
    } catch (Exceptions::Exception* exception) {
        const std::string message = fileName + ": " + HostKit::takeMessage(exception);
        close();
        throw std::runtime_error(message);
    } catch (...) {
        close();
        throw;
    }
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
    startLibrary();
    mIsBinary = isBinaryFile(fileName);
    mMesh = mIsBinary ? NavMesh::loadNavMeshBinary(fileName.c_str())
                      : NavMesh::loadNavMeshXML(fileName.c_str());
    if (mMesh == nullptr)
        throw std::runtime_error(fileName + ": " + lastReport());
    if (defects == Defects::REFUSED)
        findDefects(*mMesh, [&](const char* text) -> bool {
            throw std::runtime_error(fileName + ": " + text);
        });
}

void LoadedMesh::save(const std::string& fileName) const {
    const MeshForm form = formOf(fileName);
    const ReportKeeper keeper;
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
    return HostKit::textOf(*mMesh);
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

} // namespace ZUNO::Tools
