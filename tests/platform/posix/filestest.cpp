// Files where the POSIX side answers in a way of its own.
#include "common/io/filestream.h"
#include "common/io/filesystem.h"
#include "common/memory/objectcreation.h"
#include "tests/support/foundation.h"

#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZUNO::Tests {

using namespace Common;
using namespace Common::IO;

using PosixFilesTest = FoundationTest;

TEST_F(PosixFilesTest, FullDisksNormalPathsAndPrivateFiles) {
    FileStream stream;
    stream.open("/dev/full", FACCESS_WRITE, FMODE_OPEN);
    EXPECT_EQ(raisedBy([&] { stream.write("x", 1); }),
              "OutOfSpaceException: FileStream: Cannot write to file, disk full.");
    const std::unique_ptr<FileSystem> files(Memory::createManaged<FileSystem>(gObjectAllocator));
    EXPECT_STREQ(files->getFullPath("/../a//b/.").getConstCharPtr(), "/a/b");
    const SharedPtr<Stream> temporary = files->createTempFile();
    struct stat status {};
    ASSERT_EQ(stat(temporary->getFilename().getConstCharPtr(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U) << "nobody else gets in";
    files->deleteFile(temporary->getFilename());
    // nothing more can be opened
    rlimit former{};
    getrlimit(RLIMIT_NOFILE, &former);
    const rlimit none{0, former.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const std::string raised = raisedBy([&] { files->createTempFile(); });
    setrlimit(RLIMIT_NOFILE, &former);
    EXPECT_EQ(raised, "IOException: FileSystem: Cannot create a temporary file");
    const int lowest = dup(0);
    close(lowest);
    temporary->close();
    files->deleteFile(files->createTempFile()->getFilename());
    const int next = dup(0);
    close(next);
    EXPECT_LT(next, lowest) << "descriptors come back";
}

} // namespace ZUNO::Tests
