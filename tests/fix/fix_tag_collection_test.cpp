// FixTagCollection: the header pieces, every append and update family, Finalize's in-place
// BodyLength, MsgType and CheckSum with its limits and its kept quirks, Reset, copies, and random
// messages checked against sums and counts computed here with plain loops, then split back into
// fields and read back by the library's own FIX scanner and parser.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "VeloraUtils/FixParsing.h"
#include "VeloraUtils/FixTagCollection.h"

namespace fixcheck {

struct Field {
    std::string tag;
    std::string value;
    bool operator==(const Field&) const = default;
};

const WSABUF kNoSlot{0, nullptr};
const WSABUF& SlotOf(const WsaCollection& c, unsigned short i) {
    const WSABUF* const slot = c.GetWsaBufAt(i);
    return slot != nullptr ? *slot : kNoSlot;
}
std::string TextOf(const WsaCollection& c, unsigned short i) {
    const WSABUF& slot = SlotOf(c, i);
    return slot.buf != nullptr ? std::string(slot.buf, slot.len) : std::string();
}
std::string MsgSeqNumText(const FixTagCollection& b) {
    return TextOf(b, b.GetTagMsgSeqNumOrdinal());
}
// The bytes of all slots in use, in order.
std::string Gather(const WsaCollection& c) {
    std::string out;
    for (unsigned short i = 0; i < c.GetCount(); ++i) out += TextOf(c, i);
    return out;
}

// Splits "tag=value" SOH ... at each SOH and the first "=" of each piece. False when a piece has
// no "=" or the text does not end with SOH.
bool SplitFields(const std::string& text, std::vector<Field>& out) {
    out.clear();
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t soh = text.find('\x01', start);
        if (soh == std::string::npos) return false;
        const std::size_t eq = text.find('=', start);
        if (eq == std::string::npos || eq > soh) return false;
        out.push_back(Field{text.substr(start, eq - start), text.substr(eq + 1, soh - eq - 1)});
        start = soh + 1;
    }
    return true;
}

// What a receiver would measure: BodyLength and CheckSum as written, the body bytes counted from
// after the SOH that ends BodyLength up to the SOH before "10=", and the byte sum mod 256 before "10=".
struct Measured {
    bool wellFormed = false;
    unsigned int declaredBodyLength = 0;
    unsigned int countedBodyLength = 0;
    unsigned int declaredCheckSum = 0;
    unsigned int computedCheckSum = 0;
};

Measured Measure(const std::string& message) {
    Measured m;
    const std::size_t firstSoh = message.find('\x01');
    if (message.compare(0, 2, "8=") != 0 || firstSoh == std::string::npos ||
        message.compare(firstSoh + 1, 2, "9=") != 0)
        return m;
    const std::size_t secondSoh = message.find('\x01', firstSoh + 3);
    if (secondSoh == std::string::npos || secondSoh == firstSoh + 3 || message.size() < secondSoh + 8)
        return m;
    const std::size_t trailerStart = message.size() - 7;
    if (message.compare(trailerStart, 3, "10=") != 0 || message.back() != '\x01') return m;
    for (std::size_t i = firstSoh + 3; i < secondSoh; ++i) {
        if (message[i] < '0' || message[i] > '9') return m;
        m.declaredBodyLength = m.declaredBodyLength * 10 + static_cast<unsigned int>(message[i] - '0');
    }
    for (std::size_t i = trailerStart + 3; i < trailerStart + 6; ++i) {
        if (message[i] < '0' || message[i] > '9') return m;
        m.declaredCheckSum = m.declaredCheckSum * 10 + static_cast<unsigned int>(message[i] - '0');
    }
    m.countedBodyLength = static_cast<unsigned int>(trailerStart - (secondSoh + 1));
    unsigned int sum = 0;
    for (std::size_t i = 0; i < trailerStart; ++i) sum += static_cast<unsigned char>(message[i]);
    m.computedCheckSum = sum % 256;
    m.wellFormed = true;
    return m;
}

} // namespace fixcheck

namespace {

using fixcheck::Field;
using fixcheck::Gather;
using fixcheck::MsgSeqNumText;
using fixcheck::SlotOf;
using fixcheck::TextOf;
const char kSoh = '\x01';

// Plain byte sum (unsigned bytes; equal to the signed sum modulo 256).
unsigned int ByteSumMod256(const std::string& bytes) {
    unsigned int sum = 0;
    for (char c : bytes) sum += static_cast<unsigned char>(c);
    return sum % 256;
}

// The running sum and total agree with the bytes actually in the slots (the trailer excluded).
::testing::AssertionResult Consistent(const FixTagCollection& b) {
    std::string bytes = Gather(b);
    if (b.isFinalized()) bytes.resize(bytes.size() - 7);
    if (b.GetControlSum() % 256 != ByteSumMod256(bytes))
        return ::testing::AssertionFailure()
               << "sum " << b.GetControlSum() % 256 << " vs " << ByteSumMod256(bytes);
    if (b.GetTotalLength() != bytes.size() + 7)
        return ::testing::AssertionFailure() << "total " << b.GetTotalLength() << " vs " << bytes.size() + 7;
    return ::testing::AssertionSuccess();
}

std::string WithTrailer(const std::string& upToBody) {
    char digits[8];
    std::snprintf(digits, sizeof digits, "%03u", ByteSumMod256(upToBody));
    return upToBody + "10=" + digits + "\x01";
}

// ---------------------------------------------------------------------------------------------

TEST(FixTagCollectionConstruction, BuildsHeaderPiecesOnce) {
    struct Case {
        const char* name;
        const char* protocol;
        unsigned int version;
        std::string header;
        const char* protocolText;
    };
    const std::vector<Case> cases = {
        {"Fix42", "FIX", 0x0402,
         "8=FIX.4.2\x01"
         "9=",
         "FIX"},
        {"Fixt11", "FIXT", 0x0101,
         "8=FIXT.1.1\x01"
         "9=",
         "FIXT"},
        {"FourNumbersKeepInnerZeros", "FIX", 0x01000100,
         "8=FIX.1.0.1.0\x01"
         "9=",
         "FIX"},
        {"LeadingZeroBytesSkipped", "FIX", 0x00040002,
         "8=FIX.4.0.2\x01"
         "9=",
         "FIX"},
        {"ZeroVersionWritesLowestByte", "FIX", 0,
         "8=FIX.0\x01"
         "9=",
         "FIX"},
        {"ByteValuesInDecimal", "FIX", 0xFF0A,
         "8=FIX.255.10\x01"
         "9=",
         "FIX"},
        {"ProtocolCutAtSevenCharacters", "ABCDEFGHIJ", 0x0402,
         "8=ABCDEFG.4.2\x01"
         "9=",
         "ABCDEFG"},
        {"NullProtocolIsEmpty", nullptr, 0x0402,
         "8=.4.2\x01"
         "9=",
         ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const FixTagCollection b(5, c.version, c.protocol);
        EXPECT_EQ(b.GetCount(), 3);
        EXPECT_EQ(b.GetCapacity(), 12);
        EXPECT_EQ(TextOf(b, 0), c.header);
        EXPECT_EQ(SlotOf(b, 1).len, 0u);
        EXPECT_EQ(TextOf(b, 2), std::string("\x01"
                                            "35=\0\x01",
                                            6));
        EXPECT_STREQ(b.GetFixProtocol(), c.protocolText);
        EXPECT_EQ(b.GetFixVersion(), c.version);
        EXPECT_EQ(b.GetTotalLength(), c.header.size() + 6 + 7);
        EXPECT_EQ(b.GetControlSum() % 256, ByteSumMod256(Gather(b)));
        EXPECT_FALSE(b.isFinalized());
        EXPECT_EQ(b.GetMessageLength(), 0u);
    }
    const FixTagCollection fix(0, 0x0402, "FIX");
    EXPECT_EQ(fix.GetFixProtocolNum(), 0x584946u); // 'F' in the lowest byte
    EXPECT_EQ(fix.GetCapacity(), 7);
    const FixTagCollection huge(65535, 0x0402, "FIX");
    EXPECT_EQ(huge.GetCapacity(), 65535); // capacity + 7 saturates instead of wrapping to 6
}

TEST(FixTagCollectionFinalize, WritesTheDocumentedMessage) {
    FixTagCollection b(4, 0x0402, "FIX");
    ASSERT_NE(b.Append("58=x\x01", 0, true, 0), 0);
    ASSERT_TRUE(b.Finalize("0"));
    EXPECT_EQ(Gather(b), WithTrailer("8=FIX.4.2\x01"
                                     "9=10\x01"
                                     "35=0\x01"
                                     "58=x\x01"));
    EXPECT_EQ(b.GetMessageLength(), 10u);
    EXPECT_TRUE(b.isFinalized());
    EXPECT_TRUE(Consistent(b));
    std::string log;
    b.toString(log, "|");
    EXPECT_EQ(log, "8=FIX.4.2|9=10|35=0|58=x|10=" + Gather(b).substr(Gather(b).size() - 4, 3) + "|");
    std::string dropped;
    b.toString(dropped, nullptr);
    EXPECT_EQ(dropped.find('\x01'), std::string::npos);
    EXPECT_EQ(dropped.substr(0, 14), "8=FIX.4.29=103");
}

TEST(FixTagCollectionAppend, AddsSohOnlyWhenMissing) {
    struct Case {
        const char* name;
        const char* value;
        unsigned int length;
        bool addSoh;
        unsigned char mode;
        std::vector<std::string> slots; // after the three header slots
    };
    const std::vector<Case> cases = {
        {"ValueGetsSohSlot", "x", 0, true, 0, {"x", "\x01"}},
        {"ValueEndingInSohGetsNone", "x\x01", 0, true, 0, {"x\x01"}},
        {"NoSohWhenNotAsked", "x", 0, false, 0, {"x"}},
        {"EmptyValueGetsSoh", "", 0, true, 0, {"", "\x01"}},
        {"NullValueGetsSoh", nullptr, 0, true, 0, {"", "\x01"}},
        {"CopyHoldsSohInline", "xy", 0, true, 2, {"xy\x01"}},
        {"LengthBoundsTheValue", "xyz", 1, true, 2, {"x\x01"}},
        {"SohInsideLengthCounts", "a\x01z", 2, true, 0, {"a\x01"}},
        {"HighBytesSumAsNegative", "\xe9\xff", 0, true, 2, {"\xe9\xff\x01"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FixTagCollection b(1, 0x0402, "FIX");
        EXPECT_EQ(b.Append(c.value, c.length, c.addSoh, c.mode), 4);
        std::vector<std::string> slots;
        for (unsigned short i = 3; i < b.GetCount(); ++i)
            slots.emplace_back(SlotOf(b, i).buf, SlotOf(b, i).len);
        EXPECT_EQ(slots, c.slots);
        EXPECT_TRUE(Consistent(b));
    }
}

TEST(FixTagCollectionAppend, NumbersAndPackedCodesAreCopiedWithSoh) {
    struct Case {
        const char* name;
        std::function<unsigned short(FixTagCollection&)> append;
        std::string field;
    };
    const std::vector<Case> cases = {
        {"TagByReferenceThenValue",
         [](FixTagCollection& b) { return b.AppendTag("11=", "ORD1", 3, 0, 0, true); }, "11=ORD1\x01"},
        {"TagLengthZeroMeansText",
         [](FixTagCollection& b) { return b.AppendTag("11=", "ORD1", 0, 4, 2, true); }, "11=ORD1\x01"},
        {"UIntZero", [](FixTagCollection& b) { return b.AppendUIntTag("38=", 0, 3); }, "38=0\x01"},
        {"UIntMax", [](FixTagCollection& b) { return b.AppendUIntTag("38=", 4294967295u, 3); },
         "38=4294967295\x01"},
        {"UInt64Max",
         [](FixTagCollection& b) { return b.AppendUInt64Tag("38=", 18446744073709551615ull, 0); },
         "38=18446744073709551615\x01"},
        {"UInt64AboveThirtyTwoBits",
         [](FixTagCollection& b) { return b.AppendUInt64Tag("38=", 4294967296ull, 3); }, "38=4294967296\x01"},
        {"PackedTwoOfFour",
         [](FixTagCollection& b) { return b.AppendUIntTagAsString("35=", 'D' | ('E' << 8), 3); },
         "35=DE\x01"},
        {"PackedFourCharacters",
         [](FixTagCollection& b) {
             return b.AppendUIntTagAsString("15=", 'U' | ('S' << 8) | ('D' << 16) | (unsigned{'X'} << 24), 3);
         },
         "15=USDX\x01"},
        {"PackedStopsAtFirstZeroByte",
         [](FixTagCollection& b) { return b.AppendUIntTagAsString("15=", 'A' | ('C' << 16), 3); },
         "15=A\x01"},
        {"PackedZeroIsEmptyValue", [](FixTagCollection& b) { return b.AppendUIntTagAsString("15=", 0, 3); },
         "15=\x01"},
        {"PackedShort",
         [](FixTagCollection& b) {
             return b.AppendUShortTagAsString("54=", static_cast<unsigned short>('1' | ('B' << 8)), 3);
         },
         "54=1B\x01"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FixTagCollection b(1, 0x0402, "FIX");
        EXPECT_EQ(c.append(b), 5); // ordinal of the value after the tag slot
        EXPECT_EQ(Gather(b).substr(SlotOf(b, 0).len + 6), c.field);
        EXPECT_TRUE(Consistent(b));
    }
}

TEST(FixTagCollectionMsgSeqNum, RewritesDigitsInPlace) {
    FixTagCollection b(2, 0x0402, "FIX");
    EXPECT_FALSE(b.UpdateMsgSeqNumValue(5)); // never appended
    EXPECT_EQ(b.GetTagMsgSeqNum(), nullptr);
    EXPECT_EQ(b.GetTagMsgSeqNumValue(), nullptr);
    b.Append("34=", 0, false, 0);
    EXPECT_EQ(b.AppendMsgSeqNumValue(0), 4); // slot 4 holds only the SOH
    EXPECT_EQ(b.GetTagMsgSeqNumOrdinal(), 4);
    EXPECT_EQ(MsgSeqNumText(b), "\x01");
    EXPECT_EQ(b.GetMsgSeqNum(), 0u);
    struct Step {
        const char* name;
        unsigned int value;
        std::string text;
    };
    const std::vector<Step> steps = {
        {"AllTenDigits", 4294967295u, "4294967295\x01"},
        {"SmallerValueShortensTheSlot", 7, "7\x01"},
        {"ZeroWrittenByUpdate", 0, "0\x01"},
        {"GrowsAgain", 1000000, "1000000\x01"},
    };
    for (const Step& s : steps) {
        SCOPED_TRACE(s.name);
        EXPECT_TRUE(b.UpdateMsgSeqNumValue(s.value));
        EXPECT_EQ(b.GetMsgSeqNum(), s.value);
        EXPECT_EQ(MsgSeqNumText(b), s.text);
        EXPECT_EQ(b.GetTagMsgSeqNumValue(), SlotOf(b, b.GetTagMsgSeqNumOrdinal()).buf);
        EXPECT_TRUE(Consistent(b));
    }
    EXPECT_EQ(b.AppendMsgSeqNumValue(42), 4); // second use: same slot, value written
    EXPECT_EQ(MsgSeqNumText(b), "42\x01");
    EXPECT_EQ(b.GetCount(), 5);
}

TEST(FixTagCollectionSendingTime, WritesDateAndTimePlaces) {
    struct Case {
        const char* name;
        std::function<unsigned short(FixTagCollection&)> act;
        std::string text; // the 25 bytes, with '_' for a still-zero place
    };
    const std::vector<Case> cases = {
        {"LastMillisecondOf2019", [](FixTagCollection& b) { return b.AppendTagUtc(12, 31, 2019, 86399999); },
         "52=20191231-23:59:59.999\x01"},
        {"MidnightIsAllZeros", [](FixTagCollection& b) { return b.AppendTagUtc(1, 2, 2020, 0); },
         "52=20200102-00:00:00.000\x01"},
        {"NoTimeKeepsZeroPlaces", [](FixTagCollection& b) { return b.AppendTagUtc(3, 4, 2021, 0xFFFFFFFFu); },
         "52=20210304-__:__:__.___\x01"},
        {"YearZeroKeepsDatePlaces", [](FixTagCollection& b) { return b.AppendTagUtc(3, 4, 0, 3723004); },
         "52=________-01:02:03.004\x01"},
        {"TextDate", [](FixTagCollection& b) { return b.AppendTagUtc("20200229", 45296789); },
         "52=20200229-12:34:56.789\x01"},
        {"NullTextKeepsDate", [](FixTagCollection& b) { return b.AppendTagUtc(nullptr, 1); },
         "52=________-00:00:00.001\x01"},
        {"NoRangeChecks", [](FixTagCollection& b) { return b.AppendTagUtc(13, 32, 9999, 86400000); },
         "52=99991332-24:00:00.000\x01"},
        {"EachPlaceTakesItsDigit",
         [](FixTagCollection& b) { return b.AppendTagUtc(123, 45, 12345, 0xFFFFFFFFu); },
         "52=23452345-__:__:__.___\x01"},
        {"ShortTextStopsAtItsEnd", [](FixTagCollection& b) { return b.AppendTagUtc("2019", 0xFFFFFFFFu); },
         "52=2019____-__:__:__.___\x01"},
        {"LaterTimeKeepsDate",
         [](FixTagCollection& b) {
             b.AppendTagUtc(12, 31, 2019, 86399999);
             return b.AppendTagUtc(0, 0, 0, 1000);
         },
         "52=20191231-00:00:01.000\x01"},
        {"LaterNoTimeKeepsPreviousTime",
         [](FixTagCollection& b) {
             b.AppendTagUtc(12, 31, 2019, 86399999);
             return b.AppendTagUtc(1, 1, 2020, 0xFFFFFFFFu);
         },
         "52=20200101-23:59:59.999\x01"},
        {"UpdatesAfterAppend",
         [](FixTagCollection& b) {
             const unsigned short slot = b.AppendTagUtc(nullptr, 0xFFFFFFFFu);
             EXPECT_TRUE(b.UpdateTagUtcDate(7, 8, 2022));
             EXPECT_TRUE(b.UpdateTagUtcTime(1));
             EXPECT_TRUE(b.UpdateTagUtcDate("2023"));
             return slot;
         },
         "52=20230708-00:00:00.001\x01"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FixTagCollection b(1, 0x0402, "FIX");
        EXPECT_EQ(c.act(b), 3);
        std::string text(SlotOf(b, 3).buf, SlotOf(b, 3).len);
        for (char& ch : text)
            if (ch == 0) ch = '_';
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(b.GetCount(), 4);
        EXPECT_TRUE(Consistent(b));
    }
    FixTagCollection none(1, 0x0402, "FIX");
    EXPECT_FALSE(none.UpdateTagUtcDate(1, 1, 2020));
    EXPECT_FALSE(none.UpdateTagUtcDate("20200101"));
    EXPECT_FALSE(none.UpdateTagUtcTime(0));
    EXPECT_EQ(none.GetCount(), 3);
}

TEST(FixTagCollectionCompIds, AppendOnceThenRewriteTheValueSlot) {
    struct Case {
        const char* name;
        unsigned short (FixTagCollection::*append)(const char*, unsigned int, unsigned char);
        bool (FixTagCollection::*update)(const char*, unsigned int, unsigned char);
        const char* tag;
    };
    const std::vector<Case> cases = {
        {"TargetCompId", &FixTagCollection::AppendTagTargetCompId, &FixTagCollection::UpdateTagTargetCompId,
         "56="},
        {"SenderCompId", &FixTagCollection::AppendTagSenderCompId, &FixTagCollection::UpdateTagSenderCompId,
         "49="},
        {"TestReqId", &FixTagCollection::AppendTagTestReqId, &FixTagCollection::UpdateTagTestReqId, "112="},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FixTagCollection b(1, 0x0402, "FIX");
        const std::string prefix = Gather(b);
        EXPECT_FALSE((b.*c.update)("X", 0, 0)); // never appended
        EXPECT_EQ(b.GetCount(), 3);
        EXPECT_EQ((b.*c.append)("FIRM", 0, 0), 4); // tag slot 3, value slot 4, SOH slot 5
        EXPECT_EQ(Gather(b).substr(prefix.size()), std::string(c.tag) + "FIRM\x01");
        EXPECT_TRUE(Consistent(b));
        EXPECT_TRUE((b.*c.update)("LONGER-NAME", 0, 2));
        EXPECT_EQ(Gather(b).substr(prefix.size()), std::string(c.tag) + "LONGER-NAME\x01");
        EXPECT_TRUE(Consistent(b));
        EXPECT_EQ((b.*c.append)("AB", 1, 0), 4); // again: same slot, nothing appended
        EXPECT_EQ(Gather(b).substr(prefix.size()), std::string(c.tag) + "A\x01");
        EXPECT_EQ(b.GetCount(), 6);
        EXPECT_TRUE(Consistent(b));
    }
}

TEST(FixTagCollectionSetTagAt, KeepsTheSumForEveryModeAndTrailingCase) {
    struct Case {
        const char* name;
        unsigned int index; // 3 and 4 are "aa" and "bb"
        const char* value;
        unsigned int length;
        bool trailing;
        unsigned char mode;
        bool result;
    };
    static const char empty[] = "";
    const std::vector<Case> cases = {
        {"ReplaceMiddleByReference", 3, "zzz", 0, false, 0, true},
        {"ReplaceMiddleIgnoresTrailing", 3, "z", 0, true, 0, true},
        {"ReplaceLastWithTrailingSlot", 4, "\xf0z", 0, true, 0, true},
        {"ReplaceLastCopyWithTrailing", 4, "z", 0, true, 2, true},
        {"AppendAtCountWithTrailing", 5, "new", 0, true, 0, true},
        {"EmptyCopyAtLastKeepsTrailingSlot", 4, empty, 0, true, 2, true},
        {"ReplaceHeaderPieceByCopy", 0,
         "8=FIX.4.4\x01"
         "9=",
         0, false, 2, true},
        {"BeyondCountRefused", 6, "x", 0, false, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FixTagCollection b(1, 0x0402, "FIX");
        b.Append("aa", 0, false, 2);
        b.Append("bb", 0, false, 0);
        EXPECT_EQ(b.SetTagAt(c.index, c.value, c.length, c.trailing ? &kSoh : nullptr, c.mode), c.result);
        EXPECT_TRUE(Consistent(b));
    }
}

TEST(FixTagCollectionFinalize, EdgeCases) {
    // Fewer than three slots: only reachable by clearing the base list directly.
    FixTagCollection cleared(1, 0x0402, "FIX");
    cleared.WsaCollection::Reset();
    EXPECT_FALSE(cleared.Finalize("0"));
    EXPECT_EQ(cleared.GetCount(), 0);

    // Twice: one trailer slot; the second call rewrites digits and checksum in place.
    FixTagCollection twice(1, 0x0402, "FIX");
    twice.Append("34=", 0, false, 0);
    twice.AppendMsgSeqNumValue(9);
    ASSERT_TRUE(twice.Finalize("0"));
    const unsigned short count = twice.GetCount();
    twice.UpdateMsgSeqNumValue(123456);
    ASSERT_TRUE(twice.Finalize("0"));
    EXPECT_EQ(twice.GetCount(), count);
    EXPECT_EQ(Gather(twice), WithTrailer("8=FIX.4.2\x01"
                                         "9=15\x01"
                                         "35=0\x01"
                                         "34=123456\x01"));
    EXPECT_TRUE(Consistent(twice));

    // Text, code and character forms of the type.
    struct TypeCase {
        const char* name;
        std::function<bool(FixTagCollection&)> finalize;
        bool result;
        std::string typeField;
    };
    const std::vector<TypeCase> types = {
        {"Text", [](FixTagCollection& b) { return b.Finalize("D"); }, true, "35=D\x01"},
        {"TwoCharacterText", [](FixTagCollection& b) { return b.Finalize("AE"); }, true, "35=AE\x01"},
        {"OnlyTwoCharactersTaken", [](FixTagCollection& b) { return b.Finalize("AEX"); }, true, "35=AE\x01"},
        {"PackedCodeLowByteFirst",
         [](FixTagCollection& b) { return b.Finalize(static_cast<unsigned short>('A' | ('E' << 8))); }, true,
         "35=AE\x01"},
        {"PackedOneCharacter",
         [](FixTagCollection& b) { return b.Finalize(static_cast<unsigned short>('8')); }, true, "35=8\x01"},
        {"Characters", [](FixTagCollection& b) { return b.Finalize('B', 'E'); }, true, "35=BE\x01"},
        {"NullTextRefused", [](FixTagCollection& b) { return b.Finalize(static_cast<const char*>(nullptr)); },
         false, ""},
    };
    for (const TypeCase& c : types) {
        SCOPED_TRACE(c.name);
        FixTagCollection b(1, 0x0402, "FIX");
        b.Append("58=x", 0, true, 0);
        EXPECT_EQ(c.finalize(b), c.result);
        if (!c.result) continue;
        const fixcheck::Measured m = fixcheck::Measure(Gather(b));
        ASSERT_TRUE(m.wellFormed);
        EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength);
        EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum);
        EXPECT_NE(Gather(b).find("\x01" + c.typeField + "58=x\x01"), std::string::npos);
    }

    // "" passes (0, 0) without reading past the terminator: the type place keeps its 0 byte.
    FixTagCollection emptyType(1, 0x0402, "FIX");
    EXPECT_TRUE(emptyType.Finalize(""));
    EXPECT_EQ(TextOf(emptyType, 2), std::string("\x01"
                                                "35=\0\x01",
                                                6));
}

TEST(FixTagCollectionFinalize, BodyLengthLimitIs65000) {
    struct Case {
        const char* name;
        unsigned int valueLength; // one field "58=" value SOH; BodyLength = 5 + 4 + valueLength
        bool result;
    };
    const std::vector<Case> cases = {
        {"Exactly65000", 65000 - 9, true},
        {"Over65000By1", 65001 - 9, false},
        {"FarOver", 70000, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string value(c.valueLength, 'v');
        FixTagCollection b(1, 0x0402, "FIX");
        b.AppendTag("58=", value.c_str(), 3, c.valueLength, 0, true);
        const std::string before = Gather(b);
        // The type changes, so the MsgType piece is rewritten: on failure only slot 2's length goes back.
        EXPECT_EQ(b.Finalize("D"), c.result);
        if (c.result) {
            EXPECT_EQ(b.GetMessageLength(), 65000u);
            const fixcheck::Measured m = fixcheck::Measure(Gather(b));
            EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength);
            EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum);
        } else {
            EXPECT_FALSE(b.isFinalized());
            EXPECT_EQ(b.GetMessageLength(), 0u);
            EXPECT_EQ(SlotOf(b, 1).len, 0u); // no digits written
            const std::string after = Gather(b);
            ASSERT_EQ(after.size(), before.size());      // no trailer slot, slot 2 at its old length
            EXPECT_EQ(after[SlotOf(b, 0).len + 4], 'D'); // the type byte keeps its new value
        }
    }

    // Kept: after a refused two-character type the piece length is not restored with the slot.
    FixTagCollection b(1, 0x0402, "FIX");
    const std::string value(65000 - 9, 'v');
    b.AppendTag("58=", value.c_str(), 3, static_cast<unsigned int>(value.size()), 0, true);
    const unsigned int total = b.GetTotalLength();
    EXPECT_FALSE(b.Finalize("AE"));
    EXPECT_EQ(SlotOf(b, 2).len, 6u);
    EXPECT_EQ(b.GetTotalLength(), total + 1);
}

TEST(FixTagCollectionFinalize, GrowsTheSlotArrayForTheTrailer) {
    FixTagCollection b(0, 0x0402, "FIX"); // 7 slots
    b.Append("1=a", 0, true, 0);
    b.Append("2=b", 0, true, 0); // count 7: full
    EXPECT_EQ(b.GetCount(), 7);
    ASSERT_TRUE(b.Finalize("0"));
    EXPECT_EQ(b.GetCapacity(), 14);
    EXPECT_EQ(b.GetCount(), 8);
    const fixcheck::Measured m = fixcheck::Measure(Gather(b));
    EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength);
    EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum);
}

// The two MsgType quirks that are kept as they are, each pinned with its exact consequence.
TEST(FixTagCollectionFinalize, KeptMsgTypeQuirks) {
    // Two different two-character types without Reset: the recorded piece grows once more, so
    // BodyLength counts one byte that the (7-byte, bounded) slot does not hold.
    FixTagCollection twoTwo(1, 0x0402, "FIX");
    twoTwo.Append("58=x", 0, true, 0);
    ASSERT_TRUE(twoTwo.Finalize("AE"));
    fixcheck::Measured m = fixcheck::Measure(Gather(twoTwo));
    EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength);
    EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum);
    ASSERT_TRUE(twoTwo.Finalize("AF"));
    EXPECT_EQ(SlotOf(twoTwo, 2).len, 7u);
    m = fixcheck::Measure(Gather(twoTwo));
    EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength + 1);
    EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum);

    // One-character type after a two-character one without Reset: the piece stays 7 bytes long
    // (SOH "35=D" SOH SOH); BodyLength counts the extra SOH, the sum does not.
    FixTagCollection twoOne(1, 0x0402, "FIX");
    twoOne.Append("58=x", 0, true, 0);
    ASSERT_TRUE(twoOne.Finalize("AE"));
    ASSERT_TRUE(twoOne.Finalize("D"));
    EXPECT_EQ(std::string(SlotOf(twoOne, 2).buf, 7), "\x01"
                                                     "35=D\x01\x01");
    m = fixcheck::Measure(Gather(twoOne));
    ASSERT_TRUE(m.wellFormed);
    EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength);
    EXPECT_EQ(m.declaredCheckSum, (m.computedCheckSum + 255) % 256);

    // Reset after a two-character type reads the 7-byte piece length: the next message's
    // BodyLength is one above its bytes, whichever type it has; one more message clears it.
    struct Seq {
        const char* name;
        std::vector<const char*> types;
        std::vector<int> bodyLengthExcess;
    };
    const std::vector<Seq> sequences = {
        {"OneAfterTwo", {"AE", "D", "D"}, {0, 1, 0}},
        {"TwoAfterTwo", {"AE", "AE", "D", "0"}, {0, 1, 1, 0}},
        {"OnlyOneCharacter", {"D", "0", "8"}, {0, 0, 0}},
    };
    for (const Seq& s : sequences) {
        SCOPED_TRACE(s.name);
        FixTagCollection b(1, 0x0402, "FIX");
        for (std::size_t i = 0; i < s.types.size(); ++i) {
            b.Reset();
            b.AppendTag("11=", "id", 3, 2, 0, true);
            ASSERT_TRUE(b.Finalize(s.types[i]));
            m = fixcheck::Measure(Gather(b));
            EXPECT_EQ(static_cast<int>(m.declaredBodyLength - m.countedBodyLength), s.bodyLengthExcess[i])
                << i;
            EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum) << i;
        }
    }
}

TEST(FixTagCollectionReset, GoesBackToTheHeaderSlots) {
    FixTagCollection b(1, 0x0402, "FIX");
    const unsigned int baseSum = b.GetControlSum();
    const unsigned int baseTotal = b.GetTotalLength();
    b.Append("34=", 0, false, 0);
    b.AppendMsgSeqNumValue(77);
    b.AppendTagSenderCompId("S", 0, 2);
    b.AppendTagTargetCompId("T", 0, 0);
    b.AppendTagTestReqId("R", 0, 0);
    b.AppendTagUtc(1, 2, 2003, 4);
    b.AppendUIntTag("38=", 100, 3);
    ASSERT_TRUE(b.Finalize("D"));
    b.Reset();
    EXPECT_EQ(b.GetCount(), 3);
    EXPECT_EQ(b.GetControlSum(), baseSum);
    EXPECT_EQ(b.GetTotalLength(), baseTotal);
    EXPECT_FALSE(b.isFinalized());
    EXPECT_EQ(b.GetMessageLength(), 0u);
    EXPECT_EQ(b.GetMsgSeqNum(), 0u);
    EXPECT_EQ(b.GetTagMsgSeqNumOrdinal(), 0);
    EXPECT_EQ(b.GetTagMsgSeqNum(), nullptr);
    EXPECT_EQ(SlotOf(b, 1).len, 0u);
    EXPECT_EQ(TextOf(b, 2), std::string("\x01"
                                        "35=\0\x01",
                                        6));
    EXPECT_FALSE(b.UpdateMsgSeqNumValue(1));
    EXPECT_FALSE(b.UpdateTagSenderCompId("S", 0, 0));
    EXPECT_FALSE(b.UpdateTagTargetCompId("T", 0, 0));
    EXPECT_FALSE(b.UpdateTagTestReqId("R", 0, 0));
    EXPECT_FALSE(b.UpdateTagUtcTime(0));
    // The SendingTime places are zero again when it is appended anew.
    b.AppendTagUtc(nullptr, 0xFFFFFFFFu);
    EXPECT_EQ(std::string(SlotOf(b, 3).buf, 25),
              std::string("52=\0\0\0\0\0\0\0\0-\0\0:\0\0:\0\0.\0\0\0\x01", 25));
}

TEST(FixTagCollectionCopy, IsAViewOfTheSource) {
    FixTagCollection b(1, 0x0402, "FIX");
    b.Append("34=", 0, false, 0);
    b.AppendMsgSeqNumValue(5);
    b.AppendTag("58=", "text", 3, 0, 2, true);
    ASSERT_TRUE(b.Finalize("0"));
    const std::string message = Gather(b);
    {
        FixTagCollection view(b);
        EXPECT_TRUE(view.isView());
        EXPECT_EQ(Gather(view), message);
        EXPECT_EQ(SlotOf(view, 0).buf, SlotOf(b, 0).buf); // shared header
        EXPECT_EQ(view.GetControlSum(), b.GetControlSum());
        EXPECT_EQ(view.GetMessageLength(), b.GetMessageLength());
        EXPECT_EQ(view.Append("x", 0, true, 2), 0);
        EXPECT_FALSE(view.UpdateMsgSeqNumValue(6));
        EXPECT_EQ(view.AppendMsgSeqNumValue(6), 0);
        EXPECT_EQ(view.AppendTagUtc(1, 1, 2020, 0), 0);
        EXPECT_EQ(view.AppendTagSenderCompId("S", 0, 0), 0);
        EXPECT_FALSE(view.Finalize("D"));
        view.Reset();
        EXPECT_EQ(Gather(view), message);

        FixTagCollection assigned(3, 0x0404, "FIXT");
        assigned = b;
        EXPECT_TRUE(assigned.isView());
        EXPECT_STREQ(assigned.GetFixProtocol(), "FIX");
        EXPECT_EQ(Gather(assigned), message);
    }
    EXPECT_EQ(Gather(b), message); // the source is untouched by its views
    b.Reset();
    EXPECT_EQ(b.GetCount(), 3);
}

// ---------------------------------------------------------------------------------------------
// Builder against independent checks: random messages, several per builder with Reset between.

struct Expected {
    std::string type;
    std::vector<Field> fields; // after 8, 9, 35 and before 10
};

std::string RandomText(std::mt19937& rng, std::size_t minLength, std::size_t maxLength) {
    std::uniform_int_distribution<std::size_t> length(minLength, maxLength);
    std::uniform_int_distribution<int> ch(0x20, 0x7E);
    std::string s(length(rng), ' ');
    for (char& c : s) {
        c = static_cast<char>(ch(rng));
        if (c == '=') c = '+'; // the parser drops "=" inside values
    }
    return s;
}

std::string UtcText(unsigned month, unsigned day, unsigned year, unsigned ms) {
    char text[32];
    std::snprintf(text, sizeof text, "%04u%02u%02u-%02u:%02u:%02u.%03u", year, month, day, ms / 3600000,
                  ms / 60000 % 60, ms / 1000 % 60, ms % 1000);
    return text;
}

TEST(FixTagCollectionIndependentCheck, RandomMessagesMatchCountedBytesAndSplitBack) {
    const char* const kOneChar[] = {"0", "A", "D", "G", "8", "F", "5"};
    const char* const kTwoChar[] = {"AE", "AD", "BE", "AP", "CA"};
    int parsed = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        std::mt19937 rng(seed);
        auto pick = [&](unsigned n) { return std::uniform_int_distribution<unsigned>(0, n - 1)(rng); };
        const unsigned int version = seed % 2 ? 0x0402u : 0x0404u;
        FixTagCollection b(static_cast<unsigned short>(pick(6)), version, "FIX");
        const std::string beginString = version == 0x0402u ? "FIX.4.2" : "FIX.4.4";
        std::deque<std::string> referenced; // values appended by reference live here
        bool previousTwoChar = false;
        for (int message = 0; message < 12; ++message) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " message " << message);
            if (message != 0) b.Reset();
            referenced.clear();
            Expected expected;
            expected.type = pick(3) == 0 ? kTwoChar[pick(5)] : kOneChar[pick(7)];

            const unsigned int seq = pick(4) == 0 ? 4294967295u - pick(10) : 1 + pick(100000);
            b.Append("34=", 0, false, 0);
            b.AppendMsgSeqNumValue(seq);
            std::size_t seqField = expected.fields.size();
            expected.fields.push_back({"34", std::to_string(seq)});
            referenced.push_back(RandomText(rng, 1, 12));
            b.AppendTagSenderCompId(referenced.back().c_str(), 0, static_cast<unsigned char>(pick(2) * 2));
            std::size_t senderField = expected.fields.size();
            expected.fields.push_back({"49", referenced.back()});
            const std::string target = RandomText(rng, 1, 12);
            b.AppendTagTargetCompId(target.c_str(), 0, 2);
            expected.fields.push_back({"56", target});
            const unsigned month = 1 + pick(12), day = 1 + pick(31), year = 1970 + pick(130),
                           ms = pick(86400000);
            b.AppendTagUtc(static_cast<unsigned short>(month), static_cast<unsigned short>(day),
                           static_cast<unsigned short>(year), ms);
            expected.fields.push_back({"52", UtcText(month, day, year, ms)});

            std::vector<unsigned> tags;
            for (unsigned t = 200; t < 500; ++t) tags.push_back(t); // clear of 112 (TestReqID)
            std::shuffle(tags.begin(), tags.end(), rng);
            const unsigned fieldCount = pick(30);
            for (unsigned f = 0; f < fieldCount; ++f) {
                referenced.push_back(std::to_string(tags[f]) + "=");
                const char* tag = referenced.back().c_str();
                switch (pick(5)) {
                case 0: {
                    const unsigned value = static_cast<unsigned>(rng());
                    b.AppendUIntTag(tag, value, 0);
                    expected.fields.push_back({std::to_string(tags[f]), std::to_string(value)});
                    break;
                }
                case 1: {
                    const std::uint64_t value = (std::uint64_t{rng()} << 32) | rng();
                    b.AppendUInt64Tag(tag, value, 0);
                    expected.fields.push_back({std::to_string(tags[f]), std::to_string(value)});
                    break;
                }
                case 2: { // handed over
                    const std::string value = RandomText(rng, 1, 40);
                    char* handed = new char[value.size()];
                    std::copy(value.begin(), value.end(), handed);
                    b.AppendTag(tag, handed, 0, static_cast<unsigned int>(value.size()), 1, true);
                    expected.fields.push_back({std::to_string(tags[f]), value});
                    break;
                }
                default: { // by reference or copied, sometimes with its own SOH
                    const bool ownSoh = pick(2) == 0;
                    referenced.push_back(RandomText(rng, 1, 40));
                    const std::string value = referenced.back();
                    if (ownSoh) referenced.back() += '\x01';
                    b.AppendTag(tag, referenced.back().c_str(), 0, 0, static_cast<unsigned char>(pick(2) * 2),
                                true);
                    expected.fields.push_back({std::to_string(tags[f]), value});
                    break;
                }
                }
            }
            if (pick(3) == 0) {
                const std::string id = RandomText(rng, 1, 8);
                b.AppendTagTestReqId(id.c_str(), 0, 2);
                expected.fields.push_back({"112", id});
            }
            ASSERT_TRUE(b.Finalize(expected.type.c_str()));
            if (pick(2) == 0) { // change per-message values and finalize again in place
                const unsigned next = 1 + pick(1000000);
                b.UpdateMsgSeqNumValue(next);
                expected.fields[seqField].value = std::to_string(next);
                const std::string sender = RandomText(rng, 1, 20);
                b.UpdateTagSenderCompId(sender.c_str(), 0, 2);
                expected.fields[senderField].value = sender;
                const unsigned ms2 = pick(86400000);
                b.UpdateTagUtcTime(ms2);
                expected.fields[3].value = UtcText(month, day, year, ms2);
                ASSERT_TRUE(b.Finalize(expected.type.c_str()));
            }

            const std::string bytes = Gather(b);
            const fixcheck::Measured m = fixcheck::Measure(bytes);
            ASSERT_TRUE(m.wellFormed);
            EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum);
            // Kept: after a two-character type, the message following Reset counts one byte more.
            EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength + (previousTwoChar ? 1u : 0u));
            EXPECT_EQ(b.GetMessageLength(), m.declaredBodyLength);

            std::vector<Field> fields;
            ASSERT_TRUE(fixcheck::SplitFields(bytes, fields));
            ASSERT_EQ(fields.size(), expected.fields.size() + 4);
            EXPECT_EQ(fields[0], (Field{"8", beginString}));
            EXPECT_EQ(fields[2], (Field{"35", expected.type}));
            EXPECT_EQ(std::vector<Field>(fields.begin() + 3, fields.end() - 1), expected.fields);

            // The library's own receiving side: the scanner finds the message's end, the parser
            // reads every field back (a carried BodyLength points the scanner at the wrong byte).
            unsigned int heldLength = 0, newLength = static_cast<unsigned int>(bytes.size()), position = 0;
            unsigned int scannedVersion = 0;
            const char* newData = bytes.data();
            char protocol[8] = {};
            unsigned short bls = 0, vp = 0, blt = 0, bl = 0, blv = 0, bs = 0, mt = 0, mtv = 0, mte = 0,
                           cs = 0, csv = 0, cse = 0;
            unsigned char complete = 0;
            char current = 0, previous = 0;
            const unsigned char code = U_CheckFixIntegrity(
                nullptr, &heldLength, &newData, &newLength, &position, protocol, &scannedVersion, &bls, &vp,
                &blt, &bl, &blv, &bs, &mt, &mtv, &mte, &cs, &csv, &cse, &complete, &current, &previous);
            if (previousTwoChar) {
                EXPECT_EQ(code, FixIntegrityBadTrailer);
            } else {
                ASSERT_EQ(code, FixIntegrityOk);
                EXPECT_EQ(complete, 1);
                EXPECT_EQ(newLength, 0u);
                EXPECT_EQ(position + 1, bytes.size());
                EXPECT_EQ(bl, m.declaredBodyLength);
                EXPECT_EQ(cs, m.declaredCheckSum);
                EXPECT_EQ(scannedVersion, version);
                FixFieldMap map;
                unsigned short errorTag = 0, ordinal = 0;
                ASSERT_EQ(U_ParseFix(map, bytes.data(), static_cast<unsigned int>(bytes.size()), &errorTag,
                                     &ordinal),
                          FixParseNoError);
                std::vector<Field> reparsed;
                for (const auto& [tag, text] : map)
                    reparsed.push_back({std::to_string(tag), std::string(text)});
                EXPECT_EQ(reparsed.size(), fields.size());
                for (std::size_t i = 0; i < reparsed.size() && i < fields.size(); ++i) {
                    Field normalized = fields[i];
                    normalized.tag = std::to_string(std::stoul(normalized.tag));
                    EXPECT_EQ(reparsed[i], normalized) << i;
                }
                ++parsed;
            }
            previousTwoChar = expected.type.size() == 2;
        }
    }
    EXPECT_GT(parsed, 200);
}

} // namespace
