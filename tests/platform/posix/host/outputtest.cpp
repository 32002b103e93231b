// What is written arrives, or somebody learns that it did not.
#include "hostkit/foundation.h"
#include "hostkit/stdiofilecallback.h"
#include "tests/platform/process.h"
#include "tests/support/tempfolder.h"
#include "tools/output/outputfile.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZUNO::Tests {
namespace {

namespace fs = std::filesystem;

const std::string tools = ZUNO_TOOL_FOLDER;
const std::string harbour = std::string(ZUNO_SOURCE_FOLDER) + "/worlds/harbour.xml";

class OutputTest : public testing::Test {
protected:
    std::string put(const std::string& name, const std::string& content) {
        return mFolder.put(name, content);
    }
    std::string get(const std::string& name) const { return mFolder.get(name); }
    std::string in(const std::string& name) const { return mFolder.in(name); }

    TempFolder mFolder;
    std::string mOld = put("old.xml", "old");
};

TEST_F(OutputTest, TheHostKitsFilesAreNotBuffered) {
    const HostKit::Foundation foundation;
    HostKit::StdioFileCallback files;
    HostKit::StdioFileCallback::Handle handle = 0;
    ASSERT_EQ(files.openFile(&handle, "/dev/full", 3), 0);
    EXPECT_EQ(files.writeFile("x", 1, handle), -5);
    files.closeFile(handle);
    ASSERT_EQ(files.openFile(&handle, mOld.c_str(), 2), 0);
    char first = 0;
    EXPECT_EQ(files.readFile(&first, 1, handle), 1);
    EXPECT_EQ(files.writeFile("XY", 2, handle), 2) << "without positioning";
    EXPECT_EQ(get("old.xml"), "oXY") << "it arrived before the file was closed";
    EXPECT_EQ(files.writeFile("", 0x80000000U, handle), -1);
    EXPECT_EQ(files.closeFailures(), 0U);
    files.closeFile(handle);
    const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(descriptor);
    ASSERT_EQ(files.openFile(&handle, mOld.c_str(), 2), 0);
    close(descriptor); // the one that the file has now: closing it fails
    files.closeFile(handle);
    EXPECT_EQ(files.closeFailures(), 1U);
}

TEST_F(OutputTest, FilesAreReplacedWholeThroughLinksWithTheirPermissions) {
    chmod(mOld.c_str(), 0640);
    fs::create_symlink("old.xml", in("link.xml"));
    Tools::saveFile(in("link.xml"), "new");
    EXPECT_EQ(get("old.xml"), "new");
    EXPECT_TRUE(fs::is_symlink(in("link.xml")));
    struct stat status {};
    ASSERT_EQ(stat(mOld.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    fs::create_symlink("new.xml", in("dangling.xml"));
    Tools::saveFile(in("dangling.xml"), "made");
    EXPECT_EQ(get("new.xml"), "made");
    {
        Tools::OutputFile unfinished(mOld);
        unfinished.write("half");
        EXPECT_EQ(mFolder.count(), 5);
    }
    EXPECT_EQ(get("old.xml"), "new");
    EXPECT_EQ(mFolder.count(), 4);
}

TEST_F(OutputTest, AFileMayBeInputAndOutputByWhateverName) {
    fs::copy_file(harbour, in("mesh.xml"));
    fs::create_symlink("mesh.xml", in("link.xml"));
    const std::string convert = tools + "/zunopath convert ";
    const std::string mesh = get("mesh.xml");
    for (const auto& [from, to] :
         {std::pair("link.xml", "mesh.xml"), {"mesh.xml", "link.xml"}, {"mesh.xml", "mesh.xml"}}) {
        const Outcome outcome = runCommand(convert + in(from) + ' ' + in(to));
        EXPECT_EQ(outcome.mStatus, 0) << outcome.mOutput;
        EXPECT_TRUE(fs::is_symlink(in("link.xml")));
        EXPECT_EQ(get("mesh.xml").substr(0, 200), get("link.xml").substr(0, 200));
        EXPECT_EQ(runCommand(tools + "/zunopath info " + in("link.xml")).mStatus, 0);
    }
    // a picture is no mesh: it would replace its own input
    const Outcome drawn =
        runCommand(tools + "/zunopath draw " + in("mesh.xml") + ' ' + in("link.xml"));
    EXPECT_EQ(drawn.mStatus, 2);
    EXPECT_NE(drawn.mOutput.find("link.xml: "), std::string::npos) << drawn.mOutput;
    EXPECT_EQ(runCommand(tools + "/zunopath info " + in("mesh.xml")).mStatus, 0);
}

TEST_F(OutputTest, AnInterruptedSaveLeavesTheOldFileAlone) {
    for (const int signal : {SIGINT, SIGTERM})
        EXPECT_EXIT(
            {
                std::signal(signal, SIG_DFL); // whoever started the tests may ignore it
                Tools::OutputFile file(mOld);
                file.write("half");
                std::raise(signal);
            },
            testing::KilledBySignal(signal), "");
    EXPECT_EQ(get("old.xml"), "old");
    EXPECT_EQ(mFolder.count(), 1);
}

TEST_F(OutputTest, OutputThatIsLostFails) {
    fs::create_symlink("/dev/full", in("full.xml"));
    fs::create_symlink("/dev/full", in("full.bin"));
    put("script", "bounds\n");
    const std::string lost = "standard output cannot be written\n";
    const std::string full = ": cannot be written: disk full\n";
    const struct {
        std::string mCommand;
        std::string mMessage;
    } cases[] = {
        {"zunopath info " + harbour + " >/dev/full", "zunopath: " + lost},
        {"zunopath path " + harbour + " --from 2,0,2 --to 50,5,25 >/dev/full", "zunopath: " + lost},
        {"zunopath check " + harbour + " >/dev/full", "zunopath: " + lost},
        {"zunopath run " + harbour + ' ' + in("script") + " >/dev/full", "zunopath: " + lost},
        {"zunopath --help >/dev/full", "zunopath: " + lost},
        {"zunodemo " + harbour + " --seconds 1 >/dev/full", "zunodemo: " + lost},
        {"zunotrace --help >/dev/full", "zunotrace: " + lost},
        {"makeworld harbour " + in("w.xml") + " >/dev/full", "makeworld: " + lost},
        {"zunopath convert " + harbour + ' ' + in("full.xml"), in("full.xml") + full},
        {"zunopath convert " + harbour + ' ' + in("full.bin"), in("full.bin") + full},
        {"zunopath draw " + harbour + " /dev/full", "/dev/full" + full},
        {"makescene bridge /dev/full", "/dev/full" + full},
        {"zunodemo " + harbour + " --seconds 1 --picture " + mOld + ".jpg",
         ".jpg: expected a name that ends in .svg or .png\n"},
    };
    for (const auto& row : cases) {
        const Outcome outcome = runCommand("sh -c '" + tools + '/' + row.mCommand + '\'');
        EXPECT_EQ(outcome.mStatus, 2) << row.mCommand;
        EXPECT_TRUE(outcome.mOutput.ends_with(row.mMessage)) << outcome.mOutput;
    }
}

TEST_F(OutputTest, PicturesOfMeshesOfAnyNameAreXml) {
    const std::string mesh = in("a<b>&\x01\xFF\xC0\x80\xC3\xA9.xml");
    fs::copy_file(harbour, mesh);
    ASSERT_EQ(runCommand(tools + "/zunopath draw '" + mesh + "' " + in("picture.svg")).mStatus, 0);
    const std::string none = "\xEF\xBF\xBD";
    const std::string title = "a&lt;b&gt;&amp;" + none + none + none + none + "\xC3\xA9.xml</text>";
    EXPECT_NE(get("picture.svg").find(title), std::string::npos);
}

TEST_F(OutputTest, APngNeedsAConverterAndSaysSo) {
    const std::string picture = in("p.png");
    const std::string draw = tools + "/zunopath draw " + harbour + ' ' + picture;
    const Outcome without = runCommand("env PATH=" + in("") + ' ' + draw);
    EXPECT_EQ(without.mStatus, 2);
    EXPECT_NE(without.mOutput.find("by rsvg-convert (Debian: librsvg2-bin), which failed: "),
              std::string::npos)
        << without.mOutput;
    EXPECT_FALSE(fs::exists(picture));
    if (runCommand("rsvg-convert --version").mStatus != 0)
        GTEST_SKIP() << "no converter is here";
    EXPECT_EQ(runCommand(draw).mStatus, 0);
    EXPECT_TRUE(get("p.png").starts_with("\x89PNG"));
}

TEST_F(OutputTest, ShellsAreToldTheWordsThatMayComeNext) {
    const std::string tool = tools + "/zunopath";
    EXPECT_EQ(
        runCommand("bash -c 'source " ZUNO_SOURCE_FOLDER "/tools/completion/bash; COMP_WORDS=(" +
                   tool + " path --); COMP_CWORD=2; _zunotool " + tool + "; echo ${COMPREPLY[*]}'")
            .mOutput,
        "--help --json --from --to --budget --straight\n");
}

TEST_F(OutputTest, ALimitOfTheProcessLeavesTheOldFileAlone) {
    const Outcome outcome = runCommand("sh -c 'ulimit -f 8; " + tools + "/zunopath convert " +
                                       harbour + ' ' + mOld + '\'');
    EXPECT_EQ(outcome.mStatus, 2) << outcome.mOutput;
    EXPECT_EQ(get("old.xml"), "old");
    EXPECT_EQ(mFolder.count(), 1);
}

TEST_F(OutputTest, AFullDiskLeavesTheOldFileAlone) {
    const std::string disk = in("disk");
    fs::create_directory(disk);
    const Outcome mounted = runCommand("mount -t tmpfs -o size=64k tmpfs " + disk);
    if (mounted.mStatus != 0)
        GTEST_SKIP() << "a small disk can't be mounted here: " << mounted.mOutput;
    put("disk/a.xml", "old");
    const Outcome outcome =
        runCommand(tools + "/zunopath convert " + harbour + ' ' + disk + "/a.xml");
    EXPECT_EQ(get("disk/a.xml"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(disk), fs::directory_iterator()), 1);
    runCommand("umount " + disk);
    EXPECT_EQ(outcome.mStatus, 2);
    EXPECT_NE(outcome.mOutput.find("a.xml: cannot be written: disk full"), std::string::npos);
}

} // namespace
} // namespace ZUNO::Tests
