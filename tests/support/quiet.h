#pragma once

#include <gtest/gtest.h>

namespace ZUNO::Tests {

/// Swallows the reports that failing calls come with, while it lives.
class Quiet {
public:
    Quiet() { testing::internal::CaptureStderr(); }
    ~Quiet() { testing::internal::GetCapturedStderr(); }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
};

} // namespace ZUNO::Tests
