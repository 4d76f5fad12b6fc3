#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "helpers/NumberText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

TEST(NumberText, ReadsTheNumberAtTheStartOfAText) {
    const std::vector<std::pair<std::string, double>> cases = {
        {"", 0}, {"abc", 0}, {" 4 2 ", 42}, {"4\n2", 42}, {"\t-1.5\n", -1.5}, {"- 5", -5}, {"+7", 7}, {"--5", 0},
        {".5", 0.5}, {"5.", 5}, {"1.2.3", 1.2}, {"12abc", 12}, {"1\r2", 1}, {"1E3", 1000}, {"1d3", 1000},
        {"2.5e-1", 0.25}, {"1E+", 1}, {"0.1", 0.1}, {"00000000000000000000000001", 1},
        {"18446744073709551616", 18446744073709551616.0}, {"123456789012345678901234567890", 1.2345678901234568e29},
        {"1e-400", 0}, {"&hFF", 255}, {"&HFFFF", -1}, {"&h8000", -32768}, {"&h10000", 65536}, {"&h0000FFFF", 65535},
        {"&hFFFFFFFF", -1}, {" & h 1F", 31}, {"&h1G", 1}, {"&h", 0}, {"&x12", 0}, {"-&h1", 0},
    };
    for (const auto& [text, value] : cases) EXPECT_EQ(ReadNumber(text), value) << '"' << text << '"';
    for (const std::string& text : std::vector<std::string>{"1E400", "-1E400", "&h123456789", std::string(400, '9')})
        EXPECT_THROW(ReadNumber(text), OverflowError) << text;
}

TEST(NumberText, WritesFifteenSignificantDigitsAsPrintfDoes) {
    const std::vector<std::pair<double, std::string>> cases = {
        {-0.0, "0"}, {-2.5, "-2.5"}, {0.1 + 0.2, "0.3"}, {4294967295.0, "4294967295"}, {999999999999999.5, "1E+15"},
        {1e15, "1E+15"}, {18446744073709551616.0, "1.84467440737096E+19"}, {0.0001, "0.0001"}, {0.00001, "1E-05"},
    };
    for (const auto& [value, text] : cases) EXPECT_EQ(NumberText(value), text) << value;
    // %.15G in the C locale is an independent reference for the rounding and
    // the choice of form.
    std::mt19937_64 random(20240611);
    std::uniform_real_distribution<double> mantissa(-10, 10);
    std::uniform_int_distribution<int> exponent(-30, 30);
    for (int i = 0; i < 20000; ++i) {
        const double value = mantissa(random) * std::pow(10.0, exponent(random));
        char reference[64];
        std::snprintf(reference, sizeof reference, "%.15G", value);
        ASSERT_EQ(NumberText(value), reference) << value;
    }
    EXPECT_THROW(NumberText(INFINITY), OverflowError);
    EXPECT_THROW(NumberText(NAN), OverflowError);
}

}  // namespace
}  // namespace sb
