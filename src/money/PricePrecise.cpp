// PricePrecise.cpp - the 18-digit prices, PricePrecise and SignedPricePrecise. They follow the rules
// of Price and SignedPrice at the 18-digit scale; products and quotients of the 64-bit fraction are
// exact 128-bit steps.
#include "VeloraUtils/Prices.h"

#include "money/detail/PriceArithmetic.h"

using namespace velora::money::detail;

namespace {
constexpr std::uint64_t kFromMoney = 100000000000000; // 10^14
constexpr std::uint64_t kFromPrice = 1000000000;      // 10^9
constexpr std::uint64_t kOneCent = 10000000000000000; // 10^16

PricePrecise MagnitudeOf(const SignedPricePrecise& v) noexcept {
    return MakeParts<PricePrecise>(static_cast<Int128>(WholeMagnitude(v)),
                                   static_cast<Int128>(FractionMagnitude(v)));
}
} // namespace

// ---- PricePrecise --------------------------------------------------------------------------------

const PricePrecise PricePrecise::priceZero{};
const PricePrecise PricePrecise::oneCent{0, kOneCent};
const PricePrecise PricePrecise::oneDollar{1, 0};

PricePrecise::PricePrecise(const Price& price) noexcept
    : PricePrecise(ScaledUp<PricePrecise>(price, kFromPrice)) {}
PricePrecise::PricePrecise(const Money& money) noexcept
    : PricePrecise(ScaledUpOrZero<PricePrecise>(money, kFromMoney)) {}
PricePrecise::PricePrecise(const SignedPrice& price) noexcept
    : PricePrecise(ScaledUpOrZero<PricePrecise>(price, kFromPrice)) {}
PricePrecise::PricePrecise(const SignedPricePrecise& price) noexcept
    : PricePrecise(ScaledUpOrZero<PricePrecise>(price, 1)) {}

SignedPricePrecise PricePrecise::operator-() const noexcept {
    SignedPricePrecise result(*this);
    result.Negate();
    return result;
}

PricePrecise PricePrecise::operator+(const PricePrecise& o) const noexcept {
    return AddParts(*this, o);
}
PricePrecise& PricePrecise::operator+=(const PricePrecise& o) noexcept {
    return *this = *this + o;
}

PricePrecise& PricePrecise::operator-=(const PricePrecise& o) noexcept {
    if (o > *this) {
        SetZero();
    } else {
        SubtractLesserPrice(o);
    }
    return *this;
}

SignedPricePrecise PricePrecise::operator-(const PricePrecise& o) const noexcept {
    return SubtractParts(SignedPricePrecise(*this), o);
}

PricePrecise& PricePrecise::operator+=(const SignedPricePrecise& o) noexcept {
    if (o.isNegative()) return *this -= MagnitudeOf(o);
    return *this = AddParts(*this, o);
}

PricePrecise& PricePrecise::operator-=(const SignedPricePrecise& o) noexcept {
    if (o.isNegative()) return *this = AddParts(*this, MagnitudeOf(o));
    return *this -= PricePrecise(o);
}

SignedPricePrecise PricePrecise::operator+(const SignedPricePrecise& o) const noexcept {
    return AddParts(SignedPricePrecise(*this), o);
}
SignedPricePrecise PricePrecise::operator-(const SignedPricePrecise& o) const noexcept {
    return SubtractParts(SignedPricePrecise(*this), o);
}
SignedPricePrecise PricePrecise::operator+(const Money& o) const noexcept {
    return AddParts(SignedPricePrecise(*this), ScaledUp<SignedPricePrecise>(o, kFromMoney));
}
SignedPricePrecise PricePrecise::operator-(const Money& o) const noexcept {
    return SubtractParts(SignedPricePrecise(*this), ScaledUp<SignedPricePrecise>(o, kFromMoney));
}

// The 9-digit operands: carried exactly to 18 digits by the conversions, then the operators above.
PricePrecise PricePrecise::operator+(const Price& o) const noexcept {
    return *this + PricePrecise(o);
}
PricePrecise& PricePrecise::operator+=(const Price& o) noexcept {
    return *this += PricePrecise(o);
}
PricePrecise& PricePrecise::operator-=(const Price& o) noexcept {
    return *this -= PricePrecise(o);
}
SignedPricePrecise PricePrecise::operator-(const Price& o) const noexcept {
    return *this - PricePrecise(o);
}
PricePrecise& PricePrecise::operator+=(const SignedPrice& o) noexcept {
    return *this += SignedPricePrecise(o);
}
PricePrecise& PricePrecise::operator-=(const SignedPrice& o) noexcept {
    return *this -= SignedPricePrecise(o);
}
SignedPricePrecise PricePrecise::operator+(const SignedPrice& o) const noexcept {
    return *this + SignedPricePrecise(o);
}
SignedPricePrecise PricePrecise::operator-(const SignedPrice& o) const noexcept {
    return *this - SignedPricePrecise(o);
}

PricePrecise& PricePrecise::operator*=(const unsigned int& k) noexcept {
    MultiplyWithCarry(*this, k);
    return *this;
}

PricePrecise& PricePrecise::operator/=(const unsigned int& k) noexcept {
    DivideRounded(*this, k);
    return *this;
}

Money PricePrecise::operator*(const std::int64_t& k) const noexcept {
    return ValueTimes(*this, k);
}
Money PricePrecise::operator/(const std::int64_t& k) const noexcept {
    return ValueDividedBy(*this, k);
}
PricePrecise PricePrecise::operator*(const PricePrecise& o) const noexcept {
    return PricePrecise(ScaledUpOrZero<PricePrecise>(ProductThroughMoney(*this, o), kFromMoney));
}
SignedPricePrecise PricePrecise::operator*(const SignedPricePrecise& o) const noexcept {
    return SignedPricePrecise(ProductThroughMoney(*this, o));
}
PricePrecise PricePrecise::operator*(const Price& o) const noexcept {
    return *this * PricePrecise(o);
}
SignedPricePrecise PricePrecise::operator*(const SignedPrice& o) const noexcept {
    return *this * SignedPricePrecise(o);
}

PricePrecise PricePrecise::operator&(const PricePrecise& o) const noexcept {
    return BitwiseAnd(*this, o);
}
PricePrecise PricePrecise::operator|(const PricePrecise& o) const noexcept {
    return BitwiseOr(*this, o);
}
PricePrecise& PricePrecise::operator&=(const PricePrecise& o) noexcept {
    return *this = *this & o;
}
PricePrecise& PricePrecise::operator|=(const PricePrecise& o) noexcept {
    return *this = *this | o;
}

SignedPrice PricePrecise::GetPercentChange(const SignedPricePrecise& other) const noexcept {
    return PercentChange<SignedPrice>(*this, other);
}
Price PricePrecise::GetPercentChange(const PricePrecise& other) const noexcept {
    return PercentChange<Price>(*this, other);
}

PricePrecise PricePrecise::GetAbsDiff(const PricePrecise& other) const noexcept {
    PricePrecise result = *this >= other ? *this : other;
    result.SubtractLesserPrice(*this >= other ? other : *this);
    return result;
}

PricePrecise PricePrecise::GetPositivePriceDiff(const PricePrecise& other) const noexcept {
    PricePrecise result = *this;
    return result -= other;
}

std::uint64_t PricePrecise::GetHashValue() const noexcept {
    return (static_cast<std::uint64_t>(dollars) << 16) | (fraction >> 16);
}

void PricePrecise::SubtractLesserPrice(const PricePrecise& other) noexcept {
    dollars -= other.dollars;
    if (fraction < other.fraction) {
        --dollars;
        fraction = fraction + One() - other.fraction;
    } else {
        fraction -= other.fraction;
    }
}

// ---- SignedPricePrecise --------------------------------------------------------------------------

const SignedPricePrecise SignedPricePrecise::signedPriceZero{};
const SignedPricePrecise SignedPricePrecise::oneCent{0, static_cast<std::int64_t>(kOneCent)};
const SignedPricePrecise SignedPricePrecise::oneDollar{1, 0};

SignedPricePrecise::SignedPricePrecise(const SignedPrice& price) noexcept
    : SignedPricePrecise(ScaledUp<SignedPricePrecise>(price, kFromPrice)) {}
SignedPricePrecise::SignedPricePrecise(const Money& money) noexcept
    : SignedPricePrecise(ScaledUp<SignedPricePrecise>(money, kFromMoney)) {}
SignedPricePrecise::SignedPricePrecise(const PricePrecise& price) noexcept
    : SignedPricePrecise(ScaledUp<SignedPricePrecise>(price, 1)) {}

SignedPricePrecise::operator Money() const noexcept {
    return Money(*this);
}
SignedPricePrecise::operator Price() const noexcept {
    return Price(*this);
}
SignedPricePrecise::operator PricePrecise() const noexcept {
    return PricePrecise(*this);
}

SignedPricePrecise SignedPricePrecise::operator+(const SignedPricePrecise& o) const noexcept {
    return AddParts(*this, o);
}
SignedPricePrecise SignedPricePrecise::operator-(const SignedPricePrecise& o) const noexcept {
    return SubtractParts(*this, o);
}
SignedPricePrecise& SignedPricePrecise::operator+=(const SignedPricePrecise& o) noexcept {
    return *this = *this + o;
}
SignedPricePrecise& SignedPricePrecise::operator-=(const SignedPricePrecise& o) noexcept {
    return *this = *this - o;
}
SignedPricePrecise SignedPricePrecise::operator+(const PricePrecise& o) const noexcept {
    return *this + SignedPricePrecise(o);
}
SignedPricePrecise SignedPricePrecise::operator-(const PricePrecise& o) const noexcept {
    return *this - SignedPricePrecise(o);
}
SignedPricePrecise SignedPricePrecise::operator+(const Money& o) const noexcept {
    return *this + SignedPricePrecise(o);
}
SignedPricePrecise SignedPricePrecise::operator-(const Money& o) const noexcept {
    return *this - SignedPricePrecise(o);
}

SignedPricePrecise SignedPricePrecise::operator+(const SignedPrice& o) const noexcept {
    return *this + SignedPricePrecise(o);
}
SignedPricePrecise SignedPricePrecise::operator-(const SignedPrice& o) const noexcept {
    return *this - SignedPricePrecise(o);
}
SignedPricePrecise& SignedPricePrecise::operator+=(const SignedPrice& o) noexcept {
    return *this += SignedPricePrecise(o);
}
SignedPricePrecise& SignedPricePrecise::operator-=(const SignedPrice& o) noexcept {
    return *this -= SignedPricePrecise(o);
}
SignedPricePrecise SignedPricePrecise::operator+(const Price& o) const noexcept {
    return *this + PricePrecise(o);
}
SignedPricePrecise SignedPricePrecise::operator-(const Price& o) const noexcept {
    return *this - PricePrecise(o);
}

SignedPricePrecise& SignedPricePrecise::operator*=(const int& k) noexcept {
    MultiplyWithCarry(*this, k);
    return *this;
}

SignedPricePrecise& SignedPricePrecise::operator/=(const int& k) noexcept {
    DivideRounded(*this, k);
    return *this;
}

Money SignedPricePrecise::operator*(const SignedPricePrecise& o) const noexcept {
    return ProductThroughMoney(*this, o);
}
Money SignedPricePrecise::operator*(const SignedPrice& o) const noexcept {
    return *this * SignedPricePrecise(o);
}
Money SignedPricePrecise::operator*(const std::int64_t& k) const noexcept {
    return ValueTimes(*this, k);
}
Money SignedPricePrecise::operator/(const std::int64_t& k) const noexcept {
    return ValueDividedBy(*this, k);
}

SignedPricePrecise SignedPricePrecise::operator&(const SignedPricePrecise& o) const noexcept {
    return BitwiseAnd(*this, o);
}
SignedPricePrecise SignedPricePrecise::operator|(const SignedPricePrecise& o) const noexcept {
    return BitwiseOr(*this, o);
}
SignedPricePrecise& SignedPricePrecise::operator&=(const SignedPricePrecise& o) noexcept {
    return *this = *this & o;
}
SignedPricePrecise& SignedPricePrecise::operator|=(const SignedPricePrecise& o) noexcept {
    return *this = *this | o;
}

SignedPrice SignedPricePrecise::GetPercentChange(const SignedPricePrecise& other) const noexcept {
    return PercentChange<SignedPrice>(*this, other);
}

std::uint64_t SignedPricePrecise::GetHashValue() const noexcept {
    return (static_cast<std::uint64_t>(dollars) << 16) | (static_cast<std::uint64_t>(fraction) >> 16);
}
