// FixTagCollection: header pieces, appends and in-place updates, Finalize's limits and kept quirks,
// Reset, views, and random messages checked against sums and counts computed here with plain loops,
// split back into fields and read back by the library's own FIX scanner and parser.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "VeloraUtils/FixParsing.h"
#include "VeloraUtils/FixTagCollection.h"
#include "fix_test_messages.h"

namespace {

using fixtest::Gather;
using fixtest::TextOf;
using Field = std::pair<std::string, std::string>; // tag, value
#define CALL(...) [](FixTagCollection& t) { return t.__VA_ARGS__; }
const char kSoh = '\x01';
const std::string kEmptyTypePiece = std::string(1, kSoh) + "35=" + '\0' + kSoh;

// Splits at each SOH and the first "=" of each piece; false when a piece has no "=" or no SOH.
bool SplitFields(const std::string& text, std::vector<Field>& out) {
    out.clear();
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t soh = text.find('\x01', start), eq = text.find('=', start);
        if (soh == std::string::npos || eq == std::string::npos || eq > soh) return false;
        out.emplace_back(text.substr(start, eq - start), text.substr(eq + 1, soh - eq - 1));
        start = soh + 1;
    }
    return true;
}

// The running sum and total agree with the bytes in the slots (the trailer excluded).
::testing::AssertionResult Consistent(const FixTagCollection& b) {
    std::string bytes = Gather(b);
    if (b.isFinalized()) bytes.resize(bytes.size() - 7);
    unsigned int sum = 0;
    for (char c : bytes) sum += static_cast<unsigned char>(c);
    return ::testing::AssertionResult(b.GetControlSum() % 256 == sum % 256 &&
                                      b.GetTotalLength() == bytes.size() + 7)
           << "sum " << b.GetControlSum() % 256 << " vs " << sum % 256 << ", total " << b.GetTotalLength()
           << " vs " << bytes.size() + 7;
}

// BodyLength and CheckSum as a receiver counts them; `extra` is a kept quirk's BodyLength excess.
::testing::AssertionResult Verified(const FixTagCollection& b, unsigned int extra = 0) {
    const fixtest::Measured m = fixtest::Measure(Gather(b));
    return ::testing::AssertionResult(m.wellFormed && m.declaredBodyLength == m.countedBodyLength + extra &&
                                      m.declaredCheckSum == m.computedCheckSum)
           << "9=" << m.declaredBodyLength << " counted " << m.countedBodyLength
           << ", 10=" << m.declaredCheckSum << " computed " << m.computedCheckSum;
}

TEST(FixTagCollection, ConstructionBuildsHeaderPiecesOnce) {
    // clang-format off
    const std::vector<std::tuple<const char*, unsigned int, std::string>> cases = {
        {"FIX", 0x0402, "FIX.4.2"}, {"FIXT", 0x0101, "FIXT.1.1"},
        {"FIX", 0x01000100, "FIX.1.0.1.0"}, // inner zero bytes kept
        {"FIX", 0x00040002, "FIX.4.0.2"},   // leading zero bytes skipped
        {"FIX", 0, "FIX.0"},                // the lowest byte always written
        {"FIX", 0xFF0A, "FIX.255.10"},      // byte values in decimal
        {"ABCDEFGHIJ", 0x0402, "ABCDEFG.4.2"}, {nullptr, 0x0402, ".4.2"},
    };
    // clang-format on
    for (const auto& [protocol, version, beginString] : cases) {
        const FixTagCollection b(5, version, protocol);
        EXPECT_EQ(std::tuple(b.GetCount(), b.GetCapacity(), Gather(b), TextOf(b, 2),
                             std::string(b.GetFixProtocol()), b.GetFixVersion(), b.isFinalized(),
                             b.GetMessageLength()),
                  std::tuple(3, 12, "8=" + beginString + "\x01" + "9=" + kEmptyTypePiece, kEmptyTypePiece,
                             beginString.substr(0, beginString.find('.')), version, false, 0u));
        EXPECT_TRUE(Consistent(b)) << beginString;
    }
    const FixTagCollection fix(0, 0x0402, "FIX");
    EXPECT_EQ(fix.GetFixProtocolNum(), 0x584946u); // 'F' in the lowest byte
    EXPECT_EQ(fix.GetCapacity(), 7);
    EXPECT_EQ(FixTagCollection(65535, 0x0402, "FIX").GetCapacity(), 65535); // + 7 saturates, no wrap
}

std::string U(std::string text) { // '_' marks a place still holding its 0 byte
    std::replace(text.begin(), text.end(), '_', '\0');
    return "52=" + text + kSoh;
}

TEST(FixTagCollection, AppendsAndUpdatesWriteTheirSlotsAndKeepTheSum) {
    // name, the calls, what the last returns (true is 1), the slots from 3 on ("aa" (copied) and "34=" at
    // first)
    using Case = std::tuple<const char*, std::function<unsigned short(FixTagCollection&)>, unsigned short,
                            std::vector<std::string>>;
    const std::string A("aa"), B("34="), S("\x01");
    // Values and calls the random messages below do not produce; the ordinary appends are checked there.
    // clang-format off
    const std::vector<Case> cases = {
        {"ValueEndingInSohGetsNone", CALL(Append("x\x01", 0, true, 0)), 6, {A, B, "x\x01"}},
        {"EmptyValueGetsSoh", CALL(Append("", 0, true, 0)), 6, {A, B, "", S}},
        {"LengthBoundsTheValue", CALL(Append("xyz", 1, true, 2)), 6, {A, B, "x\x01"}},
        {"SohInsideLengthCounts", CALL(Append("a\x01z", 2, true, 0)), 6, {A, B, "a\x01"}},
        {"HighBytesSumAsNegative", CALL(Append("\xe9\xff", 0, true, 2)), 6, {A, B, "\xe9\xff\x01"}},
        {"UIntZero", CALL(AppendUIntTag("38=", 0, 3)), 7, {A, B, "38=", "0\x01"}},
        {"UIntMax", CALL(AppendUIntTag("38=", 4294967295u, 3)), 7, {A, B, "38=", "4294967295\x01"}},
        {"UInt64Max", CALL(AppendUInt64Tag("38=", ~0ull, 0)), 7, {A, B, "38=", "18446744073709551615\x01"}},
        {"PackedTwoOfFour", CALL(AppendUIntTagAsString("35=", 0x4544, 3)), 7, {A, B, "35=", "DE\x01"}},
        {"PackedFour", CALL(AppendUIntTagAsString("15=", 0x58445355u, 3)), 7, {A, B, "15=", "USDX\x01"}},
        {"PackedStopsAtZero", CALL(AppendUIntTagAsString("15=", 0x430041, 3)), 7, {A, B, "15=", "A\x01"}},
        {"PackedZeroIsEmpty", CALL(AppendUIntTagAsString("15=", 0, 3)), 7, {A, B, "15=", S}},
        {"PackedShort", CALL(AppendUShortTagAsString("54=", 0x4231, 3)), 7, {A, B, "54=", "1B\x01"}},
        {"SetMiddleIgnoresTrailing", CALL(SetTagAt(3, "z", 0, &kSoh, 0)), 1, {"z", B}},
        {"SetLastGetsTrailingSlot", CALL(SetTagAt(4, "\xf0z", 0, &kSoh, 0)), 1, {A, "\xf0z", S}},
        {"SetAtCountAppends", CALL(SetTagAt(5, "new", 0, &kSoh, 0)), 1, {A, B, "new", S}},
        {"SetHeaderPieceByCopy", CALL(SetTagAt(0, "8=FIXT.1.1", 0, nullptr, 2)), 1, {A, B}},
        {"SetBeyondCountRefused", CALL(SetTagAt(6, "x", 0, nullptr, 0)), 0, {A, B}},
        {"SeqNumNeverAppended", CALL(UpdateMsgSeqNumValue(5)), 0, {A, B}},
        {"SeqNumSohOnly", CALL(AppendMsgSeqNumValue(0)), 5, {A, B, S}},
        {"SeqNumZeroByUpdate", CALL(AppendMsgSeqNumValue(9), t.UpdateMsgSeqNumValue(0)), 1, {A, B, "0\x01"}},
        {"SeqNumAgain", CALL(AppendMsgSeqNumValue(0), t.AppendMsgSeqNumValue(42)), 5, {A, B, "42\x01"}},
        {"TargetNeverAppended", CALL(UpdateTagTargetCompId("X", 0, 0)), 0, {A, B}},
        {"SenderNeverAppended", CALL(UpdateTagSenderCompId("X", 0, 0)), 0, {A, B}},
        {"TestReqNeverAppended", CALL(UpdateTagTestReqId("X", 0, 0)), 0, {A, B}},
        {"TestReqAgainSameSlot", CALL(AppendTagTestReqId("F", 0, 0), t.AppendTagTestReqId("AB", 1, 0)), 6,
         {A, B, "112=", "A", S}},
        {"TimeNeverAppended", CALL(UpdateTagUtcTime(0) || t.UpdateTagUtcDate(1, 1, 2020) ||
                                   t.UpdateTagUtcDate("2020")), 0, {A, B}},
        {"NoTimeKeepsZeroPlaces", CALL(AppendTagUtc(3, 4, 2021, ~0u)), 5, {A, B, U("20210304-__:__:__.___")}},
        {"YearZeroKeepsDate", CALL(AppendTagUtc(3, 4, 0, 3723004)), 5, {A, B, U("________-01:02:03.004")}},
        {"TextDate", CALL(AppendTagUtc("20200229", 45296789)), 5, {A, B, U("20200229-12:34:56.789")}},
        {"NoRangeCheck", CALL(AppendTagUtc(123, 45, 12345, 86400000)), 5, {A, B, U("23452345-24:00:00.000")}},
        {"ShortTextStops", CALL(AppendTagUtc("2019", ~0u)), 5, {A, B, U("2019____-__:__:__.___")}},
        {"NoTimeKeepsLastTime", CALL(AppendTagUtc(12, 31, 2019, 86399999), t.AppendTagUtc(1, 1, 2020, ~0u)),
         5, {A, B, U("20200101-23:59:59.999")}},
        {"UpdatesAfterAppend", CALL(AppendTagUtc(nullptr, ~0u), t.UpdateTagUtcDate(7, 8, 2022) &&
                                    t.UpdateTagUtcTime(1) && t.UpdateTagUtcDate("2023")), 1,
         {A, B, U("20230708-00:00:00.001")}},
    };
    // clang-format on
    for (const auto& [name, act, result, expected] : cases) {
        FixTagCollection b(1, 0x0402, "FIX");
        b.Append("aa", 0, false, 2);
        b.Append("34=", 0, false, 0);
        EXPECT_EQ(act(b), result) << name;
        std::vector<std::string> slots;
        for (unsigned short i = 3; i < b.GetCount(); ++i) slots.push_back(TextOf(b, i));
        EXPECT_EQ(slots, expected) << name;
        EXPECT_TRUE(Consistent(b)) << name;
    }
    FixTagCollection b(1, 0x0402, "FIX");
    EXPECT_EQ(b.GetTagMsgSeqNumValue(), nullptr);
    b.Append("34=", 0, false, 0);
    b.AppendMsgSeqNumValue(1234);
    EXPECT_EQ(b.GetMsgSeqNum(), 1234u);
    EXPECT_EQ(b.GetTagMsgSeqNumValue(), b.GetWsaBufAt(4)->buf);
}

TEST(FixTagCollection, FinalizeWritesInPlaceWithinItsLimits) {
    FixTagCollection b(4, 0x0402, "FIX");
    ASSERT_NE(b.Append("58=x\x01", 0, true, 0), 0);
    ASSERT_TRUE(b.Finalize("0"));
    EXPECT_TRUE(Verified(b));
    std::string log, dropped;
    b.toString(log, "|");
    b.toString(dropped, nullptr);
    const std::string sum = log.substr(log.size() - 4, 3);
    EXPECT_EQ(std::tuple(b.GetMessageLength(), log, dropped),
              std::tuple(10u, "8=FIX.4.2|9=10|35=0|58=x|10=" + sum + "|", "8=FIX.4.29=1035=058=x10=" + sum));

    FixTagCollection full(0, 0x0402, "FIX"); // 7 slots, full: the trailer slot grows the array
    full.Append("34=", 0, false, 0);
    full.AppendMsgSeqNumValue(9);
    full.Append("1=a", 0, true, 0);
    ASSERT_EQ(full.GetCount(), 7);
    ASSERT_TRUE(full.Finalize("0"));
    EXPECT_EQ(std::tuple(full.GetCapacity(), full.GetCount()), std::tuple(14, 8));
    EXPECT_TRUE(Verified(full));
    full.UpdateMsgSeqNumValue(123456); // twice: digits and checksum rewritten, one trailer slot
    ASSERT_TRUE(full.Finalize("0"));
    EXPECT_EQ(std::tuple(full.GetCount(), full.GetMessageLength()), std::tuple(8, 19u));
    EXPECT_TRUE(Verified(full));
    EXPECT_TRUE(Consistent(full));

    FixTagCollection cleared(1, 0x0402, "FIX"); // fewer than three slots: only by clearing the base list
    cleared.WsaCollection::Reset();
    EXPECT_FALSE(cleared.Finalize("0") || cleared.GetCount() != 0);

    // clang-format off
    const std::vector<std::tuple<const char*, std::function<bool(FixTagCollection&)>, std::string>> types = {
        {"OnlyTwoCharactersTaken", CALL(Finalize("AEX")), "35=AE\x01"},
        {"PackedCodeLowByteFirst", CALL(Finalize(static_cast<unsigned short>(0x4541))), "35=AE\x01"},
        {"PackedOneCharacter", CALL(Finalize(static_cast<unsigned short>('8'))), "35=8\x01"},
        {"Characters", CALL(Finalize('B', 'E')), "35=BE\x01"},
        {"EmptyTextKeepsTheZeroByte", CALL(Finalize("")), std::string("35=\0\x01", 5)},
        {"NullTextRefused", CALL(Finalize(static_cast<const char*>(nullptr))), ""},
    };
    // clang-format on
    for (const auto& [name, finalize, typeField] : types) {
        SCOPED_TRACE(name);
        FixTagCollection t(1, 0x0402, "FIX");
        t.Append("58=x", 0, true, 0);
        EXPECT_EQ(finalize(t), !typeField.empty());
        EXPECT_TRUE(typeField.empty() || (Verified(t) && TextOf(t, 2) == "\x01" + typeField)) << Gather(t);
    }

    for (const bool fits : {true, false}) { // BodyLength = 5 + 4 + value length
        SCOPED_TRACE(fits ? "Exactly65000" : "65001");
        const std::string value(fits ? 65000 - 9 : 65001 - 9, 'v');
        FixTagCollection big(1, 0x0402, "FIX");
        big.AppendTag("58=", value.c_str(), 3, static_cast<unsigned int>(value.size()), 0, true);
        const std::size_t before = Gather(big).size();
        EXPECT_EQ(big.Finalize("D"), fits); // a new type: on failure only slot 2's length goes back
        EXPECT_EQ(big.GetMessageLength(), fits ? 65000u : 0u);
        if (fits) {
            EXPECT_TRUE(Verified(big));
            continue;
        }
        const std::string after = Gather(big); // no digits, no trailer slot, slot 2 at its old length
        EXPECT_EQ(std::tuple(big.isFinalized(), TextOf(big, 1).size(), after.size()),
                  std::tuple(false, 0u, before));
        EXPECT_EQ(after[TextOf(big, 0).size() + 4], 'D'); // the type byte keeps its new value
        // Kept: after a refused two-character type the piece length is not restored with the slot.
        EXPECT_FALSE(big.Finalize("AE"));
        EXPECT_EQ(std::tuple(TextOf(big, 2).size(), big.GetTotalLength()), std::tuple(6u, before + 1 + 7));
    }
}

TEST(FixTagCollection, KeptMsgTypeQuirks) {
    // Two different two-character types without Reset: the recorded piece grows once more, so
    // BodyLength counts one byte that the (7-byte, bounded) slot does not hold.
    FixTagCollection twoTwo(1, 0x0402, "FIX");
    twoTwo.Append("58=x", 0, true, 0);
    ASSERT_TRUE(twoTwo.Finalize("AE"));
    EXPECT_TRUE(Verified(twoTwo));
    ASSERT_TRUE(twoTwo.Finalize("AF"));
    EXPECT_EQ(TextOf(twoTwo, 2).size(), 7u);
    EXPECT_TRUE(Verified(twoTwo, 1));

    // One-character type after a two-character one without Reset: the piece stays 7 bytes long
    // (SOH "35=D" SOH SOH); BodyLength counts the extra SOH, the sum does not.
    FixTagCollection twoOne(1, 0x0402, "FIX");
    twoOne.Append("58=x", 0, true, 0);
    ASSERT_TRUE(twoOne.Finalize("AE"));
    ASSERT_TRUE(twoOne.Finalize("D"));
    EXPECT_EQ(TextOf(twoOne, 2), std::string(1, kSoh) + "35=D\x01\x01");
    const fixtest::Measured m = fixtest::Measure(Gather(twoOne));
    EXPECT_EQ(std::tuple(m.wellFormed, m.declaredBodyLength, m.declaredCheckSum),
              std::tuple(true, m.countedBodyLength, (m.computedCheckSum + 255) % 256));
    // Reset after a two-character type: the random messages below pin the kept BodyLength excess.
}

TEST(FixTagCollection, ResetClearsAndViewsRefuseChanges) {
    FixTagCollection b(1, 0x0402, "FIX");
    const unsigned int baseSum = b.GetControlSum();
    b.AppendTagSenderCompId("S", 0, 2);
    b.AppendTagTargetCompId("T", 0, 0);
    b.AppendTagTestReqId("R", 0, 0);
    b.AppendTagUtc(1, 2, 2003, 4);
    ASSERT_TRUE(b.Finalize("D"));
    const std::string message = Gather(b);
    {
        FixTagCollection view(b); // shares the slots; changes go through the base, which refuses them
        EXPECT_EQ(view.AppendMsgSeqNumValue(6), 0);
        EXPECT_EQ(view.AppendTagUtc(1, 1, 2020, 0), 0);
        EXPECT_FALSE(view.UpdateTagSenderCompId("X", 0, 0));
        view.Reset();
    }
    EXPECT_EQ(Gather(b), message); // the source is untouched by its views
    b.Reset();
    EXPECT_EQ(std::tuple(b.GetCount(), b.GetControlSum(), b.isFinalized(), b.GetMessageLength()),
              std::tuple(3, baseSum, false, 0u));
    EXPECT_FALSE(b.UpdateTagSenderCompId("S", 0, 0) || b.UpdateTagTargetCompId("T", 0, 0));
    EXPECT_FALSE(b.UpdateTagTestReqId("R", 0, 0) || b.UpdateTagUtcTime(0));
    b.AppendTagUtc(nullptr, ~0u); // the SendingTime places are zero again
    EXPECT_EQ(TextOf(b, 3), std::string("52=\0\0\0\0\0\0\0\0-\0\0:\0\0:\0\0.\0\0\0\x01", 25));
}

// Builder against independent checks: random messages, several per builder with Reset between.
std::string RandomText(std::mt19937& rng, std::size_t maxLength) {
    std::string s(std::uniform_int_distribution<std::size_t>(1, maxLength)(rng), ' ');
    for (char& c : s) c = static_cast<char>(std::uniform_int_distribution<int>(0x20, 0x7E)(rng));
    std::replace(s.begin(), s.end(), '=', '+'); // the parser drops "=" inside values
    return s;
}

std::string UtcText(unsigned month, unsigned day, unsigned year, unsigned ms) {
    char text[32];
    std::snprintf(text, sizeof text, "%04u%02u%02u-%02u:%02u:%02u.%03u", year, month, day, ms / 3600000,
                  ms / 60000 % 60, ms / 1000 % 60, ms % 1000);
    return text;
}

TEST(FixTagCollection, RandomMessagesMatchIndependentChecksAndReadBack) {
    const char* const kTypes[] = {"0", "A", "D", "G", "8", "F", "5", "AE", "AD", "BE", "AP", "CA"};
    int parsed = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        std::mt19937 rng(seed);
        auto pick = [&](unsigned n) { return std::uniform_int_distribution<unsigned>(0, n - 1)(rng); };
        const unsigned int version = seed % 2 ? 0x0402u : 0x0404u;
        FixTagCollection b(static_cast<unsigned short>(pick(6)), version, "FIX");
        std::deque<std::string> referenced; // values appended by reference live here
        bool previousTwoChar = false;
        for (int message = 0; message < 12; ++message) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " message " << message);
            if (message != 0) b.Reset();
            referenced.clear();
            const std::string type = kTypes[pick(3) == 0 ? 7 + pick(5) : pick(7)];
            const unsigned int seq = pick(4) == 0 ? 4294967295u - pick(10) : 1 + pick(100000);
            const unsigned month = 1 + pick(12), day = 1 + pick(31), year = 1970 + pick(130),
                           ms = pick(86400000);
            referenced.push_back(RandomText(rng, 12)); // the sender may go by reference
            std::vector<Field> expected = {{"34", std::to_string(seq)},
                                           {"49", referenced.back()},
                                           {"56", RandomText(rng, 12)},
                                           {"52", UtcText(month, day, year, ms)}};
            b.Append("34=", 0, false, 0);
            b.AppendMsgSeqNumValue(seq);
            b.AppendTagSenderCompId(referenced.back().c_str(), 0, static_cast<unsigned char>(pick(2) * 2));
            b.AppendTagTargetCompId(expected[2].second.c_str(), 0, 2);
            b.AppendTagUtc(static_cast<unsigned short>(month), static_cast<unsigned short>(day),
                           static_cast<unsigned short>(year), ms);
            std::vector<unsigned> tags;
            for (unsigned t = 200; t < 500; ++t) tags.push_back(t); // clear of 112 (TestReqID)
            std::shuffle(tags.begin(), tags.end(), rng);
            for (unsigned f = 0, fieldCount = pick(30); f < fieldCount; ++f) {
                referenced.push_back(std::to_string(tags[f]) + "=");
                const char* tag = referenced.back().c_str();
                const unsigned kind = pick(5);
                const std::uint64_t number = kind == 0 ? rng() : (std::uint64_t{rng()} << 32) | rng();
                expected.push_back(
                    {std::to_string(tags[f]), kind < 2 ? std::to_string(number) : RandomText(rng, 40)});
                const std::string& value = expected.back().second;
                if (kind == 0) {
                    b.AppendUIntTag(tag, static_cast<unsigned int>(number), 0);
                } else if (kind == 1) {
                    b.AppendUInt64Tag(tag, number, 0);
                } else if (kind == 2) { // handed over
                    char* handed = new char[value.size()];
                    std::copy(value.begin(), value.end(), handed);
                    b.AppendTag(tag, handed, 0, static_cast<unsigned int>(value.size()), 1, true);
                } else { // by reference or copied, sometimes with its own SOH
                    referenced.push_back(value + (pick(2) == 0 ? "\x01" : ""));
                    b.AppendTag(tag, referenced.back().c_str(), 0, 0, static_cast<unsigned char>(pick(2) * 2),
                                true);
                }
            }
            if (pick(3) == 0) {
                expected.push_back({"112", RandomText(rng, 8)});
                b.AppendTagTestReqId(expected.back().second.c_str(), 0, 2);
            }
            ASSERT_TRUE(b.Finalize(type.c_str()));
            if (pick(2) == 0) { // change per-message values and finalize again in place
                const unsigned next = 1 + pick(1000000), ms2 = pick(86400000);
                expected[0].second = std::to_string(next);
                expected[1].second = RandomText(rng, 20);
                expected[3].second = UtcText(month, day, year, ms2);
                b.UpdateMsgSeqNumValue(next);
                b.UpdateTagSenderCompId(expected[1].second.c_str(), 0, 2);
                b.UpdateTagUtcTime(ms2);
                ASSERT_TRUE(b.Finalize(type.c_str()));
            }

            const bool carried = previousTwoChar; // kept: the message after Reset counts one byte more
            previousTwoChar = type.size() == 2;
            const std::string bytes = Gather(b);
            const fixtest::Measured m = fixtest::Measure(bytes);
            EXPECT_EQ(
                std::tuple(m.wellFormed, m.declaredCheckSum, m.declaredBodyLength, b.GetMessageLength()),
                std::tuple(true, m.computedCheckSum, m.countedBodyLength + (carried ? 1u : 0u),
                           m.declaredBodyLength));
            std::vector<Field> fields;
            ASSERT_TRUE(SplitFields(bytes, fields));
            ASSERT_EQ(fields.size(), expected.size() + 4);
            EXPECT_EQ(fields[0], Field("8", version == 0x0402u ? "FIX.4.2" : "FIX.4.4"));
            EXPECT_EQ(fields[2], Field("35", type));
            EXPECT_EQ(std::vector<Field>(fields.begin() + 3, fields.end() - 1), expected);

            // The library's receiving side: the scanner finds the message's end (a carried BodyLength
            // points it at the wrong byte), the parser reads every field back.
            fixtest::ScanState scan;
            unsigned int held = 0, length = static_cast<unsigned int>(bytes.size());
            const char* data = bytes.data();
            const unsigned char code = scan.Scan(nullptr, held, &data, length);
            if (carried) {
                EXPECT_EQ(code, FixIntegrityBadTrailer);
                continue;
            }
            EXPECT_EQ(std::tuple(int{code}, int{scan.complete}, length, scan.position + 1,
                                 unsigned{scan.bodyLength}, unsigned{scan.checkSum}, scan.version),
                      std::tuple(int{FixIntegrityOk}, 1, 0u, bytes.size(), m.declaredBodyLength,
                                 m.declaredCheckSum, version));
            FixFieldMap map;
            ASSERT_EQ(
                U_ParseFix(map, bytes.data(), static_cast<unsigned int>(bytes.size()), nullptr, nullptr),
                FixParseNoError);
            std::vector<Field> reparsed;
            for (const auto& [tag, text] : map) reparsed.emplace_back(std::to_string(tag), text);
            EXPECT_EQ(reparsed, fields);
            ++parsed;
        }
    }
    EXPECT_GT(parsed, 200);
}

} // namespace
