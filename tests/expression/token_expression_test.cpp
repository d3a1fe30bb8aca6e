// Token expressions: the edge-flag cases that random graphs do not reach, membership operations,
// linking, token collection rules, ordering and equality. Evaluation of whole graphs (AND/OR, negation,
// case, whole words, shared children and cycles) is held against a reference evaluator in
// token_expression_graph_test.cpp.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "VeloraUtils/TokenExpressions.h"

namespace {

using Map = std::map<std::string, bool>;
constexpr unsigned char kNegate = TokenExpressionCollection::Negate;
constexpr unsigned char kCase = TokenExpressionCollection::MatchCase;
constexpr unsigned char kWord = TokenExpressionCollection::WholeWord;

// An OR collection holding one leaf under `op`.
TokenExpressionCollection Edge(const std::string& token, unsigned char op) {
    TokenExpressionCollection c("c", false);
    c.AddExpression(new TokenExpressionSimple(token), op);
    return c;
}

TEST(TokenExpressionLeaf, WholeWordSkipsOverlapsEndsAtHighBytesAndStopsAtTheTokensNul) {
    // clang-format off
    const std::vector<std::tuple<const char*, unsigned char, const char*, bool>> cases = {
        {"x-x", kWord, "ax-x-x", false},       // kept: the overlapping occurrence is never tried
        {"x-x", 0, "ax-x-x", true},
        {"caf", kWord, "caf\xC3\xA9", true},   // bytes from 128 up end a word
        {"ab", kWord, "\xFF" "ab", true},
    };
    // clang-format on
    for (const auto& [token, op, text, expected] : cases) {
        EXPECT_EQ(Edge(token, op).isTrue(text), expected) << token << " in " << text;
        EXPECT_TRUE(op != 0 || TokenExpressionSimple(token).isTrue(text) == expected) << token;
    }
    // A token is searched up to its first NUL, and the whole-word test looks just past that part.
    const TokenExpressionCollection nul = Edge(std::string("ab\0cd", 5), kWord);
    EXPECT_TRUE(nul.isTrue("ab") && !nul.isTrue("abc"));
    EXPECT_FALSE(TokenExpressionSimple("a").isTrue(static_cast<const char*>(nullptr)));
    TokenExpressionCollection negated("n", true);
    negated.AddExpression(new TokenExpressionSimple("a"), kNegate);
    EXPECT_TRUE(negated.isTrue(static_cast<const char*>(nullptr)));
}

TEST(TokenExpressionCollection, AddFindRemoveRenameKeepIndexOperatorsAndLinks) {
    TokenExpressionCollection c("c", false);
    auto* leaf = new TokenExpressionSimple("ibm");
    EXPECT_TRUE(c.AddExpression(leaf, 0));
    EXPECT_FALSE(c.AddExpression(leaf, 0)) << "same object and operator";
    EXPECT_TRUE(c.AddExpression(leaf, kWord));
    EXPECT_EQ(*c.FindExpression(leaf), kWord);

    TokenExpressionSimple twin("ibm");
    EXPECT_TRUE(c.AddExpression(&twin, kNegate)) << "changes the first leaf's operator";
    EXPECT_EQ(c.FindExpression(&twin), nullptr) << "the second leaf is not added";
    EXPECT_EQ(*c.FindExpression(leaf), kNegate);
    EXPECT_FALSE(c.AddExpression(&twin, kNegate));

    TokenExpressionCollection sub("ibm", true);
    EXPECT_TRUE(c.AddExpression(&sub, 0)) << "a leaf and a collection may share a name";
    EXPECT_FALSE(sub.isUsed()) << "adding does not link";
    sub.AddUsedBy(&c);
    EXPECT_EQ(c.FindExpressionByName("ibm", true), leaf);
    EXPECT_EQ(c.FindExpressionByName(StrUCharKey("ibm", 0)), &sub);

    *c.FindExpression(leaf) = 0; // the operator is changeable in place
    sub.AddExpression(new TokenExpressionSimple("zzz"), 0);
    EXPECT_TRUE(c.isTrue("IBM")) << "leaf satisfied";
    *c.FindExpression(leaf) = kCase;
    EXPECT_FALSE(c.isTrue("IBM")) << "leaf now case-sensitive, sub lacks zzz";

    // Renaming re-keys a collection child only; the child keeps its own name.
    EXPECT_FALSE(c.RenameExpression("nope", "x"));
    EXPECT_TRUE(c.RenameExpression("ibm", "x"));
    EXPECT_EQ(c.FindExpressionByName("x", false), &sub);
    EXPECT_EQ(sub.GetName(), "ibm");
    EXPECT_FALSE(c.RenameExpression("x", "x")) << "the new name is taken";
    TokenExpressionCollection unnamed(static_cast<const char*>(nullptr), false);
    c.AddExpression(&unnamed, 0);
    unnamed.AddUsedBy(&c);
    EXPECT_FALSE(c.RenameExpression(nullptr, "x"));
    EXPECT_TRUE(c.RenameExpression(nullptr, "y")) << "null is the empty name";

    // A renamed leaf keeps its old key in the index, and can still be removed.
    EXPECT_FALSE(leaf->SetToken("ibm"));
    EXPECT_TRUE(leaf->SetToken("Oil"));
    EXPECT_EQ(leaf->GetUpperToken(), "OIL");
    EXPECT_FALSE(leaf->SetName("other")) << "a leaf is renamed only through SetToken";
    EXPECT_EQ(c.FindExpressionByName("ibm", true), leaf);
    EXPECT_EQ(c.RemoveExpression(leaf, true), leaf);
    EXPECT_EQ(c.FindExpressionByName("ibm", true), nullptr);
    EXPECT_EQ(c.RemoveExpression(leaf, true), nullptr);
    EXPECT_EQ(c.CloneIfSimple(), &c);
    delete leaf;

    EXPECT_FALSE(c.RemoveAndDestroyExpression(&twin, true));
    EXPECT_TRUE(c.RemoveAndDestroyExpression(&unnamed, true)) << "a collection is detached, not destroyed";
    EXPECT_FALSE(unnamed.isUsed());

    const auto freshBuckets = TokenExpressionCollection("f", false).GetExpressionCollection().bucket_count();
    for (char t = 'a'; t <= 'q'; ++t) c.AddExpression(new TokenExpressionSimple(std::string(1, t)), 0);
    EXPECT_GT(c.GetExpressionCollection().bucket_count(), freshBuckets);
    EXPECT_TRUE(c.ClearExpressions());
    EXPECT_FALSE(c.ClearExpressions());
    EXPECT_FALSE(sub.isUsed()) << "cleared collection children are detached";
    EXPECT_EQ(c.GetExpressionCollection().bucket_count(), freshBuckets) << "back to the initial buckets";
    EXPECT_TRUE(c.GetNameIndex().empty());
}

TEST(TokenExpressionCollection, LinkReplacesPlaceholdersKeepsOperatorsAndDropsMissingNames) {
    TokenExpressionCollection a("A", false), b("B", false), top("top", true);
    TokenExpressionCollection placeholderA("A", false), placeholderC("C", false);
    auto* leaf = new TokenExpressionSimple("C");
    for (auto [child, op] : {std::pair{&placeholderA, kNegate}, {&b, kCase}, {&placeholderC, 0}}) {
        top.AddExpression(child, op);
        child->AddUsedBy(&top);
    }
    top.AddExpression(leaf, 0);
    top.Link({{"A", &a}, {"B", &b}});

    EXPECT_EQ(top.FindExpressionByName("A", false), &a) << "placeholder replaced";
    EXPECT_EQ(*top.FindExpression(&a), kNegate) << "under the placeholder's operator";
    EXPECT_EQ(top.FindExpression(&placeholderA), nullptr);
    EXPECT_FALSE(placeholderA.isUsed() || placeholderC.isUsed());
    EXPECT_EQ(a.GetUsedBy().count(&top), 1u);
    EXPECT_EQ(*top.FindExpression(&b), kCase) << "same object unchanged";
    EXPECT_EQ(top.FindExpressionByName("C", false), nullptr) << "missing reference dropped";
    EXPECT_EQ(top.FindExpressionByName("C", true), leaf) << "leaves are not linked";
    EXPECT_EQ(top.GetExpressionCollection().size(), 3u);
    EXPECT_TRUE(a.isUsedBy(&top) && !top.isUsedBy(&a) && !top.isUsedBy(&top));
    a.AddExpression(&top, 0); // a cycle: use is followed through it
    top.AddUsedBy(&a);
    EXPECT_TRUE(top.isUsedBy(&a) && top.isUsedBy(&top) && a.isUsedBy(&a));
    a.RemoveExpression(&top, true);
    a.UnlinkUsedBy();
    EXPECT_EQ(top.FindExpression(&a), nullptr);
    EXPECT_FALSE(a.isUsed());
}

// Leaves collected in order into the same maps: a broader entry absorbs a narrower one of the same
// token, case-sensitive entries keep their case, negation is ignored.
TEST(TokenExpressionCollectTokens, BroaderEntriesAbsorbNarrowerOnes) {
    const struct {
        std::vector<std::pair<const char*, unsigned char>> leaves;
        Map tokens, caseTokens;
    } cases[] = {
        // clang-format off
        {{{"abc", 0}, {"abc", kCase | kWord}}, {{"ABC", false}}, {}},
        {{{"abc", kCase | kWord}, {"abc", 0}}, {{"ABC", false}}, {{"abc", true}}},
        {{{"abc", kWord}, {"abc", 0}}, {{"ABC", false}}, {}},
        {{{"abc", 0}, {"abc", kWord}}, {{"ABC", false}}, {}},
        {{{"abc", kWord}, {"abc", kCase}}, {{"ABC", true}}, {{"abc", false}}},
        {{{"abc", kWord}, {"abc", kCase | kWord}}, {{"ABC", true}}, {}},
        {{{"Abc", kCase}, {"abc", kCase}}, {}, {{"Abc", false}, {"abc", false}}},
        {{{"abc", kCase | kWord}, {"abc", kCase}}, {}, {{"abc", false}}},
        {{{"abc", kNegate | kWord}}, {{"ABC", true}}, {}},
        // clang-format on
    };
    for (const auto& c : cases) {
        Map tokens, caseTokens;
        for (const auto& [token, op] : c.leaves) Edge(token, op).CollectTokens(tokens, caseTokens);
        EXPECT_EQ(std::tuple(tokens, caseTokens), std::tuple(c.tokens, c.caseTokens)) << &c - cases;
    }
    // A collection passes each child the bits of that child's own edge, not those it received.
    TokenExpressionCollection top("top", false), sub("sub", false);
    sub.AddExpression(new TokenExpressionSimple("abc"), 0);
    top.AddExpression(&sub, kCase | kWord);
    sub.AddUsedBy(&top);
    Map tokens, caseTokens;
    top.CollectTokens(tokens, caseTokens);
    EXPECT_EQ(std::tuple(tokens, caseTokens), std::tuple(Map{{"ABC", false}}, Map{}));
    EXPECT_TRUE(top.isTrue("xABCx"));
}

TEST(TokenExpressionOrder, NamesCompareAsUnsignedBytesThenCollectionsBeforeLeaves) {
    // clang-format off
    const std::vector<std::tuple<std::string, bool, std::string, bool, int>> cases = {
        {"a", true, "b", true, -1}, {"b", false, "a", true, 1}, {"ab", true, "abc", false, -1},
        {"\xff", true, "a", true, 1},                        // bytes are unsigned
        {"x", false, "x", true, -1}, {"x", true, "x", false, 1}, {"x", true, "x", true, 0},
        {"abcdefgh\x01", true, "abcdefgh", true, 1},         // past the first word
        {std::string("abcdefgh\0", 9), true, "abcdefgh", true, 1}, // embedded NUL after the prefix
    };
    // clang-format on
    const auto make = [](const std::string& name, bool simple) -> std::unique_ptr<TokenExpressionBase> {
        if (simple) return std::make_unique<TokenExpressionSimple>(name);
        return std::make_unique<TokenExpressionCollection>(name, false);
    };
    for (const auto& [an, aSimple, bn, bSimple, expected] : cases) {
        SCOPED_TRACE(an + " vs " + bn);
        const auto a = make(an, aSimple), b = make(bn, bSimple);
        EXPECT_EQ(std::tuple(a->Compare(*b), b->Compare(*a)), std::tuple(expected, -expected));
        EXPECT_EQ(a->CompareParams(bn.c_str(), bSimple), expected);
        EXPECT_EQ(std::tuple(*a<*b, *a >= *b, *a> * b, *a <= *b, *a == *b),
                  std::tuple(expected<0, expected >= 0, expected> 0, expected <= 0, expected == 0));
        // The name-index key orders the same way (the kind byte of a leaf is 1).
        const StrUCharKey ka(an, aSimple), kb(bn, bSimple);
        EXPECT_EQ(std::tuple(ka.Compare(kb), ka.GetString()), std::tuple(expected, an));
    }
    EXPECT_EQ(TokenExpressionSimple("").CompareParams(nullptr, true), 0);
}

TEST(TokenExpressionEquality, ShallowComparesChildNamesDeepFollowsThemCopiesShareCollections) {
    TokenExpressionCollection s1("S", true), s2("S", true), c1("T", false), c2("T", false);
    s1.AddExpression(new TokenExpressionSimple("y"), 0);
    s2.AddExpression(new TokenExpressionSimple("z"), 0);
    for (auto [c, s] : {std::pair{&c1, &s1}, std::pair{&c2, &s2}}) {
        c->AddExpression(new TokenExpressionSimple("x"), kNegate);
        c->AddExpression(s, kWord);
        s->AddUsedBy(c);
    }
    EXPECT_TRUE(c1 == c2) << "children compared by name only";
    EXPECT_FALSE(c1.DeepEqual(c2) || s1 == s2);
    s2.ClearExpressions();
    s2.AddExpression(new TokenExpressionSimple("y"), 0);
    EXPECT_TRUE(c1.DeepEqual(c2));
    *c2.FindExpression(&s2) = kCase;
    EXPECT_TRUE(c1 != c2) << "operators differ";
    *c2.FindExpression(&s2) = kWord;
    c2.SetAnd(true);
    EXPECT_FALSE(c1 == c2) << "AND flags differ";
    c2.SetAnd(false);
    EXPECT_FALSE(TokenExpressionSimple("T") == c1) << "kinds differ";

    // Self-holding collections compare without looping.
    for (TokenExpressionCollection* c : {&c1, &c2}) {
        c->AddExpression(c, 0);
        c->AddUsedBy(c);
    }
    EXPECT_TRUE(c1.DeepEqual(c2));

    // Copies clone leaves and share collections; assignment keeps the target's users.
    TokenExpressionCollection copy(c1);
    EXPECT_TRUE(copy.DeepEqual(c1));
    EXPECT_NE(copy.FindExpressionByName("x", true), c1.FindExpressionByName("x", true));
    EXPECT_EQ(copy.FindExpressionByName("S", false), &s1);
    EXPECT_EQ(s1.GetUsedBy().count(&copy), 1u);
    TokenExpressionCollection holder("H", false), target("U", true);
    holder.AddExpression(&target, 0);
    target.AddUsedBy(&holder);
    target = c2;
    EXPECT_EQ(std::tuple(target.GetName(), target.GetUsedBy().count(&holder)),
              std::tuple(std::string("T"), std::size_t{1}));
    EXPECT_TRUE(target.DeepEqual(c2));
    const TokenExpressionCollection& same = target;
    target = same;
    EXPECT_EQ(target.GetExpressionCollection().size(), 3u);
    std::unique_ptr<TokenExpressionBase> clone(c2.Clone());
    EXPECT_TRUE(clone->DeepEqual(c2));
    EXPECT_TRUE(c2.isUsedBy(dynamic_cast<TokenExpressionCollection*>(clone.get())));
}

} // namespace
