#include "tests/support/foundation.h"

#include <sstream>

namespace ZUNO::Tests {

using namespace Common;

using BasicStringTest = FoundationTest;

TEST_F(BasicStringTest, StringsCompareBySignedBytes) {
    const char* const ascending[] = {"", "\xE4", "a", "ab", "abc", "abd"};
    for (std::size_t i = 0; i + 1 < std::size(ascending); ++i) {
        EXPECT_TRUE(String(ascending[i]) < String(ascending[i + 1])) << i;
        EXPECT_FALSE(String(ascending[i + 1]) < String(ascending[i])) << i;
        EXPECT_FALSE(String(ascending[i]) == String(ascending[i + 1]));
    }
    EXPECT_FALSE(String("a") < String("a"));
}

TEST_F(BasicStringTest, StringsAreMadeAndJoined) {
    EXPECT_TRUE(String(static_cast<const char*>(nullptr)).isEmpty());
    EXPECT_STREQ(String(-12).getConstCharPtr(), "-12");
    EXPECT_STREQ(String(4000000000U).getConstCharPtr(), "4000000000");
    String text = "ab" + String("cd");
    text += "";
    text += text;
    EXPECT_STREQ(text.getConstCharPtr(), "abcdabcd");
    EXPECT_EQ(text.getLength(), 8U);
    EXPECT_EQ(text[8], '\0');
    text = text; // NOLINT: that is the test
    EXPECT_EQ(text.getLength(), 8U);
    EXPECT_STREQ(String("ABC-xyz").toLower().getConstCharPtr(), "abc-xyz");
    std::ostringstream stream;
    stream << text;
    EXPECT_EQ(stream.str(), "abcdabcd");
}

} // namespace ZUNO::Tests
