// Prices.h - the money and price value classes: Money (4 decimals), Price and SignedPrice (9),
// PricePrecise and SignedPricePrecise (18). Unsigned prices never become negative: subtraction
// saturates at zero and a negative source converts to zero; a difference of two prices is signed.
#pragma once

#include <cstdint>

#include "VeloraUtils/Export.h"
#include "VeloraUtils/Monetary.h"

class Money;
class Price;
class SignedPrice;
class PricePrecise;
class SignedPricePrecise;

// Conventions of every class below:
// - Constructors from a bare number are explicit: an unsigned int or int is a compact price code
//   (see Price::CalculateCompactPrice), a double an amount, an unsigned 64-bit value a packed price.
// - Converting to fewer decimals rounds half away from zero, except PricePrecise to Price, which
//   truncates. Converting a negative value to an unsigned price gives zero.
// - Division by an integer rounds half away from zero; division by zero is the processor's fault.
// - Whole parts wrap silently in their type on overflow. Nothing allocates; values are plain data.

// An account amount: signed 64-bit whole part, fraction in ten-thousandths.
class VELORA_API Money : public SignedMonetary<std::int64_t, short, 4> {
public:
    static const Money moneyZero;
    static const Money oneCent;
    static const Money oneDollar;

    constexpr Money() noexcept = default;
    constexpr Money(const std::int64_t& whole, const short& frac) noexcept : SignedMonetary(whole, frac) {}
    explicit Money(const double& value) noexcept : SignedMonetary(value) {}
    // Compact price code; the signed form decodes a negative code by magnitude and negates the result.
    explicit Money(const unsigned int& compact) noexcept { SetCompactValue(compact); }
    explicit Money(const int& signedCompact) noexcept;
    // Fraction rounded half up on the magnitude (so half away from zero for negative prices).
    explicit Money(const Price& price) noexcept;
    explicit Money(const SignedPrice& price) noexcept;
    explicit Money(const PricePrecise& price) noexcept;
    explicit Money(const SignedPricePrecise& price) noexcept;

    // Negative gives zero.
    operator Price() const noexcept;
    operator SignedPrice() const noexcept;

    Money operator+(const Money& o) const noexcept;
    Money operator-(const Money& o) const noexcept;
    Money& operator+=(const Money& o) noexcept;
    Money& operator-=(const Money& o) noexcept;
    // The price is converted to Money first (rounded).
    Money operator+(const Price& o) const noexcept;
    Money operator-(const Price& o) const noexcept;
    Money operator+(const SignedPrice& o) const noexcept;
    Money operator-(const SignedPrice& o) const noexcept;
    Money operator*(const std::int64_t& k) const noexcept;
    Money& operator*=(const std::int64_t& k) noexcept;
    Money operator/(const std::int64_t& k) const noexcept;
    Money& operator/=(const std::int64_t& k) noexcept;
    // Quotient in ten-thousandths, truncated toward zero; 0 when either value is zero.
    int operator/(const Money& o) const noexcept;
    Money operator-() const noexcept;
    // Bitwise and/or of the parts, then canonicalisation (for bit-mask use).
    Money operator&(const Money& o) const noexcept;
    Money operator|(const Money& o) const noexcept;
    Money& operator&=(const Money& o) noexcept;
    Money& operator|=(const Money& o) noexcept;

    // 100 x other / this with four decimals, rounded half up; zero when either is zero.
    Money GetPercentChange(const Money& other) const noexcept;
    // The fraction's 16 bits or-ed with the whole part shifted left by 16.
    std::uint64_t GetHashValue() const noexcept;
    const Money& GetMoneyValue() const noexcept { return *this; }
};

// A quote: unsigned 32-bit whole part, fraction in 10^-9.
class VELORA_API Price : public UnsignedMonetary<unsigned int, unsigned int, 9> {
public:
    static const Price priceZero;
    static const Price oneCent;
    static const Price oneDollar;

    constexpr Price() noexcept = default;
    constexpr Price(const unsigned int& whole, const unsigned int& frac) noexcept
        : UnsignedMonetary(whole, frac) {}
    explicit Price(const double& value) noexcept : UnsignedMonetary(value) {}
    explicit Price(const unsigned int& compact) noexcept { SetCompactPrice(compact); }
    explicit Price(const std::uint64_t& packed) noexcept { SetPriceAsUInt64(packed); }
    explicit Price(const Money& money) noexcept;
    explicit Price(const SignedPrice& price) noexcept;
    explicit Price(const SignedPricePrecise& price) noexcept;
    // Deliberately truncated, not rounded.
    explicit Price(const PricePrecise& price) noexcept;

    operator SignedPrice() const noexcept;
    operator Money() const noexcept;

    Price operator+(const Price& o) const noexcept;
    Price& operator+=(const Price& o) noexcept;
    // Saturating: zero when `o` is greater.
    Price& operator-=(const Price& o) noexcept;
    SignedPrice operator-(const Price& o) const noexcept;
    // A negative right side subtracts (saturating at zero) or adds.
    Price& operator+=(const SignedPrice& o) noexcept;
    Price& operator-=(const SignedPrice& o) noexcept;
    SignedPrice operator+(const SignedPrice& o) const noexcept;
    SignedPrice operator-(const SignedPrice& o) const noexcept;
    SignedPrice operator+(const Money& o) const noexcept;
    SignedPrice operator-(const Money& o) const noexcept;
    Price& operator*=(const unsigned int& k) noexcept;
    Price& operator/=(const unsigned int& k) noexcept;
    // Into Money: the cut-off digits round half up, the sign is k's.
    Money operator*(const std::int64_t& k) const noexcept;
    Money operator/(const std::int64_t& k) const noexcept;
    // Computed through Money at four decimals.
    Price operator*(const Price& o) const noexcept;
    SignedPrice operator*(const SignedPrice& o) const noexcept;
    Price operator&(const Price& o) const noexcept;
    Price operator|(const Price& o) const noexcept;
    Price& operator&=(const Price& o) noexcept;
    Price& operator|=(const Price& o) noexcept;

    SignedPrice GetPercentChange(const SignedPrice& other) const noexcept;
    Price GetPercentChange(const Price& other) const noexcept;
    Price GetAbsDiff(const Price& other) const noexcept;
    // this - other when this >= other, else zero.
    Price GetPositivePriceDiff(const Price& other) const noexcept;
    bool isLessPrice(const Price& other) const noexcept { return *this < other; }
    bool isSamePrice(const Price& other) const noexcept { return *this == other; }
    // The whole part shifted left by 16 or-ed with the high 16 bits of the fraction.
    std::uint64_t GetHashValue() const noexcept;

    // ---- Compact prices: one 32-bit word. Bit 30 clear (fine): whole part in bits 14-29 (below
    // 65536), ten-thousandths in bits 0-13. Bit 30 set (coarse): whole part in bits 7-29, hundredths
    // in bits 0-6. Encoders truncate the fraction.
    static unsigned int CalculateCompactPrice(const unsigned int& whole, const unsigned int& frac) noexcept;
    // Fraction in ten-thousandths.
    static void CalculateCompactPriceComponents(const unsigned int& compact, unsigned int& whole,
                                                unsigned short& frac) noexcept;
    // Fraction in 10^-9.
    static void CalculateCompactPriceComponentsWithBigFraction(const unsigned int& compact,
                                                               unsigned int& whole,
                                                               unsigned int& frac) noexcept;
    // An 18.14 value below 0x40000000 is already a compact price; a larger one becomes coarse.
    static unsigned int CalculateCompactPriceFromPrice1814(const unsigned int& value) noexcept;
    // Strike prices are amounts in thousandths.
    static unsigned int CalculateCompactPriceFromStrikePrice(const unsigned int& strike) noexcept;
    static unsigned int CalculateStrikePriceFromCompactPrice(const unsigned int& compact) noexcept;
    unsigned int GetCompactPrice() const noexcept { return CalculateCompactPrice(dollars, fraction); }
    void SetCompactPrice(const unsigned int& compact) noexcept { SetCompactValue(compact); }

protected:
    // this -= other for other <= this, borrowing a whole unit when the fraction would go negative.
    void SubtractLesserPrice(const Price& other) noexcept;
};

// A signed quote or price difference: signed 32-bit whole part, fraction in 10^-9.
class VELORA_API SignedPrice : public SignedMonetary<int, int, 9> {
public:
    static const SignedPrice signedPriceZero;
    static const SignedPrice oneCent;
    static const SignedPrice oneDollar;

    constexpr SignedPrice() noexcept = default;
    constexpr SignedPrice(const int& whole, const int& frac) noexcept : SignedMonetary(whole, frac) {}
    explicit SignedPrice(const int& signedCompact) noexcept { SetCompactPrice(signedCompact); }
    explicit SignedPrice(const double& value) noexcept : SignedMonetary(value) {}
    explicit SignedPrice(const Price& price) noexcept;
    explicit SignedPrice(const Money& money) noexcept;

    // Rounded as the Money constructor.
    operator Money() const noexcept;
    // Negative gives zero.
    operator Price() const noexcept;

    SignedPrice operator+(const SignedPrice& o) const noexcept;
    SignedPrice operator-(const SignedPrice& o) const noexcept;
    SignedPrice& operator+=(const SignedPrice& o) noexcept;
    SignedPrice& operator-=(const SignedPrice& o) noexcept;
    SignedPrice operator+(const Price& o) const noexcept;
    SignedPrice operator-(const Price& o) const noexcept;
    SignedPrice operator+(const Money& o) const noexcept;
    SignedPrice operator-(const Money& o) const noexcept;
    SignedPrice& operator*=(const int& k) noexcept;
    SignedPrice& operator/=(const int& k) noexcept;
    Money operator*(const SignedPrice& o) const noexcept;
    Money operator*(const std::int64_t& k) const noexcept;
    Money operator/(const std::int64_t& k) const noexcept;
    SignedPrice operator&(const SignedPrice& o) const noexcept;
    SignedPrice operator|(const SignedPrice& o) const noexcept;
    SignedPrice& operator&=(const SignedPrice& o) noexcept;
    SignedPrice& operator|=(const SignedPrice& o) noexcept;

    SignedPrice GetPercentChange(const SignedPrice& other) const noexcept;
    std::uint64_t GetHashValue() const noexcept;
    // The form prices are sent in: whole part and a fraction that is never negative (floor form).
    SignedPrice ConvertToServerFormat() const noexcept;
    void ConvertToServerFormatInPlace() noexcept { toPositiveFraction(); }

    // ---- Signed compact prices: a negative code is the negation of the magnitude's compact price.
    // (The name is spelled so on purpose: callers link against it.)
    static int CalculatIntCompactPrice(const int& whole, const int& frac) noexcept;
    int GetIntCompactPrice() const noexcept { return CalculatIntCompactPrice(dollars, fraction); }
    // The unsigned encoding of the raw parts, without sign handling.
    unsigned int GetUIntCompactPrice() const noexcept;
    void SetCompactPrice(const int& signedCompact) noexcept;
};

// A computed price: unsigned 32-bit whole part, fraction in 10^-18.
class VELORA_API PricePrecise : public UnsignedMonetary<unsigned int, std::uint64_t, 18> {
public:
    static const PricePrecise priceZero;
    static const PricePrecise oneCent;
    static const PricePrecise oneDollar;

    constexpr PricePrecise() noexcept = default;
    constexpr PricePrecise(const unsigned int& whole, const std::uint64_t& frac) noexcept
        : UnsignedMonetary(whole, frac) {}
    explicit PricePrecise(const double& value) noexcept : UnsignedMonetary(value) {}
    explicit PricePrecise(const unsigned int& compact) noexcept { SetCompactValue(compact); }
    explicit PricePrecise(const std::uint64_t& packed) noexcept { SetPriceAsUInt64(packed); }
    explicit PricePrecise(const Price& price) noexcept;
    explicit PricePrecise(const Money& money) noexcept;
    explicit PricePrecise(const SignedPrice& price) noexcept;
    explicit PricePrecise(const SignedPricePrecise& price) noexcept;

    SignedPricePrecise operator-() const noexcept;

    PricePrecise operator+(const PricePrecise& o) const noexcept;
    PricePrecise& operator+=(const PricePrecise& o) noexcept;
    PricePrecise& operator-=(const PricePrecise& o) noexcept;
    SignedPricePrecise operator-(const PricePrecise& o) const noexcept;
    PricePrecise& operator+=(const SignedPricePrecise& o) noexcept;
    PricePrecise& operator-=(const SignedPricePrecise& o) noexcept;
    SignedPricePrecise operator+(const SignedPricePrecise& o) const noexcept;
    SignedPricePrecise operator-(const SignedPricePrecise& o) const noexcept;
    SignedPricePrecise operator+(const Money& o) const noexcept;
    SignedPricePrecise operator-(const Money& o) const noexcept;
    // With a 9-digit price the price is first carried exactly to 18 digits (fraction x 10^9); the
    // rule of the matching 18-digit operator then applies, saturation and rounding included.
    PricePrecise operator+(const Price& o) const noexcept;
    PricePrecise& operator+=(const Price& o) noexcept;
    PricePrecise& operator-=(const Price& o) noexcept;
    SignedPricePrecise operator-(const Price& o) const noexcept;
    PricePrecise& operator+=(const SignedPrice& o) noexcept;
    PricePrecise& operator-=(const SignedPrice& o) noexcept;
    SignedPricePrecise operator+(const SignedPrice& o) const noexcept;
    SignedPricePrecise operator-(const SignedPrice& o) const noexcept;
    PricePrecise operator*(const Price& o) const noexcept;
    SignedPricePrecise operator*(const SignedPrice& o) const noexcept;
    // Exact 128-bit product; the product's whole units carry into the whole part, nothing rounds.
    PricePrecise& operator*=(const unsigned int& k) noexcept;
    // Half up at the eighteenth digit.
    PricePrecise& operator/=(const unsigned int& k) noexcept;
    Money operator*(const std::int64_t& k) const noexcept;
    Money operator/(const std::int64_t& k) const noexcept;
    PricePrecise operator*(const PricePrecise& o) const noexcept;
    SignedPricePrecise operator*(const SignedPricePrecise& o) const noexcept;
    PricePrecise operator&(const PricePrecise& o) const noexcept;
    PricePrecise operator|(const PricePrecise& o) const noexcept;
    PricePrecise& operator&=(const PricePrecise& o) noexcept;
    PricePrecise& operator|=(const PricePrecise& o) noexcept;

    SignedPrice GetPercentChange(const SignedPricePrecise& other) const noexcept;
    Price GetPercentChange(const PricePrecise& other) const noexcept;
    PricePrecise GetAbsDiff(const PricePrecise& other) const noexcept;
    PricePrecise GetPositivePriceDiff(const PricePrecise& other) const noexcept;
    // The whole part shifted left by 16 or-ed with the fraction shifted right by 16.
    std::uint64_t GetHashValue() const noexcept;

protected:
    void SubtractLesserPrice(const PricePrecise& other) noexcept;
};

// A signed computed price: signed 32-bit whole part, fraction in 10^-18.
class VELORA_API SignedPricePrecise : public SignedMonetary<int, std::int64_t, 18> {
public:
    static const SignedPricePrecise signedPriceZero;
    static const SignedPricePrecise oneCent;
    static const SignedPricePrecise oneDollar;

    constexpr SignedPricePrecise() noexcept = default;
    constexpr SignedPricePrecise(const int& whole, const std::int64_t& frac) noexcept
        : SignedMonetary(whole, frac) {}
    explicit SignedPricePrecise(const int& signedCompact) noexcept { SetCompactPrice(signedCompact); }
    explicit SignedPricePrecise(const double& value) noexcept : SignedMonetary(value) {}
    explicit SignedPricePrecise(const SignedPrice& price) noexcept;
    explicit SignedPricePrecise(const Money& money) noexcept;
    explicit SignedPricePrecise(const PricePrecise& price) noexcept;

    operator Money() const noexcept;
    // Negative gives zero; Price truncates to nine decimals.
    operator Price() const noexcept;
    operator PricePrecise() const noexcept;

    SignedPricePrecise operator+(const SignedPricePrecise& o) const noexcept;
    SignedPricePrecise operator-(const SignedPricePrecise& o) const noexcept;
    SignedPricePrecise& operator+=(const SignedPricePrecise& o) noexcept;
    SignedPricePrecise& operator-=(const SignedPricePrecise& o) noexcept;
    SignedPricePrecise operator+(const PricePrecise& o) const noexcept;
    SignedPricePrecise operator-(const PricePrecise& o) const noexcept;
    SignedPricePrecise operator+(const Money& o) const noexcept;
    SignedPricePrecise operator-(const Money& o) const noexcept;
    // A 9-digit price is carried exactly to 18 digits first, as for PricePrecise.
    SignedPricePrecise operator+(const SignedPrice& o) const noexcept;
    SignedPricePrecise operator-(const SignedPrice& o) const noexcept;
    SignedPricePrecise& operator+=(const SignedPrice& o) noexcept;
    SignedPricePrecise& operator-=(const SignedPrice& o) noexcept;
    SignedPricePrecise operator+(const Price& o) const noexcept;
    SignedPricePrecise operator-(const Price& o) const noexcept;
    Money operator*(const SignedPrice& o) const noexcept;
    SignedPricePrecise& operator*=(const int& k) noexcept;
    SignedPricePrecise& operator/=(const int& k) noexcept;
    Money operator*(const SignedPricePrecise& o) const noexcept;
    Money operator*(const std::int64_t& k) const noexcept;
    Money operator/(const std::int64_t& k) const noexcept;
    SignedPricePrecise operator&(const SignedPricePrecise& o) const noexcept;
    SignedPricePrecise operator|(const SignedPricePrecise& o) const noexcept;
    SignedPricePrecise& operator&=(const SignedPricePrecise& o) noexcept;
    SignedPricePrecise& operator|=(const SignedPricePrecise& o) noexcept;

    SignedPrice GetPercentChange(const SignedPricePrecise& other) const noexcept;
    std::uint64_t GetHashValue() const noexcept;

    // Signed compact prices as for SignedPrice, the fraction scaled by 10^14 (fine) or 10^16 (coarse).
    int GetIntCompactPrice() const noexcept;
    unsigned int GetUIntCompactPrice() const noexcept;
    void SetCompactPrice(const int& signedCompact) noexcept;
};
