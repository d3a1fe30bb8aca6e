// TokenExpressionSimple.cpp - the node base's shared operations and the token leaf: searching a text
// for the token (case-folded or exact, anywhere or as a whole word) and collecting it.
#include "VeloraUtils/TextSearch.h"
#include "VeloraUtils/TokenExpressions.h"

#include <cstring>

namespace {

const char* OrEmpty(const char* text) noexcept {
    return text == nullptr ? "" : text;
}

int Sign(int value) noexcept {
    return value < 0 ? -1 : (value > 0 ? 1 : 0);
}

// Letters and digits of ASCII only: other bytes, including those from 128 up, separate words.
bool IsWordByte(char c) noexcept {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Names compare byte-wise unsigned with a shorter prefix first; on equal names a collection sorts
// before a leaf.
int CompareNameAndKind(const std::string& name, bool isSimple, const char* otherName, std::size_t otherLength,
                       bool otherIsSimple) noexcept {
    const int byName = Sign(name.compare(0, name.size(), otherName, otherLength));
    if (byName != 0) return byName;
    if (isSimple == otherIsSimple) return 0;
    return isSimple ? 1 : -1;
}

// Inserts `token` with `wholeWord`, or broadens a whole-word entry when this request is not one.
// A plain-substring entry already covers any request.
void InsertOrBroaden(std::map<std::string, bool>& tokens, const std::string& token, bool wholeWord) {
    const auto [it, inserted] = tokens.emplace(token, wholeWord);
    if (!inserted && it->second && !wholeWord) it->second = false;
}

} // namespace

// ---- TokenExpressionBase ----

TokenExpressionBase::~TokenExpressionBase() = default;

bool TokenExpressionBase::SetName(const char*) {
    return false;
}
bool TokenExpressionBase::isSimple() const {
    return false;
}
void TokenExpressionBase::AddUsedBy(TokenExpressionCollection*) {}
void TokenExpressionBase::RemoveUsedBy(TokenExpressionCollection*) {}
bool TokenExpressionBase::isUsed() const {
    return false;
}
void TokenExpressionBase::ClearUsedBy() {}
TokenExpressionBase* TokenExpressionBase::RemoveExpression(TokenExpressionBase*, bool) {
    return nullptr;
}
bool TokenExpressionBase::RemoveAndDestroyExpression(TokenExpressionBase*, bool) {
    return false;
}
bool TokenExpressionBase::RenameExpression(const char*, const char*) {
    return false;
}

bool TokenExpressionBase::operator==(const TokenExpressionBase& other) const {
    return isSimple() == other.isSimple() && GetName() == other.GetName();
}

bool TokenExpressionBase::DeepEqual(const TokenExpressionBase& other) const {
    return *this == other;
}

bool TokenExpressionBase::isTrue(const char* text) const {
    return isTrueRecursive(OrEmpty(text), false, false);
}

void TokenExpressionBase::CollectTokens(std::map<std::string, bool>& tokens,
                                        std::map<std::string, bool>& caseTokens) const {
    CollectTokensRecursive(tokens, caseTokens, false, false);
}

TokenExpressionBase* TokenExpressionBase::CloneIfSimple() {
    return isSimple() ? Clone() : this;
}

int TokenExpressionBase::Compare(const TokenExpressionBase& other) const {
    const std::string& otherName = other.GetName();
    return CompareNameAndKind(GetName(), isSimple(), otherName.data(), otherName.size(), other.isSimple());
}

int TokenExpressionBase::CompareParams(const char* name, bool simple) const {
    const char* text = OrEmpty(name);
    return CompareNameAndKind(GetName(), isSimple(), text, std::strlen(text), simple);
}

// ---- TokenExpressionSimple ----

TokenExpressionSimple::TokenExpressionSimple(const char* token) : token_(OrEmpty(token)) {
    NormalizeTokenUppercase();
}

TokenExpressionSimple::TokenExpressionSimple(const std::string& token) : token_(token) {
    NormalizeTokenUppercase();
}

TokenExpressionSimple::~TokenExpressionSimple() = default;

TokenExpressionBase* TokenExpressionSimple::Clone() const {
    return new TokenExpressionSimple(*this);
}

bool TokenExpressionSimple::SetName(const char*) {
    return false;
}

bool TokenExpressionSimple::SetToken(const char* token) {
    return SetToken(std::string(OrEmpty(token)));
}

bool TokenExpressionSimple::SetToken(const std::string& token) {
    if (token == token_) return false;
    token_ = token;
    NormalizeTokenUppercase();
    return true;
}

void TokenExpressionSimple::NormalizeTokenUppercase() {
    upperToken_ = token_;
    for (char& c : upperToken_) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - ('a' - 'A'));
    }
}

bool TokenExpressionSimple::isTrueRecursive(const char* text, bool matchCase, bool wholeWord) const {
    const char* pattern = matchCase ? token_.c_str() : upperToken_.c_str();
    const auto search = [matchCase, pattern](const char* from) {
        return matchCase ? U_StrStr(from, pattern) : U_StriStr(from, pattern);
    };
    const char* found = search(text);
    if (found == nullptr || !wholeWord) return found != nullptr;
    // The search stops at a NUL of the pattern, so a match covers the pattern up to its first NUL.
    const std::size_t length = std::strlen(pattern);
    while (found != nullptr) {
        const bool startsWord = found == text || !IsWordByte(found[-1]);
        const bool endsWord = found[length] == '\0' || !IsWordByte(found[length]);
        if (startsWord && endsWord) return true;
        // Resume after the whole occurrence: an occurrence overlapping this one is never tried.
        found = search(found + length);
    }
    return false;
}

void TokenExpressionSimple::CollectTokensRecursive(std::map<std::string, bool>& tokens,
                                                   std::map<std::string, bool>& caseTokens, bool matchCase,
                                                   bool wholeWord) const {
    if (!matchCase) {
        InsertOrBroaden(tokens, upperToken_, wholeWord);
        return;
    }
    // A planned case-insensitive search covers this one when it looks for any occurrence, or when
    // this one wants whole words only.
    const auto planned = tokens.find(upperToken_);
    if (planned != tokens.end() && (!planned->second || wholeWord)) return;
    InsertOrBroaden(caseTokens, token_, wholeWord);
}
