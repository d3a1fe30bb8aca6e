// FIX parsing: U_ParseFix on a realistic NewOrderSingle, U_CheckFixIntegrity cutting a buffer of many
// messages, and U_CalculateControlSum beside a plain byte loop and memcpy over 64 KiB. Results are
// checked after each timed loop.
#include "VeloraUtils/FixParsing.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

std::string WithSoh(std::string text) {
    for (char& c : text)
        if (c == '|') c = '\x01';
    return text;
}

std::string Message(const std::string& body) {
    std::string m = WithSoh("8=FIX.4.2|9=" + std::to_string(body.size()) + "|") + body;
    int sum = 0;
    for (char c : m) sum += static_cast<signed char>(c);
    const int digits = ((sum % 256) + 256) % 256;
    const char trailer[] = {'1',
                            '0',
                            '=',
                            static_cast<char>('0' + digits / 100),
                            static_cast<char>('0' + digits / 10 % 10),
                            static_cast<char>('0' + digits % 10),
                            '\x01'};
    return m + std::string(trailer, sizeof trailer);
}

std::string NewOrderSingle(unsigned int sequence, const std::string& symbol) {
    return Message(WithSoh("35=D|49=VELORA01|56=BROKER01|34=" + std::to_string(sequence) +
                           "|52=20240611-14:30:15.123|11=ORD-20240611-" + std::to_string(100000 + sequence) +
                           "|1=ACCT-12345|21=1|55=" + symbol +
                           "|54=1|60=20240611-14:30:15.120|38=1000|40=2|44=415.25|59=0|"));
}

void BM_U_ParseFix(benchmark::State& state) {
    const std::string m = NewOrderSingle(1234, "MSFT");
    FixFieldMap fields; // reused, as a receiver does
    unsigned char code = 0;
    for (auto _ : state) {
        fields.clear();
        code = U_ParseFix(fields, m.data(), static_cast<unsigned int>(m.size()), nullptr, nullptr);
        benchmark::DoNotOptimize(code);
        benchmark::DoNotOptimize(fields);
    }
    if (code != 0 || fields.size() != 18 || fields.value(55) != "MSFT" || fields.value(44) != "415.25")
        state.SkipWithError("wrong parse result");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(m.size()));
    state.SetLabel(std::to_string(m.size()) + "-byte NewOrderSingle, 18 fields, map reused");
}

void BM_U_ParseFix_NewMap(benchmark::State& state) {
    const std::string m = NewOrderSingle(1234, "MSFT");
    std::size_t fieldCount = 0;
    for (auto _ : state) {
        FixFieldMap fields;
        benchmark::DoNotOptimize(
            U_ParseFix(fields, m.data(), static_cast<unsigned int>(m.size()), nullptr, nullptr));
        fieldCount = fields.size();
        benchmark::DoNotOptimize(fields);
    }
    if (fieldCount != 18) state.SkipWithError("wrong parse result");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(m.size()));
    state.SetLabel("map constructed per message");
}

// Cuts every message out of one received buffer, as a session's read loop does.
void BM_U_CheckFixIntegrity(benchmark::State& state) {
    const char* const symbols[] = {"MSFT", "AAPL", "IBM", "NVDA", "BRK.B", "GOOGL"};
    std::string stream;
    constexpr int kMessages = 2000;
    for (unsigned int i = 0; i < kMessages; ++i) stream += NewOrderSingle(i * 7919 % 100000, symbols[i % 6]);
    int found = 0;
    for (auto _ : state) {
        found = 0;
        const char* data = stream.data();
        unsigned int length = static_cast<unsigned int>(stream.size());
        unsigned int heldLength = 0;
        while (length != 0) {
            unsigned int position = 0, version = 0;
            char protocol[8] = {};
            unsigned short beginStringValuePos = 0, versionPos = 0, bodyLengthTagPos = 0, bodyLength = 0,
                           bodyLengthValuePos = 0, bodyStartPos = 0, msgType = 0, msgTypeValuePos = 0,
                           msgTypeEndPos = 0, checkSum = 0, checkSumValuePos = 0, checkSumEndPos = 0;
            unsigned char complete = 0;
            char currentChar = 0, previousChar = 0;
            const unsigned char code = U_CheckFixIntegrity(
                nullptr, &heldLength, &data, &length, &position, protocol, &version, &beginStringValuePos,
                &versionPos, &bodyLengthTagPos, &bodyLength, &bodyLengthValuePos, &bodyStartPos, &msgType,
                &msgTypeValuePos, &msgTypeEndPos, &checkSum, &checkSumValuePos, &checkSumEndPos, &complete,
                &currentChar, &previousChar);
            if (code != 0 || complete != 1 || msgType != 'D') break;
            ++found;
        }
    }
    if (found != kMessages) state.SkipWithError("messages not all found");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.size()));
    state.SetItemsProcessed(state.iterations() * kMessages);
    state.SetLabel("items = messages, ~" + std::to_string(stream.size() / kMessages) + " bytes each");
}

constexpr std::size_t kSumBytes = 64 * 1024;

const std::vector<char>& SumInput() {
    static const std::vector<char> bytes = [] {
        std::vector<char> b(kSumBytes);
        std::mt19937 random(99);
        for (char& c : b) c = static_cast<char>(random());
        return b;
    }();
    return bytes;
}

unsigned int PlainSum(const char* data, std::size_t length) {
    unsigned int sum = 0;
    for (std::size_t i = 0; i < length; ++i)
        sum += static_cast<unsigned int>(static_cast<signed char>(data[i]));
    return sum;
}

void BM_U_CalculateControlSum(benchmark::State& state) {
    const std::vector<char>& in = SumInput();
    unsigned int sum = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(in.data());
        sum = U_CalculateControlSum(in.data(), static_cast<unsigned int>(in.size()));
        benchmark::DoNotOptimize(sum);
    }
    if (sum != PlainSum(in.data(), in.size())) state.SkipWithError("wrong sum");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(in.size()));
}

// The anchor: the same sum as a plain loop of signed bytes, compiled here at the same optimisation.
void BM_PlainByteLoop(benchmark::State& state) {
    const std::vector<char>& in = SumInput();
    unsigned int sum = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(in.data());
        sum = PlainSum(in.data(), in.size());
        benchmark::DoNotOptimize(sum);
    }
    if (sum != U_CalculateControlSum(in.data(), static_cast<unsigned int>(in.size())))
        state.SkipWithError("wrong sum");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(in.size()));
}

// The bandwidth ceiling: copying the same 64 KiB.
void BM_Memcpy(benchmark::State& state) {
    const std::vector<char>& in = SumInput();
    std::vector<char> out(in.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(in.data());
        std::memcpy(out.data(), in.data(), in.size());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    if (out != in) state.SkipWithError("copy differs");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(in.size()));
}

BENCHMARK(BM_U_ParseFix);
BENCHMARK(BM_U_ParseFix_NewMap);
BENCHMARK(BM_U_CheckFixIntegrity);
BENCHMARK(BM_U_CalculateControlSum);
BENCHMARK(BM_PlainByteLoop);
BENCHMARK(BM_Memcpy);

} // namespace

BENCHMARK_MAIN();
