#include "tools/picture/loadedmesh.h"

#include "common/callback/openstream.h"
#include "common/memory/globalallocators.h"
#include "common/memory/objectcreation.h"
#include "hostkit/exceptiontext.h"
#include "hostkit/stdiofilecallback.h"
#include "navmesh/meshdefects.h"
#include "navmesh/meshforms.h"
#include "tools/picture/reportkeeper.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace ZUNO::Tools {

using namespace Common;

namespace {

bool isBinaryFile(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    return NavMesh::beginsBinaryForm(file.get());
}

/// Whether a line is one of a Wavefront OBJ file.
bool isSceneLine(const std::string& line) {
    static constexpr const char* words[] = {"v ", "vt ", "vn ",     "f ",     "g ",
                                            "o ", "s ",  "mtllib ", "usemtl "};
    return std::any_of(std::begin(words), std::end(words),
                       [&](const char* word) { return line.starts_with(word); });
}

/// What a file is that is no mesh, as far as its beginning tells; empty: it may be one.
std::string whatElseIs(const std::string& fileName) {
    std::error_code error;
    const auto status = std::filesystem::status(fileName, error);
    if (!std::filesystem::exists(status))
        return "there is no such file";
    if (std::filesystem::is_directory(status))
        return "is a folder; expected a mesh";
    std::ifstream file(fileName, std::ios::binary);
    std::string line;
    constexpr unsigned int mostLines = 100;
    for (unsigned int i = 0; i < mostLines && std::getline(file, line); ++i) {
        if (isSceneLine(line))
            return "is a scene (Wavefront OBJ); 'zunobake SCENE -o MESH' makes a mesh of it";
        if (line.find('<') != std::string::npos)
            return "";
    }
    if (file.eof() && std::filesystem::is_regular_file(status) &&
        std::filesystem::file_size(fileName, error) == 0)
        return "is empty; expected a mesh";
    return "is no mesh: neither XML nor the binary form";
}

SharedPtr<NavMesh::NavMeshContainer> makeMesh() {
    return SharedPtr<NavMesh::NavMeshContainer>(
        Memory::createManaged<NavMesh::NavMeshContainer>(gObjectAllocator));
}

/// Null, after a report, when something is missing.
SharedPtr<NavMesh::NavMeshContainer> readBinary(const SharedPtr<IO::Stream>& stream) {
    const SharedPtr<NavMesh::NavMeshContainer> mesh = makeMesh();
    return mesh->readBinary(stream) ? mesh : SharedPtr<NavMesh::NavMeshContainer>();
}

} // namespace

LoadedMesh::LoadedMesh(const std::string& fileName, Defects defects) {
    const ReportKeeper keeper;
    try {
        load(fileName, defects);
    } catch (Exceptions::Exception* exception) {
        const std::string reason = HostKit::takeMessage(exception);
        const std::string other = mIsBinary ? "" : whatElseIs(fileName);
        throw std::runtime_error(fileName + ": " + (other.empty() ? reason : other));
    }
}

void LoadedMesh::load(const std::string& fileName, Defects defects) {
    const SharedPtr<Callback::FileIOCallback> files(new HostKit::StdioFileCallback);
    mIsBinary = isBinaryFile(fileName);
    const SharedPtr<IO::Stream> stream =
        Callback::openStream(gObjectAllocator, files, fileName.c_str(), IO::FACCESS_READ);
    mMesh = mIsBinary ? readBinary(stream) : NavMesh::readMeshDocument(*stream, gObjectAllocator);
    if (mMesh == nullptr)
        throw std::runtime_error(fileName + ": " + ReportKeeper::last());
    if (defects == Defects::REFUSED)
        findDefects(*mMesh, [&](const char* text) -> bool {
            throw std::runtime_error(fileName + ": " + text);
        });
}

} // namespace ZUNO::Tools
