// U_CheckFixIntegrity: the header and trailer rules row by row, where a message ends in a stream,
// and resumption: any cut of the input into pieces ends in the same code and the same state as the
// input fed whole. Every piece and every held buffer is an exactly sized heap block.
#include "VeloraUtils/FixParsing.h"

#include "fix_test_messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace {

using fixtest::ExactBuffer;
using fixtest::Soh;

struct ScanState {
    unsigned int position = 0;
    char protocol[8] = {};
    unsigned int version = 0;
    unsigned short beginStringValuePos = 0, versionPos = 0, bodyLengthTagPos = 0, bodyLength = 0,
                   bodyLengthValuePos = 0, bodyStartPos = 0, msgType = 0, msgTypeValuePos = 0,
                   msgTypeEndPos = 0, checkSum = 0, checkSumValuePos = 0, checkSumEndPos = 0;
    unsigned char complete = 0;
    char currentChar = 0, previousChar = 0;

    bool operator==(const ScanState&) const = default;
};

std::ostream& operator<<(std::ostream& os, const ScanState& s) {
    return os << "{position " << s.position << ", protocol \""
              << std::string(s.protocol, strnlen(s.protocol, 8)) << "\", version " << s.version
              << ", positions " << s.beginStringValuePos << '/' << s.versionPos << '/' << s.bodyLengthTagPos
              << '/' << s.bodyLengthValuePos << '/' << s.bodyStartPos << '/' << s.msgTypeValuePos << '/'
              << s.msgTypeEndPos << '/' << s.checkSumValuePos << '/' << s.checkSumEndPos << ", bodyLength "
              << s.bodyLength << ", msgType " << s.msgType << ", checkSum " << s.checkSum << ", complete "
              << int{s.complete} << ", chars " << int{s.previousChar} << ' ' << int{s.currentChar} << '}';
}

// One call; returns the code and sets `taken` to the fresh bytes consumed.
unsigned char Call(ScanState& s, const ExactBuffer& held, const ExactBuffer& fresh, std::size_t& taken) {
    unsigned int heldLength = static_cast<unsigned int>(held.size);
    const char* data = fresh.get();
    unsigned int length = static_cast<unsigned int>(fresh.size);
    const unsigned char code = U_CheckFixIntegrity(
        held.get(), &heldLength, &data, &length, &s.position, s.protocol, &s.version, &s.beginStringValuePos,
        &s.versionPos, &s.bodyLengthTagPos, &s.bodyLength, &s.bodyLengthValuePos, &s.bodyStartPos, &s.msgType,
        &s.msgTypeValuePos, &s.msgTypeEndPos, &s.checkSum, &s.checkSumValuePos, &s.checkSumEndPos,
        &s.complete, &s.currentChar, &s.previousChar);
    EXPECT_EQ(heldLength, held.size);
    EXPECT_EQ(static_cast<std::size_t>(data - fresh.get()) + length, fresh.size); // pointer and count agree
    taken = fresh.size - length;
    return code;
}

struct Outcome {
    unsigned char code = 0;
    ScanState state;
    std::size_t consumed = 0; // stream bytes that belong to the message so far
};

// Feeds `bytes` cut before each offset of `cuts` (ascending, the last one = where the input ends),
// as a caller does: the bytes of earlier calls are passed again as `held`.
Outcome ScanPieces(std::string_view bytes, const std::vector<std::size_t>& cuts) {
    Outcome out;
    std::string held;
    std::size_t start = 0;
    for (const std::size_t cut : cuts) {
        const std::string_view piece = bytes.substr(start, cut - start);
        std::size_t taken = 0;
        out.code = Call(out.state, ExactBuffer(held), ExactBuffer(piece), taken);
        out.consumed = held.size() + taken;
        if (out.code != FixIntegrityOk || out.state.complete != 0) break;
        EXPECT_EQ(taken, piece.size()) << "a call that needs more data takes every fresh byte";
        held.append(piece);
        start = cut;
    }
    return out;
}

Outcome ScanWhole(std::string_view bytes) {
    return ScanPieces(bytes, {bytes.size()});
}

const std::string kBody =
    "35=D|49=SNDR|56=TRGT|34=7|52=20190101-12:00:00.000|11=ORD1|55=IBM|54=1|38=100|40=1|";
const std::string kMessage = fixtest::Message("FIX.4.2", kBody);
const std::string kHeader = fixtest::Header("FIX.4.2", kBody); // everything before "10="

unsigned short Digits3(std::string_view s) {
    return static_cast<unsigned short>((s[0] - '0') * 100 + (s[1] - '0') * 10 + (s[2] - '0'));
}

struct Expect {
    unsigned char code;
    unsigned char complete;
    std::size_t position;
    std::string_view protocol;
    unsigned int version;
    unsigned short bodyLength;
    unsigned short msgType;
    unsigned short checkSum;
};

struct Row {
    const char* pins;
    std::string bytes;
    Expect expect;
};

// A header with `beginString` and a raw BodyLength text, then "35=A|" and more.
std::string RawHeader(std::string_view beginString, std::string_view bodyLength, std::string_view rest) {
    return Soh("8=" + std::string(beginString) + "|9=" + std::string(bodyLength) + "|" + std::string(rest));
}

std::vector<Row> EdgeRows() {
    const auto bodySize = static_cast<unsigned short>(Soh(kBody).size());
    const unsigned short sum = Digits3(kMessage.substr(kMessage.size() - 4, 3));
    const std::size_t n = kMessage.size();
    const std::size_t h = kHeader.size();
    const std::string fixt = fixtest::Message("FIXT.1.1", "35=AB|1128=9|");
    return {
        {"WellFormedMessageCompletesOnItsFinalSoh",
         kMessage,
         {0, 1, n - 1, "FIX", 0x0402, bodySize, 'D', sum}},
        {"ChecksumCharactersAreNotValidated",
         kHeader + Soh("10=abc|"),
         {0, 1, h + 6, "FIX", 0x0402, bodySize, 'D', 5451}},
        {"ChecksumBytesAbove0x7FCountAsNegativeAndWrap",
         kHeader + Soh("10=\xFF\xFF\xFF|"),
         {0, 1, h + 6, "FIX", 0x0402, bodySize, 'D', 60097}},
        {"TwoCharacterMsgTypeHasFirstInHighByte",
         fixt,
         {0, 1, fixt.size() - 1, "FIXT", 0x0101, 13, 0x4142, Digits3(fixt.substr(fixt.size() - 4, 3))}},
        // BeginString
        {"EmptyVersionNumberBetweenDots", Soh("8=FIX..2|"), {1, 0, 6, "FIX", 0, 0, 0, 0}},
        {"VersionNumberAbove255", Soh("8=FIX.4.256|"), {1, 0, 10, "FIX", 0, 0, 0, 0}},
        {"NoProtocolCharacterBeforeFirstDot", Soh("8=.4.2|"), {1, 0, 2, "", 0, 0, 0, 0}},
        {"FirstTagIsNot8", Soh("9=FIX.4.2|"), {1, 0, 0, "", 0, 0, 0, 0}},
        {"BeginStringWithoutEquals", Soh("8FIX.4.2|"), {1, 0, 1, "", 0, 0, 0, 0}},
        {"SohBeforeFirstDotZeroesProtocol", Soh("8=FIX|9=5|"), {1, 0, 5, "", 0, 0, 0, 0}},
        {"EightProtocolCharactersAccepted",
         RawHeader("ABCDEFGH.1", "5", ""),
         {0, 0, 17, "ABCDEFGH", 1, 5, 0, 0}},
        {"NinthProtocolCharacterRefused", Soh("8=ABCDEFGHI.1|"), {1, 0, 10, "", 0, 0, 0, 0}},
        {"ProtocolCharacter0x7FAccepted", RawHeader("F\x7F.1", "5", ""), {0, 0, 11, "F\x7F", 1, 5, 0, 0}},
        {"ProtocolSpaceRefused", Soh("8=F X.4.2|"), {1, 0, 3, "", 0, 0, 0, 0}},
        {"ProtocolByte0x80Refused", Soh("8=F\x80X.4.2|"), {1, 0, 3, "", 0, 0, 0, 0}},
        {"FourFurtherDotsAcceptedAndFirstNumberWrapsOut",
         RawHeader("FIX.1.2.3.4.5", "5", ""),
         {0, 0, 20, "FIX", 0x02030405, 5, 0, 0}},
        {"FifthFurtherDotRefused", Soh("8=FIX.1.2.3.4.5.6|"), {1, 0, 15, "FIX", 0, 0, 0, 0}},
        {"SohRightAfterDotRefused", Soh("8=FIX.4.|"), {1, 0, 8, "FIX", 0, 0, 0, 0}},
        {"SohRightAfterFirstDotRefused", Soh("8=FIX.|"), {1, 0, 6, "FIX", 0, 0, 0, 0}},
        {"FourDigitVersionNumberRefused", Soh("8=FIX.0255|"), {1, 0, 9, "FIX", 0, 0, 0, 0}},
        {"VersionNumber255Accepted", RawHeader("FIX.255.0", "5", ""), {0, 0, 16, "FIX", 0xFF00, 5, 0, 0}},
        {"LetterInVersionZeroesVersion", Soh("8=FIX.4.2a|"), {1, 0, 9, "FIX", 0, 0, 0, 0}},
        // BodyLength
        {"BodyLengthZero", RawHeader("FIX.4.2", "0", ""), {2, 0, 13, "FIX", 0x0402, 0, 0, 0}},
        {"BodyLengthAbove65000", RawHeader("FIX.4.2", "65001", ""), {2, 0, 17, "FIX", 0x0402, 0, 0, 0}},
        {"BodyLength65000Accepted",
         RawHeader("FIX.4.2", "65000", ""),
         {0, 0, 18, "FIX", 0x0402, 65000, 0, 0}},
        {"SixthBodyLengthCharacterIsNotSoh",
         RawHeader("FIX.4.2", "123456", ""),
         {2, 0, 17, "FIX", 0x0402, 12345, 0, 0}},
        {"BodyLengthWrapsIn16BitsBeforeTheTest",
         RawHeader("FIX.4.2", "70000", "35=A|"),
         {0, 0, 23, "FIX", 0x0402, 4464, 'A', 0}},
        {"BodyLength65536WrapsToZero", RawHeader("FIX.4.2", "65536", ""), {2, 0, 17, "FIX", 0x0402, 0, 0, 0}},
        {"BodyLengthLeadingZerosAccepted",
         RawHeader("FIX.4.2", "00012", ""),
         {0, 0, 18, "FIX", 0x0402, 12, 0, 0}},
        {"BodyLengthWithoutDigits", RawHeader("FIX.4.2", "", ""), {2, 0, 12, "FIX", 0x0402, 0, 0, 0}},
        {"WrongByteInBodyLengthKeepsDigitsRead",
         RawHeader("FIX.4.2", "12x", ""),
         {2, 0, 14, "FIX", 0x0402, 12, 0, 0}},
        {"SecondTagIsNot9", Soh("8=FIX.4.2|35=A|"), {2, 0, 10, "FIX", 0x0402, 0, 0, 0}},
        // MsgType
        {"ThirdMsgTypeCharacterKeepsFirstTwo",
         RawHeader("FIX.4.2", "5", "35=ABC|"),
         {3, 0, 19, "FIX", 0x0402, 5, 0x4142, 0}},
        {"EmptyMsgType", RawHeader("FIX.4.2", "5", "35=|"), {3, 0, 17, "FIX", 0x0402, 5, 0, 0}},
        {"BadSecondMsgTypeCharacterZeroesMsgType",
         RawHeader("FIX.4.2", "5", "35=A!|"),
         {3, 0, 18, "FIX", 0x0402, 5, 0, 0}},
        {"BadFirstMsgTypeCharacter", RawHeader("FIX.4.2", "5", "35=!|"), {3, 0, 17, "FIX", 0x0402, 5, 0, 0}},
        {"ThirdTagIsNot35", RawHeader("FIX.4.2", "5", "36=A|"), {3, 0, 15, "FIX", 0x0402, 5, 0, 0}},
        // Trailer
        {"TrailerTagIsNot10", kHeader + Soh("11=123|"), {4, 0, h + 1, "FIX", 0x0402, bodySize, 'D', 0}},
        {"ByteAfterChecksumIsNotSoh",
         kHeader + Soh("10=123x"),
         {4, 0, h + 6, "FIX", 0x0402, bodySize, 'D', 123}},
        {"BodyLengthOneShortMissesTheSoh",
         RawHeader("FIX.4.2", "4", "35=A|10=000|"),
         {4, 0, 17, "FIX", 0x0402, 4, 'A', 0}},
        {"BodyLengthOneLongMissesTheSoh",
         RawHeader("FIX.4.2", "6", "35=A|10=000|"),
         {4, 0, 19, "FIX", 0x0402, 6, 'A', 0}},
        // Needs more data
        {"EndsInsideMsgType", kMessage.substr(0, 18), {0, 0, 18, "FIX", 0x0402, bodySize, 0, 0}},
        {"EndsOnBodysFinalSohWaitsForTheTrailer", kHeader, {0, 0, h, "FIX", 0x0402, bodySize, 'D', 0}},
        {"EndsBeforeThirdChecksumDigit",
         kMessage.substr(0, n - 2),
         {0, 0, n - 2, "FIX", 0x0402, bodySize, 'D', 65535}},
        {"EndsAfterThirdChecksumDigit",
         kMessage.substr(0, n - 1),
         {0, 0, n - 1, "FIX", 0x0402, bodySize, 'D', sum}},
    };
}

TEST(FixIntegrity, HeaderAndTrailerRules) {
    for (const Row& row : EdgeRows()) {
        SCOPED_TRACE(row.pins);
        const Outcome out = ScanWhole(row.bytes);
        const Expect& e = row.expect;
        EXPECT_EQ(out.code, e.code);
        EXPECT_EQ(out.state.complete, e.complete);
        EXPECT_EQ(out.state.position, e.position);
        EXPECT_EQ(std::string(out.state.protocol, strnlen(out.state.protocol, 8)), e.protocol);
        EXPECT_EQ(out.state.version, e.version);
        EXPECT_EQ(out.state.bodyLength, e.bodyLength);
        EXPECT_EQ(out.state.msgType, e.msgType);
        EXPECT_EQ(out.state.checkSum, e.checkSum);
    }
}

TEST(FixIntegrity, SavedPositionsAreOnePastTheByte) {
    // "8=FIX.4.2|9=5|35=A|10=000|": positions 2, 6, 10, 12, 14, 17, 19, 22 and 25 (plus one when saved).
    const std::string m = fixtest::Message("FIX.4.2", "35=A|");
    const Outcome out = ScanWhole(m);
    ASSERT_EQ(out.state.complete, 1);
    const ScanState& s = out.state;
    EXPECT_EQ(s.beginStringValuePos, 3);
    EXPECT_EQ(s.versionPos, 7);
    EXPECT_EQ(s.bodyLengthTagPos, 11);
    EXPECT_EQ(s.bodyLengthValuePos, 13);
    EXPECT_EQ(s.bodyStartPos, 15);
    EXPECT_EQ(s.msgTypeValuePos, 18);
    EXPECT_EQ(s.msgTypeEndPos, 20);
    EXPECT_EQ(s.checkSumValuePos, 23);
    EXPECT_EQ(s.checkSumEndPos, 26);
    EXPECT_EQ(s.position, 25u);
    EXPECT_EQ(s.currentChar, '\x01');
    EXPECT_EQ(s.previousChar, m[24]);
}

TEST(FixIntegrity, CharactersLastExamined) {
    // Ran out in the body: currentChar 0; the trailer sees the MsgType SOH as the byte before the body's.
    Outcome out = ScanWhole(kMessage.substr(0, kHeader.size() - 3));
    EXPECT_EQ(out.state.currentChar, 0);
    EXPECT_EQ(out.state.previousChar, 'D');
    out = ScanWhole(RawHeader("FIX.4.2", "6", "35=A|10=000|"));
    EXPECT_EQ(out.state.currentChar, '1');
    EXPECT_EQ(out.state.previousChar, '\x01');
    out = ScanWhole(kMessage.substr(0, kMessage.size() - 2));
    EXPECT_EQ(out.state.currentChar, kMessage[kMessage.size() - 3]);
    EXPECT_EQ(out.state.previousChar, kMessage[kMessage.size() - 4]);
    // A refused byte is the current one, and *position stays on it.
    out = ScanWhole(Soh("8=FIX.4.2|9=x"));
    EXPECT_EQ(out.state.currentChar, 'x');
    EXPECT_EQ(out.state.previousChar, '=');
    EXPECT_EQ(out.consumed, 13u);
}

TEST(FixIntegrity, CompletionLeavesTheNextMessageUnread) {
    const std::string second = fixtest::Message("FIXT.1.1", "35=0|");
    const std::string stream = kMessage + second + "8=FI";
    ScanState s;
    std::size_t taken = 0;
    EXPECT_EQ(Call(s, ExactBuffer(""), ExactBuffer(stream), taken), FixIntegrityOk);
    EXPECT_EQ(s.complete, 1);
    EXPECT_EQ(taken, kMessage.size());
    // The caller zeroes the state and goes on with the rest of the same buffer.
    s = ScanState{};
    EXPECT_EQ(Call(s, ExactBuffer(""), ExactBuffer(stream.substr(taken)), taken), FixIntegrityOk);
    EXPECT_EQ(s.complete, 1);
    EXPECT_EQ(taken, second.size());
    EXPECT_EQ(std::string(s.protocol), "FIXT");
}

TEST(FixIntegrity, EmptyFreshData) {
    ScanState s;
    std::size_t taken = 0;
    // Before the trailer, a call without fresh bytes scans nothing, even with everything held.
    EXPECT_EQ(Call(s, ExactBuffer(kMessage), ExactBuffer(""), taken), FixIntegrityOk);
    EXPECT_EQ(s.complete, 0);
    EXPECT_EQ(s.position, kMessage.size());
    EXPECT_EQ(s.beginStringValuePos, 0);
    // Once the header is done, the trailer check runs on the held bytes alone.
    s = ScanState{};
    const std::string head = kHeader.substr(0, 30);
    EXPECT_EQ(Call(s, ExactBuffer(""), ExactBuffer(head), taken), FixIntegrityOk);
    EXPECT_NE(s.msgTypeEndPos, 0);
    EXPECT_EQ(Call(s, ExactBuffer(kMessage), ExactBuffer(""), taken), FixIntegrityOk);
    EXPECT_EQ(s.complete, 1);
    EXPECT_EQ(s.position, kMessage.size() - 1);
    // An empty call in the middle of a message changes no outcome.
    const std::size_t cut = 11;
    Outcome whole = ScanWhole(kMessage);
    ScanState t;
    Call(t, ExactBuffer(""), ExactBuffer(kMessage.substr(0, cut)), taken);
    Call(t, ExactBuffer(kMessage.substr(0, cut)), ExactBuffer(""), taken);
    Call(t, ExactBuffer(kMessage.substr(0, cut)), ExactBuffer(kMessage.substr(cut)), taken);
    EXPECT_EQ(t, whole.state);
}

TEST(FixIntegrity, FreshReadPointFollowsTheBytesRead) {
    // BodyLength 3 puts the body's "last SOH" on the '=' of "35=", already held: the trailer check
    // refuses a held byte, and *newData stays just past the fresh header bytes this call read.
    ScanState s;
    std::size_t taken = 0;
    const std::string first = Soh("8=FIX.4.2|9=3|35=");
    ASSERT_EQ(Call(s, ExactBuffer(""), ExactBuffer(first), taken), FixIntegrityOk);
    EXPECT_EQ(Call(s, ExactBuffer(first), ExactBuffer(Soh("A|10=000|")), taken), FixIntegrityBadTrailer);
    EXPECT_EQ(s.position, 16u);
    EXPECT_EQ(taken, 2u);
    // Fed whole, the same check moves *newData back to just past the refused byte.
    s = ScanState{};
    EXPECT_EQ(Call(s, ExactBuffer(""), ExactBuffer(first + Soh("A|10=000|")), taken), FixIntegrityBadTrailer);
    EXPECT_EQ(s.position, 16u);
    EXPECT_EQ(taken, 17u);
}

TEST(FixIntegrity, StateThatPointsOutsideTheDataIsNeverFollowed) {
    // Not a state the scanner makes: a trailer restart before position 0 or past the data reads
    // nothing and waits for more.
    const std::string bytes = Soh("10=123|");
    std::size_t taken = 0;
    ScanState s;
    s.msgTypeEndPos = 20;
    s.bodyStartPos = 1; // the body's last SOH would be at position -1
    EXPECT_EQ(Call(s, ExactBuffer(""), ExactBuffer(bytes), taken), FixIntegrityOk);
    EXPECT_EQ(s.complete, 0);
    EXPECT_EQ(s.checkSum, 0xFFFF);
    EXPECT_EQ(taken, bytes.size());
    s = ScanState{};
    s.msgTypeEndPos = 20;
    s.bodyStartPos = 2;
    s.checkSumEndPos = 60000;
    EXPECT_EQ(Call(s, ExactBuffer(""), ExactBuffer(bytes), taken), FixIntegrityOk);
    EXPECT_EQ(s.complete, 0);
    s = ScanState{};
    s.versionPos = 50000;
    EXPECT_EQ(Call(s, ExactBuffer(""), ExactBuffer(bytes), taken), FixIntegrityOk);
    EXPECT_EQ(s.position, bytes.size());
}

TEST(FixIntegrity, StreamCutAtRandomYieldsEveryMessageWithItsChecksum) {
    std::vector<std::string> messages;
    for (int i = 0; i < 40; ++i) {
        std::string body = "35=" + std::string(1, static_cast<char>('A' + i % 26)) + "|58=";
        body.append(static_cast<std::size_t>(i * 37 % 300), static_cast<char>('a' + i % 26));
        body += "|";
        messages.push_back(fixtest::Message(i % 3 == 0 ? "FIXT.1.1" : "FIX.4.4", body));
    }
    std::string stream;
    for (const std::string& m : messages) stream += m;

    std::mt19937 random(7);
    std::vector<std::string> found;
    ScanState s;
    std::string held;
    for (std::size_t start = 0; start < stream.size();) {
        const std::size_t size = std::min<std::size_t>(stream.size() - start, 1 + random() % 90);
        std::string piece = stream.substr(start, size);
        start += size;
        while (!piece.empty()) {
            std::size_t taken = 0;
            ASSERT_EQ(Call(s, ExactBuffer(held), ExactBuffer(piece), taken), FixIntegrityOk);
            held += piece.substr(0, taken);
            piece.erase(0, taken);
            if (s.complete == 0) continue;
            // The caller's own check: the sum up to and including the body's last SOH.
            const unsigned int bodyEnd = s.bodyStartPos + s.bodyLength - 1u;
            EXPECT_EQ(U_CalculateControlSum(held.data(), bodyEnd) % 256, s.checkSum);
            found.push_back(held);
            held.clear();
            s = ScanState{};
        }
    }
    EXPECT_EQ(found, messages);
}

// The corpus of the resumption test: every row above, and a few more shapes.
std::vector<std::string> Corpus() {
    std::vector<std::string> corpus;
    for (const Row& row : EdgeRows()) corpus.push_back(row.bytes);
    corpus.push_back(fixtest::Message("FIX.4.2", "35=0|"));
    corpus.push_back(fixtest::Message("FIXT.1.1", "35=AE|58=" + std::string(300, 'x') + "|"));
    corpus.push_back(RawHeader("FIX.4.2", "3", "35=A|10=000|")); // the trailer rereads the header
    corpus.push_back(RawHeader("FIX.4.2", "5", "35=A|10=000|8=FIX.4.2|"));
    corpus.push_back(kHeader + Soh("10=12|"));
    return corpus;
}

void ExpectSameOutcome(const Outcome& whole, const Outcome& pieces) {
    EXPECT_EQ(pieces.code, whole.code);
    EXPECT_EQ(pieces.state, whole.state);
    // Where the message ends (or that every byte was taken) is part of the result; after an error
    // the caller drops the bytes, so only the code and the state count there.
    if (whole.code == FixIntegrityOk) {
        EXPECT_EQ(pieces.consumed, whole.consumed);
    }
}

TEST(FixIntegrity, RESUMPTION_AnyCutGivesTheWholeInputsResult) {
    for (const std::string& message : Corpus()) {
        SCOPED_TRACE("message \"" + fixtest::Bars(message) + '"');
        // Every prefix for the short messages (incomplete outcomes too); the full message otherwise.
        const std::size_t first = message.size() <= 160 ? 1 : message.size();
        for (std::size_t n = first; n <= message.size(); ++n) {
            const std::string_view input = std::string_view(message).substr(0, n);
            const Outcome whole = ScanWhole(input);
            for (std::size_t cut = 1; cut < n; ++cut) {
                SCOPED_TRACE("length " + std::to_string(n) + " cut at " + std::to_string(cut));
                ExpectSameOutcome(whole, ScanPieces(input, {cut, n}));
                if (::testing::Test::HasFailure()) return;
            }
            std::vector<std::size_t> bytewise;
            for (std::size_t i = 1; i <= n; ++i) bytewise.push_back(i);
            SCOPED_TRACE("length " + std::to_string(n) + " one byte per call");
            ExpectSameOutcome(whole, ScanPieces(input, bytewise));
            if (::testing::Test::HasFailure()) return;
        }
    }
}

} // namespace
