// SignedPrice.cpp - signed quotes and price differences in 10^-9.
#include "VeloraUtils/Prices.h"

#include "money/detail/PriceArithmetic.h"

using namespace velora::money::detail;

namespace {
constexpr std::uint64_t kFromMoney = 100000;
}

const SignedPrice SignedPrice::signedPriceZero{};
const SignedPrice SignedPrice::oneCent{0, 10000000};
const SignedPrice SignedPrice::oneDollar{1, 0};

SignedPrice::SignedPrice(const Price& price) noexcept : SignedPrice(ScaledUp<SignedPrice>(price, 1)) {}
SignedPrice::SignedPrice(const Money& money) noexcept
    : SignedPrice(ScaledUp<SignedPrice>(money, kFromMoney)) {}

SignedPrice::operator Money() const noexcept {
    return Money(*this);
}
SignedPrice::operator Price() const noexcept {
    return Price(*this);
}

SignedPrice SignedPrice::operator+(const SignedPrice& o) const noexcept {
    return AddParts(*this, o);
}
SignedPrice SignedPrice::operator-(const SignedPrice& o) const noexcept {
    return SubtractParts(*this, o);
}
SignedPrice& SignedPrice::operator+=(const SignedPrice& o) noexcept {
    return *this = *this + o;
}
SignedPrice& SignedPrice::operator-=(const SignedPrice& o) noexcept {
    return *this = *this - o;
}
SignedPrice SignedPrice::operator+(const Price& o) const noexcept {
    return *this + SignedPrice(o);
}
SignedPrice SignedPrice::operator-(const Price& o) const noexcept {
    return *this - SignedPrice(o);
}
SignedPrice SignedPrice::operator+(const Money& o) const noexcept {
    return *this + SignedPrice(o);
}
SignedPrice SignedPrice::operator-(const Money& o) const noexcept {
    return *this - SignedPrice(o);
}

SignedPrice& SignedPrice::operator*=(const int& k) noexcept {
    MultiplyWithCarry(*this, k);
    return *this;
}

SignedPrice& SignedPrice::operator/=(const int& k) noexcept {
    DivideRounded(*this, k);
    return *this;
}

Money SignedPrice::operator*(const SignedPrice& o) const noexcept {
    return ProductThroughMoney(*this, o);
}
Money SignedPrice::operator*(const std::int64_t& k) const noexcept {
    return ValueTimes(*this, k);
}
Money SignedPrice::operator/(const std::int64_t& k) const noexcept {
    return ValueDividedBy(*this, k);
}

SignedPrice SignedPrice::operator&(const SignedPrice& o) const noexcept {
    return BitwiseAnd(*this, o);
}
SignedPrice SignedPrice::operator|(const SignedPrice& o) const noexcept {
    return BitwiseOr(*this, o);
}
SignedPrice& SignedPrice::operator&=(const SignedPrice& o) noexcept {
    return *this = *this & o;
}
SignedPrice& SignedPrice::operator|=(const SignedPrice& o) noexcept {
    return *this = *this | o;
}

SignedPrice SignedPrice::GetPercentChange(const SignedPrice& other) const noexcept {
    return PercentChange<SignedPrice>(*this, other);
}

std::uint64_t SignedPrice::GetHashValue() const noexcept {
    return (static_cast<std::uint64_t>(dollars) << 16) | (static_cast<unsigned int>(fraction) >> 16);
}

SignedPrice SignedPrice::ConvertToServerFormat() const noexcept {
    SignedPrice result = *this;
    result.ConvertToServerFormatInPlace();
    return result;
}
