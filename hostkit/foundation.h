#pragma once

namespace ZUNO::HostKit {

/// Keeps the host's own copy of the foundation running, on the process heap: strings, exceptions
/// and shared pointers that the host makes need it. As many as one likes at a time; the last one
/// that goes closes it. For one thread.
class Foundation {
public:
    Foundation();
    ~Foundation();
    Foundation(const Foundation&) = delete;
    Foundation& operator=(const Foundation&) = delete;
};

} // namespace ZUNO::HostKit
