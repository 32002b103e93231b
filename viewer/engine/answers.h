/// How a function that has more to tell than a status answers: it leaves lists of numbers, and
/// texts, in the page's memory as files, which the page takes by their names.
#pragma once

#include "common/platform/web/pagefiles.h"
#include "packages/npm/module/pageexport.h"

#include <string_view>

namespace ZUNO::Viewer {

inline void leave(const char* name, std::string_view text) {
    Common::Platform::pageFiles()[name].assign(text.begin(), text.end());
}

template <typename T>
void leave(const char* name, const std::vector<T>& numbers) {
    leave(name, {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(T)});
}

} // namespace ZUNO::Viewer
