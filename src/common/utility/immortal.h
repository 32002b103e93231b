#pragma once

#include <utility>

namespace ZUNO::Common::Utility {

/// A global object that exists before any code runs and is never destroyed, so that nothing
/// depends on the order in which a process tears its globals down.
template <typename T>
union Immortal {
    template <typename... Arguments>
    constexpr explicit Immortal(Arguments&&... arguments)
        : mValue(std::forward<Arguments>(arguments)...) {}
    constexpr ~Immortal() {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T mValue;
};

} // namespace ZUNO::Common::Utility
