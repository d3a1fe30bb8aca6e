// Money.cpp - account amounts in ten-thousandths: conversions from the price types (rounded half
// away from zero), arithmetic, division and percent change.
#include "VeloraUtils/Prices.h"

#include "money/detail/PriceArithmetic.h"

using namespace velora::money::detail;

const Money Money::moneyZero{};
const Money Money::oneCent{0, 100};
const Money Money::oneDollar{1, 0};

Money::Money(const int& signedCompact) noexcept {
    DecodeSignedCompact(*this, signedCompact);
}
Money::Money(const Price& price) noexcept : Money(ValueAsMoney(price)) {}
Money::Money(const SignedPrice& price) noexcept : Money(ValueAsMoney(price)) {}
Money::Money(const PricePrecise& price) noexcept : Money(ValueAsMoney(price)) {}
Money::Money(const SignedPricePrecise& price) noexcept : Money(ValueAsMoney(price)) {}

Money::operator Price() const noexcept {
    return Price(*this);
}
Money::operator SignedPrice() const noexcept {
    return SignedPrice(*this);
}

Money Money::operator+(const Money& o) const noexcept {
    return AddParts(*this, o);
}
Money Money::operator-(const Money& o) const noexcept {
    return SubtractParts(*this, o);
}
Money& Money::operator+=(const Money& o) noexcept {
    return *this = *this + o;
}
Money& Money::operator-=(const Money& o) noexcept {
    return *this = *this - o;
}
Money Money::operator+(const Price& o) const noexcept {
    return *this + Money(o);
}
Money Money::operator-(const Price& o) const noexcept {
    return *this - Money(o);
}
Money Money::operator+(const SignedPrice& o) const noexcept {
    return *this + Money(o);
}
Money Money::operator-(const SignedPrice& o) const noexcept {
    return *this - Money(o);
}

Money Money::operator*(const std::int64_t& k) const noexcept {
    Money result = *this;
    return result *= k;
}

Money& Money::operator*=(const std::int64_t& k) noexcept {
    MultiplyWithCarry(*this, k);
    return *this;
}

Money Money::operator/(const std::int64_t& k) const noexcept {
    Money result = *this;
    return result /= k;
}

Money& Money::operator/=(const std::int64_t& k) noexcept {
    DivideRounded(*this, k);
    return *this;
}

int Money::operator/(const Money& o) const noexcept {
    const Int128 a = Units(*this);
    const Int128 b = Units(o);
    if (a == 0 || b == 0) return 0;
    return Narrow<int>(a * Wide(One()) / b);
}

Money Money::operator-() const noexcept {
    Money result = *this;
    result.Negate();
    return result;
}

Money Money::operator&(const Money& o) const noexcept {
    return BitwiseAnd(*this, o);
}
Money Money::operator|(const Money& o) const noexcept {
    return BitwiseOr(*this, o);
}
Money& Money::operator&=(const Money& o) noexcept {
    return *this = *this & o;
}
Money& Money::operator|=(const Money& o) noexcept {
    return *this = *this | o;
}

Money Money::GetPercentChange(const Money& other) const noexcept {
    return PercentChange<Money>(*this, other);
}

std::uint64_t Money::GetHashValue() const noexcept {
    return static_cast<std::uint64_t>(static_cast<unsigned short>(fraction)) |
           (static_cast<std::uint64_t>(dollars) << 16);
}
