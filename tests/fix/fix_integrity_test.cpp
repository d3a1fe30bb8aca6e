// U_CheckFixIntegrity: header and trailer rules row by row, and resumption (any cut of the input gives
// the whole input's code and state). Every piece and held buffer is an exactly sized heap block.
#include "VeloraUtils/FixParsing.h"

#include "fix_test_messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

namespace {

using fixtest::Soh;

using fixtest::ScanState;

// One call; returns the code and sets `taken` to the fresh bytes consumed.
unsigned char Call(ScanState& s, std::string_view heldBytes, std::string_view freshBytes,
                   std::size_t& taken) {
    const fixtest::ExactBuffer held(heldBytes), fresh(freshBytes);
    unsigned int heldLength = static_cast<unsigned int>(held.size);
    const char* data = fresh.get();
    unsigned int length = static_cast<unsigned int>(fresh.size);
    const unsigned char code = s.Scan(held.get(), heldLength, &data, length);
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

// Feeds `bytes` as a caller does (earlier bytes passed again as held): `first` bytes, then `step`s.
Outcome Scan(std::string_view bytes, std::size_t first = std::string_view::npos, std::size_t step = 1) {
    Outcome out;
    for (std::size_t start = 0, cut = std::min(first, bytes.size());;
         cut = std::min(cut + step, bytes.size())) {
        std::size_t taken = 0;
        out.code = Call(out.state, bytes.substr(0, start), bytes.substr(start, cut - start), taken);
        out.consumed = start + taken;
        if (out.code != FixIntegrityOk || out.state.complete != 0 || cut == bytes.size()) return out;
        EXPECT_EQ(taken, cut - start) << "a call that needs more data takes every fresh byte";
        start = cut;
    }
}

const std::string kBody = "35=D|49=SNDR|56=TRGT|34=7|52=20190101-12:00:00.000|11=ORD1|55=IBM|54=1|38=100|";
const std::string kMessage = fixtest::Message("FIX.4.2", kBody);
const std::string kHeader = kMessage.substr(0, kMessage.size() - 7); // everything before "10="

// A header with `beginString` and a raw BodyLength text, then `rest`.
std::string Raw(std::string_view beginString, std::string_view bodyLength, std::string_view rest = "") {
    return Soh("8=" + std::string(beginString) + "|9=" + std::string(bodyLength) + "|" + std::string(rest));
}

// The bytes, then code, complete, position, protocol, version, bodyLength, msgType and checkSum.
using Row = std::pair<std::string,
                      std::tuple<int, int, std::size_t, std::string, unsigned, unsigned, unsigned, unsigned>>;

std::vector<Row> EdgeRows() {
    const auto bs = static_cast<unsigned short>(Soh(kBody).size());
    const std::size_t n = kMessage.size(), h = kHeader.size();
    const auto sumOf = [](const std::string& m) { return unsigned(std::stoi(m.substr(m.size() - 4, 3))); };
    const std::string fixt = fixtest::Message("FIXT.1.1", "35=AB|1128=9|");
    const unsigned sum = sumOf(kMessage), fixtSum = sumOf(fixt);
    // clang-format off
    return {
        {kMessage,                                  {0, 1, n - 1,           "FIX", 0x0402, bs, 'D', sum}},
        {kHeader + Soh("10=abc|"),                  {0, 1, h + 6,           "FIX", 0x0402, bs, 'D', 5451}},
        {kHeader + Soh("10=\xFF\xFF\xFF|"),         {0, 1, h + 6,           "FIX", 0x0402, bs, 'D', 60097}},
        {fixt,                              {0, 1, fixt.size() - 1, "FIXT", 0x0101, 13, 0x4142, fixtSum}},
        // BeginString and version
        {Soh("8=FIX..2|"),                          {1, 0, 6,  "FIX", 0, 0, 0, 0}},
        {Soh("8=FIX.4.256|"),                       {1, 0, 10, "FIX", 0, 0, 0, 0}},
        {Soh("8=.4.2|"),                            {1, 0, 2,  "", 0, 0, 0, 0}},
        {Soh("8=FIX|9=5|"),                         {1, 0, 5,  "", 0, 0, 0, 0}},
        {Raw("ABCDEFGH.1", "5"),                    {0, 0, 17, "ABCDEFGH", 1, 5, 0, 0}},
        {Soh("8=ABCDEFGHI.1|"),                     {1, 0, 10, "", 0, 0, 0, 0}},
        {Raw("F\x7F.1", "5"),                       {0, 0, 11, "F\x7F", 1, 5, 0, 0}},
        {Soh("8=F\x80X.4.2|"),                      {1, 0, 3,  "", 0, 0, 0, 0}},
        {Raw("FIX.1.2.3.4.5", "5"),                 {0, 0, 20, "FIX", 0x02030405, 5, 0, 0}},
        {Soh("8=FIX.1.2.3.4.5.6|"),                 {1, 0, 15, "FIX", 0, 0, 0, 0}},
        {Soh("8=FIX.4.|"),                          {1, 0, 8,  "FIX", 0, 0, 0, 0}},
        {Soh("8=FIX.|"),                            {1, 0, 6,  "FIX", 0, 0, 0, 0}},
        {Soh("8=FIX.0255|"),                        {1, 0, 9,  "FIX", 0, 0, 0, 0}},
        {Raw("FIX.255.0", "5"),                     {0, 0, 16, "FIX", 0xFF00, 5, 0, 0}},
        {Soh("8=FIX.4.2a|"),                        {1, 0, 9,  "FIX", 0, 0, 0, 0}},
        // BodyLength: 0 and above 65000 refused after the 16-bit wrap, at most five digits
        {Raw("FIX.4.2", "0"),                       {2, 0, 13, "FIX", 0x0402, 0, 0, 0}},
        {Raw("FIX.4.2", "65001"),                   {2, 0, 17, "FIX", 0x0402, 0, 0, 0}},
        {Raw("FIX.4.2", "65000"),                   {0, 0, 18, "FIX", 0x0402, 65000, 0, 0}},
        {Raw("FIX.4.2", "123456"),                  {2, 0, 17, "FIX", 0x0402, 12345, 0, 0}},
        {Raw("FIX.4.2", "70000", "35=A|"),          {0, 0, 23, "FIX", 0x0402, 4464, 'A', 0}},
        {Raw("FIX.4.2", "00012"),                   {0, 0, 18, "FIX", 0x0402, 12, 0, 0}},
        {Raw("FIX.4.2", ""),                        {2, 0, 12, "FIX", 0x0402, 0, 0, 0}},
        {Soh("8=FIX.4.2|35=A|"),                    {2, 0, 10, "FIX", 0x0402, 0, 0, 0}},
        // MsgType
        {Raw("FIX.4.2", "5", "35=ABC|"),            {3, 0, 19, "FIX", 0x0402, 5, 0x4142, 0}},
        {Raw("FIX.4.2", "5", "35=|"),               {3, 0, 17, "FIX", 0x0402, 5, 0, 0}},
        {Raw("FIX.4.2", "5", "35=A!|"),             {3, 0, 18, "FIX", 0x0402, 5, 0, 0}},
        {Raw("FIX.4.2", "5", "36=A|"),              {3, 0, 15, "FIX", 0x0402, 5, 0, 0}},
        // Trailer, and a BodyLength one short and one long
        {kHeader + Soh("11=123|"),                  {4, 0, h + 1, "FIX", 0x0402, bs, 'D', 0}},
        {kHeader + Soh("10=123x"),                  {4, 0, h + 6, "FIX", 0x0402, bs, 'D', 123}},
        {Raw("FIX.4.2", "4", "35=A|10=000|"),       {4, 0, 17, "FIX", 0x0402, 4, 'A', 0}},
        {Raw("FIX.4.2", "6", "35=A|10=000|"),       {4, 0, 19, "FIX", 0x0402, 6, 'A', 0}},
        // Needs more data
        {kHeader,                                   {0, 0, h,     "FIX", 0x0402, bs, 'D', 0}},
        {kMessage.substr(0, n - 2),                 {0, 0, n - 2, "FIX", 0x0402, bs, 'D', 65535}},
        {kMessage.substr(0, n - 1),                 {0, 0, n - 1, "FIX", 0x0402, bs, 'D', sum}},
    };
    // clang-format on
}

TEST(FixIntegrity, HeaderAndTrailerRules) {
    for (const auto& [bytes, expected] : EdgeRows()) {
        const auto [code, s, consumed] = Scan(bytes);
        EXPECT_EQ(std::tuple(int{code}, int{s.complete}, std::size_t{s.position}, std::get<1>(s.All()),
                             s.version, unsigned{s.bodyLength}, unsigned{s.msgType}, unsigned{s.checkSum}),
                  expected)
            << Soh(bytes, true);
    }
}

TEST(FixIntegrity, SavedPositionsLastCharactersAndEmptyFreshData) {
    const std::string m = fixtest::Message("FIX.4.2", "35=A|"); // "8=FIX.4.2|9=5|35=A|10=nnn|"
    ScanState s = Scan(m).state;
    EXPECT_EQ(std::vector<int>({s.beginStringValuePos, s.versionPos, s.bodyLengthTagPos, s.bodyLengthValuePos,
                                s.bodyStartPos, s.msgTypeValuePos, s.msgTypeEndPos, s.checkSumValuePos,
                                s.checkSumEndPos, s.complete, s.currentChar, s.previousChar}),
              std::vector<int>({3, 7, 11, 13, 15, 18, 20, 23, 26, 1, 1, m[24]}));
    EXPECT_EQ(U_CalculateControlSum(m.data(), s.bodyStartPos + s.bodyLength - 1u) % 256, s.checkSum);
    // Ran out in the body: currentChar 0. The trailer sees the MsgType SOH before the body's last byte.
    const ScanState t = Scan(kMessage.substr(0, kHeader.size() - 3)).state;
    s = Scan(Raw("FIX.4.2", "6", "35=A|10=000|")).state;
    EXPECT_EQ(std::tuple(int{t.currentChar}, int{s.currentChar}, int{s.previousChar}),
              std::tuple(0, int{'1'}, 1));
    // No fresh bytes: nothing is scanned before the trailer; after the header, the trailer check runs.
    std::size_t taken = 0;
    EXPECT_EQ(Call(s = {}, kMessage, "", taken), FixIntegrityOk);
    EXPECT_EQ(s.All(), ScanState{.position = static_cast<unsigned int>(kMessage.size())}.All());
    EXPECT_EQ(Call(s = {}, "", kHeader.substr(0, 30), taken), FixIntegrityOk);
    EXPECT_EQ(Call(s, kMessage, "", taken), FixIntegrityOk);
    EXPECT_EQ(std::tuple(int{s.complete}, std::size_t{s.position}), std::tuple(1, kMessage.size() - 1));
}

TEST(FixIntegrity, RESUMPTION_AnyCutGivesTheWholeInputsResult) {
    std::vector<std::string> corpus = {
        fixtest::Message("FIXT.1.1", "35=AE|58=" + std::string(300, 'x') + "|"),
        Raw("FIX.4.2", "3", "35=A|10=000|"), // the trailer rereads the header
        Raw("FIX.4.2", "5", "35=A|10=000|8=FIX.4.2|"),
        kHeader + Soh("10=12|"),
    };
    for (const Row& row : EdgeRows()) corpus.push_back(row.first);
    for (const std::string& message : corpus) {
        SCOPED_TRACE(Soh(message, true));
        // Every prefix of the short messages (incomplete outcomes too); the full message otherwise.
        for (std::size_t n = message.size() <= 160 ? 1 : message.size(); n <= message.size(); ++n) {
            const std::string_view input = std::string_view(message).substr(0, n);
            const Outcome whole = Scan(input);
            // Cut at every boundary (0: one byte per call); consumed counts only on success.
            for (std::size_t cut = 0; cut < n; ++cut) {
                const Outcome pieces = cut == 0 ? Scan(input, 1, 1) : Scan(input, cut, n);
                EXPECT_EQ(std::tuple(pieces.code, pieces.state.All(), whole.code ? 0 : pieces.consumed),
                          std::tuple(whole.code, whole.state.All(), whole.code ? 0 : whole.consumed))
                    << "length " << n << " cut " << cut;
                if (::testing::Test::HasFailure()) return;
            }
        }
    }
}

} // namespace
