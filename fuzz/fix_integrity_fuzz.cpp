// Fuzz target for U_CheckFixIntegrity. The input is scanned as a stream of messages (a fresh state
// after each complete one, stopping at the first error) three ways: whole, cut into pieces at
// points derived from the input, and one byte per call. Every way must find the same messages with
// the same codes and the same final states. Held and fresh bytes are copied into exactly sized heap
// blocks, so ASan reports any read outside them. The first byte may ask for a synthetic header and
// trailer around the rest, so that complete messages are common.
#include "VeloraUtils/FixParsing.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

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

struct Block {
    explicit Block(std::string_view bytes) : size(bytes.size()), data(new char[bytes.size()]) {
        bytes.copy(data.get(), bytes.size());
    }
    std::size_t size;
    std::unique_ptr<char[]> data;
};

// One message's result: its code, its final state and how many stream bytes it took.
struct Event {
    unsigned char code;
    ScanState state;
    std::size_t consumed;

    bool operator==(const Event& other) const {
        // After an error the caller drops the bytes; what was taken then is not part of the result.
        return code == other.code && state == other.state && (code != 0 || consumed == other.consumed);
    }
};

std::vector<Event> ScanStream(std::string_view stream, const std::vector<std::size_t>& cuts) {
    std::vector<Event> events;
    ScanState s;
    std::string held;
    std::size_t start = 0;
    for (const std::size_t cut : cuts) {
        std::string_view piece = stream.substr(start, cut - start);
        start = cut;
        while (!piece.empty()) {
            const Block h(held), f(piece);
            unsigned int heldLength = static_cast<unsigned int>(h.size);
            const char* data = f.data.get();
            unsigned int length = static_cast<unsigned int>(f.size);
            const unsigned char code =
                U_CheckFixIntegrity(h.data.get(), &heldLength, &data, &length, &s.position, s.protocol,
                                    &s.version, &s.beginStringValuePos, &s.versionPos, &s.bodyLengthTagPos,
                                    &s.bodyLength, &s.bodyLengthValuePos, &s.bodyStartPos, &s.msgType,
                                    &s.msgTypeValuePos, &s.msgTypeEndPos, &s.checkSum, &s.checkSumValuePos,
                                    &s.checkSumEndPos, &s.complete, &s.currentChar, &s.previousChar);
            Require(code <= 4 && heldLength == h.size);
            Require(data >= f.data.get() && static_cast<std::size_t>(data - f.data.get()) + length == f.size);
            const std::size_t taken = f.size - length;
            const std::size_t total = h.size + f.size;
            if (code != 0) {
                Require(s.position < total);
                events.push_back({code, s, h.size + taken});
                return events;
            }
            if (s.complete == 0) {
                Require(taken == f.size && s.position == total); // needs more: everything taken
                held.append(piece);
                break;
            }
            // Complete: it ends on the SOH at *position, just before where *newData stops.
            Require(h.size + taken == std::size_t{s.position} + 1 && data[-1] == '\x01');
            events.push_back({code, s, h.size + taken});
            held.clear();
            s = ScanState{};
            piece.remove_prefix(taken);
        }
    }
    events.push_back({0, s, held.size()}); // the message under way at the end
    return events;
}

std::string Synthetic(std::string_view body) {
    std::string head = "8=FIX.4.4\x01"
                       "9=" +
                       std::to_string(body.size()) + "\x01";
    head.append(body);
    int sum = 0;
    for (char c : head) sum += static_cast<signed char>(c);
    const int digits = ((sum % 256) + 256) % 256;
    head += "10=";
    head += static_cast<char>('0' + digits / 100);
    head += static_cast<char>('0' + digits / 10 % 10);
    head += static_cast<char>('0' + digits % 10);
    head += '\x01';
    return head;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    const unsigned char mode = data[0];
    const std::uint32_t seed = static_cast<std::uint32_t>(data[1]) << 8 | data[2];
    std::string_view rest(reinterpret_cast<const char*>(data + 3), size - 3);
    std::string stream;
    if ((mode & 3) == 1) {
        // Two synthetic messages around halves of the rest (bodies need "35=x" SOH to pass).
        const std::size_t half = rest.size() / 2;
        stream = Synthetic(rest.substr(0, half)) + Synthetic(rest.substr(half));
    } else if ((mode & 3) == 2) {
        stream = Synthetic("35=D\x01" + std::string(rest)) + std::string(rest);
    } else {
        stream.assign(rest);
    }
    if (stream.empty()) return 0;

    const std::vector<Event> whole = ScanStream(stream, {stream.size()});

    std::vector<std::size_t> cuts;
    std::uint32_t x = seed * 2654435761u + 1;
    for (std::size_t at = 0;;) {
        x = x * 1103515245u + 12345u;
        at += 1 + (x >> 16) % (1 + (mode >> 2) * 4);
        if (at >= stream.size()) break;
        cuts.push_back(at);
    }
    cuts.push_back(stream.size());
    Require(ScanStream(stream, cuts) == whole);

    std::vector<std::size_t> bytewise;
    for (std::size_t i = 1; i <= stream.size(); ++i) bytewise.push_back(i);
    Require(ScanStream(stream, bytewise) == whole);
    return 0;
}
