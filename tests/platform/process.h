/// What tests need of the system, by the system.
#pragma once

#include <array>
#include <cstdio>
#include <set>
#include <string>

namespace ZUNO::Tests {

/// Starts a command in the system's shell and gives what it prints on standard output. The first
/// word is a program's path, with "/" as separator on every system.
std::FILE* openPipe(const std::string& command);
/// Waits for the command's end and returns its exit status.
int closePipe(std::FILE* pipe);
/// Whether `status` is the shell's own, which says that it couldn't start the program.
bool wasNotStarted(int status);

/// The names that a shared library exports, each as it is declared.
std::multiset<std::string> exportsOf(const std::string& library);

/// While it lives no other viewer and host meet on the trace channel.
class PrivateTraceChannel {
public:
    PrivateTraceChannel();
    ~PrivateTraceChannel();
    PrivateTraceChannel(const PrivateTraceChannel&) = delete;
    PrivateTraceChannel& operator=(const PrivateTraceChannel&) = delete;
};

struct Outcome {
    std::string mOutput; ///< standard output and, where it isn't sent elsewhere, standard error
    int mStatus;
};

inline Outcome runCommandOnce(const std::string& command) {
    std::FILE* const pipe = openPipe(command);
    Outcome outcome{"", -1};
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
        outcome.mOutput.append(buffer.data(), count);
    outcome.mStatus = closePipe(pipe);
    return outcome;
}

/// A program that wasn't started gets a second chance: once in many thousand times the emulator of
/// Windows doesn't start one that is there.
inline Outcome runCommand(const std::string& command, const std::string& errorsTo = "&1") {
    const std::string whole = command + " 2>" + errorsTo;
    const Outcome outcome = runCommandOnce(whole);
    return wasNotStarted(outcome.mStatus) ? runCommandOnce(whole) : outcome;
}

} // namespace ZUNO::Tests
