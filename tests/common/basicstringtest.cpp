#include "reference/randomchoices.h"
#include "reference/stringmodel.h"
#include "tests/support/foundation.h"

#include <sstream>

namespace ZUNO::Tests {

using namespace Common;

using BasicStringTest = FoundationTest;

TEST_F(BasicStringTest, BehavesAsTheStandardsUnderRandomUse) {
    Reference::RandomChoices choices(6, 20000);
    EXPECT_STREQ(Reference::StringModel().compare(choices), nullptr);
    EXPECT_TRUE(String("\xE4") < String("a")) << "by signed bytes";
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
