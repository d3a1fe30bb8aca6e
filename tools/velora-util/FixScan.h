// FixScan.h - cuts complete FIX messages out of a byte stream fed in pieces of any size, checks and
// parses each, and reports every message, every bad one and every skipped byte range.
#pragma once

#include <VeloraUtils.h>

#include <cstdint>
#include <map>
#include <ostream>
#include <set>
#include <string>

namespace velora::tool {

struct FixScanOptions {
    char soh = '|';              // how SOH is shown in message lines
    bool json = false;           // one JSON object per line instead of text
    bool quiet = false;          // summary only
    std::set<std::string> types; // MsgTypes to print (empty: all); the summary counts every message
};

struct FixScanTotals {
    std::uint64_t bytes = 0;
    std::uint64_t messages = 0;     // complete messages cut out of the stream
    std::uint64_t printed = 0;      // messages that passed the MsgType filter
    std::uint64_t badChecksums = 0; // complete messages whose CheckSum does not match their bytes
    std::uint64_t skippedRanges = 0;
    std::uint64_t skippedBytes = 0;
    std::map<unsigned, std::uint64_t> integrityErrors; // scanner code -> count
    std::map<unsigned, std::uint64_t> parseErrors;     // U_ParseFix code -> count
    bool AllGood() const {
        return badChecksums == 0 && skippedBytes == 0 && integrityErrors.empty() && parseErrors.empty();
    }
};

class FixStreamScanner {
public:
    FixStreamScanner(const FixScanOptions& options, std::ostream& out);

    // Takes the next piece of the stream; any split of the stream gives the same report.
    void Feed(const char* data, std::size_t length);
    // The stream has ended: a message still open is reported as cut off.
    void Finish();
    const FixScanTotals& Totals() const { return totals_; }

    // Text of a scanner result code.
    static const char* IntegrityCodeText(unsigned code);

private:
    struct State {
        unsigned int position;
        char protocol[8];
        unsigned int version;
        unsigned short beginStringValuePos, versionPos, bodyLengthTagPos, bodyLength, bodyLengthValuePos,
            bodyStartPos, msgType, msgTypeValuePos, msgTypeEndPos, checkSum, checkSumValuePos, checkSumEndPos;
        unsigned char complete;
        char currentChar, previousChar;
    };

    void Process();
    std::size_t FindMessageStart(std::size_t from) const;
    void StartMessage(std::size_t at);
    void CompleteMessage();
    void FailMessage(unsigned code);
    void NoteSkip(std::size_t from, std::size_t to);
    void FlushSkip();
    void Discard(std::size_t count);

    const FixScanOptions& options_;
    std::ostream& out_;
    FixScanTotals totals_;
    std::string buffer_; // bytes not yet settled; buffer_[0] is at stream offset base_
    std::uint64_t base_ = 0;
    std::size_t cursor_ = 0; // next byte to look at
    bool inMessage_ = false;
    std::size_t messageStart_ = 0;
    State state_{};
    bool skipOpen_ = false;
    std::uint64_t skipFrom_ = 0, skipTo_ = 0;
    FixFieldMap fields_;
    std::string line_;
};

// Writes the closing summary (text or one JSON object).
void PrintFixScanSummary(const FixScanTotals& totals, double seconds, bool json, std::ostream& out);

} // namespace velora::tool
