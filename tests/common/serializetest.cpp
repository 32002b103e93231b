#include "common/callback/callbackfilestream.h"
#include "common/memory/objectcreation.h"
#include "common/serialize/binaryserializestorage.h"
#include "tests/support/damage.h"
#include "tests/support/foundation.h"
#include "tests/support/memoryfiles.h"

#include <memory>

namespace ZUNO::Tests {

using namespace Common;
using namespace Common::Serialize;

class SerializeTest : public FoundationTest {
protected:
    SerializeTest() {
        mFiles = new MemoryFiles;
        mFileCallback = mFiles;
    }

    SharedPtr<IO::Stream> open(const char* name, int mode) {
        auto* const stream =
            Memory::createManaged<Callback::CallbackFileStream>(gObjectAllocator, mFileCallback);
        SharedPtr<IO::Stream> shared(stream);
        stream->open(name, mode);
        return shared;
    }
    std::unique_ptr<BinarySerializeStorage> make(int mode, int marker) {
        return std::unique_ptr<BinarySerializeStorage>(
            Memory::createManaged<BinarySerializeStorage>(gObjectAllocator, mode, marker));
    }
    std::unique_ptr<BinarySerializeStorage> reader(const char* name) {
        auto storage = make(SMODE_INPUT, 2);
        storage->open(open(name, 1));
        return storage;
    }

    /// One item of each type, within two classes: written, or read and compared.
    static void exchange(BinarySerializeStorage& storage) {
        using S = BinarySerializeStorage;
        const bool writes = storage.getSerializeMode() == SMODE_OUTPUT;
        const auto item = [&](const char* name, auto value, auto write, auto read) {
            if (writes)
                return static_cast<void>((storage.*write)(name, value));
            String foundName;
            decltype(value) found{};
            (storage.*read)(foundName, found);
            EXPECT_EQ(found, value) << name;
            EXPECT_STREQ(foundName.getConstCharPtr(), name);
        };
        const auto enter = [&](const char* name, const char* type, const char* type2,
                               std::uint32_t version) {
            if (writes)
                return storage.writeClassEnter(name, type, type2, version);
            String found[3];
            std::uint32_t foundVersion = 0;
            storage.readClassEnter(found[0], found[1], found[2], foundVersion);
            EXPECT_TRUE(found[0] == name && found[1] == type && found[2] == type2) << name;
            EXPECT_EQ(foundVersion, version);
        };
        const auto leave = [&] { writes ? storage.writeClassExit() : storage.readClassExit(); };
        enter("outer", "T", "U", 25);
        item("b", true, &S::writeBool, &S::readBool);
        item("u8", std::uint8_t{200}, &S::writeUInt8, &S::readUInt8);
        item("i8", std::int8_t{-100}, &S::writeInt8, &S::readInt8);
        item("u16", std::uint16_t{60000}, &S::writeUInt16, &S::readUInt16);
        item("i16", std::int16_t{-30000}, &S::writeInt16, &S::readInt16);
        item("u32", 4000000000U, &S::writeUInt32, &S::readUInt32);
        item("i32", -2000000000, &S::writeInt32, &S::readInt32);
        enter("inner", "U", "T", 1);
        item("u64", std::uint64_t{18000000000000000000U}, &S::writeUInt64, &S::readUInt64);
        item("i64", std::int64_t{-9000000000000000000}, &S::writeInt64, &S::readInt64);
        item("f", 0.1F, &S::writeFloat32, &S::readFloat32);
        item("d", 0.1, &S::writeFloat64, &S::readFloat64);
        leave();
        item("b", String("text"), &S::writeBString, &S::readBString);
        item("w", WideText({u'\u00e4', u'b'}, gObjectAllocator), &S::writeWString, &S::readWString);
        item("nothing", WideText(gObjectAllocator), &S::writeWString, &S::readWString);
        leave();
        item("last", 7, &S::writeInt32, &S::readInt32);
    }
    void writeAll(const char* name, int marker) {
        auto out = make(SMODE_OUTPUT, marker);
        out->open(open(name, 3));
        exchange(*out);
        out->close();
        out->close(); // once more does nothing
    }

    MemoryFiles* mFiles;
    SharedPtr<Callback::FileIOCallback> mFileCallback;
};

TEST_F(SerializeTest, WritesTheseBytesInTheOtherByteOrder) {
    auto out = make(SMODE_OUTPUT, 0);
    out->open(open("g", 3));
    out->writeInt32("a", 0x01020304);
    out->writeFloat32("b", 1.0F);
    out->writeClassEnter("a", "T", "T", 25);
    out->writeClassExit();
    out.reset();
    const auto bytes = [](std::initializer_list<int> list) {
        std::string text;
        for (const int byte : list)
            text += static_cast<char>(byte);
        return text;
    };
    EXPECT_EQ(mFiles->mFiles["g"],
              bytes({0, 0, 0,   0, 1, 0, 0, 0,    0,    0, 0, 0,  49, 7,   0, 0,   0, 0, 1, 2,
                     3, 4, 10,  0, 0, 0, 1, 0x3F, 0x80, 0, 0, 14, 0,  0,   0, 0,   0, 0, 0, 0,
                     0, 0, 0,   0, 0, 0, 0, 25,   15,   0, 0, 0,  2,  0,   1, 'a', 0, 0, 0, 0,
                     0, 1, 'b', 0, 0, 0, 1, 0,    0,    0, 1, 0,  1,  'T', 0, 0,   0, 0}));
}

TEST_F(SerializeTest, ReadsBackWhatItWroteInBothByteOrders) {
    for (const int marker : {1, 0}) {
        writeAll("s", marker);
        auto in = reader("s");
        EXPECT_EQ(Reports::take().size(), marker == 1 ? 0U : 1U) << "a foreign byte order is told";
        exchange(*in);
    }
}

TEST_F(SerializeTest, SkipsAndReturns) {
    writeAll("s", 1);
    auto in = reader("s");
    const SharedPtr<SerializeStorage::Position> begin = in->getPosition();
    EXPECT_EQ(in->peekItemType(), ITEM_CLASS_ENTER);
    String name;
    int type = 0;
    in->skipItem(name, type);
    EXPECT_EQ(type, ITEM_CLASS_ENTER);
    EXPECT_STREQ(name.getConstCharPtr(), "outer");
    EXPECT_FALSE(*in->getPosition() == *begin);
    in->skipItem(name, type);
    EXPECT_EQ(type, ITEM_INT32);
    EXPECT_STREQ(name.getConstCharPtr(), "last");
    in->setPosition(begin);
    String typeName;
    std::uint32_t version = 0;
    in->readClassEnter(name, typeName, typeName, version);
    for (type = 0; type != ITEM_CLASS_EXIT;)
        in->skipItem(name, type);
    EXPECT_TRUE(name.isEmpty()) << "the end of a class has no name";
    in->setPosition(begin);
    EXPECT_TRUE(*in->getPosition() == *begin);
    exchange(*in);
    in->setPosition({});
    auto out = make(SMODE_OUTPUT, 1);
    out->skipItem(name, type);
    EXPECT_EQ(Reports::take(),
              (Texts{"storagePos->getStorageType() == STORAGE_BINARY|Cannot use StoragePosition "
                     "from wrong type",
                     "getSerializeMode() == SMODE_INPUT|Cannot read on a write stream"}));
}

TEST_F(SerializeTest, AsksForNoMoreThanThereIsAndReturnsToTheLastItem) {
    struct StrictFiles : MemoryFiles {
        std::int32_t readFile(void* to, std::uint32_t count, Handle handle) override {
            const bool isThere = getFilePosition(handle) + count <= getFileLength(handle);
            return isThere ? MemoryFiles::readFile(to, count, handle) : -1;
        }
    };
    writeAll("s", 1);
    auto* const strict = new StrictFiles;
    strict->mFiles = mFiles->mFiles;
    mFileCallback = mFiles = strict;
    const SharedPtr<IO::Stream> stream = open("s", 1);
    auto in = make(SMODE_INPUT, 2);
    in->open(stream);
    exchange(*in);
    const auto end = stream->getPosition();
    in->close();
    EXPECT_GT(end, stream->getPosition());
    EXPECT_EQ(mFiles->mFiles["s"][static_cast<std::size_t>(stream->getPosition())], 16)
        << "the count of the first table";
}

TEST_F(SerializeTest, EndsWhateverTheHostThrows) {
    struct ThrowingFiles : MemoryFiles {
        std::int32_t writeFile(const void* from, std::uint32_t count, Handle handle) override {
            if (mThrows)
                throw 5;
            return MemoryFiles::writeFile(from, count, handle);
        }
        bool mThrows = false;
    };
    auto* const throwing = new ThrowingFiles;
    mFileCallback = mFiles = throwing;
    auto out = make(SMODE_OUTPUT, 1);
    out->open(open("s", 3));
    throwing->mThrows = true;
    out.reset();
    EXPECT_EQ(Reports::take(),
              Texts{"|The lookup tables could not be written: the stream raised what is no "
                    "exception of this library"});
}

TEST_F(SerializeTest, SaysWhatIsWrong) {
    writeAll("s", 1);
    const std::string good = mFiles->mFiles["s"];
    const std::size_t tables =
        static_cast<unsigned char>(good[5]) + 256U * static_cast<unsigned char>(good[6]);
    const std::string version =
        "VersionMismatchException: The input stream has a wrong version for "
        "this serialize storage. We found version '";
    struct Case {
        std::size_t mAt;
        std::string mBytes;
        std::string mRaised;
    };
    for (const Case& row :
         {Case{1, "\x02",
               version + "2' but expected version '1' {FoundVersion=2} {ExpectedVersion=1}"},
          {1, "\xFE\xFF\xFF\xFF",
           version + "4294967294' but expected version '1' {FoundVersion=4294967294} "
                     "{ExpectedVersion=1}"},
          {tables, "\xFF\xFF\xFF\x0F",
           "SerializeException: The stream is corrupted. A lookup table is longer than the stream"},
          {5, std::string(8, '\0'),
           "SerializeException: Stream is corrupted, no lookup table stored in the stream"}}) {
        mFiles->mFiles["s"] = good;
        mFiles->mFiles["s"].replace(row.mAt, row.mBytes.size(), row.mBytes);
        EXPECT_EQ(raisedBy([&] { reader("s"); }), row.mRaised);
    }
    mFiles->mFiles["s"] = good;
    EXPECT_EQ(raisedBy([&] {
                  String name;
                  float value = 0;
                  reader("s")->readFloat32(name, value);
              }),
              "TypeMismatchException: Expected an item of type: 'float32' but found an item of "
              "type: 'Class enter' {FoundType=Class enter} {ExpectedType=float32}");
    const auto refused = [&](int mode, int access) {
        return raisedBy([&] { make(mode, 1)->open(open("s", access)); });
    };
    EXPECT_EQ(refused(SMODE_OUTPUT, 1), "ArgumentException: IO stream has to be writable for an "
                                        "output serialize stream {ArgumentName=stream}");
    EXPECT_EQ(raisedBy([&] { make(SMODE_INPUT, 1)->open({}); }),
              "ArgumentException: IO stream has to be readable for an input serialize stream "
              "{ArgumentName=stream}");
    struct Unseekable : Callback::CallbackFileStream {
        using CallbackFileStream::CallbackFileStream;
        bool canSeek() override { return false; }
    };
    for (const int mode : {SMODE_INPUT, SMODE_OUTPUT}) {
        auto* const stream = Memory::createManaged<Unseekable>(gObjectAllocator, mFileCallback);
        const SharedPtr<IO::Stream> shared(stream);
        stream->open("o", 3);
        EXPECT_EQ(raisedBy([&] { make(mode, 1)->open(shared); }),
                  std::string("ArgumentException: IO stream has to be seekable for an ") +
                      (mode == SMODE_INPUT ? "input" : "output") +
                      " serialize stream {ArgumentName=stream}");
    }
    auto out = make(SMODE_OUTPUT, 1);
    out->open(open("o", 3));
    const std::string longName(2048, 'n');
    const std::string longText(65536, 't');
    EXPECT_EQ(raisedBy([&] { out->writeBool(longName.c_str(), true); }).substr(0, 27),
              "ArgumentOutOfRangeException");
    EXPECT_EQ(raisedBy([&] { out->writeBString("n", longText.c_str()); }).substr(0, 27),
              "ArgumentOutOfRangeException");
}

TEST_F(SerializeTest, SurvivesStreamsThatAreCutOrDamaged) {
    writeAll("s", 1);
    const std::string good = mFiles->mFiles["s"];
    const auto skipOrThrow = [&](const std::string& content) {
        mFiles->mFiles["s"] = content;
        auto in = reader("s");
        String name;
        int type = 0;
        for (int item = 0; item < 2; ++item)
            in->skipItem(name, type);
    };
    const auto skipAll = [&](const std::string& content) {
        return raisedBy([&] { skipOrThrow(content); });
    };
    ASSERT_EQ(skipAll(good), "");
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_TRUE(skipAll(good.substr(0, length)).starts_with("SerializeException: ")) << length;
    EXPECT_EQ(outcomesOfDamage(good, 0x01, skipOrThrow),
              "V5 S9 .1 S3 .1 S3 .1 S3 .4 S1 .1 S3 .3 S3 .3 S3 .3 S3 .4 S3 .4 S3 .6 S3 .4 S1 .1 "
              "S3 .1 S3 .1 S3 .6 S3 .10 S3 .8 S1 .1 S3 .4 S1 .1 S3 .8 S2 .1 S5 .4 S1 .1 S5 .6 "
              "S6 .2 S3 .4 S6 .9 S2 .5 S2 .6 S2 .6 S2 .7 S2 .7 S2 .7 S2 .7 S2 .9 S2 .7 S2 .7 S2 "
              ".5 S2 .5 S2 .5 S2 .11 S2 .8 S6 .6 S1 .5");
    EXPECT_EQ(outcomesOfDamage(good, 0xFF, skipOrThrow),
              "V5 S21 .4 S5 .1 S5 .1 S5 .1 S5 .2 S5 .2 S5 .4 S5 .4 S13 .4 S5 .8 S5 .8 S5 .4 S5 "
              ".8 S8 .4 S7 .4 S13 .4 S6 .9 S2 .5 S2 .6 S2 .6 S2 .7 S2 .7 S2 .7 S2 .7 S2 .9 S2 "
              ".7 S2 .7 S2 .5 S2 .5 S2 .5 S2 .11 S2 .8 S6 .5 S2 .5");
    Reports::take();
}

} // namespace ZUNO::Tests
