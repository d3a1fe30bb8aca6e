// Token expression graphs: random trees with shared collections and cycles against a reference
// evaluator, soundness of the collected tokens, and link bookkeeping and lifetimes under random
// operations and destruction orders.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "VeloraUtils/TokenExpressions.h"

namespace {

using Collection = TokenExpressionCollection;
using Nodes = std::vector<std::unique_ptr<Collection>>;

// A leaf that counts live instances, so that a lost or doubly destroyed leaf shows on every build.
class CountingLeaf : public TokenExpressionSimple {
public:
    static inline long live = 0;
    explicit CountingLeaf(const std::string& token) : TokenExpressionSimple(token) { ++live; }
    CountingLeaf(const CountingLeaf& other) : TokenExpressionSimple(other) { ++live; }
    CountingLeaf& operator=(const CountingLeaf&) = default;
    ~CountingLeaf() override { --live; }
    TokenExpressionBase* Clone() const override { return new CountingLeaf(*this); }
};

const std::vector<std::string> kPool = {"ibm", "IBM", "Ibm", "a-a", "cat",   "at",
                                        "x1",  "",    "-",   "oil", "Oil up"};
const std::vector<std::string> kGlue = {" ", "-", "x", "1", ",", "a", ""};

bool IsWordByte(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string Upper(std::string s) {
    for (char& c : s)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return s;
}

// Whether `token` occurs in `text` (as a whole word if asked). Occurrences are scanned left to
// right, resuming after a whole occurrence as the library does, or at the next byte when
// `overlapping` (every occurrence is then considered).
bool Occurs(std::string text, std::string token, bool fold, bool wholeWord, bool overlapping) {
    if (text.empty() || token.empty()) return false;
    if (fold) {
        text = Upper(text);
        token = Upper(token);
    }
    for (std::size_t pos = text.find(token); pos != std::string::npos;
         pos = text.find(token, pos + (overlapping ? 1 : token.size()))) {
        const std::size_t end = pos + token.size();
        if (!wholeWord ||
            ((pos == 0 || !IsWordByte(text[pos - 1])) && (end == text.size() || !IsWordByte(text[end]))))
            return true;
    }
    return false;
}

// The evaluation written plainly: a collection on the current path is skipped; children are tried
// in the order the collection's own map iterates, stopping at the first decisive one.
bool Reference(const TokenExpressionBase* node, const std::string& text, bool matchCase, bool wholeWord,
               std::set<const TokenExpressionBase*>& path) {
    if (node->isSimple()) return Occurs(text, node->GetName(), !matchCase, wholeWord, false);
    const auto* c = static_cast<const Collection*>(node);
    path.insert(c);
    bool result = c->isAnd();
    for (const auto& [child, op] : c->GetExpressionCollection()) {
        if (path.count(child) != 0) continue;
        const bool satisfied =
            Reference(child, text, (op & Collection::MatchCase) != 0, (op & Collection::WholeWord) != 0,
                      path) != ((op & Collection::Negate) != 0);
        if (satisfied != c->isAnd()) {
            result = !c->isAnd();
            break;
        }
    }
    path.erase(c);
    return result;
}

bool Reference(const Collection& root, const std::string& text) {
    std::set<const TokenExpressionBase*> path;
    return Reference(&root, text, false, false, path);
}

unsigned char RandomOp(std::mt19937& rng) {
    return static_cast<unsigned char>(rng() % 8);
}

void AddLeaf(Collection& c, std::mt19937& rng) {
    auto* leaf = new CountingLeaf(kPool[rng() % kPool.size()]);
    c.AddExpression(leaf, RandomOp(rng));
    if (c.FindExpression(leaf) == nullptr) delete leaf; // a leaf of that token was there already
}

void AddChild(Collection& c, Collection& child, unsigned char op) {
    c.AddExpression(&child, op);
    if (c.FindExpression(&child) != nullptr) child.AddUsedBy(&c);
}

// Up to six collections, each with a few leaves and a few collection children chosen among all of
// them (itself included), so that sharing and cycles are common.
Nodes RandomGraph(std::mt19937& rng) {
    Nodes nodes;
    const std::size_t n = 1 + rng() % 6;
    for (std::size_t i = 0; i < n; ++i)
        nodes.push_back(std::make_unique<Collection>("C" + std::to_string(i), rng() % 2 == 0));
    for (auto& c : nodes) {
        for (std::size_t k = rng() % 4; k > 0; --k) AddLeaf(*c, rng);
        for (std::size_t k = rng() % 4; k > 0; --k) AddChild(*c, *nodes[rng() % n], RandomOp(rng));
    }
    return nodes;
}

std::string RandomText(std::mt19937& rng) {
    std::string text;
    for (std::size_t k = rng() % 7; k > 0; --k) {
        text += kGlue[rng() % kGlue.size()];
        if (rng() % 3 != 0) text += kPool[rng() % kPool.size()];
    }
    for (char& c : text)
        if (rng() % 4 == 0 && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')))
            c = static_cast<char>(c ^ 0x20);
    return text;
}

TEST(TokenExpressionGraph, EvaluationMatchesReferenceAndCollectedTokensAreSound) {
    std::mt19937 rng(20240611);
    long outcomes[2] = {0, 0}, decisive = 0, missed = 0;
    std::set<std::string> leafTokens(kPool.begin(), kPool.end());
    for (const std::string& token : kPool) leafTokens.insert(Upper(token));
    for (int round = 0; round < 300; ++round) {
        const Nodes nodes = RandomGraph(rng);
        for (const auto& root : nodes) {
            std::map<std::string, bool> tokens, caseTokens;
            root->CollectTokens(tokens, caseTokens);
            for (const auto& [token, wholeWord] : tokens) ASSERT_EQ(leafTokens.count(token), 1u) << token;
            for (const auto& [token, wholeWord] : caseTokens) ASSERT_EQ(leafTokens.count(token), 1u) << token;
            const bool onEmpty = root->isTrue("");
            for (int t = 0; t < 12; ++t) {
                const std::string text = RandomText(rng);
                const bool result = root->isTrue(text);
                ASSERT_EQ(result, Reference(*root, text)) << "round " << round << " text '" << text << "'";
                ++outcomes[result];
                // A text in which no collected token occurs (any occurrence counted, as a
                // pre-filter would) leaves every leaf false: the result is that of the empty text.
                bool hit = false;
                for (const auto& [token, wholeWord] : tokens)
                    hit = hit || Occurs(text, token, true, wholeWord, true);
                for (const auto& [token, wholeWord] : caseTokens)
                    hit = hit || Occurs(text, token, false, wholeWord, true);
                missed += !hit;
                if (!hit) {
                    ASSERT_EQ(result, onEmpty) << "round " << round << " text '" << text << "'";
                }
                decisive += result != onEmpty;
            }
            ASSERT_FALSE(root->isInProgress());
        }
    }
    EXPECT_GT(outcomes[0], 1000);
    EXPECT_GT(outcomes[1], 1000);
    EXPECT_GT(decisive, 500) << "results that depend on the text";
    EXPECT_GT(missed, 500) << "texts in which no collected token occurs";
    EXPECT_EQ(CountingLeaf::live, 0);
}

// Every held collection is alive and lists its holder as a user and the reverse; index entries are
// distinct children; the live leaves are exactly those held.
void CheckLinks(const Nodes& nodes) {
    std::set<const TokenExpressionBase*> alive;
    for (const auto& c : nodes) alive.insert(c.get());
    long leaves = 0;
    for (const auto& c : nodes) {
        std::set<const TokenExpressionBase*> indexed;
        for (const auto& [key, child] : c->GetNameIndex()) {
            ASSERT_NE(c->FindExpression(child), nullptr) << "index entry is not a child";
            ASSERT_TRUE(indexed.insert(child).second) << "child indexed twice";
        }
        for (const auto& [child, op] : c->GetExpressionCollection()) {
            if (child->isSimple()) {
                ++leaves;
                continue;
            }
            ASSERT_EQ(alive.count(child), 1u) << "a destroyed collection is still held";
            ASSERT_EQ(static_cast<const Collection*>(child)->GetUsedBy().count(c.get()), 1u);
        }
        for (const Collection* user : c->GetUsedBy()) {
            ASSERT_EQ(alive.count(user), 1u) << "a destroyed collection is still a user";
            ASSERT_NE(user->FindExpression(c.get()), nullptr);
        }
    }
    ASSERT_EQ(CountingLeaf::live, leaves);
}

TEST(TokenExpressionGraph, LinksStayConsistentUnderRandomOperationsAndDestruction) {
    std::mt19937 rng(777);
    int renamed = 0;
    for (int round = 0; round < 250; ++round) {
        Nodes nodes = RandomGraph(rng);
        for (int step = 0; step < 40 && !nodes.empty(); ++step) {
            Collection& x = *nodes[rng() % nodes.size()];
            Collection& y = *nodes[rng() % nodes.size()];
            const auto& children = x.GetExpressionCollection();
            TokenExpressionBase* child =
                children.empty()
                    ? nullptr
                    : std::next(children.begin(), static_cast<long>(rng() % children.size()))->first;
            const std::function<void()> operations[] = {
                [&] { AddLeaf(x, rng); },
                [&] { AddChild(x, y, RandomOp(rng)); },
                [&] {
                    if (child != nullptr && x.RemoveExpression(child, true) == child && child->isSimple())
                        delete child;
                },
                [&] { EXPECT_TRUE(child == nullptr || x.RemoveAndDestroyExpression(child, true)); },
                [&] { x.ClearExpressions(); },
                [&] { x.CopyContents(y); },
                [&] { x = y; },
                [&] {
                    if (nodes.size() < 10) nodes.emplace_back(static_cast<Collection*>(y.Clone()));
                },
                [&] { x.UnlinkUsedBy(); },
                [&] {
                    Collection::Registry registry;
                    for (const auto& c : nodes) registry.emplace(c->GetName(), c.get());
                    x.Link(registry);
                },
                [&] {
                    const std::string oldName = x.GetName(), newName = "R" + std::to_string(++renamed);
                    x.SetName(newName.c_str());
                    for (Collection* user : x.GetUsedBy())
                        user->RenameExpression(oldName.c_str(), newName.c_str());
                },
                [&] { nodes.erase(nodes.begin() + static_cast<long>(rng() % nodes.size())); },
                [&] {
                    const std::string text = RandomText(rng);
                    ASSERT_EQ(x.isTrue(text), Reference(x, text));
                    std::unique_ptr<TokenExpressionBase> clone(x.Clone());
                    (void)clone->DeepEqual(y);
                },
            };
            ASSERT_NO_FATAL_FAILURE(operations[rng() % 13]());
            ASSERT_NO_FATAL_FAILURE(CheckLinks(nodes)) << "round " << round << " step " << step;
        }
        while (!nodes.empty()) {
            nodes.erase(nodes.begin() + static_cast<long>(rng() % nodes.size()));
            ASSERT_NO_FATAL_FAILURE(CheckLinks(nodes)) << "round " << round << " destroying";
        }
        ASSERT_EQ(CountingLeaf::live, 0);
    }
}

} // namespace
