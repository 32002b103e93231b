#include "tests/platform/process.h"

#include "common/platform/win32/windows.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <gtest/gtest.h>

namespace ZUNO::Tests {

namespace {

std::string readable(const char* symbol) {
#ifdef __i386__
    const std::string mangled = std::string("_") + (symbol[0] == '_' ? symbol + 1 : symbol);
#else
    const std::string mangled = symbol;
#endif
    int status = 0;
    char* const name = abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status);
    const std::string text = status == 0 ? name : symbol;
    std::free(name);
    return text;
}

} // namespace

std::FILE* openPipe(const std::string& command) {
    std::string native = command;
    std::replace(native.begin(), native.begin() + static_cast<std::ptrdiff_t>(command.find(' ')),
                 '/', '\\');
    return _popen(native.c_str(), "r");
}

int closePipe(std::FILE* pipe) {
    return _pclose(pipe);
}

bool wasNotStarted(int status) {
    return status == 9009;
}

std::multiset<std::string> exportsOf(const std::string& library) {
    std::multiset<std::string> names;
    const HMODULE module = LoadLibraryA(library.c_str());
    EXPECT_NE(module, nullptr);
    if (module == nullptr)
        return names;
    const auto* const image = reinterpret_cast<const std::byte*>(module);
    const auto& dos = *reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(image + dos.e_lfanew);
    const auto& table = *reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        image + headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
    EXPECT_EQ(table.NumberOfFunctions, table.NumberOfNames);
    const auto* const offsets = reinterpret_cast<const DWORD*>(image + table.AddressOfNames);
    for (DWORD i = 0; i < table.NumberOfNames; ++i)
        names.insert(readable(reinterpret_cast<const char*>(image + offsets[i])));
    FreeLibrary(module);
    return names;
}

// There is one viewer of a user: its tests run alone.
PrivateTraceChannel::PrivateTraceChannel() = default;
PrivateTraceChannel::~PrivateTraceChannel() = default;

} // namespace ZUNO::Tests
