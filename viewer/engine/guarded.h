#pragma once

#include "hostkit/exceptiontext.h"

#include <emscripten/val.h>
#include <exception>
#include <string>
#include <vector>

namespace ZUNO::Viewer {

/// Runs an action; what it raises becomes the page's own kind of error.
template <typename Action>
auto guarded(Action action) {
    std::string message;
    try {
        return action();
    } catch (Common::Exceptions::Exception* exception) {
        message = HostKit::takeMessage(exception);
    } catch (const std::exception& error) {
        message = error.what();
    }
    emscripten::val::global("Error").new_(message).throw_();
    __builtin_unreachable();
}

/// A copy of the numbers in an array of the page's own.
template <typename T>
emscripten::val copyOf(const std::vector<T>& numbers) {
    const emscripten::val view(emscripten::typed_memory_view(numbers.size(), numbers.data()));
    return view.call<emscripten::val>("slice");
}

} // namespace ZUNO::Viewer
