#include "common/interface.h"
#include "hostkit/foundation.h"
#include "hostkit/memoryfilecallback.h"
#include "hostkit/meshfilecallback.h"
#include "hostkit/stdiofilecallback.h"
#include "tests/support/tempfolder.h"
#include "tools/picture/loadedmesh.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace ZUNO::Tests {

using namespace HostKit;
namespace fs = std::filesystem;

class HostKitTest : public testing::Test {
protected:
    HostKitTest() {
        fs::create_directories(mFolder / "base" / "sub");
        mTemporary.put("base/sub/in", "0123456789");
        mTemporary.put("out", "secret");
        std::error_code ignored; // where there are no links, there is no such file
        fs::create_symlink(mFolder / "out", mFolder / "base" / "link", ignored);
    }

    Foundation mFoundation;
    TempFolder mTemporary;
    const fs::path mFolder = mTemporary.path();
};

TEST_F(HostKitTest, FilesCantLeaveTheBaseFolder) {
    StdioFileCallback files(mFolder / "base");
    const struct {
        std::string mName;
        std::int32_t mMode;
        std::int32_t mResult;
    } cases[] = {
        {"sub/in", 1, 0},
        {"sub/../sub/in", 1, 0},
        {"../out", 1, -1},
        {"sub/../../out", 1, -1},
        {(mFolder / "out").string(), 1, -1},
        {"link", 1, -1},
        {"missing", 1, -1},
        {"sub", 1, -2},
        {"sub/in/x", 1, -1},
        {"sub/new", 3, 0},
        {"../new", 3, -1},
        {"sub/rw", 2, 0},
    };
    for (const auto& row : cases) {
        StdioFileCallback::Handle handle = 0;
        EXPECT_EQ(files.openFile(&handle, row.mName.c_str(), row.mMode), row.mResult) << row.mName;
        EXPECT_EQ(files.isValidHandle(handle), row.mResult == 0);
        files.closeFile(handle);
    }
    EXPECT_FALSE(fs::exists(mFolder / "new"));
    EXPECT_EQ(std::string(files.getFullPathName("sub/in").getConstCharPtr()),
              (mFolder / "base" / "sub" / "in").string());
}

// Of the system, in memory, and a mesh in its binary form that the world reads as a text.
TEST_F(HostKitTest, AllFilesAnswerAlike) {
    using Files = Exports::Files;
    const Tools::LoadedMesh mesh(ZUNO_SOURCE_FOLDER "/worlds/harbour.xml");
    const std::string text = mTemporary.put("mesh.xml", mesh.toXML());
    const std::string binary = mTemporary.in("mesh.bin");
    mesh.save(binary);
    const Files system(new StdioFileCallback);
    for (const auto& [files, file] :
         {std::pair(system, text),
          {Files(new MemoryFileCallback(text, mTemporary.get("mesh.xml"))), text},
          {Files(new MeshFileCallback(system)), text},
          {Files(new MeshFileCallback(system)), binary}}) {
        StdioFileCallback::Handle other = 0;
        StdioFileCallback::Handle handle = 0;
        ASSERT_EQ(files->openFile(&other, file.c_str(), 1), 0);
        ASSERT_EQ(files->openFile(&handle, file.c_str(), 1), 0);
        const std::int64_t length = files->getFileLength(handle);
        char last[3] = "";
        EXPECT_EQ(files->seekFile(-2, 2, handle), length - 2);
        EXPECT_EQ(files->readFile(last, 9, handle), 2);
        EXPECT_STREQ(last, ">\n");
        EXPECT_EQ(files->seekFile(-3, 1, handle), length - 3);
        EXPECT_EQ(files->seekFile(-1, 3, handle), -4);
        EXPECT_EQ(files->seekFile(-length, 1, handle), -4);
        EXPECT_EQ(files->getFilePosition(handle), length - 3);
        EXPECT_EQ(files->getFilePosition(other), 0);
        files->closeFile(handle);
        EXPECT_EQ(files->seekFile(0, 3, handle), -1);
        EXPECT_EQ(files->getFilePosition(handle), -1);
        EXPECT_EQ(files->getFileLength(handle), -1);
        EXPECT_EQ(files->readFile(last, 1, handle), -1);
        EXPECT_EQ(files->writeFile(last, 1, handle), -1);
        files->closeFile(other);
        EXPECT_FALSE(files->getFullPathName("f").isEmpty());
    }
}

TEST_F(HostKitTest, FilesAreReadWrittenAndSought) {
    StdioFileCallback files;
    StdioFileCallback::Handle handle = 0;
    const std::string name = (mFolder / "base" / "sub" / "in").string();
    ASSERT_EQ(files.openFile(&handle, name.c_str(), 2), 0);
    char buffer[8] = "";
    EXPECT_EQ(files.readFile(buffer, 4, handle), 4);
    EXPECT_EQ(files.getFilePosition(handle), 4);
    EXPECT_EQ(files.getFileLength(handle), 10);
    EXPECT_EQ(files.getFilePosition(handle), 4) << "asking for the length moves nothing";
    EXPECT_EQ(files.seekFile(-2, 2, handle), 8);
    EXPECT_EQ(files.readFile(buffer, 8, handle), 2);
    EXPECT_EQ(files.seekFile(-1, 1, handle), 9);
    EXPECT_EQ(files.writeFile("ab", 2, handle), 2);
    EXPECT_EQ(files.seekFile(-1, 3, handle), -4);
    EXPECT_EQ(files.seekFile(std::int64_t{5} << 32, 3, handle), std::int64_t{5} << 32);
    EXPECT_EQ(files.getFileLength(handle), 11);
    files.closeFile(handle);
    EXPECT_EQ(files.bytesRead(), 6U);
    ASSERT_EQ(files.openFile(&handle, name.c_str(), 1), 0);
    EXPECT_EQ(files.writeFile("ab", 2, handle), 0) << "for another reason than a full disk";
    files.closeFile(handle);
}

TEST(HostKitFoundationTest, LeavesAFoundationOfTheHostsRunning) {
    for (const bool isHosts : {true, false}) {
        if (isHosts)
            Common::initLibrary({});
        {
            const Foundation outer;
            { const Foundation inner; }
            EXPECT_TRUE(Common::isLibraryRunning());
        }
        EXPECT_EQ(Common::isLibraryRunning(), isHosts);
        Common::closeLibrary();
    }
}

} // namespace ZUNO::Tests
