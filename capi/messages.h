/// Reports and log lines on their way to the host.
#pragma once

#include <string>

namespace ZUNO::CInterface::Messages {

/// Begins a call: takes the reports over, and forgets those of former calls.
void begin();

/// The text of the first report of this call; empty while there is none.
std::string firstReport();

/// Takes the log over. To be called whenever the foundation was started.
void takeLog();

/// While it lives, the report of a second start of the foundation is dropped. Library and host
/// share one foundation here; the host's part has started it, on the host's memory, before the
/// world starts it again.
class SharedStart {
public:
    SharedStart();
    ~SharedStart();
    SharedStart(const SharedStart&) = delete;
    SharedStart& operator=(const SharedStart&) = delete;
};

} // namespace ZUNO::CInterface::Messages
