#pragma once

#include <cstring>

namespace ZUNO::Common::Platform {

/// Whether the class of a polymorphic object carries run-time type information. Objects of other
/// modules may lack it, and a dynamic_cast must not meet them: in the C++ interface that compilers
/// share here, the word before an object's first virtual function is then null.
inline bool hasTypeInformation(const void* object) {
    const void* const* functions = nullptr;
    std::memcpy(&functions, object, sizeof(functions));
    return functions[-1] != nullptr;
}

} // namespace ZUNO::Common::Platform
