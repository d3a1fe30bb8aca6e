// WsaCollection: appends per ownership mode and trailing character, growth up to 0x8000 slots,
// slot replacement, checksum sums, copies as views, and that every owned buffer is freed exactly
// once (counted through the array allocator, where the library's allocator is visible).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "VeloraUtils/FixTagCollection.h"
#include "VeloraUtils/WsaCollection.h"
#include "fix_test_messages.h"

namespace {

const char kSoh = '\x01';
const WSABUF kNoSlot{0, nullptr};
const WSABUF& SlotOf(const WsaCollection& c, unsigned short i) {
    const WSABUF* const slot = c.GetWsaBufAt(i);
    return slot != nullptr ? *slot : kNoSlot;
}
std::vector<std::string> SlotTexts(const WsaCollection& c) {
    std::vector<std::string> out;
    for (unsigned short i = 0; i < c.GetCount(); ++i) out.push_back(fixtest::TextOf(c, i));
    return out;
}

// Array-allocation log: while recording, the replaced operator new[] / delete[] count every
// allocation's releases (the newest record of an address is the live one: an address is reused only
// after its release). A Windows DLL has its own allocator: detected, the counting test skips.
constexpr int kMaxRecords = 4096;
void* g_pointers[kMaxRecords];
int g_releases[kMaxRecords];
int g_recordCount = 0, g_unknownReleases = 0;
bool g_recording = false;

int RecordOf(const void* p) {
    for (int i = std::min(g_recordCount, kMaxRecords) - 1; i >= 0; --i)
        if (g_pointers[i] == p) return i;
    return -1;
}
int ReleasesOf(const void* p) {
    return RecordOf(p) >= 0 ? g_releases[RecordOf(p)] : -1;
}

struct AllocationLog {
    AllocationLog() { g_recordCount = 0, g_unknownReleases = 0, g_recording = true; }
    ~AllocationLog() { g_recording = false; }
};

// Every array allocated while recording released exactly once, and nothing else released.
::testing::AssertionResult AllReleasedOnce() {
    if (g_recordCount > kMaxRecords) return ::testing::AssertionFailure() << "allocation log overflow";
    for (int i = 0; i < g_recordCount; ++i)
        if (g_releases[i] != 1) return ::testing::AssertionFailure() << i << " released " << g_releases[i];
    return ::testing::AssertionResult(g_unknownReleases == 0) << g_unknownReleases << " unknown releases";
}

bool LibraryAllocationsVisible() {
    AllocationLog log;
    { WsaCollection probe(1); }
    return g_recordCount > 0;
}

} // namespace

// ThreadSanitizer's runtime owns operator new[]/delete[]; there the log stays empty and the counting
// test is skipped (the AddressSanitizer build checks the same natively).
#if defined(__SANITIZE_THREAD__)
#define VELORA_TEST_REPLACES_ARRAY_NEW 0
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VELORA_TEST_REPLACES_ARRAY_NEW 0
#endif
#endif
#ifndef VELORA_TEST_REPLACES_ARRAY_NEW
#define VELORA_TEST_REPLACES_ARRAY_NEW 1
#endif

#if VELORA_TEST_REPLACES_ARRAY_NEW
void* operator new[](std::size_t size) {
    void* p = std::malloc(size == 0 ? 1 : size);
    if (p == nullptr) throw std::bad_alloc();
    if (g_recording && g_recordCount++ < kMaxRecords)
        g_pointers[g_recordCount - 1] = p, g_releases[g_recordCount - 1] = 0;
    return p;
}
void operator delete[](void* p) noexcept {
    if (p != nullptr && g_recording) ++(RecordOf(p) >= 0 ? g_releases[RecordOf(p)] : g_unknownReleases);
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    operator delete[](p);
}
#endif

namespace {

TEST(WsaCollection, AppendAndSetTagAtFillSlotsPerModeAndTrailingCharacter) {
    // name, -1 for Append (else SetTagAt's index), buffer, length, with a trailing SOH, mode, Append's
    // ordinal (or SetTagAt's result), the slots (from {"aa" (copied), "bbb"}), whether the value's slot
    // points at the buffer itself
    using Case = std::tuple<const char*, int, const char*, unsigned, bool, unsigned char, int,
                            std::vector<std::string>, bool>;
    static const char abc[] = "abc";
    static const char empty[] = "";
    const std::string ab("aa"), bbb("bbb"), soh("\x01");
    // clang-format off
    const std::vector<Case> cases = {
        {"NullWithSohAddsEmptySlotAndSohSlot", -1, nullptr, 0, true, 0, 3, {ab, bbb, "", soh}, true},
        {"ReferenceTakesNulTerminatedLength", -1, abc, 0, false, 0, 3, {ab, bbb, "abc"}, true},
        {"ReferenceGivesSohItsOwnSlot", -1, abc, 3, true, 0, 3, {ab, bbb, "abc", soh}, true},
        {"CopyCopiesThreeBytes", -1, abc, 0, false, 2, 3, {ab, bbb, "abc"}, false},
        {"CopyPutsSohIntoTheCopyWithoutExtraSlot", -1, abc, 3, true, 2, 3, {ab, bbb, "abc\x01"}, false},
        {"CopyOfEmptyValueKeepsSohSeparate", -1, empty, 0, true, 2, 3, {ab, bbb, "", soh}, true},
        {"LengthPassesEmbeddedNul", -1, "ab\0cd", 5, false, 2, 3, {ab, bbb, std::string("ab\0cd", 5)}, false},
        {"NullBufferNeverGetsALength", -1, nullptr, 5, false, 0, 3, {ab, bbb, ""}, true},
        {"SetIndexAboveCountRefused", 3, "z", 0, false, 0, 0, {ab, bbb}, false},
        {"SetIndexEqualCountAppendsWithSoh", 2, "z", 0, true, 0, 1, {ab, bbb, "z", soh}, true},
        {"ReplaceFirstTakesNulLength", 0, "zzzz", 0, false, 0, 1, {"zzzz", bbb}, true},
        {"ReplaceMiddleIgnoresTrailing", 0, "z", 0, true, 0, 1, {"z", bbb}, true},
        {"ReplaceLastAddsTrailingSlot", 1, "z", 0, true, 0, 1, {ab, "z", soh}, true},
        {"ReplaceLastCopyTakesTrailing", 1, "z", 0, true, 2, 1, {ab, "z\x01"}, false},
        {"EmptyCopyAtLastKeepsTrailingSlot", 1, empty, 0, true, 2, 1, {ab, "", soh}, true},
    };
    // clang-format on
    for (const auto& [name, index, buffer, length, withSoh, mode, expected, slots, atCaller] : cases) {
        SCOPED_TRACE(name);
        WsaCollection coll(2);
        coll.Append("aa", 2, nullptr, 2);
        coll.Append("bbb", 3, nullptr, 0);
        const char* const trailing = withSoh ? &kSoh : nullptr;
        const int result = index < 0
                               ? coll.Append(buffer, length, trailing, mode)
                               : coll.SetTagAt(static_cast<unsigned>(index), buffer, length, trailing, mode);
        unsigned int total = 0;
        for (const std::string& text : slots) total += static_cast<unsigned int>(text.size());
        EXPECT_EQ(std::tuple(result, SlotTexts(coll), coll.GetTotalLength()),
                  std::tuple(expected, slots, total));
        const auto slot = static_cast<unsigned short>(index < 0 ? 2 : index);
        EXPECT_TRUE(result == 0 || (SlotOf(coll, slot).buf == buffer) == atCaller);
        EXPECT_TRUE(result == 0 || slots.back() != soh ||
                    SlotOf(coll, static_cast<unsigned short>(slot + 1)).buf == &kSoh);
    }
    char* handed = new char[3]{'a', 'b', 'c'};
    WsaCollection coll(2);
    EXPECT_EQ(coll.Append(handed, 3, &kSoh, 1), 1);
    EXPECT_EQ(
        std::tuple(SlotOf(coll, 0).buf, SlotTexts(coll)), // freed by the collection (sanitizer build checks)
        std::tuple(handed, std::vector<std::string>{"abc", "\x01"}));
    // A full array grows instead of writing past its end: replacing the last slot with a trailing
    // slot, and appending at count.
    WsaCollection full(2);
    full.Append("a", 1, nullptr, 0);
    full.Append("b", 1, nullptr, 0);
    EXPECT_TRUE(full.SetTagAt(1, "c", 1, &kSoh, 0) && full.GetCapacity() == 4);
    EXPECT_TRUE(full.SetTagAt(3, "d", 1, &kSoh, 0) && full.GetCapacity() == 8);
    EXPECT_EQ(SlotTexts(full), (std::vector<std::string>{"a", "c", "\x01", "d", "\x01"}));
}

TEST(WsaCollection, GrowsByDoublingAndRefusesPastTheLimit) {
    // name, initial capacity, single-slot appends before the probe "w", whether the probe needs a separate
    // trailing slot, whether it is accepted, the capacity after it
    using Case = std::tuple<const char*, unsigned short, int, bool, bool, unsigned short>;
    // clang-format off
    const std::vector<Case> cases = {
        {"CapacityOneHoldsOne", 1, 0, false, true, 1},
        {"SecondAppendDoublesToTwo", 1, 1, false, true, 2},
        {"ThirdAppendDoublesToFour", 1, 2, false, true, 4},
        {"FifthAppendDoublesToEight", 1, 4, false, true, 8},
        {"ZeroCapacityStartsAtOne", 0, 0, false, true, 1},
        // A separate trailing slot needs a second free slot: growth happens before, not past the end.
        {"TrailingSlotNeedsRoomTooFromOne", 1, 0, true, true, 2},
        {"TrailingPairFitsWithoutGrowth", 3, 0, true, true, 3},
        {"TrailingSlotWhenOneFreeLeftGrows", 5, 4, true, true, 10},
        {"GrowsFrom0x4000To0x8000", 0x4000, 0x4000, false, true, 0x8000},
        {"LastSlotAt0x8000StillTaken", 0x8000, 0x7FFF, false, true, 0x8000},
        {"FullAt0x8000Refuses", 0x8000, 0x8000, false, false, 0x8000},
        {"LastSlotCannotTakeValueAndTrailing", 0x8000, 0x7FFF, true, false, 0x8000},
        {"CapacityAboveLimitNeverGrows", 0x9000, 0x9000, false, false, 0x9000},
    };
    // clang-format on
    for (const auto& [name, initial, filled, withSoh, accepted, capacity] : cases) {
        SCOPED_TRACE(name);
        WsaCollection coll(initial);
        for (int i = 0; i < filled; ++i) ASSERT_NE(coll.Append("v", 1, nullptr, 0), 0);
        const unsigned int total = coll.GetTotalLength();
        const char* const trailing = withSoh ? &kSoh : nullptr;
        const bool taken = coll.Append("w", 1, trailing, 0) != 0;
        std::vector<std::string> expected(static_cast<std::size_t>(filled), "v");
        if (accepted) expected.push_back("w");
        if (accepted && withSoh) expected.push_back("\x01");
        EXPECT_EQ(std::tuple(taken, coll.GetCapacity(), SlotTexts(coll), coll.GetTotalLength()),
                  std::tuple(accepted, capacity, expected, total + (accepted ? (withSoh ? 2u : 1u) : 0u)));
        EXPECT_TRUE(accepted || !coll.SetTagAt(coll.GetCount(), "w", 1, trailing, 0));
    }
}

TEST(WsaCollection, ResetSumsAndViews) {
    WsaCollection coll(4);
    coll.Append("ab", 0, &kSoh, 0);
    coll.Append("\xfe", 1, nullptr, 2);
    const WSABUF* none = nullptr; // bytes sum as signed 8-bit; slot 3 is not below count
    EXPECT_EQ(std::tuple(coll.CalculateControlSumAt(0), coll.CalculateControlSumAt(2),
                         coll.CalculateControlSumAt(3), coll.CalculateControlSum(),
                         WsaCollection::CalculateItemControlSum(none)),
              std::tuple(97u + 98u, 0xFFFFFFFEu, 0u, 97u + 98u + 1u - 2u, 0u));
    const std::vector<std::string> texts = SlotTexts(coll);
    {
        WsaCollection view(coll), assigned(1);
        assigned = coll;
        EXPECT_TRUE(view.isView() && assigned.isView() && !coll.isView());
        EXPECT_EQ(view.GetWsaBufAt(0), coll.GetWsaBufAt(0)); // the same slot array
        EXPECT_FALSE(view.Append("x", 1, nullptr, 2) != 0 || view.SetTagAt(0, "x", 1, nullptr, 2));
        view.Reset();
        EXPECT_EQ(SlotTexts(view), texts);
    } // the views go first: the original's buffers stay valid
    EXPECT_EQ(SlotTexts(coll), texts);
    coll.Reset();
    EXPECT_EQ(
        std::tuple(coll.GetCount(), coll.GetTotalLength(), coll.GetCapacity(), coll.CalculateControlSum()),
        std::tuple(0, 0u, 4, 0u));
}

TEST(WsaCollection, EachOwnedBufferIsReleasedExactlyOnce) {
    if (!LibraryAllocationsVisible())
        GTEST_SKIP() << "the library's allocator is its own here; the sanitizer build checks this natively";
    // clang-format off
    const std::vector<std::pair<const char*, std::function<void()>>> cases = {
        {"HandedOverReleasedByDestructor", [] {
             char* handed = new char[4]{'a', 'b', 'c', 'd'};
             { WsaCollection coll(1); coll.Append(handed, 4, &kSoh, 1); EXPECT_EQ(ReleasesOf(handed), 0); }
             EXPECT_EQ(ReleasesOf(handed), 1); }},
        {"CopiesReleasedByDestructorAfterGrowth", [] {
             WsaCollection coll(1);
             for (int i = 0; i < 20; ++i) coll.Append("copy", 0, &kSoh, 2); }},
        {"ReplacingReleasesOwnedAtOnceReferencedNever", [] {
             static char referenced[] = "ref";
             WsaCollection coll(2);
             coll.Append("old", 0, nullptr, 2);
             coll.Append(referenced, 0, nullptr, 0);
             const char* old = SlotOf(coll, 0).buf;
             coll.SetTagAt(0, "new", 0, nullptr, 0);
             EXPECT_EQ(ReleasesOf(old), 1);
             coll.SetTagAt(1, "other", 0, nullptr, 0); }},
        {"SettingTheSameOwnedBufferAgainKeepsIt", [] {
             char* handed = new char[2]{'h', 'i'};
             WsaCollection coll(2);
             coll.Append(handed, 2, nullptr, 1);
             coll.SetTagAt(0, handed, 2, nullptr, 1);
             EXPECT_TRUE(ReleasesOf(handed) == 0 && SlotTexts(coll) == std::vector<std::string>{"hi"}); }},
        {"ResetReleasesOwnedOnce", [] {
             WsaCollection coll(2);
             coll.Append("a", 0, nullptr, 2);
             const char* copy = SlotOf(coll, 0).buf;
             coll.Reset();
             coll.Reset();
             EXPECT_EQ(ReleasesOf(copy), 1); }},
        {"ViewsReleaseNothingAssignmentReleasesTargetsOwn", [] {
             WsaCollection original(1), assigned(1);
             original.Append("a", 0, &kSoh, 2);
             assigned.Append("t", 0, nullptr, 2);
             const char* copy = SlotOf(original, 0).buf;
             const char* own = SlotOf(assigned, 0).buf;
             { WsaCollection view(original); assigned = view; }
             EXPECT_EQ(ReleasesOf(own), 1);
             assigned = original;
             EXPECT_EQ(ReleasesOf(copy), 0); }},
        {"BuilderHeaderAndOwnedFieldsReleasedOnce", [] {
             FixTagCollection builder(1, 0x0402, "FIX");
             builder.AppendUIntTag("34=", 12, 3);
             builder.AppendTagSenderCompId("SENDER", 0, 2);
             builder.Finalize("D");
             { FixTagCollection view(builder); EXPECT_FALSE(view.Finalize("D")); }
             builder.Reset();
             builder.AppendTag("11=", "order", 3, 0, 2, true);
             builder.UpdateTagSenderCompId("S2", 0, 2); // never appended since Reset: no change
             builder.Finalize("D"); }},
    };
    // clang-format on
    for (const auto& [name, scenario] : cases) {
        SCOPED_TRACE(name);
        AllocationLog log;
        scenario();
        EXPECT_TRUE(AllReleasedOnce());
    }
}

} // namespace
