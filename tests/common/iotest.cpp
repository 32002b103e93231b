#include "common/io/filestream.h"
#include "common/io/filesystem.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmlwriter.h"
#include "common/platform/writeinpieces.h"
#include "tests/support/closedstream.h"
#include "tests/support/foundation.h"
#include "tests/support/tempfolder.h"

#include <memory>

namespace ZUNO::Tests {

namespace fs = std::filesystem;
using namespace Common;
using namespace Common::IO;

class IoTest : public FoundationTest {
protected:
    IoTest() : mFormer(fs::current_path()) {
        fs::current_path(mFolder.path());
        fs::create_directory("sub");
        put("f", "0123456789");
        mFileSystem.reset(Memory::createManaged<FileSystem>(gObjectAllocator));
    }
    ~IoTest() override { fs::current_path(mFormer); }

    void put(const std::string& name, const std::string& content) { mFolder.put(name, content); }
    std::string get(const std::string& name) const { return mFolder.get(name); }
    std::string full(const std::string& name) const { return mFolder.in(name); }

    TempFolder mFolder;
    fs::path mFormer;
    std::unique_ptr<FileSystem> mFileSystem;
};

TEST_F(IoTest, OpensInEveryModeAndAccess) {
    struct Case {
        const char* mName;
        int mAccess;
        int mMode;
        std::string mRaised;
        const char* mContent; ///< afterwards, when "AB" was written where that is allowed
    };
    const std::string missing = "FileNotFoundException: FileStream: File or path not found "
                                "{Filename=new} {FullFilename=" +
                                full("new") + "}";
    const std::string denied =
        "UnAuthorizedAccessException: FileStream: Given path is a directory, or file is read-only, "
        "but an open-for-writing operation was attempted";
    const std::string unknown = "ArgumentOutOfRangeException: FileStream: Unknown ";
    const std::string unknownAccess = unknown + "access mode {ArgumentName=fAccess}";
    const std::string unknownMode = unknown + "file open mode {ArgumentName=fMode}";
    const Case cases[] = {
        {"f", 1, 1, "", "0123456789"},
        {"f", 2, 1, "", "AB23456789"},
        {"f", 3, 1, "", "AB23456789"},
        {"f", 2, 2, "", "0123456789AB"},
        {"f", 3, 3, "", "AB"},
        {"f", 2, 5, "", "AB23456789"},
        {"f", 2, 4,
         "FileExistException: FileStream: File has been opened with FMODE_CREATENEW but the file "
         "exists already {Filename=f} {FullFilename=" +
             full("f") + "}",
         "0123456789"},
        {"new", 1, 1, missing, ""},
        {"new", 2, 2, missing, ""},
        {"new", 3, 3, "", "AB"},
        {"new", 2, 4, "", "AB"},
        {"new", 3, 5, "", "AB"},
        {"sub", 1, 1, denied, ""},
        {"sub", 3, 1, denied, ""},
        {"f", 0, 0, unknownAccess, "0123456789"},
        {"f", 4, 1, unknownAccess, "0123456789"},
        {"f", 1, 0, unknownMode, "0123456789"},
        {"f", 1, 6, unknownMode, "0123456789"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.mName) + " " + std::to_string(row.mAccess) + " " +
                     std::to_string(row.mMode));
        put("f", "0123456789");
        fs::remove("new");
        FileStream stream;
        EXPECT_EQ(raisedBy([&] {
                      stream.open(row.mName, static_cast<FileAccess>(row.mAccess),
                                  static_cast<FileMode>(row.mMode));
                  }),
                  row.mRaised);
        EXPECT_EQ(stream.isClosed(), !row.mRaised.empty());
        EXPECT_EQ(stream.canRead(), row.mRaised.empty() && row.mAccess != 3);
        if (stream.canWrite())
            stream.write("AB", 2);
        stream.close();
        EXPECT_EQ(get(row.mName), row.mContent);
    }
}

TEST_F(IoTest, StreamsCheckWhatTheyAreAsked) {
    FileStream stream;
    char buffer[8];
    expectClosed(stream, "FileStream");
    EXPECT_EQ(raisedBy([&] { stream.flush(); }),
              "InvalidStateException: FileStream: Cannot flush on closed streams.");
    stream.open("f", FACCESS_READ, FMODE_OPEN);
    EXPECT_EQ(stream.getLength(), 10);
    EXPECT_EQ(stream.seek(-3, ORIGIN_END), 7);
    EXPECT_EQ(stream.read(buffer, 8), 3);
    EXPECT_EQ(stream.read(buffer, 8), 0);
    EXPECT_EQ(stream.seek(2, ORIGIN_BEGIN), 2);
    EXPECT_EQ(stream.seek(2, ORIGIN_CURRENT), 4);
    EXPECT_EQ(stream.getPosition(), 4);
    EXPECT_EQ(raisedBy([&] { stream.seek(-9, ORIGIN_CURRENT); }),
              "ArgumentOutOfRangeException: FileStream: Offset seeks out of file range. "
              "{ArgumentName=offset}");
    EXPECT_EQ(raisedBy([&] { stream.seek(0, static_cast<SeekOrigin>(0)); }),
              "ArgumentOutOfRangeException: FileStream: Unknown origin '0' specified. "
              "{ArgumentName=origin}");
    EXPECT_EQ(
        raisedBy([&] { stream.write(buffer, 1); }),
        "NotSupportedException: FileStream: Cannot write to the file. Not opened for writing.");
    EXPECT_EQ(raisedBy([&] { stream.read(nullptr, 1); }),
              "ArgumentNullException: FileStream: The destination buffer in a read cannot be NULL. "
              "{ArgumentName=dstBuffer}");
    stream.open("f", FACCESS_WRITE, FMODE_OPEN);
    stream.flush();
    EXPECT_EQ(
        raisedBy([&] { stream.read(buffer, 1); }),
        "NotSupportedException: FileStream: Cannot read from the file. Not opened for reading.");
    EXPECT_EQ(raisedBy([&] { stream.write(nullptr, 1); }),
              "ArgumentNullException: FileStream: The source buffer in a write cannot be NULL. "
              "{ArgumentName=srcBuffer}");
}

// Systems take less than 2 GiB in one call.
TEST_F(IoTest, WritesLargeBlocksInPieces) {
    using Platform::FileError;
    struct Case {
        std::uint32_t mSize;
        std::uint32_t mRoom; ///< of the device
        std::string mPieces;
    };
    const std::string three = "0+1073741824 1073741824+1073741824 2147483648+1073741824 ";
    for (const Case& row : {Case{0, 9, ""},
                            {7, 9, "0+7 "},
                            {0xFFFFFFFF, 0xFFFFFFFF, three + "3221225472+1073741823 "},
                            {0xFFFFFFFF, 0xC0000000, three + "3221225472+1073741823 "},
                            {0xFFFFFFFF, 0xBFFFFFFF, three}}) {
        std::string pieces;
        FileError error = FileError::OTHER;
        const std::int64_t written = Platform::writeInPieces(
            row.mSize, error, [&](std::uint32_t offset, std::uint32_t size, FileError& failure) {
                pieces += std::to_string(offset) + "+" + std::to_string(size) + " ";
                const std::uint32_t fitting = std::min(size, row.mRoom - offset);
                failure = fitting < size ? FileError::NO_SPACE : FileError::NONE;
                return fitting != 0 || size == 0 ? std::int64_t{fitting} : -1;
            });
        EXPECT_EQ(pieces, row.mPieces);
        EXPECT_EQ(written, std::min(row.mSize, row.mRoom));
        EXPECT_EQ(error, row.mRoom < row.mSize ? FileError::NO_SPACE : FileError::NONE);
    }
}

TEST_F(IoTest, SplitsPathsAtBothKindsOfSlashes) {
    struct Case {
        const char* mPath;
        const char* mDirectory;
        const char* mBasename;
        const char* mExtension;
        const char* mFilename;
    };
    const std::string longName(300, 'n');
    for (const Case& row : {Case{"dir/a.b.txt", "dir/", "a.b", "txt", "a.b.txt"},
                            {"c:\\x\\y/z", "c:\\x\\y/", "z", "", "z"},
                            {"plain", "", "plain", "", "plain"},
                            {"a.d/", "a.d/", "", "", ""},
                            {"d.e/file", "d.e/", "file", "", "file"},
                            {".hidden", "", "", "hidden", ".hidden"},
                            {longName.c_str(), "", "", "", ""}}) {
        EXPECT_STREQ(mFileSystem->getDirectory(row.mPath).getConstCharPtr(), row.mDirectory);
        EXPECT_STREQ(mFileSystem->getBasename(row.mPath).getConstCharPtr(), row.mBasename);
        EXPECT_STREQ(mFileSystem->getExtension(row.mPath).getConstCharPtr(), row.mExtension);
        EXPECT_STREQ(mFileSystem->getFilename(row.mPath).getConstCharPtr(), row.mFilename);
    }
    EXPECT_EQ(mFileSystem->getFullPath("./sub/../f").getConstCharPtr(), full("f"));
    EXPECT_EQ(
        raisedBy([&] { mFileSystem->getFullPath(longName.c_str()); }),
        "ArgumentException: FileSystem: Cannot build full path for an invalid path argument '" +
            longName + "' {ArgumentName=path}");
}

TEST_F(IoTest, ManagesFoldersAndFiles) {
    EXPECT_TRUE(mFileSystem->isAvailable());
    EXPECT_TRUE(mFileSystem->fileExists("f"));
    EXPECT_FALSE(mFileSystem->fileExists("new"));
    EXPECT_TRUE(mFileSystem->createFile("new")->canWrite());
    EXPECT_FALSE(mFileSystem->openFileRead("new")->canWrite());
    mFileSystem->createDirectory("d");
    EXPECT_EQ(raisedBy([&] { mFileSystem->createDirectory("d"); }),
              "DirectoryExistsException: FileSystem: Cannot create the directory, it already "
              "exists {Directory=d}");
    EXPECT_EQ(raisedBy([&] { mFileSystem->createDirectory("no/d"); }),
              "ArgumentException: FileSystem: Directory name is malformed {ArgumentName=dirName}");
    put("d/x", "x");
    EXPECT_EQ(
        raisedBy([&] { mFileSystem->deleteDirectory("d"); }),
        "DirectoryNotEmptyException: FileSystem: Directory cannot be deleted because it is not "
        "empty {Directory=d}");
    mFileSystem->deleteFile("d/x");
    mFileSystem->deleteFile("d/x");
    mFileSystem->deleteDirectory("d");
    EXPECT_EQ(raisedBy([&] { mFileSystem->deleteDirectory("d"); }),
              "ArgumentException: FileSystem: Directory name is malformed {ArgumentName=dirName}");
    mFileSystem->setCurrentDirectory("");
    mFileSystem->setCurrentDirectory("sub");
    EXPECT_EQ(mFileSystem->getCurrentDirectory().getConstCharPtr(), full("sub"));
    EXPECT_EQ(raisedBy([&] { mFileSystem->setCurrentDirectory("no"); }),
              "DirectoryNotFoundException: FileSystem: Cannot set current working directory to "
              "invalid directory name {Directory=no}");
    EXPECT_FALSE(mFileSystem->directoryExists("sub"));
    EXPECT_EQ(Reports::take(), Texts{"|not implemented"});
    const SharedPtr<Stream> temporary = mFileSystem->createTempFile();
    temporary->write("x", 1);
    const String temporaryName = temporary->getFilename();
    EXPECT_TRUE(mFileSystem->fileExists(temporaryName));
    temporary->close();
    mFileSystem->deleteFile(temporaryName);
    EXPECT_FALSE(mFileSystem->fileExists(temporaryName));
    EXPECT_EQ(mFileSystem->openFileAppend("../f")->getLength(), 10);
}

TEST_F(IoTest, IncludesDocuments) {
    using namespace Parser::XML;
    const std::unique_ptr<XMLParser> parser(Memory::createManaged<XMLParser>(gObjectAllocator));
    put("a", "<a><x/><xi:include href=\"b\"/><xi:include parse=\"xml\" href=\"sub/c\"/><y/></a>");
    put("b", "<b>\n<xi:include href=\"sub/c\"/>\n</b>");
    put("sub/c", "<c>\n<t>1</t></c>");
    struct NoFullPaths : FileSystem { // as beyond 260 characters
        String getFullPath(const String& path) override {
            return fullPathOf(path + String(std::string(300, 'x').c_str()));
        }
    } files;
    const XMLNodeElements* const root = parser->parseFile("a", &files);
    {
        FileStream out("out", FACCESS_WRITE, FMODE_CREATE);
        XMLWriter writer;
        writer.write(out, root);
    }
    EXPECT_EQ(get("out"), "<a>\n\t<x/>\n\t<b>\n\t\t<c>\n\t\t\t<t>1</t>\n\t\t</c>\n\t</b>\n"
                          "\t<c>\n\t\t<t>1</t>\n\t</c>\n\t<y/>\n</a>\n");
    struct Case {
        const char* mDocument;
        std::string mRaised;
    };
    const std::string xml = "XMLParserException: XMLParser: ";
    put("loop", "<l>\n\n<xi:include href=\"a\"/></l>");
    put("broken", "<l>\n\n<m></n></l>");
    put("deep0", "<l></l>");
    put("twice16", "<l></l>");
    for (int i = 0; i < 16; ++i) {
        const std::string next = "<xi:include href=\"twice" + std::to_string(i + 1) + "\"/>";
        put("twice" + std::to_string(i), "<l>" + next + next + "</l>");
    }
    for (int i = 1; i <= 32; ++i)
        put("deep" + std::to_string(i),
            "<l><xi:include href=\"deep" + std::to_string(i - 1) + "\"/></l>");
    for (const Case& row : {
             Case{"<a><xi:include href=\"./a\"/></a>",
                  xml + "The document './a' is being read already {Line=1} "},
             {"<a><xi:include href=\"loop\"/></a>",
              xml + "The document 'a' is being read already {Line=3} "},
             {"<a><xi:include href=\"broken\"/></a>",
              xml + "Name in starttag and endtag are not equal {Line=3} {Row=6} {Document=broken}"},
             {"<a><xi:include href=\"twice0\"/></a>",
              xml + "More than 1024 documents are included {Line=1} {Row=29} {Document=twice"},
             {"<a><xi:include href=\"deep31\"/></a>",
              xml + "Documents are included deeper than 32 levels {Line=1} "},
             {"<a><xi:include href=\"deep30\"/></a>", ""},
             {"<a><xi:include href=\"no\"/></a>",
              "FileNotFoundException: FileStream: File or path not found {Filename=no} "},
             {"<a><xi:include parse=\"text\" href=\"b\"/></a>",
              xml + "We support currently only xi:include tags with attribute parse=\"xml\" or no "
                    "parse attribute. "},
             {"<a><xi:include x=\"b\"/></a>", xml + "xi:include tag without href attribute found "},
         }) {
        put("a", row.mDocument);
        const std::string raised = raisedBy([&] { parser->parseFile("a", &files); });
        EXPECT_EQ(raised.substr(0, row.mRaised.size()), row.mRaised) << row.mDocument;
        EXPECT_EQ(raised.empty(), row.mRaised.empty());
    }
    EXPECT_EQ(raisedBy([&] { parser->parseFile("a", nullptr); }),
              "ArgumentNullException: XMLParser: FileSystem cannot be a NULL pointer in parseFile "
              "{ArgumentName=fSystem}");
    XMLWriter writer;
    FileStream out("out", FACCESS_WRITE, FMODE_CREATE);
    EXPECT_EQ(raisedBy([&] { writer.write(out, nullptr); }),
              "ArgumentNullException: NULL pointer node in the tree {ArgumentName=node}");
}

} // namespace ZUNO::Tests
