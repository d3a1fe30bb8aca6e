// Value-level price text, double conversion and percentage moves.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "VeloraUtils/PriceConversion.h"

namespace {

TEST(PriceConversion, WritersFormatTheValuesTwoParts) {
    std::string s;
    U_PriceToStr(s, Price(1234567, 500000000), 2, 0, true, 0, false);
    EXPECT_EQ(s, "1,234,567.50");
    s.clear();
    U_PriceToStr(s, Price(0, 999999999), 2, 0, false, '|', false);
    U_PriceToStr(s, Price(0, 999999999), 2, -1, false, 0, false);
    EXPECT_EQ(s, "1.00|0.99");
    s.clear();
    U_SignedPriceToStr(s, SignedPrice(0, -250000000), 4, 0, false, 0, true);
    EXPECT_EQ(s, "-0.25");
    s.clear();
    U_MoneyToStr(s, Money(-12, -5000), 0, 0, false, ';', false);
    EXPECT_EQ(s, "-13;"); // half away from zero on the magnitude
}

TEST(PriceConversion, ReadersStoreThePartsAndMoveTheCursor) {
    struct Case {
        const char* text;
        unsigned char maxDecimals;
        unsigned int whole, fraction;
        std::size_t cursorOffset;
    };
    const Case cases[] = {
        {"12.345|7", 9, 12, 345000000, 7},
        {"12.34567", 2, 12, 340000000, 8},
        {"|", 9, 0, 0, 1},
        {"", 9, 0, 0, 0},
        {"7|", 9, 7, 0, 2},
    };
    for (const Case& c : cases) {
        const char* cursor = c.text;
        Price price(99, 99);
        U_StrToPrice(price, cursor, c.maxDecimals, '|');
        EXPECT_EQ(price, Price(c.whole, c.fraction)) << c.text;
        EXPECT_EQ(cursor, c.text + c.cursorOffset) << c.text;
    }
    const char* cursor = "-1.5;";
    SignedPrice signedPrice;
    U_StrToSignedPrice(signedPrice, cursor, 9, ';');
    EXPECT_EQ(signedPrice, SignedPrice(-1, -500000000));
    cursor = "-0.0625";
    Money money;
    U_StrToMoney(money, cursor, 4, 0);
    EXPECT_EQ(money, Money(0, -625));
    EXPECT_EQ(*cursor, '\0');
}

TEST(PriceConversion, DoublesRoundToTheRequestedDecimals) {
    struct Case {
        const char* name;
        double value;
        unsigned char decimals;
        unsigned int whole, fraction;
        bool result;
    };
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
    for (const Case& c : priceCases) {
        Price price(7, 7);
        EXPECT_EQ(U_DoubleToPrice(price, c.value, c.decimals), c.result) << c.name;
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
    EXPECT_TRUE(U_DoubleToSignedPrice(signedPrice, 3.5, 12));
    EXPECT_EQ(signedPrice, SignedPrice(4, 0));
    EXPECT_DOUBLE_EQ(U_PriceToDouble(Price(2, 500000000)), 2.5);
    EXPECT_DOUBLE_EQ(U_SignedPriceToDouble(SignedPrice(-2, -500000000)), -2.5);
    EXPECT_DOUBLE_EQ(U_MoneyToDouble(Money(-1, -2500)), -1.25);
}

TEST(PriceConversion, PercentageMovesNeverFallBelowOneCent) {
    struct Case {
        const char* name;
        Price base;
        SignedPrice change;
        Price reference;
        Price expected;
    };
    const Case cases[] = {
        {"ten percent up", Price(100, 0), SignedPrice(5, 0), Price(50, 0), Price(110, 0)},
        {"one percent down", Price(100, 0), SignedPrice(0, -500000000), Price(50, 0), Price(99, 0)},
        {"move rounded to cents", Price(10, 0), SignedPrice(0, 10000000), Price(3, 0), Price(10, 30000000)},
        {"fall of the whole base", Price(100, 0), SignedPrice(-60, 0), Price(50, 0), Price::oneCent},
        {"fall to below a cent", Price(0, 20000000), SignedPrice(0, -250000000), Price(0, 500000000),
         Price::oneCent},
        {"zero change", Price(42, 5), SignedPrice(0, 0), Price(50, 0), Price(42, 5)},
        {"zero reference moves nothing", Price(42, 0), SignedPrice(1, 0), Price(0, 0), Price(42, 0)},
    };
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
