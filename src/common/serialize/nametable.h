#pragma once

#include "common/basicstring.h"
#include "common/memory/stlallocator.h"

#include <map>
#include <vector>

namespace ZUNO::Common::Serialize {

/// Names and their ids, which count from 0 in the order in which the names came.
class NameTable {
public:
    explicit NameTable(const SharedPtr<Memory::Allocator>& allocator)
        : mNames(allocator), mIds(allocator) {}

    void clear() {
        mNames.clear();
        mIds.clear();
    }

    /// The name's id; a new name gets the next.
    std::uint32_t idOf(const String& name) {
        const auto place = mIds.find(name);
        if (place != mIds.end())
            return place->second;
        const auto id = static_cast<std::uint32_t>(mNames.size());
        mNames.push_back(name);
        mIds.emplace(name, id);
        return id;
    }

    /// Appends a name under the next id, whether it is there already or not.
    void append(const String& name) { mNames.push_back(name); }

    /// The name, or null when there is none of that id.
    const String* find(std::uint32_t id) const {
        return id < mNames.size() ? &mNames[id] : nullptr;
    }

    const std::vector<String, Memory::STLAllocator<String>>& names() const { return mNames; }

private:
    std::vector<String, Memory::STLAllocator<String>> mNames;
    std::map<String, std::uint32_t, std::less<String>,
             Memory::STLAllocator<std::pair<const String, std::uint32_t>>>
        mIds;
};

} // namespace ZUNO::Common::Serialize
