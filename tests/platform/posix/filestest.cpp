// Files where the POSIX side answers in a way of its own.
#include "common/io/filestream.h"
#include "common/io/filesystem.h"
#include "common/memory/objectcreation.h"
#include "tests/support/foundation.h"
#include "tests/support/recordingallocator.h"
#include "tests/support/tempfolder.h"

#include <algorithm>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZUNO::Tests {

namespace fs = std::filesystem;
using namespace Common;
using namespace Common::IO;

class PosixFilesTest : public FoundationTest {
protected:
    PosixFilesTest() : mFiles(Memory::createManaged<FileSystem>(gObjectAllocator)) {}

    std::string in(const char* name) const { return mFolder.in(name); }
    static std::ptrdiff_t openDescriptors() {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    }

    TempFolder mFolder;
    std::unique_ptr<FileSystem> mFiles;
};

TEST_F(PosixFilesTest, FullDisksNormalPathsAndPrivateFiles) {
    FileStream stream;
    stream.open("/dev/full", FACCESS_WRITE, FMODE_OPEN);
    EXPECT_EQ(raisedBy([&] { stream.write("x", 1); }),
              "OutOfSpaceException: FileStream: Cannot write to file, disk full.");
    EXPECT_EQ(raisedBy([&] { stream.flush(); }), "IOException: FileStream: Unknown error on flush");
    EXPECT_STREQ(mFiles->getFullPath("/../a//b/.").getConstCharPtr(), "/a/b");
    EXPECT_NE(raisedBy([&] { mFiles->getFullPath(std::string(4096, '/').c_str()); }), "");
    const SharedPtr<Stream> temporary = mFiles->createTempFile();
    struct stat status {};
    ASSERT_EQ(stat(temporary->getFilename().getConstCharPtr(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U) << "nobody else gets in";
    mFiles->deleteFile(temporary->getFilename());
    // nothing more can be opened
    rlimit former{};
    getrlimit(RLIMIT_NOFILE, &former);
    const rlimit none{0, former.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const std::string raised = raisedBy([&] { mFiles->createTempFile(); });
    setrlimit(RLIMIT_NOFILE, &former);
    EXPECT_EQ(raised, "IOException: FileSystem: Cannot create a temporary file");
    const int lowest = dup(0);
    close(lowest);
    temporary->close();
    mFiles->deleteFile(mFiles->createTempFile()->getFilename());
    const int next = dup(0);
    close(next);
    EXPECT_LT(next, lowest) << "descriptors come back";
}

TEST_F(PosixFilesTest, AWriteThatFallsShortIsNotTriedAgain) {
    rlimit former{};
    getrlimit(RLIMIT_FSIZE, &former);
    FileStream stream(in("f").c_str(), FACCESS_WRITE, FMODE_CREATE);
    const rlimit limit{10, former.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit); // a write that begins there ends the process
    stream.write("0123456789ABCDEF", 16);
    setrlimit(RLIMIT_FSIZE, &former);
    EXPECT_EQ(Reports::take(), Texts{"|Internal error: Unhandeled error condition during write."});
    EXPECT_EQ(stream.getLength(), 10);
}

TEST_F(PosixFilesTest, TellsAMissingPathFromWhatIsNoFolder) {
    FileStream(in("f").c_str(), FACCESS_WRITE, FMODE_CREATE).close();
    fs::create_symlink("ring", mFolder.path() / "ring");
    const std::string longName(300, 'n');
    const char* const unknown = "retVal == 0|Internal error: Unhandled error code from open()";
    const struct {
        const char* mName;
        const char* mOnDeleting; ///< raised or reported
        const char* mOnOpening;
    } cases[] = {
        {"f", "|Unkown error code", ""},
        {"f/x", "ArgumentException", "FileNotFoundException"},
        {"no/x", "ArgumentException", "FileNotFoundException"},
        {"ring", "|Unkown error code", unknown},
        {longName.c_str(), "|Unkown error code", unknown},
    };
    const auto outcomeOf = [](auto action) {
        const std::string raised = raisedBy(action);
        const Texts reports = Reports::take();
        return reports.empty() ? raised.substr(0, raised.find(':')) : reports.front();
    };
    for (const auto& row : cases) {
        const String name = in(row.mName).c_str();
        FileStream stream;
        EXPECT_EQ(outcomeOf([&] { mFiles->deleteDirectory(name); }), row.mOnDeleting) << row.mName;
        EXPECT_EQ(outcomeOf([&] { stream.open(name, FACCESS_READ, FMODE_OPEN); }), row.mOnOpening)
            << row.mName;
    }
    EXPECT_FALSE(mFiles->fileExists(mFolder.path().c_str())) << "a folder is no file";
}

// Where a name can't be kept, its file goes: nobody would know of it.
TEST_F(PosixFilesTest, NoTemporaryFileIsForgotten) {
    auto* const own = new RecordingAllocator;
    const std::unique_ptr<FileSystem> files(
        Memory::createManaged<FileSystem>(SharedPtr<Memory::Allocator>(own)));
    own->mIsEmpty = true;
    const auto countFiles = [] {
        std::error_code ignored;
        return std::ranges::count_if(fs::directory_iterator("/tmp"), [&](const auto& entry) {
            return entry.path().filename().string().starts_with("zuno") &&
                   entry.is_regular_file(ignored);
        });
    };
    const auto before = countFiles();
    constexpr int times = 100; // more than there are tests beside this one
    for (int i = 0; i < times; ++i)
        EXPECT_EQ(raisedBy([&] { files->createTempFile(); }),
                  "OutOfMemoryException: No Memory available");
    EXPECT_LT(countFiles(), before + times / 2);
}

TEST_F(PosixFilesTest, LeavesNothingOpen) {
    const std::ptrdiff_t before = openDescriptors();
    FileStream(in("f").c_str(), FACCESS_WRITE, FMODE_CREATE);
    EXPECT_TRUE(mFiles->fileExists(in("f").c_str()));
    FileStream folder;
    EXPECT_NE(raisedBy([&] { folder.open(mFolder.path().c_str(), FACCESS_READ, FMODE_OPEN); }), "");
    mFiles->deleteFile(mFiles->createTempFile()->getFilename());
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace ZUNO::Tests
