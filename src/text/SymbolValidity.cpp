// SymbolValidity.cpp - the five symbol rules. Each is built by constant initialisation, so it is
// complete before any code of the library or its caller runs and is never written afterwards.
#include "VeloraUtils/SymbolValidity.h"

#include <cstdint>

namespace velora::text::detail {

// A byte-indexed membership set built from a NUL-terminated list.
class CharSet {
public:
    constexpr explicit CharSet(const char* list) : members_{} {
        for (; *list != '\0'; ++list) members_[static_cast<unsigned char>(*list)] = true;
    }
    constexpr bool Contains(char c) const { return members_[static_cast<unsigned char>(c)]; }

private:
    bool members_[256];
};

class SymbolRule {
public:
    constexpr SymbolRule(const char* allChars, std::uint32_t maxLength, const char* firstChars = nullptr)
        : allChars_(allChars), firstChars_(firstChars != nullptr ? firstChars : allChars),
          maxLength_(maxLength), all_(allChars), first_(firstChars_) {}

    const char* AllChars() const { return allChars_; }
    const char* FirstChars() const { return firstChars_; }

    bool IsCharValid(char c, bool first) const { return first ? first_.Contains(c) : all_.Contains(c); }

    bool IsSymbolValid(const char* symbol) const {
        if (symbol == nullptr || !first_.Contains(symbol[0])) return false; // NUL is in no set
        for (std::uint32_t i = 1; i < maxLength_; ++i) {
            if (symbol[i] == '\0') return true;
            if (!all_.Contains(symbol[i])) return false;
        }
        return symbol[maxLength_] == '\0';
    }

private:
    const char* allChars_;
    const char* firstChars_;
    std::uint32_t maxLength_;
    CharSet all_;
    CharSet first_;
};

constexpr char kUpperLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr char kStockChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ-+*#!@%^=~$.";
constexpr char kIndexChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ/$.";
constexpr char kIndexFirstChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ/$.";
constexpr char kMmidChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr char kBasketChars[] = " ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+*#!@%^=~$.";
constexpr char kBasketFirstChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
constexpr char kOptionChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

constinit const SymbolRule kStockRule(kStockChars, 7, kUpperLetters);
constinit const SymbolRule kIndexRule(kIndexChars, 7, kIndexFirstChars);
constinit const SymbolRule kMmidRule(kMmidChars, 4);
constinit const SymbolRule kBasketRule(kBasketChars, 64, kBasketFirstChars);
constinit const SymbolRule kOptionRule(kOptionChars, 7, kUpperLetters);

} // namespace velora::text::detail

using velora::text::detail::kBasketRule;
using velora::text::detail::kIndexRule;
using velora::text::detail::kMmidRule;
using velora::text::detail::kOptionRule;
using velora::text::detail::kStockRule;

bool U_IsStockSymbolValid(const char* symbol) {
    return kStockRule.IsSymbolValid(symbol);
}
bool U_IsIndexSymbolValid(const char* symbol) {
    return kIndexRule.IsSymbolValid(symbol);
}
bool U_IsMmidSymbolValid(const char* symbol) {
    return kMmidRule.IsSymbolValid(symbol);
}
bool U_IsBasketSymbolValid(const char* symbol) {
    return kBasketRule.IsSymbolValid(symbol);
}
bool U_IsOptionSymbolValid(const char* symbol) {
    return kOptionRule.IsSymbolValid(symbol);
}

bool U_IsStockCharValid(char c, bool first) {
    return kStockRule.IsCharValid(c, first);
}
bool U_IsIndexCharValid(char c, bool first) {
    return kIndexRule.IsCharValid(c, first);
}
bool U_IsMmidCharValid(char c, bool first) {
    return kMmidRule.IsCharValid(c, first);
}
bool U_IsBasketCharValid(char c, bool first) {
    return kBasketRule.IsCharValid(c, first);
}
bool U_IsOptionCharValid(char c, bool first) {
    return kOptionRule.IsCharValid(c, first);
}

const char* U_GetValidStockChars() {
    return kStockRule.AllChars();
}
const char* U_GetValidIndexChars() {
    return kIndexRule.AllChars();
}
const char* U_GetValidMmidChars() {
    return kMmidRule.AllChars();
}
const char* U_GetValidBasketChars() {
    return kBasketRule.AllChars();
}
const char* U_GetValidOptionChars() {
    return kOptionRule.AllChars();
}

const char* U_GetValidStockFirstChars() {
    return kStockRule.FirstChars();
}
const char* U_GetValidIndexFirstChars() {
    return kIndexRule.FirstChars();
}
const char* U_GetValidMmidFirstChars() {
    return kMmidRule.FirstChars();
}
const char* U_GetValidBasketFirstChars() {
    return kBasketRule.FirstChars();
}
