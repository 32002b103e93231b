// Our own text of floating-point numbers beside the standard library's.
#include "common/utility/floattext.h"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace ZUNO::Tests {

using namespace Common::Utility;

namespace {

template <typename T>
void expectSameNumber(const std::string& text, int base = 10) {
    const char* const end = text.data() + text.size();
    T number = 0;
    T expected = 0;
    const auto result = readFloat(text.data(), end, number, base);
    auto standard =
        std::from_chars(text.data(), end, expected,
                        base == 16 ? std::chars_format::hex : std::chars_format::general);
    if (standard.ec == std::errc::result_out_of_range) { // the standard library tells no number
        standard.ec = {};
        expected = number == 0 || std::isinf(number) ? number : -1;
    }
    EXPECT_TRUE(result.ec == standard.ec && result.ptr == standard.ptr) << text;
    EXPECT_TRUE(number == expected || (std::isnan(number) && std::isnan(expected))) << text;
}

void expectSameText(double number) {
    char text[400];
    char expected[400];
    for (int digits = 6; digits <= 9; ++digits)
        EXPECT_EQ(std::string(text, writeGeneral(text, number, digits)),
                  std::string(expected, std::to_chars(expected, std::end(expected), number,
                                                      std::chars_format::general, digits)
                                            .ptr));
    EXPECT_EQ(
        std::string(text, writeFixed(text, number)),
        std::string(
            expected,
            std::to_chars(expected, std::end(expected), number, std::chars_format::fixed, 6).ptr));
}

std::string textOf(double number, std::chars_format format, int digits) {
    char text[1500];
    return {text, std::to_chars(text, std::end(text), number, format, digits).ptr};
}

} // namespace

TEST(FloatTextTest, ReadsWhatTheStandardLibraryReads) {
    const std::string zeros(1000, '0');
    std::vector<std::string> texts{"", "1" + zeros + "e-1000", "0." + zeros + "1e1001",
                                   "16777217." + zeros + "1", "16777217." + zeros};
    std::istringstream words(
        ". 1. .5 1..2 1e 1E-5 1e+ 1e400 1e-400 1e99999999999 0e9 InFinity infin nan(a_1) nan( nanx "
        "nan(a-b) nan(a 1e5x 1e5/ x "
        "340282356779733661637539395458142568448 2.4703282292062328e-324 7.0064923216240854e-46 "
        "1.7976931348623159e308");
    for (std::string word; words >> word;)
        texts.push_back(word);
    for (const std::string& text : texts) {
        expectSameNumber<float>(text);
        expectSameNumber<double>(text);
    }
    for (const char* const text :
         {"", "ff", ".8p1", "1p", "1.0000010000000000000000000001p0", "1p-149", "1p-150",
          "1.fffffffp127", "1.fffffffffffff8p0", "1.000001000000001p0"}) {
        expectSameNumber<float>(text, 16);
        expectSameNumber<double>(text, 16);
    }
}

TEST(FloatTextTest, ReadsAndWritesNumbersOfAllSizes) {
    expectSameText(1000.0 / 3);
    expectSameText(99.9999999); // which gets longer
    std::mt19937_64 random(1);  // NOLINT(cert-msc51-cpp): the same numbers each time
    for (int i = 0; i < 3000; ++i) {
        const auto wide = std::bit_cast<double>(random() >> 1U);
        const auto narrow = std::bit_cast<float>(static_cast<std::uint32_t>(random() >> 33U));
        const double halfway = (double{narrow} + std::nextafter(narrow, INFINITY)) / 2;
        for (const double number : {wide, double{narrow}, halfway, std::round(wide) / 1000}) {
            expectSameText(number);
            expectSameText(-number);
            for (const int digits : {1, 8, 17, 200, 900}) {
                const std::string text = textOf(number, std::chars_format::scientific, digits);
                expectSameNumber<float>(text);
                expectSameNumber<double>(text);
            }
            expectSameNumber<float>(textOf(number, std::chars_format::hex, i % 15), 16);
        }
    }
}

} // namespace ZUNO::Tests
