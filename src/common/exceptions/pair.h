#pragma once

namespace ZUNO::Common::Container {

/// A record of two fields.
template <typename A, typename B>
struct Pair {
    A mFirst;
    B mSecond;
};

} // namespace ZUNO::Common::Container
