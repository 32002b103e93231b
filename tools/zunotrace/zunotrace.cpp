// The trace viewer: shows what hosts send on the trace channel.
#include "tools/output/toolmain.h"
#include "tools/output/wordchecks.h"
#include "tools/zunotrace/tracetext.h"
#include "tools/zunotrace/weblog.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

volatile std::sig_atomic_t gIsInterrupted = 0;

void interrupt(int) {
    gIsInterrupted = 1;
}

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    ZUNO::Tools::requireOutput();
}

struct Options {
    unsigned int mCount = 0; ///< 0: no end
    bool mHasWebLog = false;
    unsigned short mPort = 8090;
};

void run(const Options& options) {
    std::unique_ptr<ZUNO::Tools::WebLog> webLog;
    if (options.mHasWebLog)
        webLog = std::make_unique<ZUNO::Tools::WebLog>(options.mPort);
    ZUNO::Common::Platform::TraceReceiver receiver;
    if (const char* const obstacle = receiver.open(); obstacle != nullptr)
        throw std::runtime_error(obstacle);
    say(webLog != nullptr ? "waiting for trace messages; the log: " + webLog->address()
                          : "waiting for trace messages");
    // milliseconds between looks at the interrupt, and at browsers
    const int patience = webLog != nullptr ? 20 : 200;
    const unsigned int count = options.mCount;
    for (unsigned int received = 0; gIsInterrupted == 0 && (count == 0 || received < count);) {
        if (webLog != nullptr)
            webLog->serve();
        ZUNO::Common::Platform::TraceMessage message;
        if (!receiver.receive(message, patience))
            continue;
        const ZUNO::Tools::TraceEntry entry = ZUNO::Tools::readEntry(message);
        constexpr std::size_t column = 9;
        say(entry.mKind +
            std::string(std::max(column, entry.mKind.size() + 1) - entry.mKind.size(), ' ') +
            entry.mText);
        if (webLog != nullptr)
            webLog->append(entry);
        ++received;
    }
    if (webLog != nullptr)
        webLog->finish();
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Receives and prints the trace messages of hosts until it is interrupted."};
    Options options;
    app.add_option("--count", options.mCount, "end after so many messages")
        ->check(ZUNO::Tools::wholeNumberOf<unsigned int>(1));
    CLI::Option* const web =
        app.add_flag("--web", options.mHasWebLog,
                     "show them in browsers of this machine too: levels, filter, pause");
    app.add_option("--port", options.mPort, "where browsers find the log; 0: any free port")
        ->needs(web)
        ->check(ZUNO::Tools::wholeNumber(0, 65535))
        ->capture_default_str();
    return ZUNO::Tools::runTool("zunotrace", [&] {
        if (const std::optional<int> end = ZUNO::Tools::parseWords(app, argc, argv);
            end.has_value())
            return *end;
        std::signal(SIGINT, interrupt);
        std::signal(SIGTERM, interrupt);
        run(options);
        return 0;
    });
}
