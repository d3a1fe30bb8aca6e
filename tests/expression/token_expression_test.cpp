// Token expressions: leaf matching with the edge flags, AND/OR evaluation, membership operations,
// linking, token collection rules, ordering and equality.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VeloraUtils/TokenExpressions.h"

namespace {

using Map = std::map<std::string, bool>;
constexpr unsigned char kNegate = TokenExpressionCollection::Negate;
constexpr unsigned char kCase = TokenExpressionCollection::MatchCase;
constexpr unsigned char kWord = TokenExpressionCollection::WholeWord;

struct Edge {
    const char* token;
    unsigned char op;
};

// An OR or AND collection holding one leaf per edge.
TokenExpressionCollection Build(bool isAnd, const std::vector<Edge>& edges) {
    TokenExpressionCollection c("c", isAnd);
    for (const Edge& e : edges) c.AddExpression(new TokenExpressionSimple(e.token), e.op);
    return c;
}

TEST(TokenExpressionLeaf, MatchesUnderTheEdgeFlags) {
    struct Case {
        const char* name;
        const char* token;
        unsigned char op;
        const char* text;
        bool expected;
    } cases[] = {
        {"plain search folds case", "ibm", 0, "Long IBM calls", true},
        {"mixed-case token is folded too", "IbM", 0, "long ibm calls", true},
        {"match case refuses other case", "ibm", kCase, "Long IBM calls", false},
        {"match case finds same case", "IBM", kCase, "Long IBM calls", true},
        {"whole word refuses glued letter", "ibm", kWord, "IBMX", false},
        {"whole word refuses glued digit", "ibm", kWord, "1IBM", false},
        {"whole word accepts punctuation", "ibm", kWord, "IBM,", true},
        {"whole word tries later occurrences", "ibm", kWord, "xIBM IBM", true},
        {"case and whole word together", "IBM", kCase | kWord, "xIBM ibm IBM", true},
        {"overlapping occurrence is never tried", "x-x", kWord, "ax-x-x", false},
        {"overlapping text without whole word", "x-x", 0, "ax-x-x", true},
        {"bytes from 128 up end a word", "caf", kWord, "caf\xC3\xA9", true},
        {"empty token never matches", "", 0, "abc", false},
        {"empty text never matches", "a", 0, "", false},
        {"negated absent token is satisfied", "zzz", kNegate, "abc", true},
        {"negated present token is not", "abc", kNegate, "xabcx", false},
        {"negated empty token is satisfied", "", kNegate, "abc", true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Build(false, {{c.token, c.op}}).isTrue(c.text), c.expected) << c.name;
        if (c.op == 0) {
            EXPECT_EQ(TokenExpressionSimple(c.token).isTrue(c.text), c.expected) << c.name;
        }
    }
    // A token is searched up to its first NUL, and the whole-word test looks just past that part.
    TokenExpressionCollection nul("n", false);
    nul.AddExpression(new TokenExpressionSimple(std::string("ab\0cd", 5)), kWord);
    EXPECT_TRUE(nul.isTrue("ab"));
    EXPECT_FALSE(nul.isTrue("abc"));
    EXPECT_FALSE(TokenExpressionSimple("a").isTrue(static_cast<const char*>(nullptr)));
    EXPECT_TRUE(Build(true, {{"a", kNegate}}).isTrue(static_cast<const char*>(nullptr)));
}

TEST(TokenExpressionCollection, CombinesChildrenWithAndOr) {
    struct Case {
        const char* name;
        bool isAnd;
        std::vector<Edge> edges;
        const char* text;
        bool expected;
    } cases[] = {
        {"empty OR is false", false, {}, "abc", false},
        {"empty AND is true", true, {}, "abc", true},
        {"OR with one present", false, {{"x", 0}, {"b", 0}, {"y", 0}}, "abc", true},
        {"OR with none present", false, {{"x", 0}, {"y", 0}}, "abc", false},
        {"AND with all present", true, {{"a", 0}, {"b", 0}, {"c", 0}}, "abc", true},
        {"AND with one missing", true, {{"a", 0}, {"z", 0}}, "abc", false},
        {"AND with negated absent", true, {{"a", 0}, {"z", kNegate}}, "abc", true},
        {"AND with negated present", true, {{"a", 0}, {"b", kNegate}}, "abc", false},
    };
    for (const Case& c : cases) EXPECT_EQ(Build(c.isAnd, c.edges).isTrue(c.text), c.expected) << c.name;

    // A collection passes each child the bits of that child's own edge, not those it received.
    TokenExpressionCollection top("top", false), sub("sub", false);
    sub.AddExpression(new TokenExpressionSimple("abc"), 0);
    top.AddExpression(&sub, kCase | kWord);
    sub.AddUsedBy(&top);
    EXPECT_TRUE(top.isTrue("xABCx"));
    Map tokens, caseTokens;
    top.CollectTokens(tokens, caseTokens);
    EXPECT_EQ(tokens, (Map{{"ABC", false}}));
    EXPECT_TRUE(caseTokens.empty());
}

TEST(TokenExpressionCollection, CycleIsSkippedNotFollowed) {
    TokenExpressionCollection a("A", false), b("B", true);
    a.AddExpression(&b, 0);
    b.AddUsedBy(&a);
    b.AddExpression(&a, 0);
    a.AddUsedBy(&b);
    b.AddExpression(new TokenExpressionSimple("x"), 0);
    // From A: B's inner visit of A is skipped, so B is just "x".
    EXPECT_TRUE(a.isTrue("x"));
    EXPECT_FALSE(a.isTrue("y"));
    // From B: A's only child B is skipped, so A is an empty OR (false) and B's AND fails.
    EXPECT_FALSE(b.isTrue("x"));
    EXPECT_TRUE(a.isUsedBy(&b));
    EXPECT_TRUE(a.isUsedBy(&a)) << "through B";
}

TEST(TokenExpressionCollection, AddFindRemoveRename) {
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
    for (const char* t :
         {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p", "q"})
        c.AddExpression(new TokenExpressionSimple(t), 0);
    EXPECT_GT(c.GetExpressionCollection().bucket_count(), freshBuckets);
    EXPECT_TRUE(c.ClearExpressions());
    EXPECT_FALSE(c.ClearExpressions());
    EXPECT_FALSE(sub.isUsed()) << "cleared collection children are detached";
    EXPECT_EQ(c.GetExpressionCollection().bucket_count(), freshBuckets) << "back to the initial buckets";
    EXPECT_TRUE(c.GetNameIndex().empty());
}

TEST(TokenExpressionCollection, LinkResolvesAgainstRegistry) {
    TokenExpressionCollection a("A", false), b("B", false), top("top", true);
    TokenExpressionCollection placeholderA("A", false), placeholderC("C", false);
    auto* leaf = new TokenExpressionSimple("C");
    for (auto [child, op] : std::vector<std::pair<TokenExpressionCollection*, unsigned char>>{
             {&placeholderA, kNegate}, {&b, kCase}, {&placeholderC, 0}}) {
        top.AddExpression(child, op);
        child->AddUsedBy(&top);
    }
    top.AddExpression(leaf, 0);
    top.Link({{"A", &a}, {"B", &b}});

    EXPECT_EQ(top.FindExpressionByName("A", false), &a) << "placeholder replaced";
    EXPECT_EQ(*top.FindExpression(&a), kNegate) << "under the placeholder's operator";
    EXPECT_EQ(top.FindExpression(&placeholderA), nullptr);
    EXPECT_FALSE(placeholderA.isUsed());
    EXPECT_EQ(a.GetUsedBy().count(&top), 1u);
    EXPECT_EQ(*top.FindExpression(&b), kCase) << "same object unchanged";
    EXPECT_EQ(top.FindExpressionByName("C", false), nullptr) << "missing reference dropped";
    EXPECT_FALSE(placeholderC.isUsed());
    EXPECT_EQ(top.FindExpressionByName("C", true), leaf) << "leaves are not linked";
    EXPECT_EQ(top.GetExpressionCollection().size(), 3u);

    EXPECT_TRUE(a.isUsedBy(&top));
    EXPECT_FALSE(top.isUsedBy(&a));
    a.UnlinkUsedBy();
    EXPECT_EQ(top.FindExpression(&a), nullptr);
    EXPECT_FALSE(a.isUsed());
}

TEST(TokenExpressionCollectTokens, AbsorbRules) {
    struct Case {
        const char* name;
        std::vector<Edge> leaves; // collected in order into the same maps
        Map tokens, caseTokens;
    } cases[] = {
        {"plain then case whole word", {{"abc", 0}, {"abc", kCase | kWord}}, {{"ABC", false}}, {}},
        {"case whole word then plain",
         {{"abc", kCase | kWord}, {"abc", 0}},
         {{"ABC", false}},
         {{"abc", true}}},
        {"whole word broadened by plain", {{"abc", kWord}, {"abc", 0}}, {{"ABC", false}}, {}},
        {"plain not narrowed by whole word", {{"abc", 0}, {"abc", kWord}}, {{"ABC", false}}, {}},
        {"whole word does not cover case plain",
         {{"abc", kWord}, {"abc", kCase}},
         {{"ABC", true}},
         {{"abc", false}}},
        {"whole word covers case whole word", {{"abc", kWord}, {"abc", kCase | kWord}}, {{"ABC", true}}, {}},
        {"case entries keep their case",
         {{"Abc", kCase}, {"abc", kCase}},
         {},
         {{"Abc", false}, {"abc", false}}},
        {"case whole word broadened", {{"abc", kCase | kWord}, {"abc", kCase}}, {}, {{"abc", false}}},
        {"negation is ignored", {{"abc", kNegate | kWord}}, {{"ABC", true}}, {}},
    };
    for (const Case& c : cases) {
        Map tokens, caseTokens;
        for (const Edge& e : c.leaves) Build(false, {e}).CollectTokens(tokens, caseTokens);
        EXPECT_EQ(tokens, c.tokens) << c.name;
        EXPECT_EQ(caseTokens, c.caseTokens) << c.name;
    }
}

TEST(TokenExpressionOrder, CompareNamesThenKind) {
    struct Case {
        const char* name;
        std::string a;
        bool aSimple;
        std::string b;
        bool bSimple;
        int expected;
    } cases[] = {
        {"by bytes", "a", true, "b", true, -1},
        {"by bytes reversed", "b", false, "a", true, 1},
        {"shorter prefix first", "ab", true, "abc", false, -1},
        {"bytes are unsigned", "\xff", true, "a", true, 1},
        {"collection before leaf", "x", false, "x", true, -1},
        {"leaf after collection", "x", true, "x", false, 1},
        {"same name and kind", "x", true, "x", true, 0},
        {"past the first word", "abcdefgh\x01", true, "abcdefgh", true, 1},
        {"embedded NUL after prefix", std::string("abcdefgh\0", 9), true, "abcdefgh", true, 1},
    };
    const auto make = [](const std::string& name, bool simple) -> TokenExpressionBase* {
        if (simple) return new TokenExpressionSimple(name);
        return new TokenExpressionCollection(name, false);
    };
    for (const Case& c : cases) {
        TokenExpressionBase* a = make(c.a, c.aSimple);
        TokenExpressionBase* b = make(c.b, c.bSimple);
        EXPECT_EQ(a->Compare(*b), c.expected) << c.name;
        EXPECT_EQ(b->Compare(*a), -c.expected) << c.name;
        if (c.b.find('\0') == std::string::npos) {
            EXPECT_EQ(a->CompareParams(c.b.c_str(), c.bSimple), c.expected) << c.name;
        }
        EXPECT_EQ(*a < *b, c.expected < 0) << c.name;
        EXPECT_EQ(*a >= *b, c.expected >= 0) << c.name;
        EXPECT_EQ(*a > *b, c.expected > 0) << c.name;
        EXPECT_EQ(*a <= *b, c.expected <= 0) << c.name;
        EXPECT_EQ(*a == *b, c.expected == 0) << c.name;
        // The name-index key orders the same way (the kind byte of a leaf is 1).
        const StrUCharKey ka(c.a, c.aSimple), kb(c.b, c.bSimple);
        EXPECT_EQ(ka.Compare(kb), c.expected) << c.name;
        EXPECT_EQ(ka.GetString(), c.a) << c.name;
        delete a;
        delete b;
    }
    EXPECT_EQ(TokenExpressionSimple("").CompareParams(nullptr, true), 0);
}

TEST(TokenExpressionEquality, ShallowDeepAndCopies) {
    TokenExpressionCollection s1("S", true), s2("S", true), c1("T", false), c2("T", false);
    s1.AddExpression(new TokenExpressionSimple("y"), 0);
    s2.AddExpression(new TokenExpressionSimple("z"), 0);
    for (auto [c, s] : {std::pair{&c1, &s1}, std::pair{&c2, &s2}}) {
        c->AddExpression(new TokenExpressionSimple("x"), kNegate);
        c->AddExpression(s, kWord);
        s->AddUsedBy(c);
    }
    EXPECT_TRUE(c1 == c2) << "children compared by name only";
    EXPECT_FALSE(c1.DeepEqual(c2));
    EXPECT_FALSE(s1 == s2);
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
    c1.AddExpression(&c1, 0);
    c1.AddUsedBy(&c1);
    c2.AddExpression(&c2, 0);
    c2.AddUsedBy(&c2);
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
    EXPECT_EQ(target.GetName(), "T");
    EXPECT_EQ(target.GetUsedBy().count(&holder), 1u);
    EXPECT_TRUE(target.DeepEqual(c2));
    const TokenExpressionCollection& same = target;
    target = same;
    EXPECT_EQ(target.GetExpressionCollection().size(), 3u);
    std::unique_ptr<TokenExpressionBase> clone(c2.Clone());
    EXPECT_TRUE(clone->DeepEqual(c2));
    EXPECT_TRUE(c2.isUsedBy(dynamic_cast<TokenExpressionCollection*>(clone.get())));
}

} // namespace
