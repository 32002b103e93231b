#pragma once

#include "common/basicstring.h"
#include "common/serialize/bytereader.h"
#include "common/serialize/bytewriter.h"

#include <map>
#include <vector>

namespace ZUNO::Common::Serialize {

/// Names and their ids, which count from 0 in the order in which the names came. In a stream: their
/// count, and of each its length, its bytes and its id.
class NameTable {
public:
    /// In bytes.
    static constexpr std::size_t maxNameLength = 2047;

    explicit NameTable(const SharedPtr<Memory::Allocator>& allocator)
        : mNames(allocator), mIds(allocator) {}

    void clear() {
        mNames.clear();
        mIds.clear();
    }

    /// Returns the name's id; a new name gets the next one.
    std::uint32_t idOf(const String& name);

    /// Returns the name, or null when there is none of that id.
    const String* find(std::uint32_t id) const {
        return id < mNames.size() ? &mNames[id] : nullptr;
    }

    void write(ByteWriter& out) const;
    /// Appends the names that the stream holds, in their order, whatever ids stand there. Throws a
    /// SerializeException for a table that does not fit into the stream, or a name that is too
    /// long.
    void read(ByteReader& in);

private:
    std::vector<String, Memory::STLAllocator<String>> mNames;
    std::map<String, std::uint32_t, std::less<String>,
             Memory::STLAllocator<std::pair<const String, std::uint32_t>>>
        mIds;
};

} // namespace ZUNO::Common::Serialize
