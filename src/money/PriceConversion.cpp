// PriceConversion.cpp - the value-level text, double and percentage functions, built on the
// two-part text functions and the classes' own arithmetic and rounding.
#include "VeloraUtils/PriceConversion.h"

#include "VeloraUtils/PriceText.h"

namespace {

// The rounding grid for `decimals` digits: 10^decimals steps per unit. From `wholeUnitsFrom`
// decimals on, callers get whole units; that uses the grid 0 (whole units, half away from zero),
// which for a non-negative value gives exactly what a grid of 1 gives, and rounds a negative value
// as the mirror image rather than through the per-step path's negative adjustment.
template <class Value>
bool RoundToDecimals(Value& value, unsigned char decimals, unsigned char wholeUnitsFrom) {
    using Parts = typename Value::RoundParts;
    Parts grid = 0;
    if (decimals < wholeUnitsFrom) {
        grid = 1;
        for (unsigned char i = 0; i < decimals; ++i) grid = static_cast<Parts>(grid * 10);
    }
    return value.Round(grid, 0);
}

} // namespace

void U_PriceToStr(std::string& s, const Price& price, unsigned char decimals, char roundMode, bool commas,
                  char sep, bool trimZeros) {
    U_PriceDollarsAndFractionToStr(s, price.GetDollars(), price.GetDollarFraction(), decimals, roundMode,
                                   commas, sep, trimZeros);
}

void U_SignedPriceToStr(std::string& s, const SignedPrice& price, unsigned char decimals, char roundMode,
                        bool commas, char sep, bool trimZeros) {
    U_SignedPriceDollarsAndFractionToStr(s, price.GetDollars(), price.GetDollarFraction(), decimals,
                                         roundMode, commas, sep, trimZeros);
}

void U_MoneyToStr(std::string& s, const Money& money, unsigned char decimals, char roundMode, bool commas,
                  char sep, bool trimZeros) {
    U_MoneyDollarsAndFractionToStr(s, money.GetDollars(), money.GetDollarFraction(), decimals, roundMode,
                                   commas, sep, trimZeros);
}

void U_StrToPrice(Price& price, const char*& cursor, unsigned char maxDecimals, char delimiter) {
    unsigned int whole = 0, fraction = 0;
    U_StrToPriceDollarsAndFraction(whole, fraction, cursor, maxDecimals, delimiter);
    price.SetValue(whole, fraction);
}

void U_StrToSignedPrice(SignedPrice& price, const char*& cursor, unsigned char maxDecimals, char delimiter) {
    int whole = 0, fraction = 0;
    U_StrToSignedPriceDollarsAndFraction(whole, fraction, cursor, maxDecimals, delimiter);
    price.SetValue(whole, fraction);
}

void U_StrToMoney(Money& money, const char*& cursor, unsigned char maxDecimals, char delimiter) {
    std::int64_t whole = 0;
    short fraction = 0;
    U_StrToMoneyDollarsAndFraction(whole, fraction, cursor, maxDecimals, delimiter);
    money.SetValue(whole, fraction);
}

bool U_DoubleToPrice(Price& price, double value, unsigned char decimals) {
    if (!(value >= 0)) { // negative or NaN
        price.SetZero();
        return false;
    }
    price.SetDoubleValue(value);
    return RoundToDecimals(price, decimals, 10);
}

bool U_DoubleToSignedPrice(SignedPrice& price, double value, unsigned char decimals) {
    price.SetDoubleValue(value);
    return RoundToDecimals(price, decimals, 10);
}

bool U_DoubleToMoney(Money& money, double value, unsigned char decimals) {
    money.SetDoubleValue(value);
    return RoundToDecimals(money, decimals, 5);
}

double U_PriceToDouble(const Price& price) {
    return price.toDouble();
}
double U_SignedPriceToDouble(const SignedPrice& price) {
    return price.toDouble();
}
double U_MoneyToDouble(const Money& money) {
    return money.toDouble();
}

void U_GetPriceByChangePercentage(Price& result, const Price& base, const SignedPrice& change,
                                  const Price& reference) {
    result = base;
    if (change.isZero()) return;
    // The change in percent of the reference (four decimals), applied to base, in whole cents.
    const SignedPrice percent = reference.GetPercentChange(change);
    const Money moved = (base * percent) / std::int64_t{100};
    SignedPrice delta(moved);
    delta.Round(100, 0);
    if (!delta.isNegative()) {
        result += delta;
        return;
    }
    const Price fall(SignedPrice(-delta.GetDollars(), -delta.GetDollarFraction()));
    if (fall >= base) {
        result = Price::oneCent;
        return;
    }
    result -= fall; // fall < base: a plain borrow, never saturating
    if (result < Price::oneCent) result = Price::oneCent;
}

void U_GetPriceByDifferencePercentage(Price& result, const Price& base, const Price& price,
                                      const Price& reference) {
    if (price == reference) {
        result = base;
        return;
    }
    U_GetPriceByChangePercentage(result, base, price - reference, reference);
}
