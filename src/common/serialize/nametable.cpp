#include "common/serialize/nametable.h"

#include "common/serialize/serializeexceptions.h"

namespace ZUNO::Common::Serialize {

std::uint32_t NameTable::idOf(const String& name) {
    const auto place = mIds.find(name);
    if (place != mIds.end())
        return place->second;
    const auto id = static_cast<std::uint32_t>(mNames.size());
    mNames.push_back(name);
    mIds.emplace(name, id);
    return id;
}

void NameTable::write(ByteWriter& out) const {
    out.put(static_cast<std::uint32_t>(mNames.size()));
    std::uint32_t id = 0;
    for (const String& name : mNames) {
        out.put(static_cast<std::uint16_t>(name.getLength()));
        out.putBytes(name.getConstCharPtr(), name.getLength());
        out.put(id++);
    }
}

void NameTable::read(ByteReader& in) {
    constexpr std::uint64_t smallestEntry = 6; // of an empty name: its length and id
    const auto count = in.get<std::uint32_t>();
    if (count > in.remaining() / smallestEntry)
        throw new SerializeException(
            "The stream is corrupted. A lookup table is longer than the stream");
    char name[maxNameLength + 1];
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto length = in.get<std::uint16_t>();
        if (length > maxNameLength)
            throw new SerializeException(
                "The stream is corrupted. A name is longer than 2047 bytes");
        in.getBytes(name, length);
        name[length] = '\0';
        mNames.push_back(name);
        in.get<std::uint32_t>(); // ids follow the order
    }
}

} // namespace ZUNO::Common::Serialize
