// Price.cpp - unsigned quotes in 10^-9: saturating subtraction, signed differences, products and
// quotients into Money, and conversions from the other types (negative sources give zero).
#include "VeloraUtils/Prices.h"

#include "money/detail/PriceArithmetic.h"

using namespace velora::money::detail;

namespace {
// Fraction factor from Money's ten-thousandths to 10^-9, and from 10^-9 down from 10^-18.
constexpr std::uint64_t kFromMoney = 100000;
constexpr std::uint64_t kFromPrecise = 1000000000;

// The magnitude of a signed price as a Price.
Price MagnitudeOf(const SignedPrice& v) noexcept {
    return MakeParts<Price>(static_cast<Int128>(WholeMagnitude(v)),
                            static_cast<Int128>(FractionMagnitude(v)));
}
} // namespace

const Price Price::priceZero{};
const Price Price::oneCent{0, 10000000};
const Price Price::oneDollar{1, 0};

Price::Price(const Money& money) noexcept : Price(ScaledUpOrZero<Price>(money, kFromMoney)) {}
Price::Price(const SignedPrice& price) noexcept : Price(ScaledUpOrZero<Price>(price, 1)) {}
Price::Price(const SignedPricePrecise& price) noexcept : Price(TruncatedOrZero<Price>(price, kFromPrecise)) {}
Price::Price(const PricePrecise& price) noexcept : Price(TruncatedOrZero<Price>(price, kFromPrecise)) {}

Price::operator SignedPrice() const noexcept {
    return SignedPrice(*this);
}
Price::operator Money() const noexcept {
    return Money(*this);
}

Price Price::operator+(const Price& o) const noexcept {
    return AddParts(*this, o);
}
Price& Price::operator+=(const Price& o) noexcept {
    return *this = *this + o;
}

Price& Price::operator-=(const Price& o) noexcept {
    if (o > *this) {
        SetZero();
    } else {
        SubtractLesserPrice(o);
    }
    return *this;
}

SignedPrice Price::operator-(const Price& o) const noexcept {
    return SubtractParts(SignedPrice(*this), o);
}

Price& Price::operator+=(const SignedPrice& o) noexcept {
    if (o.isNegative()) return *this -= MagnitudeOf(o);
    return *this = AddParts(*this, o);
}

Price& Price::operator-=(const SignedPrice& o) noexcept {
    if (o.isNegative()) return *this = AddParts(*this, MagnitudeOf(o));
    return *this -= Price(o);
}

SignedPrice Price::operator+(const SignedPrice& o) const noexcept {
    return AddParts(SignedPrice(*this), o);
}
SignedPrice Price::operator-(const SignedPrice& o) const noexcept {
    return SubtractParts(SignedPrice(*this), o);
}
SignedPrice Price::operator+(const Money& o) const noexcept {
    return AddParts(SignedPrice(*this), ScaledUp<SignedPrice>(o, kFromMoney));
}
SignedPrice Price::operator-(const Money& o) const noexcept {
    return SubtractParts(SignedPrice(*this), ScaledUp<SignedPrice>(o, kFromMoney));
}

Price& Price::operator*=(const unsigned int& k) noexcept {
    MultiplyWithCarry(*this, k);
    return *this;
}

Price& Price::operator/=(const unsigned int& k) noexcept {
    DivideRounded(*this, k);
    return *this;
}

Money Price::operator*(const std::int64_t& k) const noexcept {
    return ValueTimes(*this, k);
}
Money Price::operator/(const std::int64_t& k) const noexcept {
    return ValueDividedBy(*this, k);
}
Price Price::operator*(const Price& o) const noexcept {
    return Price(ProductThroughMoney(*this, o));
}
SignedPrice Price::operator*(const SignedPrice& o) const noexcept {
    return SignedPrice(ProductThroughMoney(*this, o));
}

Price Price::operator&(const Price& o) const noexcept {
    return BitwiseAnd(*this, o);
}
Price Price::operator|(const Price& o) const noexcept {
    return BitwiseOr(*this, o);
}
Price& Price::operator&=(const Price& o) noexcept {
    return *this = *this & o;
}
Price& Price::operator|=(const Price& o) noexcept {
    return *this = *this | o;
}

SignedPrice Price::GetPercentChange(const SignedPrice& other) const noexcept {
    return PercentChange<SignedPrice>(*this, other);
}
Price Price::GetPercentChange(const Price& other) const noexcept {
    return PercentChange<Price>(*this, other);
}

Price Price::GetAbsDiff(const Price& other) const noexcept {
    Price result = *this >= other ? *this : other;
    result.SubtractLesserPrice(*this >= other ? other : *this);
    return result;
}

Price Price::GetPositivePriceDiff(const Price& other) const noexcept {
    Price result = *this;
    return result -= other;
}

std::uint64_t Price::GetHashValue() const noexcept {
    return (static_cast<std::uint64_t>(dollars) << 16) | (fraction >> 16);
}

void Price::SubtractLesserPrice(const Price& other) noexcept {
    dollars -= other.dollars;
    if (fraction < other.fraction) {
        --dollars;
        fraction = fraction + One() - other.fraction;
    } else {
        fraction -= other.fraction;
    }
}
