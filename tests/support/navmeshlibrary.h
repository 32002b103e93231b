#pragma once

#include "common/memory/objectcreation.h"
#include "navmesh/interface.h"
#include "navmesh/navmeshfiles.h"
#include "tests/support/foundation.h"
#include "tests/support/memoryfiles.h"
#include "worlds/meshmodel.h"

namespace ZUNO::Tests {

/// Runs with the mesh library started over files in memory.
class NavMeshLibraryTest : public FoundationTest {
protected:
    NavMeshLibraryTest() {
        mFiles = new MemoryFiles;
        mFileCallback = mFiles;
        NavMesh::initLibrary(mCallback, mFileCallback);
    }
    ~NavMeshLibraryTest() override { NavMesh::closeLibrary(); }

    Common::SharedPtr<NavMesh::NavMeshContainer> load(const std::string& document) {
        mFiles->mFiles["m"] = document;
        return NavMesh::loadNavMeshXML("m");
    }
    Common::SharedPtr<NavMesh::NavMeshContainer> load(const Worlds::MeshModel& model) {
        return load(model.toXML("m"));
    }

    MemoryFiles* mFiles;
    Common::SharedPtr<Common::Callback::FileIOCallback> mFileCallback;
};

} // namespace ZUNO::Tests
