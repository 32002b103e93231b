// The binary storage's items: how each is written, read and skipped.
#include "common/exceptions/argumentexceptions.h"
#include "common/memory/globalallocators.h"
#include "common/serialize/binaryserializestorage.h"
#include "common/serialize/serializeexceptions.h"

#include <limits>

namespace ZUNO::Common::Serialize {

namespace {

constexpr std::size_t maxTextLength = std::numeric_limits<std::uint16_t>::max();

constexpr const char* typeNames[] = {"bool",    "uint08",  "int08",   "uint16",      "int16",
                                     "uint32",  "int32",   "uint64",  "int64",       "float32",
                                     "float64", "BString", "WString", "Class enter", "Class exit"};

bool isKnown(int type) {
    return type >= ITEM_BOOL && type <= ITEM_CLASS_EXIT;
}

const char* nameOf(int type) {
    return typeNames[type - 1];
}

void requireLength(std::size_t length, std::size_t limit, const char* argument,
                   const char* message) {
    if (length > limit)
        throw new Exceptions::ArgumentOutOfRangeException(argument, message);
}

} // namespace

void BinarySerializeStorage::writeHead(ItemType type, const String& name) {
    requireOpen();
    requireLength(name.getLength(), NameTable::maxNameLength, "name",
                  "A name may have 2047 bytes at most");
    mOut.put(static_cast<std::uint8_t>(type));
    mOut.put(mInstanceNames.idOf(name));
}

void BinarySerializeStorage::throwUnexpected(int found, ItemType expected) {
    if (!isKnown(found))
        throwCorrupted("An item has an unknown type");
    throw new TypeMismatchException("Expected an item of type: '" + String(nameOf(expected)) +
                                        "' but found an item of type: '" + nameOf(found) + "'",
                                    nameOf(found), nameOf(expected));
}

void BinarySerializeStorage::throwUnknownName() {
    throwCorrupted("The instance name lookup table is not valid");
}

void BinarySerializeStorage::readHead(ItemType expected, String& name) {
    readType(expected);
    name = readName();
}

void BinarySerializeStorage::readTypeName(String& name) {
    const String* const found = mTypeNames.find(mIn.get<std::uint32_t>());
    if (found == nullptr)
        throwCorrupted("The type name lookup table is not valid");
    name = *found;
}

void BinarySerializeStorage::writeClassEnter(const String& name, const String& typeName,
                                             const String& typeName2, std::uint32_t version) {
    for (const String* const type : {&typeName, &typeName2})
        requireLength(type->getLength(), NameTable::maxNameLength, "typeName",
                      "A name may have 2047 bytes at most");
    writeHead(ITEM_CLASS_ENTER, name);
    mOut.put(mTypeNames.idOf(typeName));
    mOut.put(mTypeNames.idOf(typeName2));
    mOut.put(version);
}

void BinarySerializeStorage::readClassEnter(String& name, String& typeName, String& typeName2,
                                            std::uint32_t& version) {
    readHead(ITEM_CLASS_ENTER, name);
    readTypeName(typeName);
    readTypeName(typeName2);
    version = mIn.get<std::uint32_t>();
}

void BinarySerializeStorage::writeClassExit() {
    requireOpen();
    mOut.put(static_cast<std::uint8_t>(ITEM_CLASS_EXIT));
}

void BinarySerializeStorage::readClassExit() {
    readType(ITEM_CLASS_EXIT);
}

void BinarySerializeStorage::writeBString(const String& name, const String& value) {
    requireLength(value.getLength(), maxTextLength, "value", "A text may have 65535 bytes at most");
    write(ITEM_BSTRING, name, static_cast<std::uint16_t>(value.getLength()));
    mOut.putBytes(value.getConstCharPtr(), value.getLength());
}

void BinarySerializeStorage::readBString(String& name, String& value) {
    std::uint16_t length = 0;
    read(ITEM_BSTRING, name, length);
    std::vector<char, Memory::STLAllocator<char>> text(std::size_t{length} + 1, '\0',
                                                       gStringAllocator);
    mIn.getBytes(text.data(), length);
    value = text.data();
}

void BinarySerializeStorage::writeWString(const String& name, const WideText& value) {
    requireLength(value.size(), maxTextLength, "value", "A text may have 65535 units at most");
    write(ITEM_WSTRING, name, static_cast<std::uint16_t>(value.size()));
    if (!value.empty()) // of nothing there is no address
        mOut.putBytes(value.data(), value.size() * sizeof(char16_t)); // units are never swapped
}

void BinarySerializeStorage::readWString(String& name, WideText& value) {
    std::uint16_t length = 0;
    read(ITEM_WSTRING, name, length);
    value.resize(length);
    mIn.getBytes(value.data(), length * sizeof(char16_t));
}

void BinarySerializeStorage::readBool(String& name, bool& value) {
    std::uint8_t byte = 0;
    read(ITEM_BOOL, name, byte);
    value = byte != 0;
}

int BinarySerializeStorage::peekItemType() {
    requireOpen();
    return mIn.peek();
}

void BinarySerializeStorage::skipItem(String& name, int& type) {
    if (!ZUNO_CHECK_AS(getSerializeMode() == SMODE_INPUT, "getSerializeMode() == SMODE_INPUT",
                       "Cannot read on a write stream"))
        return;
    // sizes of the values that have one, by type code
    constexpr std::size_t sizes[] = {0, 1, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
    type = peekItemType();
    if (type == ITEM_CLASS_EXIT) {
        readClassExit();
        name.clear();
        return;
    }
    String other;
    WideText wide(gStringAllocator);
    std::uint32_t version = 0;
    std::byte value[sizeof(std::uint64_t)];
    std::size_t depth = 0;
    bool isFirst = true;
    do { // a class ends with its own exit; those within it are counted
        const int next = peekItemType();
        String& itemName = isFirst ? name : other;
        String text;
        switch (next) {
        case ITEM_CLASS_ENTER:
            readClassEnter(itemName, text, text, version);
            ++depth;
            break;
        case ITEM_CLASS_EXIT:
            readClassExit();
            --depth;
            break;
        case ITEM_BSTRING:
            readBString(itemName, text);
            break;
        case ITEM_WSTRING:
            readWString(itemName, wide);
            break;
        default:
            if (!isKnown(next))
                throwCorrupted("An item has an unknown type");
            readHead(static_cast<ItemType>(next), itemName);
            mIn.getBytes(value, sizes[next]);
        }
        isFirst = false;
    } while (depth != 0);
}

} // namespace ZUNO::Common::Serialize
