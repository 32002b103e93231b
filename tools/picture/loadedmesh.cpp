#include "tools/picture/loadedmesh.h"

#include "common/memory/objectcreation.h"
#include "hostkit/exceptiontext.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/meshfile.h"
#include "hostkit/stdiofilecallback.h"
#include "navmesh/interface.h"
#include "navmesh/meshdefects.h"
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
