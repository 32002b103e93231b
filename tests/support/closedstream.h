#pragma once

#include "common/io/stream.h"
#include "tests/support/exceptions.h"

#include <functional>
#include <gtest/gtest.h>

namespace ZUNO::Tests {

/// A closed stream can do nothing, and raises in its class's name whatever it is asked. It can be
/// closed again.
inline void expectClosed(Common::IO::Stream& stream, const std::string& className) {
    char buffer[1];
    EXPECT_FALSE(stream.canRead() || stream.canWrite() || stream.canSeek());
    stream.close();
    EXPECT_TRUE(stream.isClosed());
    const struct {
        std::function<void()> mAction;
        const char* mMessage;
    } cases[] = {
        {[&] { stream.getLength(); }, "Try to get length of closed stream"},
        {[&] { stream.getPosition(); }, "Try to get position of closed stream."},
        {[&] { stream.getFilename(); }, "Try to get filename from a closed stream"},
        {[&] { stream.read(buffer, 1); }, "Cannot read on closed streams."},
        {[&] { stream.write(buffer, 1); }, "Cannot write on closed streams."},
        {[&] { stream.seek(0, Common::IO::ORIGIN_END); }, "Cannot seek on closed streams."},
    };
    for (const auto& row : cases)
        EXPECT_EQ(raisedBy(row.mAction),
                  "InvalidStateException: " + className + ": " + row.mMessage);
}

} // namespace ZUNO::Tests
