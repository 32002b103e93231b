#pragma once

#include "tools/zunotrace/tracetext.h"

#include <memory>

namespace ZUNO::Tools {

/// A log that browsers of this machine can look at while it grows. It listens on the loopback
/// address alone, and answers only what was asked of it under that address's names, so that no
/// page from elsewhere can read it. For one thread.
class WebLog {
public:
    /// Begins to listen; port 0 takes any that is free. Raises a std::runtime_error.
    explicit WebLog(unsigned short port);
    ~WebLog();
    WebLog(const WebLog&) = delete;
    WebLog& operator=(const WebLog&) = delete;

    /// Where the log is to be seen.
    std::string address() const;

    /// Adds an entry, and lets it go again when 10,000 others have come.
    void append(const TraceEntry& entry);

    /// Does what browsers are waiting for, and returns at once.
    void serve();

    /// Lets browsers have what is there before the log ends; waits a second at most.
    void finish();

private:
    class Implementation;
    std::unique_ptr<Implementation> mImplementation;
};

} // namespace ZUNO::Tools
