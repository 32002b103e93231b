#include "tools/output/toolmain.h"

#include "pathfinder/version.h"

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <new>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

void requireOutput() {
    std::cout.flush();
    if (!std::cout || std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw std::runtime_error("standard output cannot be written");
}

} // namespace

int runTool(const char* name, const std::function<int()>& action) {
    try {
        const int status = action();
        requireOutput();
        return status;
    } catch (const std::bad_alloc&) {
        std::cerr << name << ": out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << name << ": " << error.what() << '\n';
    }
    return STATUS_ERROR;
}

std::optional<int> parseWords(CLI::App& app, int argc, char** argv) {
    app.allow_windows_style_options(false); // a path may begin with a slash
    const std::string name = std::filesystem::path(argv[0]).stem().string();
    app.set_version_flag("--version", name + " " ZUNO_VERSION_TEXT, "print the version and end");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? STATUS_OK : STATUS_ERROR;
    }
    return std::nullopt;
}

} // namespace ZUNO::Tools
