// Line buffers: views, the queue of views with its total, and the record reader.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "VeloraUtils/LineBuffers.h"

namespace {

TEST(LineBuffers, ViewConsumesFromTheFront) {
    const char text[] = "hello world";
    const struct {
        unsigned int length, count, returned, lengthAfter;
        bool empty;
    } cases[] = {{5, 3, 0, 2, false}, {5, 5, 0, 0, true}, {5, 7, 2, 0, true}, {0, 0, 0, 0, true}};
    for (const auto& c : cases) {
        LineBuffer view(c.length, text);
        EXPECT_EQ(view.IncrementCursor(c.count), c.returned);
        EXPECT_EQ(view.GetLength(), c.lengthAfter);
        EXPECT_EQ(view.isEmpty(), c.empty);
        EXPECT_EQ(view.GetData(), c.empty ? nullptr : text + c.count);
    }
    LineBuffer view(5, text);
    EXPECT_EQ(view.GetLastChar(), text + 5) << "just past the last byte";
    view.Reset();
    EXPECT_EQ(view.GetLastChar(), nullptr);
}

std::vector<std::string> Views(const LineBufferArray& array) {
    std::vector<std::string> out;
    const LineBufferVector& v = array.GetRingVector();
    unsigned int total = 0;
    for (unsigned int i = 0; i < v.GetCount(); total += v.At(i++).GetLength())
        out.emplace_back(v.At(i).GetData() == nullptr ? ""
                                                      : std::string(v.At(i).GetData(), v.At(i).GetLength()));
    EXPECT_EQ(array.GetTotalSize(), total) << "the total follows the views";
    return out;
}

TEST(LineBuffers, ArrayQueuesViewsGrowsAndConsumes) {
    const char text[] = "abcdefghijklmnop";
    LineBufferArray array(0);
    EXPECT_EQ(array.GetBufferCount(), 1u);
    array.AddLineBuffer(text, 5);
    array.AddLineBuffer(text + 5, 3);
    array.AddLineBuffer(text + 8, 4);
    EXPECT_EQ(array.GetBufferCount(), 4u);
    EXPECT_EQ(Views(array), (std::vector<std::string>{"abcde", "fgh", "ijkl"}));

    array.IncrementCursor(3);
    EXPECT_EQ(Views(array), (std::vector<std::string>{"de", "fgh", "ijkl"}));
    array.IncrementCursor(2);
    EXPECT_EQ(Views(array), (std::vector<std::string>{"fgh", "ijkl"}));
    // Beyond the front view: a caller error; the view is emptied and stays, nothing more is taken.
    array.IncrementCursor(9);
    EXPECT_EQ(Views(array), (std::vector<std::string>{"", "ijkl"}));

    // The "last filled" members work on the front view, as they always have.
    array.IncrementLastFilledLineBufferLength(2);
    EXPECT_EQ(array.GetTotalSize(), 6u);
    LineBufferArray copy(array);
    array.Clear();
    EXPECT_EQ(array.GetFilledBufferCount(), 0u);
    EXPECT_EQ(array.GetTotalSize(), 0u);
    EXPECT_EQ(array.GetLastFilledLineBuffer().GetLength(), 0u) << "an empty view is pushed first";
    EXPECT_EQ(array.GetFilledBufferCount(), 1u);
    EXPECT_EQ(copy.GetFilledBufferCount(), 2u) << "copies own their queue";
    EXPECT_EQ(copy.GetTotalSize(), 6u);
}

TEST(LineBuffers, QueueKeepsOrderAcrossWrapAndGrowth) {
    LineBufferVector queue(3);
    const char bytes[16] = {};
    unsigned int next = 0, first = 0;
    for (int round = 0; round < 40; ++round) {
        for (int push = 0; push < round % 3 + 1; ++push)
            ASSERT_TRUE(queue.PushBack(LineBuffer(next++, bytes)));
        queue.PopFront();
        ++first;
        for (unsigned int i = 0; i < queue.GetCount(); ++i) ASSERT_EQ(queue.At(i).GetLength(), first + i);
    }
    queue.Clear();
    EXPECT_EQ(queue.GetFrontIndex(), 0u);
    EXPECT_EQ(queue.GetBackIndex(), 0u);
    LineBufferVector fixed(2);
    fixed.SetGrowthForbidden(true);
    EXPECT_TRUE(fixed.PushBack(LineBuffer(1, bytes)));
    EXPECT_TRUE(fixed.PushBack(LineBuffer(2, bytes)));
    EXPECT_FALSE(fixed.PushBack(LineBuffer(3, bytes)));
    EXPECT_EQ(fixed.GetCapacity(), 2u);
}

class CollectingReader : public LineBufferArrayReader {
public:
    CollectingReader(const LineBufferArray* array, bool stopOnFailure)
        : LineBufferArrayReader(array, stopOnFailure) {}
    bool ProcessRecord(const char* record, unsigned short length) const override {
        records.emplace_back(record + 2, length - 2u);
        return records.back() != "no";
    }
    mutable std::vector<std::string> records;
};

TEST(LineBuffers, ReaderWalksWholeRecordsOfEachView) {
    // Records "\x04\x00ab" and "\x06\x00cdef" then a stray byte; then a view whose second record
    // runs past its end; then a refused record.
    const std::string views[] = {std::string("\4\0ab\6\0cdefx", 11), std::string("\3\0g\11\0hi", 7),
                                 std::string("\4\0no\3\0z\0\0\3\0w", 12)};
    LineBufferArray array(2);
    for (const std::string& view : views)
        array.AddLineBuffer(view.data(), static_cast<unsigned int>(view.size()));

    CollectingReader all(&array, false);
    EXPECT_EQ(all.ProcessAllData(), 4u);
    EXPECT_EQ(all.records, (std::vector<std::string>{"ab", "cdef", "g", "no", "z"}))
        << "a zero length ends its view's walk";
    CollectingReader stopping(&array, true);
    EXPECT_EQ(stopping.ProcessAllData(), 3u);
    EXPECT_EQ(stopping.records.size(), 4u);
    stopping.SetLineBufferArray(nullptr);
    EXPECT_EQ(stopping.ProcessAllData(), 0u);
}

} // namespace
