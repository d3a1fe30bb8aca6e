// TokenExpressionCollection.cpp - the AND/OR node: its children (owned leaves, shared collections),
// their name index, the used-by links between collections, evaluation, token collection, equality
// and linking against a registry.
#include "VeloraUtils/TokenExpressions.h"

#include <utility>

namespace {

// The children map and the used-by set start with (and return to) room for 8 entries.
constexpr std::size_t kInitialBuckets = 8;

const char* OrEmpty(const char* text) noexcept {
    return text == nullptr ? "" : text;
}

StrUCharKey KeyOf(const TokenExpressionBase& expression) {
    return StrUCharKey(expression.GetName(), static_cast<unsigned char>(expression.isSimple()));
}

// Sets a node's in-progress flag for the lifetime of the guard, also when an exception (allocation
// failure) leaves the operation early.
class InProgressGuard {
public:
    explicit InProgressGuard(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    ~InProgressGuard() { flag_ = false; }
    InProgressGuard(const InProgressGuard&) = delete;
    InProgressGuard& operator=(const InProgressGuard&) = delete;

private:
    bool& flag_;
};

} // namespace

TokenExpressionCollection::TokenExpressionCollection(const char* name, bool isAnd)
    : name_(OrEmpty(name)), and_(isAnd), children_(kInitialBuckets), usedBy_(kInitialBuckets) {}

TokenExpressionCollection::TokenExpressionCollection(const std::string& name, bool isAnd)
    : name_(name), and_(isAnd), children_(kInitialBuckets), usedBy_(kInitialBuckets) {}

TokenExpressionCollection::TokenExpressionCollection(const TokenExpressionCollection& other)
    : TokenExpressionBase(other), name_(other.name_), and_(other.and_), children_(kInitialBuckets),
      usedBy_(kInitialBuckets) {
    CopyContents(other);
}

TokenExpressionCollection& TokenExpressionCollection::operator=(const TokenExpressionCollection& other) {
    if (this == &other) return *this;
    TokenExpressionBase::operator=(other);
    name_ = other.name_;
    and_ = other.and_;
    CopyContents(other);
    return *this;
}

TokenExpressionCollection::~TokenExpressionCollection() {
    UnlinkUsedBy();
    ClearExpressions();
}

TokenExpressionBase* TokenExpressionCollection::Clone() const {
    return new TokenExpressionCollection(*this);
}

bool TokenExpressionCollection::SetName(const char* name) {
    const char* text = OrEmpty(name);
    if (name_ == text) return false;
    name_ = text;
    return true;
}

void TokenExpressionCollection::AddUsedBy(TokenExpressionCollection* collection) {
    usedBy_.insert(collection);
}

void TokenExpressionCollection::RemoveUsedBy(TokenExpressionCollection* collection) {
    usedBy_.erase(collection);
}

void TokenExpressionCollection::ClearUsedBy() {
    usedBy_.clear();
}

bool TokenExpressionCollection::SetAnd(bool isAnd) {
    if (and_ == isAnd) return false;
    and_ = isAnd;
    return true;
}

// ---- Children ----

bool TokenExpressionCollection::AddExpression(TokenExpressionBase* expression, unsigned char op) {
    if (expression == nullptr) return false;
    if (const auto child = children_.find(expression); child != children_.end()) {
        if (child->second == op) return false;
        child->second = op;
        return true;
    }
    StrUCharKey key = KeyOf(*expression);
    if (const auto named = index_.find(key); named != index_.end()) {
        // Another node of this name and kind is already a child: only its operator changes.
        unsigned char& existing = children_.find(named->second)->second;
        if (existing == op) return false;
        existing = op;
        return true;
    }
    children_.emplace(expression, op);
    try {
        index_.emplace(std::move(key), expression);
    } catch (...) {
        children_.erase(expression);
        throw;
    }
    return true;
}

TokenExpressionBase* TokenExpressionCollection::FindExpressionByName(const char* name, bool isSimple) const {
    return FindExpressionByName(StrUCharKey(name, static_cast<unsigned char>(isSimple)));
}

TokenExpressionBase* TokenExpressionCollection::FindExpressionByName(const StrUCharKey& key) const {
    const auto named = index_.find(key);
    return named == index_.end() ? nullptr : named->second;
}

unsigned char* TokenExpressionCollection::FindExpression(const TokenExpressionBase* expression) {
    const auto child = children_.find(const_cast<TokenExpressionBase*>(expression));
    return child == children_.end() ? nullptr : &child->second;
}

const unsigned char* TokenExpressionCollection::FindExpression(const TokenExpressionBase* expression) const {
    const auto child = children_.find(const_cast<TokenExpressionBase*>(expression));
    return child == children_.end() ? nullptr : &child->second;
}

bool TokenExpressionCollection::Erase(TokenExpressionBase* expression, bool unlink) {
    const auto child = children_.find(expression);
    if (child == children_.end()) return false;
    children_.erase(child);
    // The child is normally indexed under its current name; after a leaf's SetToken (or a rename
    // its holders were not told of) it sits under an older one, and the index is searched for it.
    auto named = index_.find(KeyOf(*expression));
    if (named == index_.end() || named->second != expression) {
        for (named = index_.begin(); named != index_.end() && named->second != expression; ++named) {
        }
    }
    if (named != index_.end()) index_.erase(named);
    if (unlink) expression->RemoveUsedBy(this);
    return true;
}

TokenExpressionBase* TokenExpressionCollection::RemoveExpression(TokenExpressionBase* expression,
                                                                 bool unlink) {
    return Erase(expression, unlink) ? expression : nullptr;
}

bool TokenExpressionCollection::RemoveAndDestroyExpression(TokenExpressionBase* expression, bool unlink) {
    if (!Erase(expression, unlink)) return false;
    if (expression->isSimple()) delete expression;
    return true;
}

bool TokenExpressionCollection::RenameExpression(const char* oldName, const char* newName) {
    StrUCharKey newKey(newName, 0);
    if (index_.find(newKey) != index_.end()) return false;
    const auto old = index_.find(StrUCharKey(oldName, 0));
    if (old == index_.end()) return false;
    TokenExpressionBase* child = old->second;
    index_.erase(old);
    index_.emplace(std::move(newKey), child);
    return true;
}

bool TokenExpressionCollection::ClearExpressions() {
    if (children_.empty()) return false;
    ExpressionMap children(kInitialBuckets);
    children.swap(children_);
    index_.clear();
    for (const auto& [child, op] : children) {
        if (child->isSimple()) {
            delete child;
        } else {
            child->RemoveUsedBy(this);
        }
    }
    return true;
}

void TokenExpressionCollection::CopyContents(const TokenExpressionCollection& other) {
    CopyContents(other.children_);
}

void TokenExpressionCollection::CopyContents(const ExpressionMap& children) {
    if (&children == &children_) return;
    ClearExpressions();
    for (const auto& [source, op] : children) {
        TokenExpressionBase* child = source->CloneIfSimple();
        try {
            children_.emplace(child, op);
        } catch (...) {
            if (child->isSimple()) delete child;
            throw;
        }
        // Two children of one name and kind (possible after a rename the index was not told of):
        // the first keeps the index entry, the other is still held and owned.
        index_.emplace(KeyOf(*child), child);
        if (!child->isSimple()) child->AddUsedBy(this);
    }
}

// ---- Links between collections ----

void TokenExpressionCollection::Link(const Registry& registry) {
    for (auto named = index_.begin(); named != index_.end();) {
        TokenExpressionBase* child = named->second;
        if (child->isSimple()) {
            ++named;
            continue;
        }
        const auto entry = registry.find(named->first.GetString());
        TokenExpressionCollection* replacement = entry == registry.end() ? nullptr : entry->second;
        if (replacement == child) {
            ++named;
            continue;
        }
        const auto edge = children_.find(child);
        const unsigned char op = edge == children_.end() ? 0 : edge->second;
        if (edge != children_.end()) children_.erase(edge);
        child->RemoveUsedBy(this);
        if (replacement == nullptr || children_.find(replacement) != children_.end()) {
            // Not in the registry: the reference is dropped. (The registry's collection being a
            // child already, under another name, likewise leaves only that one entry.)
            named = index_.erase(named);
            continue;
        }
        named->second = replacement;
        children_.emplace(replacement, op);
        replacement->AddUsedBy(this);
        ++named;
    }
}

void TokenExpressionCollection::UnlinkUsedBy() {
    UsedBySet users(kInitialBuckets);
    users.swap(usedBy_);
    for (TokenExpressionCollection* user : users) user->RemoveExpression(this, false);
}

bool TokenExpressionCollection::isUsedBy(const TokenExpressionCollection* collection) const {
    if (inProgress_) return false;
    InProgressGuard guard(inProgress_);
    if (usedBy_.find(const_cast<TokenExpressionCollection*>(collection)) != usedBy_.end()) return true;
    for (const TokenExpressionCollection* user : usedBy_) {
        if (user->isUsedBy(collection)) return true;
    }
    return false;
}

// ---- Evaluation, collection, equality ----

bool TokenExpressionCollection::isTrueRecursive(const char* text, bool, bool) const {
    InProgressGuard guard(inProgress_);
    for (const auto& [child, op] : children_) {
        if (child->inProgress_) continue;
        const bool result = child->isTrueRecursive(text, (op & MatchCase) != 0, (op & WholeWord) != 0);
        const bool satisfied = result != ((op & Negate) != 0);
        // OR: the first satisfied child decides; AND: the first unsatisfied one.
        if (satisfied != and_) return !and_;
    }
    return and_;
}

void TokenExpressionCollection::CollectTokensRecursive(std::map<std::string, bool>& tokens,
                                                       std::map<std::string, bool>& caseTokens, bool,
                                                       bool) const {
    InProgressGuard guard(inProgress_);
    for (const auto& [child, op] : children_) {
        if (child->inProgress_) continue;
        child->CollectTokensRecursive(tokens, caseTokens, (op & MatchCase) != 0, (op & WholeWord) != 0);
    }
}

bool TokenExpressionCollection::EqualChildren(const TokenExpressionCollection& other, bool deep) const {
    if (and_ != other.and_ || children_.size() != other.children_.size() ||
        index_.size() != other.index_.size())
        return false;
    for (auto mine = index_.begin(), theirs = other.index_.begin(); mine != index_.end(); ++mine, ++theirs) {
        const TokenExpressionBase* a = mine->second;
        const TokenExpressionBase* b = theirs->second;
        const bool equal = deep ? a->DeepEqual(*b) : a->TokenExpressionBase::operator==(*b);
        if (!equal) return false;
        const unsigned char* opA = FindExpression(a);
        const unsigned char* opB = other.FindExpression(b);
        if (opA == nullptr || opB == nullptr || *opA != *opB) return false;
    }
    return true;
}

bool TokenExpressionCollection::operator==(const TokenExpressionBase& other) const {
    if (!TokenExpressionBase::operator==(other)) return false;
    const auto* collection = dynamic_cast<const TokenExpressionCollection*>(&other);
    return collection != nullptr && EqualChildren(*collection, false);
}

bool TokenExpressionCollection::DeepEqual(const TokenExpressionBase& other) const {
    if (inProgress_) return true;
    if (!TokenExpressionBase::operator==(other)) return false;
    const auto* collection = dynamic_cast<const TokenExpressionCollection*>(&other);
    if (collection == nullptr) return false;
    InProgressGuard guard(inProgress_);
    return EqualChildren(*collection, true);
}
