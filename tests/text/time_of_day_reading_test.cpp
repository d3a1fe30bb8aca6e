// Time-of-day readers: value or default 77, and where the cursor is left after success and after each
// kind of failure (delimiter 0, failure on the NUL, failure inside a delimited token).
#include "VeloraUtils/TokenReading.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <vector>

namespace {

TEST(TimeOfDayReaders, ValueOrDefaultAndCursor) {
    const struct {
        bool seconds; // U_ReadSecondFromStr instead of U_ReadMillisecondFromStr
        const char* text;
        char delimiter;
        unsigned expected;
        long offset;
        char timeSeparator = ':';
    } rows[] = {
        {false, "9:30:00.125", '\0', 34200125, 11},
        {false, "09:30:00", '|', 77, 8}, // failing on the NUL stays there
        {false, "09:30:00.1234567 X", ' ', 34200123, 17},
        {false, "09:30:00.1234567 X", '\0', 34200123, 12},
        {false, "99:99:99.999", '\0', 362439999, 12},
        {false, "9x30:00.000|next", '|', 77, 12},
        {false, "9x30:00.000|next", '\0', 77, 1},
        {false, "09:30:00.12|z", '|', 77, 12}, // failing on the delimiter consumes it
        {false, "9", '|', 77, 1, '\0'},        // a separator 0 never steps over the NUL
        {true, "23:59:59.999|x", '|', 86399, 13},
        {true, "09:30", '|', 77, 5},
        {true, "23:59:59.999", '\0', 86399, 8},
        {true, "01.02.03,x", ',', 3723, 9, '.'},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows << " on \"" << row.text << '"');
        const std::vector<char> text(row.text, row.text + std::strlen(row.text) + 1); // exact size for ASan
        const char* cursor = text.data();
        const unsigned value =
            row.seconds ? U_ReadSecondFromStr(&cursor, row.delimiter, 77, row.timeSeparator)
                        : U_ReadMillisecondFromStr(&cursor, row.delimiter, 77, row.timeSeparator, '.');
        EXPECT_EQ(std::tuple(value, cursor - text.data()), std::tuple(row.expected, row.offset));
    }
}

} // namespace
