// WsaCollection: appends in the three ownership modes, trailing characters, growth up to 0x8000
// slots, slot replacement, checksum sums, copies as views, and that every owned buffer is freed
// exactly once (counted through the array allocator, where the library's allocator is visible).
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "VeloraUtils/FixTagCollection.h"
#include "VeloraUtils/WsaCollection.h"

namespace {

const char kSoh = '\x01';

const WSABUF kNoSlot{0, nullptr};
const WSABUF& SlotOf(const WsaCollection& c, unsigned short i) {
    const WSABUF* const slot = c.GetWsaBufAt(i);
    return slot != nullptr ? *slot : kNoSlot;
}

std::string SlotText(const WSABUF* slot) {
    return slot == nullptr || slot->buf == nullptr ? std::string() : std::string(slot->buf, slot->len);
}

std::vector<std::string> SlotTexts(const WsaCollection& c) {
    std::vector<std::string> out;
    for (unsigned short i = 0; i < c.GetCount(); ++i) out.push_back(SlotText(c.GetWsaBufAt(i)));
    return out;
}

// ---------------------------------------------------------------------------------------------
// Array-allocation log. The test program replaces operator new[] / delete[]; while recording is
// on, every allocation and release is logged, so a test can see that each buffer the collection
// owns is released exactly once. On Linux the library's own new[]/delete[] resolve to these; a
// Windows DLL carries its own allocator, which is detected and the counting items are skipped there
// (the sanitizer build covers the same ground natively).
// ---------------------------------------------------------------------------------------------
struct AllocationRecord {
    void* pointer;
    int releases;
};
constexpr int kMaxRecords = 4096;
AllocationRecord g_records[kMaxRecords];
int g_recordCount = 0;
int g_unknownReleases = 0; // releases of pointers not allocated while recording
bool g_overflow = false;
bool g_recording = false;

[[maybe_unused]] void RecordAllocation(void* p) {
    if (g_recordCount == kMaxRecords) {
        g_overflow = true;
        return;
    }
    g_records[g_recordCount++] = AllocationRecord{p, 0};
}

[[maybe_unused]] void RecordRelease(void* p) {
    for (int i = g_recordCount - 1; i >= 0; --i) {
        if (g_records[i].pointer == p && g_records[i].releases == 0) {
            g_records[i].releases = 1;
            return;
        }
    }
    for (int i = g_recordCount - 1; i >= 0; --i) {
        if (g_records[i].pointer == p) {
            ++g_records[i].releases; // a second release of the same allocation
            return;
        }
    }
    ++g_unknownReleases;
}

int ReleasesOf(const void* p) {
    for (int i = g_recordCount - 1; i >= 0; --i)
        if (g_records[i].pointer == p) return g_records[i].releases;
    return -1;
}

class AllocationLog {
public:
    AllocationLog() {
        g_recordCount = 0;
        g_unknownReleases = 0;
        g_overflow = false;
        g_recording = true;
    }
    ~AllocationLog() { g_recording = false; }
    AllocationLog(const AllocationLog&) = delete;
    AllocationLog& operator=(const AllocationLog&) = delete;

    // Every array allocated while recording released exactly once, and nothing else released.
    static ::testing::AssertionResult AllReleasedOnce() {
        if (g_overflow) return ::testing::AssertionFailure() << "allocation log overflow";
        for (int i = 0; i < g_recordCount; ++i)
            if (g_records[i].releases != 1)
                return ::testing::AssertionFailure()
                       << "allocation " << i << " released " << g_records[i].releases << " times";
        if (g_unknownReleases != 0)
            return ::testing::AssertionFailure() << g_unknownReleases << " releases of unknown pointers";
        return ::testing::AssertionSuccess();
    }
};

// True when an allocation made inside the library shows up in the log.
bool LibraryAllocationsVisible() {
    AllocationLog log;
    const int before = g_recordCount;
    { WsaCollection probe(1); }
    return g_recordCount > before;
}

} // namespace

// ThreadSanitizer's runtime owns operator new[]/delete[]; there the log stays empty and the counting
// items are skipped (the AddressSanitizer build checks the same natively).
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
    if (g_recording) RecordAllocation(p);
    return p;
}

void operator delete[](void* p) noexcept {
    if (p == nullptr) return;
    if (g_recording) RecordRelease(p);
    std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept {
    operator delete[](p);
}
#endif

namespace {

// ---------------------------------------------------------------------------------------------

struct AppendCase {
    const char* name;
    const char* buffer;
    unsigned int length;
    bool trailing;
    unsigned char mode;
    unsigned short ordinal;            // expected result (the collection already holds one slot)
    std::vector<std::string> newSlots; // slots after the existing one
    unsigned int addedLength;
    bool pointsAtCallerBuffer; // the value's slot points at `buffer` itself
};

TEST(WsaCollectionAppend, FillsSlotsPerModeAndTrailingCharacter) {
    static const char abc[] = "abc";
    static const char withNul[] = "ab\0cd";
    static const char empty[] = "";
    const std::vector<AppendCase> cases = {
        {"NullWithSohAddsEmptySlotAndSohSlot", nullptr, 0, true, 0, 2, {"", "\x01"}, 1, true},
        {"ReferenceTakesNulTerminatedLength", abc, 0, false, 0, 2, {"abc"}, 3, true},
        {"ReferenceGivesSohItsOwnSlot", abc, 3, true, 0, 2, {"abc", "\x01"}, 4, true},
        {"HandOverPointsAtCallerBuffer", nullptr, 0, false, 1, 2, {""}, 0, true},
        {"CopyCopiesThreeBytes", abc, 0, false, 2, 2, {"abc"}, 3, false},
        {"CopyPutsSohIntoTheCopyWithoutExtraSlot", abc, 3, true, 2, 2, {"abc\x01"}, 4, false},
        {"CopyOfEmptyValueKeepsSohSeparate", empty, 0, true, 2, 2, {"", "\x01"}, 1, true},
        {"ExplicitLengthPassesEmbeddedNul", withNul, 5, false, 2, 2, {std::string("ab\0cd", 5)}, 5, false},
        {"ExplicitLengthShorterThanText", abc, 2, true, 0, 2, {"ab", "\x01"}, 3, true},
        {"NullBufferNeverGetsALength", nullptr, 5, false, 0, 2, {""}, 0, true},
    };
    for (const AppendCase& c : cases) {
        SCOPED_TRACE(c.name);
        WsaCollection coll(4);
        ASSERT_EQ(coll.Append("x", 1, nullptr, 0), 1);
        const unsigned short ordinal = coll.Append(c.buffer, c.length, c.trailing ? &kSoh : nullptr, c.mode);
        EXPECT_EQ(ordinal, c.ordinal);
        std::vector<std::string> expected{"x"};
        expected.insert(expected.end(), c.newSlots.begin(), c.newSlots.end());
        EXPECT_EQ(SlotTexts(coll), expected);
        EXPECT_EQ(coll.GetTotalLength(), 1 + c.addedLength);
        EXPECT_EQ(SlotOf(coll, static_cast<unsigned short>(ordinal - 1)).buf == c.buffer,
                  c.pointsAtCallerBuffer);
        if (c.trailing && c.newSlots.size() == 2) {
            EXPECT_EQ(SlotOf(coll, ordinal).buf, &kSoh);
        }
    }
}

TEST(WsaCollectionAppend, HandOverKeepsTheCallersPointer) {
    char* handed = new char[3]{'a', 'b', 'c'};
    WsaCollection coll(2);
    EXPECT_EQ(coll.Append(handed, 3, &kSoh, 1), 1);
    EXPECT_EQ(SlotOf(coll, 0).buf, handed);
    EXPECT_EQ(SlotTexts(coll), (std::vector<std::string>{"abc", "\x01"}));
} // the collection frees `handed`; the sanitizer build reports a leak or a double free otherwise

struct GrowthCase {
    const char* name;
    unsigned short initial;
    int appends;
    bool trailing;
    unsigned short capacity;
};

TEST(WsaCollectionGrowth, DoublesWhenFullUpToTheLimit) {
    const std::vector<GrowthCase> cases = {
        {"CapacityOneHoldsOne", 1, 1, false, 1},
        {"SecondAppendDoublesToTwo", 1, 2, false, 2},
        {"ThirdAppendDoublesToFour", 1, 3, false, 4},
        {"FifthAppendDoublesToEight", 1, 5, false, 8},
        {"NinthAppendDoublesToSixteen", 1, 9, false, 16},
        {"ZeroCapacityStartsAtOne", 0, 1, false, 1},
        {"ZeroCapacityThenTwo", 0, 2, false, 2},
        // A separate trailing slot needs a second free slot: growth happens before, not past the end.
        {"TrailingSlotNeedsRoomTooFromOne", 1, 1, true, 2},
        {"TrailingPairFitsWithoutGrowth", 3, 1, true, 3},
        {"TrailingSlotLastFreePairFits", 4, 2, true, 4},
        {"TrailingSlotWhenOneFreeLeftGrows", 5, 3, true, 10},
    };
    for (const GrowthCase& c : cases) {
        SCOPED_TRACE(c.name);
        WsaCollection coll(c.initial);
        for (int i = 0; i < c.appends; ++i)
            ASSERT_NE(coll.Append("v", 1, c.trailing ? &kSoh : nullptr, 0), 0);
        EXPECT_EQ(coll.GetCapacity(), c.capacity);
        EXPECT_EQ(coll.GetCount(), c.appends * (c.trailing ? 2 : 1));
        for (unsigned short i = 0; i < coll.GetCount(); ++i)
            EXPECT_EQ(SlotText(coll.GetWsaBufAt(i)), c.trailing && i % 2 == 1 ? "\x01" : "v");
    }
}

TEST(WsaCollectionGrowth, RefusesPastTheLimitAndChangesNothing) {
    struct LimitCase {
        const char* name;
        unsigned short initial;
        int filled;    // single-slot appends before the probe
        bool trailing; // the probe needs a separate trailing slot
        bool accepted;
        unsigned short capacity;
    };
    const std::vector<LimitCase> cases = {
        {"FullAt0x8000Refuses", 0x8000, 0x8000, false, false, 0x8000},
        {"GrowsFrom0x4000To0x8000", 0x4000, 0x4000, false, true, 0x8000},
        {"LastSlotAt0x8000StillTaken", 0x8000, 0x7FFF, false, true, 0x8000},
        {"LastSlotCannotTakeValueAndTrailing", 0x8000, 0x7FFF, true, false, 0x8000},
        {"CapacityAboveLimitNeverGrows", 0x9000, 0x9000, false, false, 0x9000},
    };
    for (const LimitCase& c : cases) {
        SCOPED_TRACE(c.name);
        WsaCollection coll(c.initial);
        for (int i = 0; i < c.filled; ++i) ASSERT_NE(coll.Append("v", 1, nullptr, 0), 0);
        const unsigned short count = coll.GetCount();
        const unsigned int total = coll.GetTotalLength();
        const unsigned short ordinal = coll.Append("w", 1, c.trailing ? &kSoh : nullptr, 0);
        EXPECT_EQ(ordinal != 0, c.accepted);
        EXPECT_EQ(coll.GetCapacity(), c.capacity);
        if (!c.accepted) {
            EXPECT_EQ(coll.GetCount(), count);
            EXPECT_EQ(coll.GetTotalLength(), total);
            EXPECT_FALSE(coll.SetTagAt(count, "w", 1, c.trailing ? &kSoh : nullptr, 0));
        } else {
            EXPECT_EQ(SlotText(coll.GetWsaBufAt(static_cast<unsigned short>(ordinal - 1))), "w");
        }
    }
}

struct SetCase {
    const char* name;
    unsigned int index;
    const char* buffer;
    unsigned int length;
    bool trailing;
    unsigned char mode;
    bool result;
    std::vector<std::string> slots; // starting from {"aa", "bbb"}
};

TEST(WsaCollectionSetTagAt, ReplacesAppendsOrRefuses) {
    static const char empty[] = "";
    const std::vector<SetCase> cases = {
        {"IndexAboveCountRefused", 3, "z", 1, false, 0, false, {"aa", "bbb"}},
        {"IndexEqualCountAppends", 2, "z", 1, false, 0, true, {"aa", "bbb", "z"}},
        {"AppendWithSohAddsTrailingSlot", 2, "z", 1, true, 0, true, {"aa", "bbb", "z", "\x01"}},
        {"ReplaceFirst", 0, "zzzz", 0, false, 0, true, {"zzzz", "bbb"}},
        {"ReplaceMiddleIgnoresTrailing", 0, "z", 1, true, 0, true, {"z", "bbb"}},
        {"ReplaceLastAddsTrailingSlot", 1, "z", 1, true, 0, true, {"aa", "z", "\x01"}},
        {"ReplaceLastCopyTakesTrailing", 1, "z", 1, true, 2, true, {"aa", "z\x01"}},
        {"EmptyValueLeavesZeroLength", 0, empty, 0, false, 2, true, {"", "bbb"}},
        {"EmptyCopyAtLastKeepsTrailingSlot", 1, empty, 0, true, 2, true, {"aa", "", "\x01"}},
    };
    for (const SetCase& c : cases) {
        SCOPED_TRACE(c.name);
        WsaCollection coll(2);
        coll.Append("aa", 2, nullptr, 2);
        coll.Append("bbb", 3, nullptr, 0);
        EXPECT_EQ(coll.SetTagAt(c.index, c.buffer, c.length, c.trailing ? &kSoh : nullptr, c.mode), c.result);
        EXPECT_EQ(SlotTexts(coll), c.slots);
        unsigned int total = 0;
        for (const std::string& s : c.slots) total += static_cast<unsigned int>(s.size());
        EXPECT_EQ(coll.GetTotalLength(), total);
        if (c.buffer == empty && c.result) {
            EXPECT_EQ(SlotOf(coll, static_cast<unsigned short>(c.index)).buf, empty);
        }
    }
}

TEST(WsaCollectionSetTagAt, GrowsInsteadOfWritingPastTheArray) {
    WsaCollection full(2);
    full.Append("a", 1, nullptr, 0);
    full.Append("b", 1, nullptr, 0);
    // Replacing the last slot of a full array with a separate trailing slot needs one more slot.
    EXPECT_TRUE(full.SetTagAt(1, "c", 1, &kSoh, 0));
    EXPECT_EQ(full.GetCapacity(), 4);
    EXPECT_EQ(SlotTexts(full), (std::vector<std::string>{"a", "c", "\x01"}));
    // Appending at count of a full array grows too.
    EXPECT_TRUE(full.SetTagAt(3, "d", 1, &kSoh, 0));
    EXPECT_EQ(full.GetCapacity(), 8);
    EXPECT_EQ(SlotTexts(full), (std::vector<std::string>{"a", "c", "\x01", "d", "\x01"}));
}

TEST(WsaCollectionReset, FreesOwnedKeepsCapacity) {
    WsaCollection coll(1);
    coll.Append("abc", 0, &kSoh, 2);
    coll.Append("def", 0, &kSoh, 0);
    const unsigned short capacity = coll.GetCapacity();
    coll.Reset();
    EXPECT_EQ(coll.GetCount(), 0);
    EXPECT_EQ(coll.GetTotalLength(), 0u);
    EXPECT_EQ(coll.GetCapacity(), capacity);
    EXPECT_EQ(coll.GetWsaBufAt(0), nullptr);
    EXPECT_EQ(coll.CalculateControlSum(), 0u);
    EXPECT_EQ(coll.Append("g", 1, nullptr, 0), 1);
    EXPECT_EQ(SlotTexts(coll), std::vector<std::string>{"g"});
}

TEST(WsaCollectionControlSum, AddsBytesAsSigned8Bit) {
    struct SumCase {
        const char* name;
        std::string bytes;
        unsigned int sum;
    };
    const std::vector<SumCase> cases = {
        {"Empty", "", 0u},
        {"Ascii", "8=FIX", 56u + 61u + 70u + 73u + 88u},
        {"HighByteIsNegative", "\x80", 0xFFFFFF80u},
        {"MinusOnePlusOneIsZero", "\xff\x01", 0u},
        {"Soh", "\x01", 1u},
    };
    for (const SumCase& c : cases) {
        SCOPED_TRACE(c.name);
        WSABUF slot{static_cast<std::uint32_t>(c.bytes.size()), const_cast<char*>(c.bytes.data())};
        const WSABUF* p = &slot;
        EXPECT_EQ(WsaCollection::CalculateItemControlSum(p), c.sum);
    }
    const WSABUF* none = nullptr;
    EXPECT_EQ(WsaCollection::CalculateItemControlSum(none), 0u);

    WsaCollection coll(4);
    coll.Append("ab", 0, &kSoh, 0);
    coll.Append("\xfe", 1, nullptr, 2);
    EXPECT_EQ(coll.CalculateControlSumAt(0), 97u + 98u);
    EXPECT_EQ(coll.CalculateControlSumAt(1), 1u);
    EXPECT_EQ(coll.CalculateControlSumAt(2), 0xFFFFFFFEu);
    EXPECT_EQ(coll.CalculateControlSumAt(3), 0u); // not below count
    EXPECT_EQ(coll.CalculateControlSum(), 97u + 98u + 1u - 2u);
}

TEST(WsaCollectionCopy, IsAViewThatSharesAndNeverChanges) {
    WsaCollection original(2);
    original.Append("abc", 0, &kSoh, 2);
    original.Append("def", 0, nullptr, 0);
    {
        WsaCollection view(original);
        EXPECT_TRUE(view.isView());
        EXPECT_FALSE(original.isView());
        EXPECT_EQ(view.GetWsaBufAt(0), original.GetWsaBufAt(0)); // the same slot array
        EXPECT_EQ(view.GetCount(), original.GetCount());
        EXPECT_EQ(view.GetTotalLength(), original.GetTotalLength());
        EXPECT_EQ(view.GetCapacity(), original.GetCapacity());
        EXPECT_EQ(view.Append("x", 1, nullptr, 2), 0);
        EXPECT_FALSE(view.SetTagAt(0, "x", 1, nullptr, 2));
        view.Reset();
        EXPECT_EQ(view.GetCount(), 2);
        EXPECT_EQ(SlotTexts(view), (std::vector<std::string>{"abc\x01", "def"}));
    } // the view goes first: the original's buffers stay valid
    EXPECT_EQ(SlotTexts(original), (std::vector<std::string>{"abc\x01", "def"}));

    WsaCollection target(1);
    target.Append("zz", 0, nullptr, 2);
    target = original;
    EXPECT_TRUE(target.isView());
    EXPECT_EQ(target.GetWsaBufAt(1), original.GetWsaBufAt(1));
    WsaCollection& alias = target;
    target = alias; // self-assignment keeps the view
    EXPECT_EQ(SlotTexts(target), SlotTexts(original));
}

// ---------------------------------------------------------------------------------------------

struct OwnershipCase {
    const char* name;
    std::function<void()> scenario; // runs with the allocation log on; may check releases as it goes
};

TEST(WsaCollectionOwnership, EachOwnedBufferIsReleasedExactlyOnce) {
    if (!LibraryAllocationsVisible())
        GTEST_SKIP() << "the library's allocator is its own here; the sanitizer build checks this natively";
    const std::vector<OwnershipCase> cases = {
        {"HandedOverBufferReleasedByDestructor",
         [] {
             char* handed = new char[4]{'a', 'b', 'c', 'd'};
             {
                 WsaCollection coll(1);
                 coll.Append(handed, 4, &kSoh, 1);
                 EXPECT_EQ(ReleasesOf(handed), 0);
             }
             EXPECT_EQ(ReleasesOf(handed), 1);
         }},
        {"CopiesReleasedByDestructorAfterGrowth",
         [] {
             WsaCollection coll(1);
             for (int i = 0; i < 20; ++i) coll.Append("copy", 0, &kSoh, 2);
         }},
        {"ReferencedBufferNeverReleased",
         [] {
             static char referenced[] = "ref";
             {
                 WsaCollection coll(1);
                 coll.Append(referenced, 0, &kSoh, 0);
                 coll.SetTagAt(0, "other", 0, nullptr, 0);
                 coll.Reset();
             }
             EXPECT_EQ(g_unknownReleases, 0);
         }},
        {"ReplacingOwnedSlotReleasesOldAtOnce",
         [] {
             WsaCollection coll(2);
             coll.Append("old", 0, nullptr, 2);
             const char* old = SlotOf(coll, 0).buf;
             coll.SetTagAt(0, "new", 0, nullptr, 0);
             EXPECT_EQ(ReleasesOf(old), 1);
         }},
        {"SettingTheSameOwnedBufferAgainKeepsIt",
         [] {
             char* handed = new char[2]{'h', 'i'};
             WsaCollection coll(2);
             coll.Append(handed, 2, nullptr, 1);
             coll.SetTagAt(0, handed, 2, nullptr, 1);
             EXPECT_EQ(ReleasesOf(handed), 0);
             EXPECT_EQ(SlotText(coll.GetWsaBufAt(0)), "hi");
         }},
        {"ResetReleasesOwnedOnce",
         [] {
             WsaCollection coll(2);
             coll.Append("a", 0, nullptr, 2);
             const char* copy = SlotOf(coll, 0).buf;
             coll.Reset();
             EXPECT_EQ(ReleasesOf(copy), 1);
             coll.Reset();
             EXPECT_EQ(ReleasesOf(copy), 1);
         }},
        {"ViewsReleaseNothing",
         [] {
             WsaCollection original(1);
             original.Append("a", 0, &kSoh, 2);
             const char* copy = SlotOf(original, 0).buf;
             {
                 WsaCollection view(original);
                 WsaCollection assigned(1);
                 assigned = view;
                 assigned = original;
             }
             EXPECT_EQ(ReleasesOf(copy), 0);
         }},
        {"AssignmentReleasesTargetsOwnBuffers",
         [] {
             WsaCollection source(1);
             source.Append("s", 0, nullptr, 2);
             WsaCollection target(1);
             target.Append("t", 0, nullptr, 2);
             const char* own = SlotOf(target, 0).buf;
             target = source;
             EXPECT_EQ(ReleasesOf(own), 1);
         }},
        {"BuilderHeaderAndOwnedFieldsReleasedOnce",
         [] {
             FixTagCollection builder(1, 0x0402, "FIX");
             builder.AppendUIntTag("34=", 12, 3);
             builder.AppendTagSenderCompId("SENDER", 0, 2);
             builder.Finalize("D");
             {
                 FixTagCollection view(builder);
                 EXPECT_FALSE(view.Finalize("D"));
             }
             builder.Reset();
             builder.AppendTag("11=", "order", 3, 0, 2, true);
             builder.UpdateTagSenderCompId("S2", 0, 2); // never appended since Reset: no change
             builder.Finalize("D");
         }},
    };
    for (const OwnershipCase& c : cases) {
        SCOPED_TRACE(c.name);
        AllocationLog log;
        c.scenario();
        EXPECT_TRUE(AllocationLog::AllReleasedOnce());
    }
}

} // namespace
