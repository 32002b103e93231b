/// What a host holds: numbers that look like pointers, and what they stand for.
#pragma once

#include "capi/check.h"

#include <memory>
#include <typeinfo>

namespace ZUNO::CInterface {

/// What a handle can stand for.
class Object {
public:
    Object() = default;
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// Whether a running session is needed for it.
    virtual bool isOfSession() const { return false; }
};

/// The handles that are open. A number that was used is used again only after all others, so that
/// a handle that was destroyed is known to be none.
/// Thread: any number at once.
namespace Handles {

/// Returns the new handle of an object.
void* open(std::shared_ptr<Object> object);
/// What a handle is.
enum class Kind { NONE, SESSION, OF_SESSION, OF_HOST };
Kind kindOf(const void* handle);
/// Returns null for a handle that is none of the type. So who has taken no care for the world never
/// holds what belongs to one, not even as the last.
std::shared_ptr<Object> find(const void* handle, const std::type_info& type);
/// The same; throws a Failure with the handle's name instead.
std::shared_ptr<Object> need(const void* handle, const char* name, const std::type_info& type);
/// Takes an object out. Returns whether it was there.
bool close(const void* handle);
/// Takes out, and destroys, all objects that need a running session.
void closeThoseOfSession();

} // namespace Handles

/// Makes an object, and its handle in `*handle`.
template <typename T, typename Handle, typename... Arguments>
zuno_status make(Handle** handle, Arguments&&... arguments) {
    need(handle, "the place for the handle");
    *handle = static_cast<Handle*>(
        Handles::open(std::make_shared<T>(std::forward<Arguments>(arguments)...)));
    return ZUNO_OK;
}

/// Returns what a handle stands for. Throws a Failure for one that is none of this kind.
template <typename T>
std::shared_ptr<T> get(const void* handle, const char* name) {
    return std::static_pointer_cast<T>(Handles::need(handle, name, typeid(T)));
}

} // namespace ZUNO::CInterface
