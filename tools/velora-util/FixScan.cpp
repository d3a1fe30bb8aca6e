// FixScan.cpp - the stream inspector behind `velora-util fix scan`.
#include "FixScan.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace velora::tool {
namespace {

constexpr std::string_view kStartPattern = "8=FIX"; // BeginString of every FIX and FIXT version
constexpr unsigned kCutOff = 255;                   // our own code: the stream ended inside a message

void AppendJsonString(std::string& out, std::string_view text) {
    static const char* const kHex = "0123456789abcdef";
    out.push_back('"');
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out.push_back('\\');
            out.push_back(c);
        } else if (code < 0x20 || code >= 0x7F) {
            out.append("\\u00");
            out.push_back(kHex[code >> 4]);
            out.push_back(kHex[code & 0xF]);
        } else {
            out.push_back(c);
        }
    }
    out.push_back('"');
}

// MsgType as kept by the scanner: one character, or two with the first in the high byte.
std::string MsgTypeText(unsigned short packed) {
    std::string text;
    if (packed > 0xFF) text.push_back(static_cast<char>(packed >> 8));
    if ((packed & 0xFF) != 0) text.push_back(static_cast<char>(packed & 0xFF));
    return text;
}

} // namespace

const char* FixStreamScanner::IntegrityCodeText(unsigned code) {
    switch (code) {
    case 1:
        return "bad BeginString";
    case 2:
        return "bad BodyLength";
    case 3:
        return "bad MsgType";
    case 4:
        return "bad trailer (no CheckSum where BodyLength ends the body)";
    case kCutOff:
        return "message cut off by the end of the stream";
    default:
        return "unknown scanner result";
    }
}

FixStreamScanner::FixStreamScanner(const FixScanOptions& options, std::ostream& out)
    : options_(options), out_(out) {}

void FixStreamScanner::Feed(const char* data, std::size_t length) {
    buffer_.append(data, length);
    totals_.bytes += length;
    Process();
}

void FixStreamScanner::Finish() {
    for (;;) {
        if (inMessage_) {
            // Whatever the open message's BodyLength promised never came; later messages may still
            // be inside the bytes it held.
            FailMessage(kCutOff);
            Process();
            continue;
        }
        NoteSkip(cursor_, buffer_.size());
        cursor_ = buffer_.size();
        Discard(cursor_);
        break;
    }
    FlushSkip();
}

// The next "8=FIX" at or after `from`. A false start (the pattern inside damaged bytes) costs
// nothing: the scanner refuses it within a few bytes and the search goes on from its second byte.
std::size_t FixStreamScanner::FindMessageStart(std::size_t from) const {
    return buffer_.find(kStartPattern, from);
}

void FixStreamScanner::Process() {
    for (;;) {
        if (!inMessage_) {
            const std::size_t start = FindMessageStart(cursor_);
            if (start == std::string::npos) {
                // Keep a tail that may be the beginning of a start pattern cut by the piece boundary.
                std::size_t keep = std::min(kStartPattern.size() - 1, buffer_.size() - cursor_);
                while (keep > 0 && buffer_.compare(buffer_.size() - keep, keep, kStartPattern, 0, keep) != 0)
                    --keep;
                NoteSkip(cursor_, buffer_.size() - keep);
                cursor_ = buffer_.size() - keep;
                Discard(cursor_);
                return;
            }
            NoteSkip(cursor_, start);
            FlushSkip();
            StartMessage(start);
        }
        unsigned int heldLength = static_cast<unsigned int>(cursor_ - messageStart_);
        const char* fresh = buffer_.data() + cursor_;
        auto freshLength = static_cast<unsigned int>(buffer_.size() - cursor_);
        if (freshLength == 0) {
            Discard(messageStart_);
            return;
        }
        State& s = state_;
        const unsigned code = U_CheckFixIntegrity(
            buffer_.data() + messageStart_, &heldLength, &fresh, &freshLength, &s.position, s.protocol,
            &s.version, &s.beginStringValuePos, &s.versionPos, &s.bodyLengthTagPos, &s.bodyLength,
            &s.bodyLengthValuePos, &s.bodyStartPos, &s.msgType, &s.msgTypeValuePos, &s.msgTypeEndPos,
            &s.checkSum, &s.checkSumValuePos, &s.checkSumEndPos, &s.complete, &s.currentChar,
            &s.previousChar);
        cursor_ = static_cast<std::size_t>(fresh - buffer_.data());
        if (code == 0 && s.complete == 1) {
            CompleteMessage();
        } else if (code == 0) {
            Discard(messageStart_); // every fresh byte was taken: wait for the next piece
            return;
        } else {
            FailMessage(code);
        }
    }
}

void FixStreamScanner::StartMessage(std::size_t at) {
    inMessage_ = true;
    messageStart_ = at;
    cursor_ = at;
    state_ = State{};
}

void FixStreamScanner::CompleteMessage() {
    const char* message = buffer_.data() + messageStart_;
    const std::size_t length = state_.position + 1;
    const std::uint64_t offset = base_ + messageStart_;
    ++totals_.messages;

    // The CheckSum covers every byte before "10=", which starts three bytes before its first digit.
    const auto summed = static_cast<unsigned int>(state_.checkSumValuePos - 1 - 3);
    const unsigned computed = U_CalculateControlSum(message, summed) % 256;
    const bool checksumOk = computed == state_.checkSum;
    if (!checksumOk) ++totals_.badChecksums;
    fields_.clear();
    unsigned short errorTag = 0, ordinal = 0;
    const unsigned parse =
        U_ParseFix(fields_, message, static_cast<unsigned int>(length), &errorTag, &ordinal);
    if (parse != 0) ++totals_.parseErrors[parse];

    const std::string msgType = MsgTypeText(state_.msgType);
    // A message with a problem is always shown; the MsgType filter only thins out the good ones.
    const bool problem = !checksumOk || parse != 0;
    const bool shown =
        !options_.quiet && (problem || options_.types.empty() || options_.types.count(msgType) != 0);
    if (shown) {
        ++totals_.printed;
        line_.clear();
        if (options_.json) {
            line_.append("{\"type\":\"message\",\"index\":").append(std::to_string(totals_.messages));
            line_.append(",\"offset\":").append(std::to_string(offset));
            line_.append(",\"length\":").append(std::to_string(length));
            line_.append(",\"msgType\":");
            AppendJsonString(line_, msgType);
            line_.append(",\"checksumOk\":").append(checksumOk ? "true" : "false");
            line_.append(",\"parseError\":").append(std::to_string(parse));
            if (parse != 0) line_.append(",\"errorTag\":").append(std::to_string(errorTag));
            line_.append(",\"fields\":[");
            bool first = true;
            for (const auto& [tag, text] : fields_) {
                line_.append(first ? "[" : ",[").append(std::to_string(tag)).push_back(',');
                AppendJsonString(line_, text);
                line_.push_back(']');
                first = false;
            }
            line_.append("]}");
        } else {
            line_.append("#").append(std::to_string(totals_.messages));
            line_.append(" @").append(std::to_string(offset)).append(" 35=").append(msgType).append(" ");
            for (std::size_t done = 0; done < length;) {
                const auto piece = static_cast<unsigned short>(std::min<std::size_t>(length - done, 0xFFFF));
                U_AppendFixMessageContents(line_, message + done, piece, nullptr, options_.soh);
                done += piece;
            }
            if (!checksumOk) {
                line_.append("  BAD CHECKSUM: ").append(std::to_string(state_.checkSum));
                line_.append(", bytes sum to ").append(std::to_string(computed));
            }
            if (parse != 0) {
                unsigned char reason = 0;
                line_.append("  PARSE ERROR ").append(std::to_string(parse)).append(" \"");
                line_.append(U_GetParseFixErrorDescription(static_cast<unsigned char>(parse), &reason));
                line_.append("\" at tag ").append(std::to_string(errorTag));
                line_.append(", field ").append(std::to_string(ordinal));
            }
        }
        out_ << line_ << '\n';
    }
    cursor_ = messageStart_ + length;
    inMessage_ = false;
}

void FixStreamScanner::FailMessage(unsigned code) {
    ++totals_.integrityErrors[code];
    if (!options_.quiet) {
        line_.clear();
        const std::uint64_t offset = base_ + messageStart_;
        if (options_.json) {
            line_.append("{\"type\":\"bad\",\"offset\":").append(std::to_string(offset));
            line_.append(",\"code\":").append(std::to_string(code)).append(",\"error\":");
            AppendJsonString(line_, IntegrityCodeText(code));
            line_.push_back('}');
        } else {
            line_.append("BAD MESSAGE @").append(std::to_string(offset)).append(": ");
            line_.append(IntegrityCodeText(code)).append(" (code ").append(std::to_string(code)).append(")");
        }
        out_ << line_ << '\n';
    }
    // Its bytes are skipped up to the next start, which is looked for from its second byte on, so
    // a message that a damaged one swallowed is still found.
    inMessage_ = false;
    NoteSkip(messageStart_, messageStart_ + 1);
    cursor_ = messageStart_ + 1;
}

void FixStreamScanner::NoteSkip(std::size_t from, std::size_t to) {
    if (to <= from) return;
    if (!skipOpen_) {
        skipOpen_ = true;
        skipFrom_ = base_ + from;
    }
    skipTo_ = base_ + to;
}

void FixStreamScanner::FlushSkip() {
    if (!skipOpen_) return;
    skipOpen_ = false;
    const std::uint64_t length = skipTo_ - skipFrom_;
    ++totals_.skippedRanges;
    totals_.skippedBytes += length;
    if (options_.quiet) return;
    line_.clear();
    if (options_.json) {
        line_.append("{\"type\":\"skipped\",\"offset\":").append(std::to_string(skipFrom_));
        line_.append(",\"length\":").append(std::to_string(length)).push_back('}');
    } else {
        line_.append("SKIPPED ")
            .append(std::to_string(length))
            .append(" bytes @")
            .append(std::to_string(skipFrom_));
        line_.append("..").append(std::to_string(skipTo_ - 1));
    }
    out_ << line_ << '\n';
}

void FixStreamScanner::Discard(std::size_t count) {
    if (count == 0) return;
    buffer_.erase(0, count);
    base_ += count;
    cursor_ -= count;
    if (inMessage_) messageStart_ -= count;
}

void PrintFixScanSummary(const FixScanTotals& totals, double seconds, bool json, std::ostream& out) {
    const double rate = seconds > 0 ? static_cast<double>(totals.messages) / seconds : 0.0;
    std::string line;
    if (json) {
        line.append("{\"type\":\"summary\",\"messages\":").append(std::to_string(totals.messages));
        line.append(",\"shown\":").append(std::to_string(totals.printed));
        line.append(",\"bytes\":").append(std::to_string(totals.bytes));
        line.append(",\"badChecksums\":").append(std::to_string(totals.badChecksums));
        line.append(",\"skippedRanges\":").append(std::to_string(totals.skippedRanges));
        line.append(",\"skippedBytes\":").append(std::to_string(totals.skippedBytes));
        line.append(",\"integrityErrors\":{");
        bool first = true;
        for (const auto& [code, count] : totals.integrityErrors) {
            line.append(first ? "\"" : ",\"").append(std::to_string(code)).append("\":{\"count\":");
            line.append(std::to_string(count)).append(",\"text\":");
            AppendJsonString(line, FixStreamScanner::IntegrityCodeText(code));
            line.push_back('}');
            first = false;
        }
        line.append("},\"parseErrors\":{");
        first = true;
        for (const auto& [code, count] : totals.parseErrors) {
            unsigned char reason = 0;
            const char* text = U_GetParseFixErrorDescription(static_cast<unsigned char>(code), &reason);
            line.append(first ? "\"" : ",\"").append(std::to_string(code)).append("\":{\"count\":");
            line.append(std::to_string(count)).append(",\"text\":");
            AppendJsonString(line, text);
            line.append(",\"rejectReason\":").append(std::to_string(reason)).push_back('}');
            first = false;
        }
        char rateText[32];
        std::snprintf(rateText, sizeof rateText, "%.0f", rate);
        line.append("},\"messagesPerSecond\":").append(rateText).push_back('}');
        out << line << '\n';
        return;
    }
    out << "messages: " << totals.messages << " (" << totals.printed << " shown)\n";
    out << "bytes: " << totals.bytes << '\n';
    char rateText[64];
    std::snprintf(rateText, sizeof rateText, "rate: %.0f messages/s (%.3f s)", rate, seconds);
    out << rateText << '\n';
    out << "bad checksums: " << totals.badChecksums << '\n';
    out << "skipped: " << totals.skippedBytes << " bytes in " << totals.skippedRanges << " ranges\n";
    out << "scanner errors:" << (totals.integrityErrors.empty() ? " none" : "") << '\n';
    for (const auto& [code, count] : totals.integrityErrors)
        out << "  code " << code << " \"" << FixStreamScanner::IntegrityCodeText(code) << "\": " << count
            << '\n';
    out << "parse errors:" << (totals.parseErrors.empty() ? " none" : "") << '\n';
    for (const auto& [code, count] : totals.parseErrors) {
        unsigned char reason = 0;
        const char* text = U_GetParseFixErrorDescription(static_cast<unsigned char>(code), &reason);
        out << "  code " << code << " \"" << text << "\" (reject reason " << static_cast<unsigned>(reason)
            << "): " << count << '\n';
    }
}

} // namespace velora::tool
