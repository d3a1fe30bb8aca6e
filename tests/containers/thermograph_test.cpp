// Thermograph: newest-first history with a running sum, overwrite when full, iteration.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <vector>

#include "VeloraUtils/Thermograph.h"

namespace {

// Newest first, through operator[] and through the internal cursor; both must agree.
std::vector<unsigned short> Contents(const Thermograph& t) {
    std::vector<unsigned short> byIndex, byCursor;
    for (unsigned short i = 0; i < t.size(); ++i) byIndex.push_back(t[i]);
    if (t.size() > 0) byCursor.push_back(t.GetFirstValue());
    for (unsigned short i = 1; i < t.size(); ++i) byCursor.push_back(t.GetNextValue());
    EXPECT_EQ(byIndex, byCursor);
    EXPECT_EQ(t.GetNextValue(), 0) << "past the oldest value";
    return byIndex;
}

TEST(Thermograph, DocumentedExamples) {
    // Ordinary adds, repeated adds, overwrite and sums are the model test below; capacity 0 is there too.
    Thermograph three(3);
    for (int v : {1, 2, 3, 4}) three.AddValue(static_cast<unsigned short>(v));
    EXPECT_EQ(three[3], 0) << "an index at size refers to the constant 0";
    Thermograph empty(4);
    EXPECT_EQ(empty.GetFirstValue(), 0);
    EXPECT_EQ(empty.GetNextValue(), 0);
}

TEST(Thermograph, IteratorSkipsAndCopiesAreDeep) {
    Thermograph t(5);
    for (int v : {10, 20, 30, 40}) t.AddValue(static_cast<unsigned short>(v));
    t.ResetIterator(2);
    EXPECT_EQ(t.GetNextValue(), 20);
    EXPECT_EQ(t.GetNextValue(), 10);
    EXPECT_EQ(t.GetNextValue(), 0);
    t.ResetIterator(9);
    EXPECT_EQ(t.GetNextValue(), 0) << "a skip beyond the oldest is past the end";

    Thermograph copy(t);
    copy.AddValue(50);
    const Thermograph& same = copy;
    copy = same; // assignment to itself keeps the state
    EXPECT_EQ(Contents(t), (std::vector<unsigned short>{40, 30, 20, 10}));
    EXPECT_EQ(Contents(copy), (std::vector<unsigned short>{50, 40, 30, 20, 10}));
    t = copy;
    copy.clear();
    EXPECT_EQ(t.GetSum(), 150u) << "assigned copies keep their own values";
}

// Random adds, repeated adds and clears against a deque model of the same capacity.
TEST(Thermograph, MatchesAModelOverRandomOperations) {
    std::mt19937 rng(4242);
    for (int cap : {0, 1, 2, 3, 7, 64}) {
        Thermograph t(static_cast<unsigned short>(cap));
        const auto capacity = static_cast<unsigned short>(std::max(cap, 1)); // capacity 0 holds one value
        ASSERT_EQ(t.capacity(), capacity);
        std::deque<unsigned short> model; // newest first
        for (int step = 0; step < 3000; ++step) {
            const auto value = static_cast<unsigned short>(rng());
            const auto kind = static_cast<unsigned>(rng() % 20);
            const auto count = static_cast<unsigned short>(kind == 0 ? rng() % (2u * capacity + 2u) : 1u);
            if (kind == 1) {
                t.clear();
                model.clear();
            } else {
                if (count == 1)
                    t.AddValue(value);
                else
                    t.AddValue(value, count);
                for (unsigned short i = 0; i < count; ++i) {
                    model.push_front(value);
                    if (model.size() > capacity) model.pop_back();
                }
            }
            unsigned int sum = 0;
            for (unsigned short v : model) sum += v;
            ASSERT_EQ(t.size(), model.size());
            ASSERT_EQ(t.GetSum(), sum);
            if (step % 97 == 0) {
                ASSERT_EQ(Contents(t), std::vector<unsigned short>(model.begin(), model.end()));
            }
        }
    }
}

} // namespace
