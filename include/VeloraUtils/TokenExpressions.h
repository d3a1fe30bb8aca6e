// TokenExpressions.h - text filters built as trees: leaves are tokens looked for in a text, inner
// nodes are named AND/OR collections, and each edge may negate its child or ask for a case-sensitive
// or whole-word match. A tree answers whether a text passes and which tokens it searches for at all.
#pragma once

#include "VeloraUtils/Export.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// A key of a byte string and one unsigned char. The bytes are kept packed in 64-bit words; keys
// order by their bytes compared as unsigned values (a shorter prefix first), then by the char.
class VELORA_API StrUCharKey {
public:
    StrUCharKey() = default;
    // `length` bytes from `bytes` (null with length 0 is the empty string).
    StrUCharKey(const char* bytes, std::size_t length, unsigned char ch);
    // A NUL-terminated string; null counts as empty.
    StrUCharKey(const char* text, unsigned char ch);
    StrUCharKey(const std::string& text, unsigned char ch);

    std::size_t GetLength() const noexcept { return length_; }
    unsigned char GetChar() const noexcept { return ch_; }
    std::string GetString() const;
    // The packed words: byte i of the string is bits (56 - 8 * (i % 8)) of word i / 8; the bytes
    // past the end of the last word are 0.
    const std::vector<std::uint64_t>& GetWords() const noexcept { return words_; }

    // -1, 0 or 1 in the order described above.
    int Compare(const StrUCharKey& other) const noexcept;
    bool operator==(const StrUCharKey& other) const noexcept { return Compare(other) == 0; }
    bool operator!=(const StrUCharKey& other) const noexcept { return Compare(other) != 0; }
    bool operator<(const StrUCharKey& other) const noexcept { return Compare(other) < 0; }
    bool operator>(const StrUCharKey& other) const noexcept { return Compare(other) > 0; }
    bool operator<=(const StrUCharKey& other) const noexcept { return Compare(other) <= 0; }
    bool operator>=(const StrUCharKey& other) const noexcept { return Compare(other) >= 0; }

private:
    std::vector<std::uint64_t> words_;
    std::size_t length_ = 0;
    unsigned char ch_ = 0;
};

class TokenExpressionCollection;

// A node of the tree. Every node carries an in-progress flag that a collection sets on itself while
// it evaluates, collects, compares deeply or searches its users; a node met again while its flag is
// set is skipped, so a cycle in a shared graph contributes nothing instead of looping. Because even
// the const queries write that flag, a tree is used by one thread at a time.
class VELORA_API TokenExpressionBase {
public:
    TokenExpressionBase() = default;
    TokenExpressionBase(const TokenExpressionBase& other) = default;
    TokenExpressionBase& operator=(const TokenExpressionBase& other) = default;
    virtual ~TokenExpressionBase();

    // A new node: a copy of a leaf, or a collection sharing the source's collection children.
    virtual TokenExpressionBase* Clone() const = 0;
    // The leaf's token as supplied, or the collection's name.
    virtual const std::string& GetName() const = 0;
    // Renames a collection (null counts as empty): false when the name is unchanged. Always false
    // for a leaf, whose name changes only through SetToken. The holders' name indexes are not
    // updated: call RenameExpression on each user.
    virtual bool SetName(const char* name);
    virtual bool isSimple() const;
    // Maintain a collection's set of users (collections holding it); nothing for a leaf.
    virtual void AddUsedBy(TokenExpressionCollection* collection);
    virtual void RemoveUsedBy(TokenExpressionCollection* collection);
    virtual bool isUsed() const;
    virtual void ClearUsedBy();
    // Collection operations, described at TokenExpressionCollection; a leaf has no children and
    // returns null or false.
    virtual TokenExpressionBase* RemoveExpression(TokenExpressionBase* expression, bool unlink);
    virtual bool RemoveAndDestroyExpression(TokenExpressionBase* expression, bool unlink);
    virtual bool RenameExpression(const char* oldName, const char* newName);
    // Same kind (leaf or collection) and byte-equal names; collections also compare their AND flag
    // and their children by kind, name and operator (one level only).
    virtual bool operator==(const TokenExpressionBase& other) const;
    // As operator==, but collections compare their children recursively; a collection met again
    // while it is being compared counts as equal.
    virtual bool DeepEqual(const TokenExpressionBase& other) const;

    // Whether `text` (NUL-terminated; null counts as empty) satisfies the tree.
    bool isTrue(const char* text) const;
    bool isTrue(const std::string& text) const { return isTrue(text.c_str()); }
    // Adds the tokens the tree searches for: case-insensitive ones under their upper-case form to
    // `tokens`, case-sensitive ones as supplied to `caseTokens`, each mapped to true when only
    // whole-word occurrences are wanted. Entries are added or broadened (true to false), never
    // removed; a case-sensitive token already covered by a case-insensitive entry is not added.
    void CollectTokens(std::map<std::string, bool>& tokens, std::map<std::string, bool>& caseTokens) const;
    // Clone() for a leaf; the node itself for a collection (collections stay shared).
    TokenExpressionBase* CloneIfSimple();

    // -1, 0 or 1: names byte-wise unsigned (a shorter prefix first), then a collection before a leaf.
    int Compare(const TokenExpressionBase& other) const;
    // The same comparison against a name (null counts as empty) and a kind.
    int CompareParams(const char* name, bool isSimple) const;
    bool operator!=(const TokenExpressionBase& other) const { return !(*this == other); }
    bool operator<(const TokenExpressionBase& other) const { return Compare(other) < 0; }
    bool operator>(const TokenExpressionBase& other) const { return Compare(other) > 0; }
    bool operator<=(const TokenExpressionBase& other) const { return Compare(other) <= 0; }
    bool operator>=(const TokenExpressionBase& other) const { return Compare(other) >= 0; }

    // Set while a collection's recursive operation is running on this node.
    bool isInProgress() const noexcept { return inProgress_; }

protected:
    virtual bool isTrueRecursive(const char* text, bool matchCase, bool wholeWord) const = 0;
    virtual void CollectTokensRecursive(std::map<std::string, bool>& tokens,
                                        std::map<std::string, bool>& caseTokens, bool matchCase,
                                        bool wholeWord) const = 0;

    mutable bool inProgress_ = false;

    friend class TokenExpressionCollection;
};

// A leaf: one token (a word or a phrase) looked for in the text. Its upper-case copy ('a'..'z'
// turned into 'A'..'Z', other bytes unchanged) serves the case-insensitive search. An empty token
// never matches. A leaf belongs to the one collection it was added to.
class VELORA_API TokenExpressionSimple : public TokenExpressionBase {
public:
    // Null counts as empty.
    explicit TokenExpressionSimple(const char* token);
    explicit TokenExpressionSimple(const std::string& token);
    TokenExpressionSimple(const TokenExpressionSimple& other) = default;
    TokenExpressionSimple& operator=(const TokenExpressionSimple& other) = default;
    ~TokenExpressionSimple() override;

    TokenExpressionBase* Clone() const override;
    const std::string& GetName() const override { return token_; }
    bool SetName(const char* name) override;
    bool isSimple() const override { return true; }

    const std::string& GetToken() const noexcept { return token_; }
    const std::string& GetUpperToken() const noexcept { return upperToken_; }
    // False when byte-equal to the current token; otherwise replaces it (and its upper-case copy).
    // The name indexes of collections holding this leaf keep the old name.
    bool SetToken(const char* token);
    bool SetToken(const std::string& token);

protected:
    bool isTrueRecursive(const char* text, bool matchCase, bool wholeWord) const override;
    void CollectTokensRecursive(std::map<std::string, bool>& tokens, std::map<std::string, bool>& caseTokens,
                                bool matchCase, bool wholeWord) const override;
    void NormalizeTokenUppercase();

private:
    std::string token_;
    std::string upperToken_;
};

// A named AND/OR node. It owns its leaf children (destroys them when they are cleared or destroyed
// through it) and shares its collection children, which record it in their used-by sets. A child is
// indexed by (name, kind): a leaf and a collection may share a name, two leaves or two collections
// may not. The application owns the collections; destroying one detaches it from its users and
// from its collection children.
class VELORA_API TokenExpressionCollection : public TokenExpressionBase {
public:
    // Child node (by identity) to its edge's operator byte; iteration order is unspecified but is
    // the order in which children are evaluated.
    using ExpressionMap = std::unordered_map<TokenExpressionBase*, unsigned char>;
    using UsedBySet = std::unordered_set<TokenExpressionCollection*>;
    using NameIndex = std::map<StrUCharKey, TokenExpressionBase*>;
    // Registry of collections by name, for Link.
    using Registry = std::map<std::string, TokenExpressionCollection*>;

    // Bits of an edge's operator byte (they may be combined).
    static constexpr unsigned char Negate = 1;    // the child is satisfied when it is false
    static constexpr unsigned char MatchCase = 2; // leaves below the edge are searched case-sensitively
    static constexpr unsigned char WholeWord = 4; // ...and match only where not glued to letters or digits

    // Null counts as empty.
    TokenExpressionCollection(const char* name, bool isAnd);
    TokenExpressionCollection(const std::string& name, bool isAnd);
    // Name, AND flag and a CopyContents of `other`; the used-by set starts empty.
    TokenExpressionCollection(const TokenExpressionCollection& other);
    // Name, AND flag and CopyContents; this object's used-by set is kept.
    TokenExpressionCollection& operator=(const TokenExpressionCollection& other);
    // UnlinkUsedBy, then ClearExpressions.
    ~TokenExpressionCollection() override;

    TokenExpressionBase* Clone() const override;
    const std::string& GetName() const override { return name_; }
    bool SetName(const char* name) override;
    bool isSimple() const override { return false; }
    void AddUsedBy(TokenExpressionCollection* collection) override;
    void RemoveUsedBy(TokenExpressionCollection* collection) override;
    bool isUsed() const override { return !usedBy_.empty(); }
    void ClearUsedBy() override;
    // Takes `expression` out of the name index and the children map; with `unlink` the child's
    // RemoveUsedBy(this) is called. Returns it (the caller now owns a removed leaf), or null when it
    // is not a child.
    TokenExpressionBase* RemoveExpression(TokenExpressionBase* expression, bool unlink) override;
    // As RemoveExpression, destroying a removed leaf; false when it is not a child.
    bool RemoveAndDestroyExpression(TokenExpressionBase* expression, bool unlink) override;
    // Moves the name-index entry of the collection child named `oldName` to `newName` (null counts
    // as empty). False when no collection child is named oldName or one is already named newName.
    // The child's own name is not changed.
    bool RenameExpression(const char* oldName, const char* newName) override;
    bool operator==(const TokenExpressionBase& other) const override;
    bool DeepEqual(const TokenExpressionBase& other) const override;
    // The same comparison, spelled out for two collections so that `a == b` is unambiguous in C++20.
    bool operator==(const TokenExpressionCollection& other) const {
        return operator==(static_cast<const TokenExpressionBase&>(other));
    }
    bool operator!=(const TokenExpressionCollection& other) const { return !(*this == other); }
    using TokenExpressionBase::operator!=;

    bool isAnd() const noexcept { return and_; }
    // False when unchanged.
    bool SetAnd(bool isAnd);

    // Adds `expression` with the edge `op`. Already a child: stores op, true if it changed. A child
    // of the same name and kind exists: `expression` is not added (the caller keeps it) and that
    // child's operator becomes op, true if it changed. Otherwise the child is added (a leaf is now
    // owned by this collection), true. Adding a collection does not call its AddUsedBy.
    bool AddExpression(TokenExpressionBase* expression, unsigned char op);
    // The child indexed under (name, kind), or null. Null counts as an empty name.
    TokenExpressionBase* FindExpressionByName(const char* name, bool isSimple) const;
    TokenExpressionBase* FindExpressionByName(const StrUCharKey& key) const;
    // The stored operator byte of `expression` (changeable in place), or null when not a child.
    unsigned char* FindExpression(const TokenExpressionBase* expression);
    const unsigned char* FindExpression(const TokenExpressionBase* expression) const;
    // Destroys the leaf children and detaches this from the collection children (RemoveUsedBy);
    // false when there were no children.
    bool ClearExpressions();
    // ClearExpressions, then takes every child of the source: leaves are cloned, collections are
    // shared and get AddUsedBy(this). Copying from this collection itself changes nothing.
    void CopyContents(const TokenExpressionCollection& other);
    void CopyContents(const ExpressionMap& children);
    // Resolves the collection children against `registry` by name: a name not in it is dropped
    // (RemoveUsedBy), a different object of that name replaces the child under the same operator
    // (RemoveUsedBy on the old one, AddUsedBy on the new one). Leaves are not touched; no recursion.
    void Link(const Registry& registry);
    // Removes this collection from every user (their RemoveExpression(this, false)), then empties
    // the used-by set.
    void UnlinkUsedBy();
    // Whether `collection` uses this one, directly or through other users.
    bool isUsedBy(const TokenExpressionCollection* collection) const;

    const ExpressionMap& GetExpressionCollection() const noexcept { return children_; }
    const UsedBySet& GetUsedBy() const noexcept { return usedBy_; }
    const NameIndex& GetNameIndex() const noexcept { return index_; }

protected:
    bool isTrueRecursive(const char* text, bool matchCase, bool wholeWord) const override;
    void CollectTokensRecursive(std::map<std::string, bool>& tokens, std::map<std::string, bool>& caseTokens,
                                bool matchCase, bool wholeWord) const override;
    // Takes `expression` out of both containers; false when it is not a child.
    bool Erase(TokenExpressionBase* expression, bool unlink);

private:
    bool EqualChildren(const TokenExpressionCollection& other, bool deep) const;

    std::string name_;
    bool and_;
    NameIndex index_;
    ExpressionMap children_;
    UsedBySet usedBy_;
};
