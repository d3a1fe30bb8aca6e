// CompactPrice.cpp - prices packed into one 32-bit word. Fine layout (bit 30 clear): whole part in
// bits 14-29, ten-thousandths in bits 0-13. Coarse layout (bit 30 set): whole part in bits 7-29,
// hundredths in bits 0-6. Encoders or 0x800000 into the whole part before shifting it left by 7, so
// the marker lands on bit 30; decoders mask the 23-bit field, which leaves the marker out.
#include "VeloraUtils/Prices.h"

#include "money/detail/PriceArithmetic.h"

using namespace velora::money::detail;

namespace {
constexpr unsigned int kCoarse = 0x40000000u;
constexpr std::uint64_t kPriceOne = 1000000000;
constexpr std::uint64_t kPreciseOne = 1000000000000000000;
} // namespace

unsigned int Price::CalculateCompactPrice(const unsigned int& whole, const unsigned int& frac) noexcept {
    return EncodeCompact(whole, frac, kPriceOne);
}

void Price::CalculateCompactPriceComponents(const unsigned int& compact, unsigned int& whole,
                                            unsigned short& frac) noexcept {
    if ((compact & kCoarse) == 0) {
        whole = (compact >> 14) & 0x3FFFFu;
        frac = static_cast<unsigned short>(compact & 0x3FFFu);
    } else {
        whole = (compact >> 7) & 0x7FFFFFu;
        frac = static_cast<unsigned short>((compact & 0x7Fu) * 100u);
    }
}

void Price::CalculateCompactPriceComponentsWithBigFraction(const unsigned int& compact, unsigned int& whole,
                                                           unsigned int& frac) noexcept {
    Price decoded;
    decoded.SetCompactValue(compact);
    whole = decoded.dollars;
    frac = decoded.fraction;
}

unsigned int Price::CalculateCompactPriceFromPrice1814(const unsigned int& value) noexcept {
    if (value < kCoarse) return value;
    return ((value & 0x3FFFu) / 100u) | ((value >> 7) & 0x1FFFF80u) | kCoarse;
}

unsigned int Price::CalculateCompactPriceFromStrikePrice(const unsigned int& strike) noexcept {
    const unsigned int whole = strike / 1000u;
    if (whole > 65535u) return ((whole | 0x800000u) << 7) | ((strike % 1000u) / 10u);
    return (whole << 14) | ((strike - whole * 1000u) * 10u);
}

unsigned int Price::CalculateStrikePriceFromCompactPrice(const unsigned int& compact) noexcept {
    if ((compact & kCoarse) == 0) return (compact >> 14) * 1000u + (compact & 0x3FFFu) / 10u;
    return (((compact >> 7) & 0x7FFFFFu) * 100u + (compact & 0x7Fu)) * 10u;
}

int SignedPrice::CalculatIntCompactPrice(const int& whole, const int& frac) noexcept {
    return EncodeSignedCompact(whole, frac, kPriceOne);
}

unsigned int SignedPrice::GetUIntCompactPrice() const noexcept {
    return Price::CalculateCompactPrice(static_cast<unsigned int>(dollars),
                                        static_cast<unsigned int>(fraction));
}

void SignedPrice::SetCompactPrice(const int& signedCompact) noexcept {
    DecodeSignedCompact(*this, signedCompact);
}

int SignedPricePrecise::GetIntCompactPrice() const noexcept {
    return EncodeSignedCompact(dollars, fraction, kPreciseOne);
}

unsigned int SignedPricePrecise::GetUIntCompactPrice() const noexcept {
    return EncodeCompact(static_cast<unsigned int>(dollars), static_cast<std::uint64_t>(fraction),
                         kPreciseOne);
}

void SignedPricePrecise::SetCompactPrice(const int& signedCompact) noexcept {
    DecodeSignedCompact(*this, signedCompact);
}
