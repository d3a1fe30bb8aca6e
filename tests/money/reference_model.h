// reference_model.h - an independent model of the monetary types for the property tests: every
// value is an exact count of 10^-N units in 128-bit integers, rounding is done on those rationals,
// and random canonical values are drawn from a seeded generator. Also the table-row helpers.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace model {

__extension__ typedef __int128 I128;

inline constexpr auto P10 = [](int n) {
    I128 p = 1;
    while (n-- > 0) p *= 10;
    return p;
};
inline constexpr auto Abs = [](I128 v) { return v < 0 ? -v : v; };
inline constexpr auto Sign = [](I128 v) { return I128((v > 0) - (v < 0)); };
// n / d (d > 0) rounded half away from zero.
inline constexpr auto RoundHalfAway = [](I128 n, I128 d) { return Sign(n) * ((2 * Abs(n) + d) / (2 * d)); };

template <class T> inline constexpr auto One = [] { return P10(T::kDigits); };
template <class T> inline constexpr auto IsSigned = [] { return std::is_signed_v<typename T::DollarType>; };
template <class T> I128 Units(const T& v) {
    return I128(v.GetDollars()) * One<T>() + I128(v.GetDollarFraction());
}

// a x b through Money, in ten-thousandths: a x b's whole part, plus a x (b's fraction cut toward zero
// to four decimals) / 10000, each product of a rounded half away to four decimals first.
template <class A, class B> I128 MoneyProduct(I128 a, const B& b) {
    const I128 toMoney = One<A>() / P10(4), bToMoney = One<B>() / P10(4);
    const I128 fraction = RoundHalfAway(a * (I128(b.GetDollarFraction()) / bToMoney), toMoney);
    return RoundHalfAway(a * I128(b.GetDollars()), toMoney) + RoundHalfAway(fraction, P10(4));
}

// Canonical: |fraction| below ONE, and a nonzero fraction has the whole part's sign (or a zero whole).
template <class T> bool IsCanonical(const T& v) {
    const I128 d = v.GetDollars(), f = v.GetDollarFraction();
    return Abs(f) < One<T>() && (f == 0 || d == 0 || Sign(f) == Sign(d));
}

// True when `units` is representable with a whole part in T's range.
template <class T> bool Fits(I128 units) {
    using L = std::numeric_limits<typename T::DollarType>;
    return units / One<T>() >= L::min() && units / One<T>() <= L::max();
}

// A random canonical value of T whose whole part uses at most `wholeBits` bits (sign excluded): its
// magnitude is spread over every size, with a bias toward grid points and halves.
template <class T> T Random(std::mt19937_64& rng, int wholeBits) {
    int bits = wholeBits;
    for (I128 one = One<T>(); one > 1; one >>= 1) ++bits;
    const int size = static_cast<int>(rng() % static_cast<unsigned>(bits)) + 1;
    const I128 v = (I128(rng()) << 64 | I128(rng())) & ((I128(1) << size) - 1);
    const unsigned kind = rng() % 8;
    I128 units = kind == 0 ? v - v % P10(static_cast<int>(rng() % 10)) : kind == 1 ? v - v % 10000 + 5000 : v;
    units %= (I128(1) << wholeBits) * One<T>();
    if (IsSigned<T>() && rng() % 2 == 0) units = -units;
    return T(static_cast<typename T::DollarType>(units / One<T>()),
             static_cast<typename T::FractionType>(units % One<T>()));
}

inline std::string Text(I128 v) {
    std::string s = v < 0 ? "-" : "";
    for (I128 p = P10(38), m = Abs(v); p >= 1; p /= 10)
        if (m >= p || p == 1) s += static_cast<char>('0' + static_cast<int>(m / p % 10));
    return s;
}

// ---- Table rows: each row carries the parts its expression produced and the parts expected. ----

// Whole part, fraction, and a third column for a returned flag or value.
using Got = std::tuple<long long, long long, long long>;
struct Row {
    const char* name;
    Got got, expected;
};
inline void RunTable(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(row.got, row.expected) << row.name;
}
template <class T> Got Parts(const T& v, long long extra = 0) {
    return {static_cast<long long>(v.GetDollars()), static_cast<long long>(v.GetDollarFraction()), extra};
}

// Runs `fn.template operator()<T>()` for every type of a list.
template <class... Ts> struct Types {};
template <class... Ts, class Fn> void ForEachType(Types<Ts...>, Fn fn) {
    (fn.template operator()<Ts>(), ...);
}

} // namespace model
