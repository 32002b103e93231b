#pragma once

namespace ZUNO::HostKit {

/// Keeps the host's own copy of the foundation running: strings, exceptions and shared pointers
/// that the host makes need it. As many as one likes at a time. The first one starts the foundation
/// on the process heap and the last one closes it; one that the host had started before stays as it
/// is. Thread: one, the host's.
class Foundation {
public:
    Foundation();
    ~Foundation();
    Foundation(const Foundation&) = delete;
    Foundation& operator=(const Foundation&) = delete;
};

} // namespace ZUNO::HostKit
