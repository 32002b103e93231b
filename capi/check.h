/// The border: where a host's arguments are checked and where everything that is raised ends.
#pragma once

#include "capi/failure.h"
#include "common/math/vec2.h"
#include "common/math/vec3.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace ZUNO::CInterface {

/// Runs the body of a function. What it raises becomes the status and the thread's last error.
template <typename Body>
zuno_status guarded(const char* function, Body body) noexcept {
    try {
        return body();
    } catch (...) {
        return keepCurrentFailure(function);
    }
}

/// Held by the one call that may use the world. Throws a Failure when another one does: the call
/// comes from a callback, or from a second thread.
class WorldEntry {
public:
    WorldEntry();
    ~WorldEntry();
    WorldEntry(const WorldEntry&) = delete;
    WorldEntry& operator=(const WorldEntry&) = delete;
};

/// The same as `guarded` for functions of the thread "world".
template <typename Body>
zuno_status inWorld(const char* function, Body body) noexcept {
    return guarded(function, [&] {
        const WorldEntry entry;
        return body();
    });
}

[[noreturn]] void refuse(const std::string& text);
[[noreturn]] void refuseNull(const char* name);

/// Refuses a null pointer, else returns what it points to.
template <typename T>
T& need(T* pointer, const char* name) {
    if (pointer == nullptr)
        refuseNull(name);
    return *pointer;
}

/// Refuse a struct of another size than the library's, and an array that is too small.
void checkSize(std::size_t given, std::size_t expected, const char* name);
[[noreturn]] void refuseRoom(std::size_t room, std::size_t number);

/// Refuses a null struct, and one of another size than the library's.
template <typename Struct>
void checkStruct(const Struct* given, const char* name) {
    checkSize(need(given, name).size, sizeof(Struct), name);
}

/// Fills a host's array with what `make(i)` gives, by the rule for arrays.
template <typename T, typename Make>
zuno_status fill(std::size_t number, T* items, std::uint32_t* count, Make make) {
    const std::uint32_t room = need(count, "the count");
    if (number > std::numeric_limits<std::uint32_t>::max())
        throw Failure{ZUNO_FAILED, "there are more than a count can say"};
    *count = static_cast<std::uint32_t>(number);
    if (items == nullptr)
        return ZUNO_OK;
    if (room < number)
        refuseRoom(room, number);
    for (std::size_t i = 0; i < number; ++i)
        items[i] = make(i);
    return ZUNO_OK;
}

/// Fills in a text, if there is an array or a count for it.
inline zuno_status fillText(const std::string& content, char* text, std::uint32_t* size) {
    if (text == nullptr && size == nullptr)
        return ZUNO_OK;
    return fill(content.size() + 1, text, size, [&](std::size_t i) { return content.c_str()[i]; });
}

inline Common::Math::Vec3<float> pointOf(const zuno_point* point, const char* name) {
    const zuno_point& p = need(point, name);
    return {p.x, p.y, p.z};
}
inline zuno_point toC(const Common::Math::Vec3<float>& p) {
    return {p.mX, p.mY, p.mZ};
}
inline zuno_point2 toC(const Common::Math::Vec2<float>& p) {
    return {p.mX, p.mY};
}

} // namespace ZUNO::CInterface
