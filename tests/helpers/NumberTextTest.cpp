#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

#include "TempFolder.h"
#include "helpers/NumberText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

TEST(NumberText, ReadsTheNumberAtTheStartOfAText) {
    const auto cases = test::TestCases("helpers/number-cases.json");
    for (const auto& c : cases.at("ReadNumber"))
        EXPECT_EQ(ReadNumber(c[0]), c[1].get<double>()) << c;
    for (const std::string& text : std::vector<std::string>{"1E400", "-1E400", "&h123456789", std::string(400, '9')})
        EXPECT_THROW(ReadNumber(text), OverflowError) << text;
}

TEST(NumberText, WritesFifteenSignificantDigitsAsPrintfDoes) {
    const auto cases = test::TestCases("helpers/number-cases.json");
    for (const auto& c : cases.at("NumberText"))
        EXPECT_EQ(NumberText(c[0]), c[1]) << c;
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
