// Numbers to and from text beside the C library's, while the process's locale has a decimal comma.
#include "common/parser/numbertext.h"
#include "tests/support/tempfolder.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace ZUNO::Tests {

using namespace Common;

class NumberTextTest : public testing::Test {
protected:
    /// Makes a locale of its own: none needs to be installed.
    void SetUp() override {
        const std::string source =
            mFolder.put("comma.src", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\n"
                                     "grouping -1\nEND LC_NUMERIC\n");
        const std::string command = "localedef -c -i " + source + " " + mFolder.in("comma");
        std::system((command + " 2>/dev/null").c_str()); // its warnings count as failure
        setenv("LOCPATH", mFolder.path().c_str(), 1);
        ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr) << command;
        ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    }
    void TearDown() override {
        std::setlocale(LC_NUMERIC, "C");
        unsetenv("LOCPATH");
    }

    TempFolder mFolder;
};

/// Compares the three numbers of a text.
template <typename T>
void expectSameNumbers(const char* text, const char* format) {
    std::setlocale(LC_NUMERIC, "C");
    T expected[3] = {};
    std::sscanf(text, format, &expected[0], &expected[1], &expected[2]);
    std::setlocale(LC_NUMERIC, "comma");
    T numbers[3];
    Parser::toNumbers(text, '/', numbers, 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(numbers[i], expected[i]) << text << " at " << i;
}

TEST_F(NumberTextTest, ReadsWhatTheCLibraryReads) {
    for (const char* text : {"1.5",          "-0",         " +2.25x",   "1e-40",
                             "1e39",         "-1e400",     "1e-400",    "0x1p3",
                             "inf",          "",           "abc",       "--3",
                             "16777217",     "2e/5/6",     "0x-4/5/6",  "0x/5/6",
                             "1e+/2/3",      "-0x1fp/5/6", "2e",        "inf/1/2",
                             "1/ 2/ -3",     "1 /2/3",     "5./.5/.",   "1.40129846e-45",
                             "3.4028236e38", "0x.8/1/2",   "infe/1/2",  "0/9/5",
                             "0e/9e/5",      "/5",         ":5",        "\t1/\r2/\v3",
                             "\b4",          "\0165",      "+5/-6/+-7", "0xa/0xF/0x9",
                             "0xA/0xf/1",    "0xg/1",      "0x/0X1",    "-2147483648/2147483647/-0",
                             "1E999/2e-/3",  "0X1P999/1",  "0x1p-999",  "0/0x1p-999/3"}) {
        expectSameNumbers<float>(text, "%f/%f/%f");
        expectSameNumbers<std::int32_t>(text, "%d/%d/%d");
        std::setlocale(LC_NUMERIC, "C");
        const double whole = std::strtod(text, nullptr);
        std::setlocale(LC_NUMERIC, "comma");
        EXPECT_EQ(Parser::toDouble(text), whole) << text;
    }
    EXPECT_EQ(Parser::toInt32("4294967296"), 2147483647);
    EXPECT_EQ(Parser::toInt32("-2147483649"), -2147483647 - 1);
    EXPECT_EQ(Parser::toUInt64("-1"), 18446744073709551615U);
    EXPECT_EQ(Parser::toUInt64("18446744073709551617"), 18446744073709551615U);
    EXPECT_EQ(Parser::toDouble(std::string(400, '9').c_str()), HUGE_VAL);
    EXPECT_EQ(Parser::toDouble(("0." + std::string(400, '0') + "1").c_str()), 0);
    EXPECT_EQ(Parser::toInt64(" -12z"), -12);
}

TEST_F(NumberTextTest, WritesWhatTheCLibraryWrites) {
    for (const float number : {0.1F, 1e-7F, 123456789.0F, -2.5F, 1e20F, 3.4028235e38F}) {
        char expected[64];
        char text[Parser::numberTextSize];
        for (const bool isFixed : {false, true}) {
            std::setlocale(LC_NUMERIC, "C");
            std::snprintf(expected, sizeof(expected), isFixed ? "%f" : "%g",
                          static_cast<double>(number));
            std::setlocale(LC_NUMERIC, "comma");
            isFixed ? Parser::formatFixed(text, number) : Parser::formatNumber(text, number);
            EXPECT_STREQ(text, expected);
        }
    }
}

} // namespace ZUNO::Tests
