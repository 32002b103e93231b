#pragma once

#include "common/io/stream.h"

#include <vector>

namespace ZUNO::Common::Serialize {

enum SerializeMode : std::int32_t { SMODE_INPUT = 0, SMODE_OUTPUT = 1 };

enum StorageType : std::int32_t { STORAGE_BINARY = 0 };

/// The type codes of items, as they stand in streams.
enum ItemType : int {
    ITEM_BOOL = 1,
    ITEM_UINT8 = 2,
    ITEM_INT8 = 3,
    ITEM_UINT16 = 4,
    ITEM_INT16 = 5,
    ITEM_UINT32 = 6,
    ITEM_INT32 = 7,
    ITEM_UINT64 = 8,
    ITEM_INT64 = 9,
    ITEM_FLOAT32 = 10,
    ITEM_FLOAT64 = 11,
    ITEM_BSTRING = 12,
    ITEM_WSTRING = 13,
    ITEM_CLASS_ENTER = 14,
    ITEM_CLASS_EXIT = 15
};

/// A text of 16-bit units, without a terminator.
using WideText = std::vector<char16_t, Memory::STLAllocator<char16_t>>;

/// Writes named, typed values and nested class records to a stream, or reads them back in the same
/// order: a storage does one of the two for its whole life.
/// Each read operation sets `name` to what its item was written under, and `value` to its value.
/// Throws a TypeMismatchException when the next item has another type, an InvalidStateException
/// while no stream is open, and what the stream throws.
/// Thread: one at a time.
class SerializeStorage : public Memory::MemoryManaged {
public:
    /// A place between two items of a storage. Lifetime: of use while the same stream is open.
    class Position : public Memory::MemoryManaged {
    public:
        explicit Position(StorageType type) : mType(type) {}
        virtual bool operator==(const Position& other) const = 0;
        StorageType getStorageType() const { return mType; }

    private:
        StorageType mType;
    };

    SerializeStorage(std::int32_t mode, StorageType type) : mMode(mode), mType(type) {}

    std::int32_t getSerializeMode() const { return mMode; }
    StorageType getStorageType() const { return mType; }

    /// Returns where the next item is read or written.
    virtual SharedPtr<Position> getPosition() = 0;
    /// Goes on reading at a place that `getPosition` returned. Reports a place of another kind of
    /// storage, and stays where it is.
    virtual void setPosition(const SharedPtr<Position>& position) = 0;
    /// Closes what is open and begins with a stream, which it shares until it is closed.
    virtual void open(const SharedPtr<IO::Stream>& stream) = 0;
    /// Finishes what was written and lets the stream go, which stays open.
    virtual void close() = 0;
    /// Passes over the next item (over a class with all that is in it) and sets its name and type.
    /// Reports when the storage writes, and does nothing then.
    virtual void skipItem(String& name, int& type) = 0;
    /// Returns the type code of the next item, which stays the next.
    virtual int peekItemType() = 0;

    virtual void readClassEnter(String& name, String& typeName, String& typeName2,
                                std::uint32_t& version) = 0;
    virtual void readClassExit() = 0;
    virtual void readWString(String& name, WideText& value) = 0;
    virtual void readBString(String& name, String& value) = 0;
    virtual void readFloat64(String& name, double& value) = 0;
    virtual void readFloat32(String& name, float& value) = 0;
    virtual void readInt64(String& name, std::int64_t& value) = 0;
    virtual void readUInt64(String& name, std::uint64_t& value) = 0;
    virtual void readInt32(String& name, std::int32_t& value) = 0;
    virtual void readUInt32(String& name, std::uint32_t& value) = 0;
    virtual void readInt16(String& name, std::int16_t& value) = 0;
    virtual void readUInt16(String& name, std::uint16_t& value) = 0;
    virtual void readInt8(String& name, std::int8_t& value) = 0;
    virtual void readUInt8(String& name, std::uint8_t& value) = 0;
    virtual void readBool(String& name, bool& value) = 0;

    virtual void writeClassEnter(const String& name, const String& typeName,
                                 const String& typeName2, std::uint32_t version) = 0;
    virtual void writeClassExit() = 0;
    virtual void writeWString(const String& name, const WideText& value) = 0;
    virtual void writeBString(const String& name, const String& value) = 0;
    virtual void writeFloat64(const String& name, double value) = 0;
    virtual void writeFloat32(const String& name, float value) = 0;
    virtual void writeInt64(const String& name, std::int64_t value) = 0;
    virtual void writeUInt64(const String& name, std::uint64_t value) = 0;
    virtual void writeInt32(const String& name, std::int32_t value) = 0;
    virtual void writeUInt32(const String& name, std::uint32_t value) = 0;
    virtual void writeInt16(const String& name, std::int16_t value) = 0;
    virtual void writeUInt16(const String& name, std::uint16_t value) = 0;
    virtual void writeInt8(const String& name, std::int8_t value) = 0;
    virtual void writeUInt8(const String& name, std::uint8_t value) = 0;
    virtual void writeBool(const String& name, bool value) = 0;

private:
    std::int32_t mMode;
    StorageType mType;
};

} // namespace ZUNO::Common::Serialize
