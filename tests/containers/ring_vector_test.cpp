// Ring vector: the documented cases and the placements kept as they always were, a deque model over
// random operations in growing and fixed mode, the template's other element policies, and the
// iterators with the allocation hooks their memory comes from.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <new>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "VeloraUtils/LineBuffers.h"
#include "VeloraUtils/MemoryHooks.h"
#include "VeloraUtils/RingVector.h"

namespace {

// Every item records its destruction, by the ring or by a test that took it over: a leak or a
// double delete shows in the tally.
std::vector<int> destructions; // per item, in creation order
std::vector<int> destroyedByRing, takenOver;
bool takingOver = false;
std::size_t liveItems = 0;

class Counted final : public RingVectorBaseItem {
public:
    explicit Counted(int value) : value_(value), serial_(destructions.size()) {
        destructions.push_back(0);
        ++liveItems;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() override {
        EXPECT_EQ(destructions[serial_]++, 0) << "item " << value_ << " deleted twice";
        (takingOver ? takenOver : destroyedByRing).push_back(value_);
        --liveItems;
    }
    RingVectorBaseItem* Clone() const override { return new Counted(value_); }
    bool IsEqual(const RingVectorBaseItem& other) const override {
        return static_cast<const Counted&>(other).value_ == value_;
    }
    const int value_;
    const std::size_t serial_;
};

void ResetTally() {
    destructions.clear();
    destroyedByRing.clear();
    takenOver.clear();
    liveItems = 0;
}

void TakeOver(RingVectorBaseItem* item) {
    takingOver = true;
    delete item;
    takingOver = false;
}

bool EachDestroyedOnce() {
    return std::all_of(destructions.begin(), destructions.end(), [](int n) { return n == 1; });
}

int Value(const RingVectorBaseItem* item) {
    return item == nullptr ? -1 : static_cast<const Counted*>(item)->value_;
}

// Steps separated by blanks: bN / fN push item N at the back / front; eN / EN fill the slot of
// push_back_empty / push_front_empty with N, taking over the item the slot still holds; iK:N inserts
// N at K, taking over the first item when a full fixed ring overwrites it; B / F pop the back /
// front; rN reserve; aN ReserveAdditional; c clear; x asks ReserveAdditional for the impossible.
void Play(VeloraRingVector& ring, const std::string& script) {
    std::istringstream steps(script);
    for (std::string step; steps >> step;) {
        const std::size_t colon = step.find(':');
        const int n =
            step.size() == 1 ? 0 : std::stoi(step.substr(colon == std::string::npos ? 1 : colon + 1));
        const char op = step[0];
        if (op == 'b' || op == 'f') {
            op == 'b' ? ring.push_back(new Counted(n)) : ring.push_front(new Counted(n));
        } else if (op == 'e' || op == 'E') {
            RingVectorBaseItem*& slot = op == 'e' ? ring.push_back_empty() : ring.push_front_empty();
            TakeOver(slot);
            slot = new Counted(n);
        } else if (op == 'i') {
            const auto index = std::stoull(step.substr(1));
            const bool full = ring.GetRing().isFixedSize() && ring.size() == ring.capacity();
            RingVectorBaseItem* first = index == 0 && full ? ring.at(0) : nullptr;
            ring.insert(index, new Counted(n));
            TakeOver(first);
        } else if (op == 'B' || op == 'F') {
            op == 'B' ? ring.pop_back() : ring.pop_front();
        } else if (op == 'r' || op == 'a') {
            const auto count = static_cast<std::uint64_t>(n);
            op == 'r' ? ring.reserve(count) : ring.ReserveAdditional(count);
        } else if (op == 'c') {
            ring.clear();
        } else {
            ASSERT_EQ(op, 'x');
            EXPECT_THROW(ring.ReserveAdditional(UINT64_MAX), std::bad_alloc);
        }
    }
}

TEST(RingVector, DocumentedCasesAndKeptPlacements) {
    const struct {
        const char* name;
        std::uint64_t capacity;
        std::string flags;
        const char* script;
        std::vector<int> expected; // at(0) .. at(size - 1); -1 is null
        std::vector<int> destroyed, handedOver;
        std::uint64_t capacityAfter, frontIndex, backIndex;
    } cases[] = {
        // clang-format off
        // name, capacity, f(ixed) k(eepNewest), script, at(), destroyed, handed over, capacity, indices
        {"FixedRingDropsTheOldest", 3, "f", "b1 b2 b3 b4", {2, 3, 4}, {1}, {}, 3, 1, 0},
        {"GrowingRingDoubles", 2, "", "b1 b2 b3", {1, 2, 3}, {}, {}, 4, 0, 2},
        {"ZeroCapacityIsOne", 0, "", "b5 b6", {5, 6}, {}, {}, 2, 0, 1},
        {"ShrinkKeepsTheNewest", 4, "k", "b1 b2 b3 b4 r2", {3, 4}, {1, 2}, {}, 2, 0, 1},
        {"ShrinkKeepsTheOldest", 4, "", "b1 b2 b3 b4 r2", {1, 2}, {3, 4}, {}, 2, 0, 1},
        {"ReserveZeroIsOne", 4, "k", "b1 b2 r0", {2}, {1}, {}, 1, 0, 0},
        {"PushFrontOnFullFixedDropsTheNewest", 3, "f", "b1 b2 b3 f0", {0, 1, 2}, {3}, {}, 3, 2, 1},
        {"InsertOnEmptyLandsAfterTheFrontSlot", 4, "", "i0:7", {-1}, {}, {}, 4, 0, 1},
        {"InsertOnEmptyThenPopFrontDestroysIt", 4, "", "i0:7 F", {}, {7}, {}, 4, 0, 0},
        {"InsertAt0OnFullHandsOverTheFirst", 3, "f", "b1 b2 b3 i0:9", {9, 2, 3}, {}, {1}, 3, 0, 2},
        {"InsertNearBackOfFullDropsOldest", 4, "f", "b1 b2 b3 b4 i3:9", {2, 3, 9, 4}, {1}, {}, 4, 1, 0},
        {"InsertNearFrontOfFullDropsNewest", 4, "f", "b1 b2 b3 b4 i1:9", {1, 9, 2, 3}, {4}, {}, 4, 3, 2},
        {"InsertPastEndOfFullDropsOldest", 4, "f", "b1 b2 b3 b4 i9:9", {2, 3, 4, 9}, {1}, {}, 4, 1, 0},
        {"InsertMovesShorterSide", 8, "", "b1 b2 b3 b4 b5 i2:8 i5:9", {1, 2, 8, 3, 4, 9, 5}, {}, {}, 8, 7, 5},
        {"BackEmptyOnFullHandsOverOldest", 3, "f", "b1 b2 b3 e4", {2, 3, 4}, {}, {1}, 3, 1, 0},
        {"FrontEmptyOnFullHandsOverNewest", 3, "f", "b1 b2 b3 E0", {0, 1, 2}, {}, {3}, 3, 2, 1},
        {"PopsOnEmptyDoNothing", 2, "", "B F", {}, {}, {}, 2, 0, 0},
        {"PoppingTheLastResetsTheIndices", 4, "", "b1 b2 b3 F F B", {}, {1, 2, 3}, {}, 4, 0, 0},
        {"ReserveAdditionalDoublesUntilItFits", 3, "", "b1 b2 a5", {1, 2}, {}, {}, 12, 0, 1},
        {"FittingReserveAdditionalKeepsArray", 4, "", "b1 b2 b3 b4 F b5 a0", {2, 3, 4, 5}, {1}, {}, 4, 1, 0},
        {"ImpossibleReserveFailsAsAllocation", 2, "", "b1 b2 b3 x", {1, 2, 3}, {}, {}, 4, 0, 2},
        {"ClearKeepsTheCapacity", 2, "", "b1 b2 b3 c", {}, {1, 2, 3}, {}, 4, 0, 0},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResetTally();
        {
            VeloraRingVector ring(c.capacity, c.flags.find('f') != std::string::npos,
                                  c.flags.find('k') != std::string::npos);
            Play(ring, c.script);
            std::vector<int> contents;
            for (std::uint64_t i = 0; i < ring.size(); ++i) contents.push_back(Value(ring.at(i)));
            EXPECT_EQ(contents, c.expected);
            std::sort(destroyedByRing.begin(), destroyedByRing.end());
            EXPECT_EQ(destroyedByRing, c.destroyed);
            EXPECT_EQ(takenOver, c.handedOver) << "handed over, not deleted by the ring";
            EXPECT_EQ(ring.capacity(), c.capacityAfter);
            EXPECT_EQ(ring.GetRing().GetFrontIndex(), c.frontIndex);
            EXPECT_EQ(ring.GetRing().GetBackIndex(), c.backIndex);
        }
        EXPECT_TRUE(EachDestroyedOnce()) << "the destructor deletes what the ring still holds, once";
    }
}

// Drains an iterator through the exported walk and deletes it.
std::vector<RingVectorBaseItem*> Walk(VeloraRingVectorItemIterator* iterator) {
    std::vector<RingVectorBaseItem*> items;
    while (RingVectorBaseItem* item = U_GetNextVeloraRingVectorItem(iterator)) items.push_back(item);
    EXPECT_EQ(iterator->Current(), nullptr);
    delete iterator;
    return items;
}

// Positions from both ends, the operator, and both iterators against the model.
void ExpectMatches(VeloraRingVector& ring, const std::deque<RingVectorBaseItem*>& model, unsigned skip) {
    const std::uint64_t size = model.size();
    ASSERT_EQ(ring.size(), size);
    const VeloraRingVector& constRing = ring;
    for (std::uint64_t i = 0; i < size; ++i) {
        ASSERT_EQ(ring.at(i), model[i]);
        ASSERT_EQ(constRing[i], model[i]);
        ASSERT_EQ(ring.fromBack(i), model[size - 1 - i]);
    }
    EXPECT_EQ(ring.at(size), nullptr);
    EXPECT_EQ(constRing.fromBack(size), nullptr);
    EXPECT_EQ(ring.front(), size == 0 ? nullptr : model.front());
    EXPECT_EQ(constRing.back(), size == 0 ? nullptr : model.back());
    EXPECT_EQ(ring.back(), ring.fromBack(0));

    VeloraRingVectorItemIterator* forward = U_CreateVeloraRingVectorIterator(&ring);
    ASSERT_NE(forward, nullptr);
    EXPECT_EQ(forward->GetCount(), size);
    forward->Skip(skip);
    EXPECT_EQ(forward->GetCurrentItem(), skip < size ? model[skip] : nullptr);
    forward->Reset();
    EXPECT_EQ(Walk(forward), std::vector<RingVectorBaseItem*>(model.begin(), model.end()));
    EXPECT_EQ(Walk(U_CreateReverseVeloraRingVectorIterator(&ring)),
              std::vector<RingVectorBaseItem*>(model.rbegin(), model.rend()));
}

// One ring against a deque of the same items. A fixed ring drops from the end away from the add
// (for a middle insert: the front when index > size / 2); the ring deletes what it drops, except what
// it hands over (the _empty adds, insert at 0 on a full fixed ring), which the caller deletes.
void RunModel(bool fixed, std::uint64_t startCapacity, std::mt19937& rng) {
    const bool keepNewest = startCapacity % 2 == 1;
    VeloraRingVector ring(startCapacity, fixed, keepNewest);
    std::deque<RingVectorBaseItem*> model;
    std::uint64_t capacity = startCapacity;
    int next = 0;
    auto fullAfterGrowth = [&] {
        if (!fixed && model.size() == capacity) capacity *= 2;
        return model.size() == capacity;
    };
    for (int step = 0; step < 1500; ++step) {
        const auto op = static_cast<unsigned>(rng() % 12);
        const auto random = static_cast<std::uint64_t>(rng());
        const bool atBack = random % 2 == 0;
        if (op <= 1) { // push
            auto* item = new Counted(next++);
            const bool drop = fullAfterGrowth();
            atBack ? ring.push_back(item) : ring.push_front(item);
            atBack ? model.push_back(item) : model.push_front(item);
            if (drop) atBack ? model.pop_front() : model.pop_back();
        } else if (op == 2) { // push_*_empty
            const bool drop = fullAfterGrowth();
            RingVectorBaseItem*& slot = atBack ? ring.push_back_empty() : ring.push_front_empty();
            ASSERT_EQ(slot, drop ? (atBack ? model.front() : model.back()) : nullptr);
            if (drop) atBack ? model.pop_front() : model.pop_back();
            TakeOver(slot);
            slot = new Counted(next++);
            atBack ? model.push_back(slot) : model.push_front(slot);
        } else if (op <= 4) { // pop
            atBack ? ring.pop_back() : ring.pop_front();
            if (!model.empty()) atBack ? model.pop_back() : model.pop_front();
        } else if (op <= 6 && !model.empty()) { // insert (on an empty ring: a case of its own)
            const std::uint64_t size = model.size(), index = random % (size + 2);
            auto* item = new Counted(next++);
            const bool drop = fullAfterGrowth();
            RingVectorBaseItem* overwritten = drop && index == 0 ? model.front() : nullptr;
            ring.insert(index, item);
            model.insert(model.begin() + static_cast<std::ptrdiff_t>(std::min(index, size)), item);
            if (overwritten != nullptr) {
                model.erase(model.begin() + 1);
                TakeOver(overwritten);
            } else if (drop) {
                index > size / 2 ? model.pop_front() : model.pop_back();
            }
        } else if (op == 7) {
            const std::uint64_t n = random % (2 * startCapacity + 3), target = std::max<std::uint64_t>(n, 1);
            ring.reserve(n);
            while (model.size() > target) keepNewest ? model.pop_front() : model.pop_back();
            capacity = target;
        } else if (op == 8) {
            const std::uint64_t additional = random % (startCapacity + 3);
            ring.ReserveAdditional(additional);
            while (capacity < model.size() + additional) capacity *= 2;
        } else if (op == 9 && random % 4 == 0) {
            ring.clear();
            model.clear();
        } else if (op == 10) { // copies are deep, equal and independent; the clones die with them
            VeloraRingVector copy(ring), assigned(1);
            EXPECT_TRUE(copy == ring);
            EXPECT_EQ(copy.GetRing().GetFrontIndex(), ring.GetRing().GetFrontIndex());
            for (std::uint64_t i = 0; i < model.size(); ++i) ASSERT_NE(copy.at(i), ring.at(i));
            copy.push_back(new Counted(-2));
            EXPECT_FALSE(copy == ring);
            assigned.push_back(new Counted(-3));
            assigned = ring;
            EXPECT_TRUE(assigned == ring);
            EXPECT_EQ(assigned.capacity(), ring.capacity());
        }
        ASSERT_EQ(ring.capacity(), capacity) << "step " << step << " op " << op;
        ASSERT_EQ(liveItems, model.size()) << "step " << step << " op " << op;
        ExpectMatches(ring, model, static_cast<unsigned>(random % 4));
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(RingVector, MatchesADequeModelOverRandomOperations) {
    std::mt19937 rng(20240611);
    for (bool fixed : {false, true}) {
        for (std::uint64_t capacity : {1u, 2u, 3u, 5u, 8u}) {
            SCOPED_TRACE(testing::Message() << (fixed ? "fixed " : "growing ") << capacity);
            ResetTally();
            RunModel(fixed, capacity, rng);
            if (HasFatalFailure()) return;
            EXPECT_TRUE(EachDestroyedOnce());
        }
    }
}

struct Plain {
    int value;
    bool operator==(const Plain&) const = default;
};

TEST(RingVector, TemplateServesNumbersViewsAndBorrowedOrPlainItems) {
    RingVector<unsigned short> numbers(3, true, true);
    for (int v : {1, 2, 3, 4}) numbers.push_back(static_cast<unsigned short>(v));
    numbers.insert(1, 9);
    RingVector<unsigned short> copy = numbers;
    copy.push_front(7);
    EXPECT_EQ(std::vector<unsigned short>(numbers.begin(), numbers.end()),
              (std::vector<unsigned short>{2, 9, 3}));
    EXPECT_EQ(std::vector<unsigned short>(copy.rbegin(), copy.rend()),
              (std::vector<unsigned short>{9, 2, 7}));
    EXPECT_EQ(numbers.at(3), 0) << "out of range is the empty value";

    RingVector<LineBuffer> views(1);
    views.push_back(LineBuffer(3, "abc"));
    views.push_front(LineBuffer(2, "de"));
    EXPECT_EQ(views.back().GetLength(), 3u);
    EXPECT_EQ(views.at(2).GetData(), nullptr);

    ResetTally();
    {
        Counted a(1), b(2), c(3);
        RingVectorPtr<Counted*> borrowed(2);
        for (Counted* item : {&a, &b, &c}) borrowed.push_back(item);
        RingVectorPtr<Counted*> shared(borrowed);
        EXPECT_EQ(shared.at(2), &c) << "copies share borrowed items";
        borrowed.pop_front();
        borrowed.reserve(1);
        borrowed.clear();
        EXPECT_EQ(liveItems, 3u) << "a borrowing ring deletes nothing";
    }

    RingVectorOwn<Plain*> owned(2, true);
    for (int v : {1, 2, 3}) owned.push_back(new Plain{v});
    RingVectorOwn<Plain*> deep(owned);
    EXPECT_NE(deep.at(0), owned.at(0));
    EXPECT_TRUE(deep.SameElements(owned));
    Plain* first = deep.front();
    ASSERT_NE(first, nullptr);
    first->value = 5;
    EXPECT_FALSE(deep.SameElements(owned));
    const Plain two{2};
    EXPECT_TRUE(owned.ElementsEqual(owned.front(), &two)) << "the original is untouched";
}

// Counting and failing allocation pairs for the iterators' memory.
std::vector<void*> allocated, released;
void* CountingAllocate(std::size_t size) {
    allocated.push_back(std::malloc(size));
    return allocated.back();
}
void CountingRelease(void* memory) {
    released.push_back(memory);
    std::free(memory);
}
void* FailingAllocate(std::size_t) {
    return nullptr;
}

TEST(RingVector, IteratorMemoryComesFromTheHooks) {
    ResetTally();
    VeloraRingVector ring(4);
    Play(ring, "b1 b2 b3");

    const VeloraMemory::AllocatorHooks previous =
        VeloraMemory::SetAllocatorHooks({CountingAllocate, CountingRelease});
    auto* forward = U_CreateVeloraRingVectorIterator(&ring);
    auto* reverse = U_CreateReverseVeloraRingVectorIterator(&ring);
    auto* plain = new VeloraRingVectorIterator(ring.GetRing());
    ASSERT_EQ(allocated, (std::vector<void*>{forward, reverse, plain}));
    EXPECT_EQ(Value(forward->GetNextItem()), 1);
    forward->Skip(5);
    EXPECT_EQ(forward->Next(), nullptr) << "a skip stops at the end";
    EXPECT_EQ(Value(reverse->GetNextItem()), 3);
    EXPECT_EQ(Value(reverse->GetCurrentItem()), 2);
    delete forward;
    delete reverse;
    delete plain;
    EXPECT_EQ(released, allocated);

    VeloraMemory::SetAllocatorHooks({FailingAllocate, CountingRelease});
    EXPECT_EQ(U_CreateVeloraRingVectorIterator(&ring), nullptr);
    EXPECT_EQ(U_CreateReverseVeloraRingVectorIterator(&ring), nullptr);
    EXPECT_THROW(delete new VeloraRingVectorReverseIterator(ring.GetRing()), std::bad_alloc);
    EXPECT_EQ(VeloraMemory::SetAllocatorHooks(previous).allocate, &FailingAllocate);
    EXPECT_EQ(released.size(), 3u);

    EXPECT_EQ(U_CreateVeloraRingVectorIterator(nullptr), nullptr);
    EXPECT_EQ(U_GetNextVeloraRingVectorItem(nullptr), nullptr);
    VeloraRingVector* created = U_CreateVeloraRingVector(0, true, false);
    Play(*created, "b8 b9");
    EXPECT_EQ(Value(created->front()), 9);
    delete created;
}

} // namespace
