#include "tests/platform/process.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace ZUNO::Tests {

namespace {

std::filesystem::path traceFolder() {
    return std::filesystem::path(testing::TempDir()) / ("trace" + std::to_string(getpid()));
}

} // namespace

std::FILE* openPipe(const std::string& command) {
    return popen(command.c_str(), "r");
}

int closePipe(std::FILE* pipe) {
    return WEXITSTATUS(pclose(pipe));
}

bool wasNotStarted(int status) {
    return status == 127;
}

std::multiset<std::string> exportsOf(const std::string& library) {
    const Outcome symbols = runCommand("nm -DC --defined-only " + library);
    EXPECT_EQ(symbols.mStatus, 0) << symbols.mOutput;
    std::multiset<std::string> names;
    std::istringstream lines(symbols.mOutput);
    for (std::string line; std::getline(lines, line);)
        names.insert(line.substr(line.find(" T ") + 3)); // address, kind, name
    return names;
}

PrivateTraceChannel::PrivateTraceChannel() {
    const std::filesystem::path folder = traceFolder();
    std::filesystem::create_directories(folder);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
}

PrivateTraceChannel::~PrivateTraceChannel() {
    unsetenv("XDG_RUNTIME_DIR");
    std::filesystem::remove_all(traceFolder());
}

} // namespace ZUNO::Tests
