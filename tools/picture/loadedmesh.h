#pragma once

#include "hostkit/foundation.h"
#include "navmesh/navmeshcontainer.h"

#include <string>

namespace ZUNO::Tools {

/// The form that a file name's suffix names, in small or capital letters. Throws a
/// std::runtime_error for another.
enum class MeshForm { XML, BINARY };
MeshForm formOf(const std::string& fileName);

/// A tool's own copy of a mesh, for what the exports don't tell: pictures, figures, conversion.
/// Lifetime: keeps the tool's copy of the foundation running.
class LoadedMesh {
public:
    /// Whether a mesh that no world could run with is an error.
    enum class Defects { REFUSED, ACCEPTED };

    /// Loads a mesh of either form. Throws a std::runtime_error with the file's name and what is
    /// wrong with it.
    explicit LoadedMesh(const std::string& fileName, Defects defects = Defects::REFUSED);
    /// An empty mesh, to be filled and saved.
    LoadedMesh();
    LoadedMesh(const LoadedMesh&) = delete;
    LoadedMesh& operator=(const LoadedMesh&) = delete;

    const NavMesh::NavMeshContainer& operator*() const { return *mMesh; }
    const NavMesh::NavMeshContainer* operator->() const { return mMesh.get(); }

    /// Returns the mesh itself. Lifetime: to be let go before this object ends.
    const Common::SharedPtr<NavMesh::NavMeshContainer>& shared() const { return mMesh; }

    bool isBinary() const { return mIsBinary; }

    /// Saves the mesh in the form that the suffix names: ".xml" or ".bin". The file is replaced
    /// when the new one is whole. Throws a std::runtime_error.
    void save(const std::string& fileName) const;

    /// Returns the bytes that a file of this form has. Throws a std::runtime_error when they can't
    /// be made.
    std::string contentIn(MeshForm form) const;

    /// Returns the text of what a world reads of it, with every bit of its numbers.
    std::string toXML() const;

private:
    void load(const std::string& fileName, Defects defects);

    HostKit::Foundation mFoundation;
    Common::SharedPtr<NavMesh::NavMeshContainer> mMesh;
    bool mIsBinary = false;
};

} // namespace ZUNO::Tools
