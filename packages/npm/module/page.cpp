// What a page needs beside zuno.h: files in memory, and a place for reports and log lines.
#include "common/platform/web/pagefiles.h"
#include "packages/npm/module/pageexport.h"

#include <new>

using ZUNO::Common::Platform::pageFiles;

extern "C" {

/// The page's own: takes a report or a log line, as `zuno_log` does.
__attribute__((import_module("env"), import_name("zuno_page_log"))) void
zuno_page_log(void* user, std::int32_t level, const char* text, const char* file,
              std::uint32_t line);

/// Sends reports and log lines to the page.
zuno_status ZUNO_PAGE_EXPORT(zuno_page_listen)() {
    return zuno_set_log([](auto... line) { zuno_page_log(line...); }, nullptr);
}

/// Returns room for the bytes of a file, which replaces another one of its name; null when there is
/// no memory. The room stays until the next call on files.
unsigned char* ZUNO_PAGE_EXPORT(zuno_page_put)(const char* name, std::uint32_t size) {
    try {
        auto& bytes = pageFiles()[name];
        bytes.reserve(size + std::size_t{1}); // so that there is an address for no bytes, too
        bytes.assign(size, 0);
        return bytes.data();
    } catch (const std::bad_alloc&) {
        pageFiles().erase(name);
        return nullptr;
    }
}

/// Returns the bytes of a file, and how many there are; null when there is no such file.
const unsigned char* ZUNO_PAGE_EXPORT(zuno_page_get)(const char* name, std::uint32_t* size) {
    const auto file = pageFiles().find(name);
    if (file == pageFiles().end())
        return nullptr;
    *size = static_cast<std::uint32_t>(file->second.size());
    return file->second.data();
}

/// Takes a file away, if it is there. It must not be open.
void ZUNO_PAGE_EXPORT(zuno_page_remove)(const char* name) {
    pageFiles().erase(name);
}
}
