// Value-level price text, double conversion and percentage moves.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "VeloraUtils/PriceConversion.h"

namespace {

// The part writers and readers are tested row by row elsewhere; here each value-level form once.
TEST(PriceConversion, WritersFormatTheValuesTwoParts) {
    std::string s;
    U_PriceToStr(s, Price(1234567, 500000000), 2, 0, true, '|', false);
    U_SignedPriceToStr(s, SignedPrice(0, -250000000), 4, 0, false, '|', true);
    U_MoneyToStr(s, Money(-12, -5000), 0, 0, false, ';', false); // half away from zero on the magnitude
    EXPECT_EQ(s, "1,234,567.50|-0.25|-13;");
}

TEST(PriceConversion, ReadersStoreThePartsAndMoveTheCursor) {
    const char* const text = "12.34567|-1.5;-0.0625";
    const char* cursor = text;
    Price price(99, 99);
    U_StrToPrice(price, cursor, 2, '|');
    EXPECT_EQ(price, Price(12, 340000000));
    EXPECT_EQ(cursor, text + 9);
    SignedPrice signedPrice;
    U_StrToSignedPrice(signedPrice, cursor, 9, ';');
    EXPECT_EQ(signedPrice, SignedPrice(-1, -500000000));
    Money money;
    U_StrToMoney(money, cursor, 4, 0);
    EXPECT_EQ(money, Money(0, -625));
    EXPECT_EQ(*cursor, '\0');
}

TEST(PriceConversion, DoublesRoundToTheRequestedDecimals) {
    // clang-format off
    struct Case { const char* name; double value; unsigned char digits; unsigned whole, fraction; bool ok; };
    const Case priceCases[] = {
        {"negative is refused", -1.0, 2, 0, 0, false},
        {"nan is refused", std::numeric_limits<double>::quiet_NaN(), 2, 0, 0, false},
        {"rounded to cents", 1.234567891, 2, 1, 230000000, true},
        {"half rounds up", 1.235, 2, 1, 240000000, true},
        {"already on the grid", 1.25, 2, 1, 250000000, false},
        {"nine decimals never rounds", 1.000000001, 9, 1, 1, false},
        {"ten or more decimals round to whole units", 1.5, 10, 2, 0, true},
        {"zero decimals", 2.4, 0, 2, 0, true},
    };
    // clang-format on
    for (const Case& c : priceCases) {
        Price price(7, 7);
        EXPECT_EQ(U_DoubleToPrice(price, c.value, c.digits), c.ok) << c.name;
        EXPECT_EQ(price, Price(c.whole, c.fraction)) << c.name;
    }
    Money money;
    EXPECT_TRUE(U_DoubleToMoney(money, 2.71828, 5)); // five or more decimals: whole units
    EXPECT_EQ(money, Money(3, 0));
    EXPECT_TRUE(U_DoubleToMoney(money, -2.71828, 2));
    // -2.7183 on a grid of cents: a negative value's step count is adjusted towards zero, one step
    // past truncation (kept as the grid rounding has always done).
    EXPECT_EQ(money, Money(-2, -7000));
    SignedPrice signedPrice;
    EXPECT_TRUE(U_DoubleToSignedPrice(signedPrice, -3.5, 12));
    EXPECT_EQ(signedPrice, SignedPrice(-4, 0)); // 10 or more decimals: whole units, half away from zero
    EXPECT_DOUBLE_EQ(U_PriceToDouble(Price(2, 500000000)), 2.5);
    EXPECT_DOUBLE_EQ(U_SignedPriceToDouble(SignedPrice(-2, -500000000)), -2.5);
    EXPECT_DOUBLE_EQ(U_MoneyToDouble(Money(-1, -2500)), -1.25);
}

TEST(PriceConversion, PercentageMovesNeverFallBelowOneCent) {
    using S = SignedPrice;
    // clang-format off
    struct Case { const char* name; Price base; SignedPrice change; Price reference, expected; };
    const Case cases[] = {
        {"ten percent up", Price(100, 0), S(5, 0), Price(50, 0), Price(110, 0)},
        {"one percent down", Price(100, 0), S(0, -500000000), Price(50, 0), Price(99, 0)},
        {"move rounded to cents", Price(10, 0), S(0, 10000000), Price(3, 0), Price(10, 30000000)},
        {"fall of the whole base", Price(100, 0), S(-60, 0), Price(50, 0), Price::oneCent},
        {"fall to below a cent", Price(0, 20000000), S(0, -250000000), Price(0, 500000000), Price::oneCent},
        {"zero change", Price(42, 5), S(0, 0), Price(50, 0), Price(42, 5)},
        {"zero reference moves nothing", Price(42, 0), S(1, 0), Price(0, 0), Price(42, 0)},
    };
    // clang-format on
    for (const Case& c : cases) {
        Price result(1, 1);
        U_GetPriceByChangePercentage(result, c.base, c.change, c.reference);
        EXPECT_EQ(result, c.expected) << c.name;
    }
    Price result;
    U_GetPriceByDifferencePercentage(result, Price(200, 0), Price(55, 0), Price(50, 0));
    EXPECT_EQ(result, Price(220, 0));
    U_GetPriceByDifferencePercentage(result, Price(200, 7), Price(50, 0), Price(50, 0));
    EXPECT_EQ(result, Price(200, 7));
    U_GetPriceByDifferencePercentage(result, Price(200, 0), Price(40, 0), Price(50, 0));
    EXPECT_EQ(result, Price(160, 0));
}

} // namespace
