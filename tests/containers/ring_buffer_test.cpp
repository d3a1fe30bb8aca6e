// Ring buffer and ring buffer list on one thread: the placement rules at the wrap, in-place writing
// and reading, ring growth, overflow, and a model test that checks random operation sequences
// against a plain byte queue.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "VeloraUtils/RingBuffers.h"

namespace {

// Everything readable from the ring, both runs, without consuming.
std::string Content(RingBuffer& ring) {
    unsigned int length = 0, secondLength = 0;
    char* second = nullptr;
    const char* first = ring.Read(length, second, secondLength);
    std::string out = first == nullptr ? "" : std::string(first, length);
    if (second != nullptr) out.append(second, secondLength);
    return out;
}

std::string Content(RingBufferList& list) {
    LineBufferArray views(4);
    list.Read(views);
    std::string out;
    for (unsigned int i = 0; i < views.GetFilledBufferCount(); ++i)
        out.append(views.GetRingVector().At(i).GetData(), views.GetRingVector().At(i).GetLength());
    EXPECT_EQ(out.size(), views.GetTotalSize());
    return out;
}

// Brings an empty ring to read cursor `r` and write cursor `w` with the bytes "a", "b", ... from r
// on; wrapped data runs to the very end of the ring (filled in place, in either mode).
void Place(RingBuffer& ring, unsigned int r, unsigned int w) {
    const std::string filler(ring.GetSize(), '.');
    if (r != 0) {
        ASSERT_EQ(ring.Write(filler.data(), r), 0u);
        unsigned int count = r;
        ring.IncrementReadCursor(count);
    }
    std::string data;
    const unsigned int length = w >= r ? w - r : ring.GetSize() - r + w;
    for (unsigned int i = 0; i < length; ++i) data += static_cast<char>('a' + i);
    unsigned int done = 0;
    if (w < r) {
        unsigned int available = 0;
        char* place = ring.GetWriteBuffer(available);
        ASSERT_EQ(available, ring.GetSize() - r);
        std::memcpy(place, data.data(), available);
        ring.IncrementWriteCursor(available);
        done = available;
    }
    ASSERT_EQ(ring.Write(data.data() + done, length - done), 0u);
    ASSERT_EQ(ring.GetReadCursor(), r);
    ASSERT_EQ(ring.GetWriteCursor(), w);
}

TEST(RingBuffer, BlockWritePlacesBytesAtTheWrapAsTheRulesSay) {
    const struct Case {
        const char* name;
        unsigned int size, r, w;
        bool contiguous;
        unsigned int length, notWritten, wAfter, endPoint;
        const char* content;
    } cases[] = {
        {"size 8 holds at most 7 bytes", 8, 0, 0, false, 8, 1, 7, 8, "0123456"},
        {"block before the end is copied whole", 8, 2, 4, false, 3, 0, 7, 8, "ab012"},
        {"block reaching the end continues at 0", 8, 5, 6, false, 4, 0, 2, 8, "a0123"},
        {"wrapped block stops one byte before the reader", 8, 3, 6, false, 6, 2, 2, 8, "abc0123"},
        {"reader at 0: the tail keeps its last byte free", 8, 0, 5, false, 5, 3, 7, 8, "abcde01"},
        {"wrapped data: block fitting before the reader", 10, 6, 1, false, 3, 0, 4, 10, "abcde012"},
        {"wrapped data: partial block up to the reader", 10, 6, 1, false, 7, 3, 5, 10, "abcde0123"},
        {"contiguous: block goes whole to 0 before the reader", 8, 5, 6, true, 3, 0, 3, 6, "a012"},
        {"contiguous: refused whole when not before the reader", 8, 3, 6, true, 3, 3, 6, 8, "abc"},
        {"contiguous: wrapped data refuses a block that does not fit", 10, 6, 1, true, 5, 5, 1, 10, "abcde"},
        {"contiguous: a block exactly up to the end also goes to 0", 8, 4, 5, true, 3, 0, 3, 5, "a012"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RingBuffer ring(c.size, 0, c.contiguous);
        Place(ring, c.r, c.w);
        EXPECT_EQ(ring.Write("0123456789", c.length), c.notWritten);
        EXPECT_EQ(ring.GetWriteCursor(), c.wAfter);
        EXPECT_EQ(ring.GetEndPoint(), c.endPoint);
        EXPECT_EQ(Content(ring), c.content);
    }
}

TEST(RingBuffer, ByteAndTextWritesNeverUseTheLastPosition) {
    const struct Case {
        const char* name;
        unsigned int r, w;
        bool full;
        unsigned int wAfter, endPoint;
    } cases[] = {
        {"at the last byte the byte goes to 0", 3, 7, false, 1, 7},
        {"reader at 1: the last byte is not used, full", 1, 7, true, 7, 8},
        {"reader at 0: full", 0, 7, true, 7, 8},
        {"wrapped data full one before the reader", 4, 3, true, 3, 8},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RingBuffer ring(8, 0, false);
        Place(ring, c.r, c.w);
        EXPECT_EQ(ring.Write('z'), c.full);
        EXPECT_EQ(ring.GetWriteCursor(), c.wAfter);
        EXPECT_EQ(ring.GetEndPoint(), c.endPoint);
    }
    RingBuffer ring(8, 0, false);
    const char* text = "0123456789";
    EXPECT_EQ(ring.Write(text), text + 7) << "the first byte not written";
    EXPECT_EQ(Content(ring), "0123456");
    EXPECT_EQ(ring.Write(""), nullptr);
}

TEST(RingBuffer, RingIsAsLargeAsTheRaisedSize) {
    // The size is raised to minWriteSpace + 2; the buffer has that size too (under ASan a smaller
    // allocation would be caught by this write).
    RingBuffer ring(4, 10, false);
    EXPECT_EQ(ring.GetSize(), 12u);
    const std::string data = "ABCDEFGHIJK";
    EXPECT_EQ(ring.Write(data.data(), 11), 0u);
    EXPECT_EQ(Content(ring), data);
    RingBuffer copy(ring);
    ring.Reset();
    EXPECT_EQ(Content(copy), data) << "copies own their bytes";
    ring = copy;
    EXPECT_EQ(Content(ring), data);
}

TEST(RingBuffer, InPlaceWritingHandsOutContiguousSpace) {
    const struct Case {
        const char* name;
        unsigned int minWriteSpace, r, w;
        bool given;
        unsigned int available, wAfter, endPoint;
    } cases[] = {
        {"empty ring at 0 keeps one byte free", 0, 0, 0, true, 11, 0, 12},
        {"tail to the end when the reader is not at 0", 3, 4, 6, true, 6, 6, 12},
        {"short tail wraps early to 0", 5, 8, 10, true, 7, 0, 10},
        {"short tail and short head: null, nothing moves", 5, 4, 10, false, 3, 10, 12},
        {"an empty ring smaller than twice the minimum can refuse", 8, 6, 6, false, 5, 6, 12},
        {"wrapped data: the space up to the reader", 0, 9, 2, true, 6, 2, 12},
        {"full ring gives 0", 0, 5, 4, false, 0, 4, 12},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RingBuffer ring(12, c.minWriteSpace, false);
        Place(ring, c.r, c.w);
        unsigned int available = 99;
        char* place = ring.GetWriteBuffer(available);
        EXPECT_EQ(place != nullptr, c.given);
        EXPECT_EQ(available, c.available);
        EXPECT_EQ(ring.GetWriteCursor(), c.wAfter);
        EXPECT_EQ(ring.GetEndPoint(), c.endPoint);
    }
    // Filling the tail exactly wraps the write cursor to 0 and the data then runs to the very end,
    // even after an earlier early wrap had moved the end point.
    RingBuffer ring(12, 5, false);
    Place(ring, 8, 10);
    unsigned int available = 0;
    ring.GetWriteBuffer(available); // wraps early: end point 10
    ASSERT_EQ(ring.GetEndPoint(), 10u);
    unsigned int count = 2;
    EXPECT_FALSE(ring.IncrementReadCursor(count));
    ring.Write("xyz", 3);
    count = 3;
    ring.IncrementReadCursor(count);
    char* place = ring.GetWriteBuffer(available);
    ASSERT_EQ(available, 9u);
    std::memcpy(place, "ABCDEFGHI", 9);
    EXPECT_TRUE(ring.IncrementWriteCursor(9)) << "the ring was empty";
    EXPECT_EQ(ring.GetWriteCursor(), 0u);
    EXPECT_EQ(ring.GetEndPoint(), 12u);
    EXPECT_EQ(Content(ring), "ABCDEFGHI");
}

TEST(RingBuffer, ReadingConsumesInPlaceAndLeavesTheExcess) {
    RingBuffer ring(8, 0, false);
    Place(ring, 5, 3); // "abcdef" wrapped: "abc" at 5..7, "def" at 0..2
    unsigned int length = 0, secondLength = 0;
    char* second = nullptr;
    ASSERT_NE(ring.Read(length, second, secondLength), nullptr);
    EXPECT_EQ(length, 3u);
    EXPECT_EQ(std::string(second, secondLength), "def");
    char c = 0;
    EXPECT_TRUE(ring.Read(c));
    EXPECT_EQ(c, 'a');
    EXPECT_EQ(ring.PeepNextChar(), 'a');

    unsigned int cursor = 8; // a look-ahead cursor at the end point moves to 0
    const char* ahead = ring.ReadFromCursor(cursor, length, second, secondLength);
    EXPECT_EQ(std::string(ahead, length), "def");
    EXPECT_EQ(cursor, 0u);

    const struct Case {
        const char* name;
        unsigned int count, excess;
        bool remains;
        unsigned int rAfter;
    } cases[] = {
        {"within the first run", 2, 0, true, 7},
        {"across the wrap continues from 0", 2, 0, true, 1},
        {"beyond the data: cut, excess left in count", 9, 7, false, 3},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        unsigned int count = k.count;
        EXPECT_EQ(ring.IncrementReadCursor(count), k.remains);
        EXPECT_EQ(count, k.excess);
        EXPECT_EQ(ring.GetReadCursor(), k.rAfter);
    }
    EXPECT_TRUE(ring.isEmpty());
    EXPECT_TRUE(ring.isDirty()) << "a drained ring is dirty";
    EXPECT_FALSE(ring.Read(c));
    ring.Write("xyz", 3);
    ring.Skip();
    EXPECT_TRUE(ring.isEmpty());
}

TEST(RingBuffer, SlotWritesAdvanceTheCallersSlots) {
    char one[] = "abc", two[] = "defgh", three[] = "ij";
    WSABUF slots[] = {{3, one}, {0, nullptr}, {5, two}, {2, three}};
    WSABUF* cursor = slots;
    unsigned int count = 4;
    RingBuffer ring(8, 0, false);
    EXPECT_EQ(ring.Write(cursor, count, 0), 3u) << "7 of 10 bytes fit";
    EXPECT_EQ(Content(ring), "abcdefg");
    EXPECT_EQ(cursor, slots + 2);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(std::string(cursor->buf, cursor->len), "h") << "the slot written in part now holds its rest";
    unsigned int consumed = 7;
    ring.IncrementReadCursor(consumed);
    EXPECT_EQ(ring.Write(cursor, count, 0), 0u);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Content(ring), "hij");
    // A total below the slots' sum writes only that many bytes.
    WSABUF again[] = {{3, one}, {5, two}};
    cursor = again;
    count = 2;
    EXPECT_EQ(ring.Write(cursor, count, 4), 0u);
    EXPECT_EQ(Content(ring), "hijabcd");
}

TEST(RingBufferList, NewRingsGrowToTheHighSize) {
    RingBufferList list(16, 100, 4, 2, false);
    EXPECT_EQ(list.GetHighSize(), 100u);
    RingBufferList low(50, 10, 1, 2, false);
    EXPECT_EQ(low.GetHighSize(), 50u) << "never below the initial size";
    EXPECT_EQ(low.GetMaxRings(), 2u);
    const struct { unsigned int minSize, size; } steps[] = {{0, 32}, {0, 64}, {0, 100}, {500, 500}, {0, 100}};
    for (const auto& step : steps) {
        RingBuffer* ring = list.CreateRing(step.minSize);
        EXPECT_EQ(ring->GetSize(), step.size) << "a large block gets a ring of its own size, once";
        delete ring;
    }
    // Reset starts again with a ring of the current next size, not the first size.
    list.Write("abc", 3);
    list.Reset();
    EXPECT_TRUE(list.isEmpty());
    unsigned int available = 0;
    list.GetWriteBuffer(available);
    EXPECT_EQ(available, 99u);
}

TEST(RingBufferList, OverflowRefusesWritesUntilDrainedAndReset) {
    RingBufferList list(8, 16, 2, 0, false);
    const std::string data = "0123456789abcdefghijklmnop";
    EXPECT_EQ(list.Write(data.data(), 7), 0u);
    EXPECT_EQ(list.Write(data.data() + 7, 5), 0u) << "the rest goes to a new ring of 16";
    EXPECT_EQ(list.GetWriteRing(), 1u);
    EXPECT_EQ(list.Write(data.data() + 12, 14), 4u)
        << "the second ring fills; the next place is the reader's";
    EXPECT_TRUE(list.isOverflow());
    EXPECT_FALSE(list.isNotifyPending()) << "an overflow wakes nobody";
    unsigned int available = 5;
    EXPECT_EQ(list.GetWriteBuffer(available), nullptr);
    EXPECT_EQ(available, 0u);
    EXPECT_EQ(Content(list), data.substr(0, 22)) << "data written before the overflow stays readable";

    EXPECT_TRUE(list.IncrementReadCursor(10));
    EXPECT_FALSE(list.ResetOverflow()) << "not drained yet";
    EXPECT_FALSE(list.IncrementReadCursor(20)) << "the excess runs into the second ring";
    EXPECT_EQ(list.GetReadRing(), 1u) << "the first ring was freed";
    EXPECT_TRUE(list.ResetOverflow());
    EXPECT_FALSE(list.isOverflow());
    EXPECT_EQ(list.GetReadCursor(), 0u);
    EXPECT_EQ(list.Write("xyz", 3), 0u);
    EXPECT_EQ(Content(list), "xyz");
}

TEST(RingBufferList, WritesOfEveryFormCrossRingsInOrder) {
    RingBufferList list(8, 32, 8, 0, true);
    EXPECT_EQ(list.Write("abcde", 5), 0u);
    EXPECT_EQ(list.Write("fghij", 5), 0u) << "contiguous: refused whole, goes whole to a new ring";
    EXPECT_EQ(list.GetWriteRing(), 1u);
    char one[] = "KLMN", two[] = "OPQRSTUVWXYZ";
    WSABUF slots[] = {{4, one}, {12, two}};
    EXPECT_EQ(list.Write(slots, 2, 0), 0u);
    EXPECT_EQ(slots[0].len, 4u) << "the list leaves the caller's slots as they are";
    EXPECT_EQ(list.Write("0123456789"), nullptr);
    EXPECT_FALSE(list.Write('!'));
    EXPECT_EQ(Content(list), "abcdefghijKLMNOPQRSTUVWXYZ0123456789!");
    unsigned int length = 0, secondLength = 0;
    char* second = nullptr;
    const char* first = list.Read(length, second, secondLength);
    EXPECT_EQ(std::string(first, length), "abcde");
    EXPECT_TRUE(list.IncrementReadCursor(5));
    char c = 0;
    EXPECT_TRUE(list.Read(c)) << "moves on from the drained ring the writer has left";
    EXPECT_EQ(c, 'f');
    list.Skip();
    EXPECT_TRUE(list.isEmpty());
    EXPECT_TRUE(list.isNotifyPending());
    EXPECT_EQ(list.GetReadRing(), list.GetWriteRing());
}

// ---------------------------------------------------------------------------------------------
// Model test: random operations against a byte queue. Byte i of the stream is 1 + i % 251, so a
// lost, repeated or reordered byte shows (and text writes never meet a NUL).
// ---------------------------------------------------------------------------------------------

struct Model {
    std::deque<char> bytes;
    unsigned long long next = 0;
    std::string Take(unsigned int n) const {
        std::string out;
        for (unsigned int i = 0; i < n; ++i) out += static_cast<char>(1 + (next + i) % 251);
        return out;
    }
    void Accept(const std::string& data, unsigned int n) {
        bytes.insert(bytes.end(), data.begin(), data.begin() + n);
        next += n;
    }
    std::string All() const { return std::string(bytes.begin(), bytes.end()); }
    unsigned int Held() const { return static_cast<unsigned int>(bytes.size()); }
    void Consume(unsigned int n) { bytes.erase(bytes.begin(), bytes.begin() + std::min(n, Held())); }
};

// Bytes a block write of `length` must take into `ring` as it is now (the placement rules).
unsigned int ExpectedBlockTaken(const RingBuffer& ring, unsigned int length) {
    const unsigned int r = ring.GetReadCursor(), w = ring.GetWriteCursor(), size = ring.GetSize();
    if (w < r) return w + length < r ? length : ring.isContiguous() ? 0 : r - w - 1;
    if (w + length < size) return length;
    if (ring.isContiguous()) return r > length ? length : 0;
    const unsigned int tail = size - w - (r == 0 ? 1 : 0);
    return r == 0 ? tail : tail + std::min(length - tail, r - 1);
}

// Bytes that `length` single-byte writes must take (the byte rules, the last position unused).
unsigned int ExpectedBytesTaken(const RingBuffer& ring, unsigned int length) {
    const unsigned int r = ring.GetReadCursor(), size = ring.GetSize();
    unsigned int w = ring.GetWriteCursor(), taken = 0;
    for (; taken < length; ++taken) {
        if (w < r ? w + 1 < r : w + 1 < size)
            ++w;
        else if (r <= w && r > 1)
            w = 1;
        else
            break;
    }
    return taken;
}

// Splits `data` into 1-3 slots.
std::vector<WSABUF> Slots(std::string& data, std::mt19937& rng) {
    std::vector<WSABUF> slots;
    unsigned int at = 0;
    const auto size = static_cast<unsigned int>(data.size());
    while (at < size || slots.empty()) {
        const unsigned int n =
            slots.size() == 2 ? size - at : std::uniform_int_distribution<unsigned int>(0, size - at)(rng);
        slots.push_back({n, data.data() + at});
        at += n;
    }
    return slots;
}

TEST(RingBufferModel, RandomOperationsMatchAByteQueue) {
    std::mt19937 rng(20240611);
    auto pick = [&](unsigned int lo, unsigned int hi) {
        return std::uniform_int_distribution<unsigned int>(lo, hi)(rng);
    };
    for (int round = 0; round < 60; ++round) {
        const bool contiguous = round % 2 == 1;
        const unsigned int minWriteSpace = pick(0, 4);
        RingBuffer ring(pick(2, 24), minWriteSpace, contiguous);
        RingBufferList list(pick(4, 16), pick(8, 48), pick(2, 4), minWriteSpace, contiguous);
        Model ringModel, listModel;
        for (int step = 0; step < 400; ++step) {
            const unsigned int op = pick(0, 8);
            // The ring: every write by its placement rules; reads see exactly the queue.
            const unsigned int length = pick(0, ring.GetSize() + 4);
            std::string data = ringModel.Take(length);
            const unsigned int blockTaken = ExpectedBlockTaken(ring, length),
                               bytesTaken = ExpectedBytesTaken(ring, op == 3 ? std::min(length, 1u) : length);
            if (op == 0) {
                ASSERT_EQ(ring.Write(data.data(), length), length - blockTaken);
                ringModel.Accept(data, blockTaken);
            } else if (op == 1) {
                std::vector<WSABUF> slots = Slots(data, rng);
                WSABUF* cursor = slots.data();
                auto count = static_cast<unsigned int>(slots.size());
                ASSERT_EQ(ring.Write(cursor, count, 0), length - blockTaken);
                ASSERT_EQ(count == 0, blockTaken == length);
                ringModel.Accept(data, blockTaken);
            } else if (op == 2) {
                ASSERT_EQ(ring.Write(data.c_str()),
                          bytesTaken == length ? nullptr : data.c_str() + bytesTaken);
                ringModel.Accept(data, bytesTaken);
            } else if (op == 3 && length != 0) {
                ASSERT_EQ(ring.Write(data[0]), bytesTaken == 0);
                ringModel.Accept(data, bytesTaken);
            } else if (op == 4) {
                unsigned int available = 0;
                if (char* place = ring.GetWriteBuffer(available)) {
                    ASSERT_GE(available, minWriteSpace);
                    const unsigned int n = std::min(length, available);
                    std::memcpy(place, data.data(), n);
                    ring.IncrementWriteCursor(n);
                    ringModel.Accept(data, n);
                }
            } else {
                ASSERT_EQ(Content(ring), ringModel.All());
                const unsigned int held = ringModel.Held();
                const unsigned int asked = pick(0, held + 3);
                unsigned int count = asked;
                ASSERT_EQ(ring.IncrementReadCursor(count), asked < held);
                ASSERT_EQ(count, asked > held ? asked - held : 0u) << "the excess is left in count";
                ringModel.Consume(asked);
            }
            ASSERT_LT(ringModel.Held(), ring.GetSize());

            // The list: refuses nothing outside overflow and everything in overflow.
            unsigned int listLength = pick(0, 40);
            std::string listData = listModel.Take(listLength);
            const bool wasOverflow = list.isOverflow();
            unsigned int notWritten = 0;
            bool inPlace = false;
            if (op == 0) {
                notWritten = list.Write(listData.data(), listLength);
            } else if (op == 1) {
                std::vector<WSABUF> slots = Slots(listData, rng);
                notWritten = list.Write(slots.data(), static_cast<unsigned int>(slots.size()), 0);
            } else if (op == 2) {
                const char* rest = list.Write(listData.c_str());
                notWritten = rest == nullptr ? 0 : static_cast<unsigned int>(std::strlen(rest));
            } else if (op == 3) {
                listLength = std::min(listLength, 1u);
                if (listLength != 0) notWritten = list.Write(listData[0]) ? 1 : 0;
            } else if (op == 4) {
                inPlace = true;
                unsigned int available = 0;
                char* place = list.GetWriteBuffer(available);
                const unsigned int n = place == nullptr ? 0 : std::min(listLength, available);
                if (place != nullptr) {
                    std::memcpy(place, listData.data(), n);
                    list.IncrementWriteCursor(n);
                }
                notWritten = listLength - n;
            } else {
                ASSERT_EQ(Content(list), listModel.All());
                const unsigned int held = listModel.Held();
                const unsigned int count = pick(0, held + 2);
                ASSERT_EQ(list.IncrementReadCursor(count), count < held);
                listModel.Consume(count);
                ASSERT_EQ(list.ResetOverflow(), wasOverflow && listModel.bytes.empty());
                continue;
            }
            if (!inPlace && listLength != 0) {
                ASSERT_EQ(notWritten != 0, list.isOverflow()) << "refused only in overflow";
            }
            if (wasOverflow) {
                ASSERT_EQ(notWritten, listLength) << "in overflow nothing is written";
            }
            listModel.Accept(listData, listLength - notWritten);
        }
        ASSERT_EQ(Content(list), listModel.All());
    }
}

} // namespace
