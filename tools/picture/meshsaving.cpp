#include "tools/output/outputfile.h"
#include "tools/picture/loadedmesh.h"

#include <filesystem>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

std::string namedContent(const LoadedMesh& mesh, const std::string& fileName) {
    const MeshForm form = formOf(fileName);
    try {
        return mesh.contentIn(form);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(fileName + ": " + error.what());
    }
}

} // namespace

void LoadedMesh::save(const std::string& fileName) const {
    saveFile(fileName, namedContent(*this, fileName));
}

MeshForm formOf(const std::string& fileName) {
    std::string suffix = std::filesystem::path(fileName).extension().string();
    for (char& c : suffix)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    if (suffix == ".xml")
        return MeshForm::XML;
    if (suffix == ".bin")
        return MeshForm::BINARY;
    throw std::runtime_error(fileName + ": expected a name that ends in .xml or .bin");
}

} // namespace ZUNO::Tools
