#pragma once

#include "common/serialize/nametable.h"
#include "common/serialize/serializestorage.h"

namespace ZUNO::Common::Serialize {

/// A storage in bytes: each item is a type code, the id of its name and the value; the names stand
/// once each in two tables at the stream's end. The stream must be at its start and seekable.
/// Throws a SerializeException ("The stream is corrupted. ...") where a stream that is cut or
/// damaged makes no sense; damage within a value gives another value. Neither makes the storage ask
/// for more memory than the stream's length accounts for.
/// Reading runs ahead of what was asked for; closing leaves the stream behind the last item read.
class BinarySerializeStorage final : public SerializeStorage {
public:
    class BinaryPosition : public Position {
    public:
        explicit BinaryPosition(std::uint64_t offset) : Position(STORAGE_BINARY), mOffset(offset) {}
        bool operator==(const Position& other) const override;
        std::uint64_t getOffset() const { return mOffset; }

    private:
        std::uint64_t mOffset;
    };

    /// `marker`: the byte order to write with; reading takes it from the stream.
    BinarySerializeStorage(std::int32_t mode, int marker);
    /// Closes. Reports a failure of that, whatever the stream throws; `close` hands it on.
    ~BinarySerializeStorage() override;

    SharedPtr<Position> getPosition() override;
    void setPosition(const SharedPtr<Position>& position) override;
    /// Throws an ArgumentException for a stream that can't do what the mode needs, a
    /// VersionMismatchException, or a SerializeException. Reports a foreign byte order.
    void open(const SharedPtr<IO::Stream>& stream) override;
    /// Writes the tables and lets the stream go. Does nothing on a closed storage.
    void close() override;
    void skipItem(String& name, int& type) override;
    int peekItemType() override;

    void readClassEnter(String& name, String& typeName, String& typeName2,
                        std::uint32_t& version) override;
    void readClassExit() override;
    void readWString(String& name, WideText& value) override;
    void readBString(String& name, String& value) override;
    void readFloat64(String& name, double& value) override { read(ITEM_FLOAT64, name, value); }
    void readFloat32(String& name, float& value) override { read(ITEM_FLOAT32, name, value); }
    void readInt64(String& name, std::int64_t& value) override { read(ITEM_INT64, name, value); }
    void readUInt64(String& name, std::uint64_t& value) override { read(ITEM_UINT64, name, value); }
    void readInt32(String& name, std::int32_t& value) override { read(ITEM_INT32, name, value); }
    void readUInt32(String& name, std::uint32_t& value) override { read(ITEM_UINT32, name, value); }
    void readInt16(String& name, std::int16_t& value) override { read(ITEM_INT16, name, value); }
    void readUInt16(String& name, std::uint16_t& value) override { read(ITEM_UINT16, name, value); }
    void readInt8(String& name, std::int8_t& value) override { read(ITEM_INT8, name, value); }
    void readUInt8(String& name, std::uint8_t& value) override { read(ITEM_UINT8, name, value); }
    void readBool(String& name, bool& value) override;

    /// Reads a number whose name does not matter. Cheaper than the operations above, which copy it.
    void readValue(float& value) { readItem(ITEM_FLOAT32, value); }
    void readValue(std::int64_t& value) { readItem(ITEM_INT64, value); }
    void readValue(std::int32_t& value) { readItem(ITEM_INT32, value); }
    void readValue(std::uint32_t& value) { readItem(ITEM_UINT32, value); }
    void readValue(std::uint16_t& value) { readItem(ITEM_UINT16, value); }

    /// Throws an ArgumentOutOfRangeException for names above 2,047 bytes and texts above 65,535
    /// units.
    void writeClassEnter(const String& name, const String& typeName, const String& typeName2,
                         std::uint32_t version) override;
    void writeClassExit() override;
    void writeWString(const String& name, const WideText& value) override;
    void writeBString(const String& name, const String& value) override;
    void writeFloat64(const String& name, double value) override {
        write(ITEM_FLOAT64, name, value);
    }
    void writeFloat32(const String& name, float value) override {
        write(ITEM_FLOAT32, name, value);
    }
    void writeInt64(const String& name, std::int64_t value) override {
        write(ITEM_INT64, name, value);
    }
    void writeUInt64(const String& name, std::uint64_t value) override {
        write(ITEM_UINT64, name, value);
    }
    void writeInt32(const String& name, std::int32_t value) override {
        write(ITEM_INT32, name, value);
    }
    void writeUInt32(const String& name, std::uint32_t value) override {
        write(ITEM_UINT32, name, value);
    }
    void writeInt16(const String& name, std::int16_t value) override {
        write(ITEM_INT16, name, value);
    }
    void writeUInt16(const String& name, std::uint16_t value) override {
        write(ITEM_UINT16, name, value);
    }
    void writeInt8(const String& name, std::int8_t value) override {
        write(ITEM_INT8, name, value);
    }
    void writeUInt8(const String& name, std::uint8_t value) override {
        write(ITEM_UINT8, name, value);
    }
    void writeBool(const String& name, bool value) override {
        write(ITEM_BOOL, name, static_cast<std::uint8_t>(value));
    }

private:
    static constexpr std::uint32_t formatVersion = 1;
    static constexpr std::int64_t tableOffsetPlace = 5;

    template <typename T>
    void write(ItemType type, const String& name, T value) {
        writeHead(type, name);
        mOut.put(value);
    }
    template <typename T>
    void read(ItemType type, String& name, T& value) {
        readHead(type, name);
        value = mIn.get<T>();
    }
    template <typename T>
    void readItem(ItemType type, T& value) {
        readType(type);
        readName();
        value = mIn.get<T>();
    }

    void writeHead(ItemType type, const String& name);
    void readHead(ItemType expected, String& name);
    void readType(ItemType expected) {
        requireOpen();
        const int found = mIn.get<std::uint8_t>();
        if (found != expected)
            throwUnexpected(found, expected);
    }
    const String& readName() {
        const String* const name = mInstanceNames.find(mIn.get<std::uint32_t>());
        if (name == nullptr)
            throwUnknownName();
        return *name;
    }
    void readTypeName(String& name);
    void requireOpen() const {
        if (mStream == nullptr)
            throwClosed();
    }
    [[noreturn]] static void throwClosed();
    [[noreturn]] static void throwCorrupted(const char* what);
    [[noreturn]] static void throwUnexpected(int found, ItemType expected);
    [[noreturn]] static void throwUnknownName();

    void requireFitFor(const SharedPtr<IO::Stream>& stream) const;
    void openOutput();
    void openInput();
    void closeOutput();

    SharedPtr<IO::Stream> mStream;
    int mEndiness;
    ByteReader mIn;
    ByteWriter mOut;
    NameTable mInstanceNames;
    NameTable mTypeNames;
};

} // namespace ZUNO::Common::Serialize
