#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>

namespace ZUNO::Tests {

/// Swallows the reports that failing calls come with, while it lives.
class Quiet {
public:
    Quiet() { testing::internal::CaptureStderr(); }
    ~Quiet() { testing::internal::GetCapturedStderr(); }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
};

/// Runs an action, with its reports swallowed, and gives the message of the standard exception that
/// it threw, or "" for none.
template <typename Action>
std::string errorOf(Action action) {
    const Quiet quiet;
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

} // namespace ZUNO::Tests
