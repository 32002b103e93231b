#include "capi/handles.h"

#include "capi/session.h"
#include "common/platform/mutex.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace ZUNO::CInterface {

namespace {

struct Table {
    Common::Platform::Mutex mMutex;
    std::unordered_map<std::uintptr_t, std::shared_ptr<Object>> mObjects;
    std::uintptr_t mLast = 0;
};

/// Lives to the process's end: hosts may forget to close, and end in any order.
Table& theTable() {
    static Table& table = *new Table;
    return table;
}

std::uintptr_t numberOf(const void* handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

} // namespace

void* Handles::open(std::shared_ptr<Object> object) {
    Table& table = theTable();
    const Common::Platform::MutexLock lock(table.mMutex);
    do
        table.mLast += 16; // never odd nor small: not mistaken for a number or an address
    while (table.mLast == 0 || table.mObjects.contains(table.mLast));
    table.mObjects.emplace(table.mLast, std::move(object));
    return reinterpret_cast<void*>(table.mLast); // NOLINT: never followed
}

Handles::Kind Handles::kindOf(const void* handle) {
    Table& table = theTable();
    const Common::Platform::MutexLock lock(table.mMutex);
    const auto place = table.mObjects.find(numberOf(handle));
    if (place == table.mObjects.end())
        return Kind::NONE;
    if (dynamic_cast<const Session*>(place->second.get()) != nullptr)
        return Kind::SESSION;
    return place->second->isOfSession() ? Kind::OF_SESSION : Kind::OF_HOST;
}

std::shared_ptr<Object> Handles::find(const void* handle, const std::type_info& type) {
    Table& table = theTable();
    const Common::Platform::MutexLock lock(table.mMutex);
    const auto place = table.mObjects.find(numberOf(handle));
    if (place == table.mObjects.end())
        return nullptr;
    const Object& object = *place->second;
    return typeid(object) == type ? place->second : nullptr;
}

std::shared_ptr<Object> Handles::need(const void* handle, const char* name,
                                      const std::type_info& type) {
    if (handle == nullptr)
        throw Failure{ZUNO_BAD_HANDLE, std::string(name) + " is null"};
    std::shared_ptr<Object> object = find(handle, type);
    if (object == nullptr && kindOf(handle) == Kind::NONE)
        throw Failure{ZUNO_BAD_HANDLE, std::string(name) + " was destroyed, or never made"};
    if (object == nullptr)
        throw Failure{ZUNO_BAD_HANDLE, std::string(name) + " is the handle of something else"};
    return object;
}

bool Handles::close(const void* handle) {
    Table& table = theTable();
    std::shared_ptr<Object> object; // destroyed after the lock was given back
    const Common::Platform::MutexLock lock(table.mMutex);
    const auto place = table.mObjects.find(numberOf(handle));
    if (place == table.mObjects.end())
        return false;
    object = std::move(place->second);
    table.mObjects.erase(place);
    return true;
}

void Handles::closeThoseOfSession() {
    Table& table = theTable();
    std::vector<std::shared_ptr<Object>> objects;
    const Common::Platform::MutexLock lock(table.mMutex);
    for (const auto& [number, object] : table.mObjects)
        if (object->isOfSession())
            objects.push_back(object);
    std::erase_if(table.mObjects, [](const auto& entry) { return entry.second->isOfSession(); });
}

} // namespace ZUNO::CInterface

using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_destroy(void* handle) {
    return guarded(__func__, [&] {
        const Handles::Kind kind = Handles::kindOf(handle);
        if (kind == Handles::Kind::SESSION)
            throw Failure{ZUNO_BAD_HANDLE, "a session is closed by zuno_close"};
        std::optional<WorldEntry> entry; // what belongs to a world is destroyed while that is ours
        if (kind == Handles::Kind::OF_SESSION)
            entry.emplace();
        if (!Handles::close(handle))
            throw Failure{ZUNO_BAD_HANDLE, "the handle is null, was destroyed, or never made"};
        return ZUNO_OK;
    });
}
