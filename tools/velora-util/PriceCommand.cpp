// PriceCommand.cpp - `velora-util price`: parse each value with the price or money reader, then
// print it at full precision and as formatted with the chosen decimals, rounding, grouping and
// trimming.
#include "PriceCommand.h"

#include <VeloraUtils.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace velora::tool {
namespace {

struct PriceOptions {
    bool money = false;
    int decimals = -1; // the type's full precision
    char roundMode = 0;
    bool commas = false;
    bool trimZeros = false;
    int maxDecimals = -1; // the type's full precision
    std::string file;
    std::vector<std::string> values;
};

void PrintPriceUsage(std::ostream& out) {
    out << "usage: velora-util price [options] VALUE...\n"
           "       velora-util price [options] --file FILE   (one value per line, # comments)\n"
           "\n"
           "Reads each value as a signed price (9 decimals) or, with --money, a money amount\n"
           "(4 decimals), then prints it as read (full precision) and as formatted.\n"
           "\n"
           "options:\n"
           "  --money              money amounts (4 decimals) instead of prices (9 decimals)\n"
           "  --decimals N         fraction digits to print (default: all)\n"
           "  --round MODE         nearest (half up, default), up, or down (truncate)\n"
           "  --commas             group the whole part by thousands\n"
           "  --trim               drop trailing fraction zeros beyond the second digit\n"
           "  --max-decimals N     fraction digits the reader keeps (default: all; the rest is cut)\n";
}

bool ParseCount(const char* text, int limit, int& out) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < 0 || value > limit) return false;
    out = static_cast<int>(value);
    return true;
}

// Returns an error text, or an empty string when the options are good.
std::string ParseOptions(int argc, char** argv, PriceOptions& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--money") {
            options.money = true;
        } else if (arg == "--commas") {
            options.commas = true;
        } else if (arg == "--trim") {
            options.trimZeros = true;
        } else if (arg == "--decimals" && hasValue) {
            if (!ParseCount(argv[++i], 255, options.decimals))
                return "--decimals takes a count from 0 to 255";
        } else if (arg == "--max-decimals" && hasValue) {
            if (!ParseCount(argv[++i], 255, options.maxDecimals))
                return "--max-decimals takes a count from 0 to 255";
        } else if (arg == "--round" && hasValue) {
            const std::string mode = argv[++i];
            if (mode == "nearest")
                options.roundMode = 0;
            else if (mode == "up")
                options.roundMode = 1;
            else if (mode == "down")
                options.roundMode = -1;
            else
                return "--round takes nearest, up or down";
        } else if (arg == "--file" && hasValue) {
            options.file = argv[++i];
        } else if (!arg.empty() && arg[0] == '-' && (arg.size() < 2 || arg[1] < '0' || arg[1] > '9') &&
                   arg != "-.") {
            return "unknown option " + arg;
        } else {
            options.values.push_back(arg);
        }
    }
    if (options.values.empty() == options.file.empty()) return "give either values or --file FILE";
    return "";
}

// The readers take digits on trust and keep the whole part in its own width (32-bit signed for a
// price, 64-bit for money); the tool checks shape and range first so that a typo is reported.
std::string CheckDecimalText(const std::string& text, bool money) {
    std::size_t i = !text.empty() && text[0] == '-' ? 1 : 0;
    std::string whole;
    std::size_t digits = 0;
    bool point = false;
    for (; i < text.size(); ++i) {
        if (text[i] >= '0' && text[i] <= '9') {
            ++digits;
            if (!point && (!whole.empty() || text[i] != '0')) whole.push_back(text[i]);
        } else if (text[i] == '.' && !point) {
            point = true;
        } else {
            return "not a decimal number: " + text;
        }
    }
    if (digits == 0) return "not a decimal number: " + text;
    const std::string limit = money ? "9223372036854775807" : "2147483647";
    if (whole.size() > limit.size() || (whole.size() == limit.size() && whole > limit))
        return "whole part out of range (at most " + limit +
               (money ? ")" : "; --money takes larger amounts)") + ": " + text;
    return "";
}

void FormatValue(const std::string& text, const PriceOptions& options, std::string& line) {
    const char* cursor = text.c_str();
    line.append(text);
    line.append(text.size() < 22 ? 22 - text.size() : 1, ' ');
    if (options.money) {
        std::int64_t whole = 0;
        short fraction = 0;
        const auto maxDecimals =
            static_cast<unsigned char>(options.maxDecimals < 0 ? 4 : options.maxDecimals);
        U_StrToMoneyDollarsAndFraction(whole, fraction, cursor, maxDecimals, '\0');
        U_MoneyDollarsAndFractionToStr(line, whole, fraction, 4, 0, false, '\0', false);
        line.append("  ->  ");
        const auto decimals = static_cast<unsigned char>(options.decimals < 0 ? 4 : options.decimals);
        U_MoneyDollarsAndFractionToStr(line, whole, fraction, decimals, options.roundMode, options.commas,
                                       '\0', options.trimZeros);
    } else {
        int whole = 0;
        int fraction = 0;
        const auto maxDecimals =
            static_cast<unsigned char>(options.maxDecimals < 0 ? 9 : options.maxDecimals);
        U_StrToSignedPriceDollarsAndFraction(whole, fraction, cursor, maxDecimals, '\0');
        U_SignedPriceDollarsAndFractionToStr(line, whole, fraction, 9, 0, false, '\0', false);
        line.append("  ->  ");
        const auto decimals = static_cast<unsigned char>(options.decimals < 0 ? 9 : options.decimals);
        U_SignedPriceDollarsAndFractionToStr(line, whole, fraction, decimals, options.roundMode,
                                             options.commas, '\0', options.trimZeros);
    }
}

} // namespace

int RunPriceCommand(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            PrintPriceUsage(std::cout);
            return 0;
        }
    }
    PriceOptions options;
    const std::string problem = ParseOptions(argc, argv, options);
    if (!problem.empty()) {
        std::cerr << "velora-util price: " << problem << '\n';
        PrintPriceUsage(std::cerr);
        return 2;
    }
    std::vector<std::string> values = options.values;
    if (!options.file.empty()) {
        std::ifstream in(options.file);
        if (!in) {
            std::cerr << "velora-util price: cannot open " << options.file << '\n';
            return 2;
        }
        for (std::string line; std::getline(in, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (!line.empty() && line[0] != '#') values.push_back(line);
        }
    }
    std::string line;
    for (const std::string& value : values) {
        const std::string bad = CheckDecimalText(value, options.money);
        if (!bad.empty()) {
            std::cerr << "velora-util price: " << bad << '\n';
            return 2;
        }
        line.clear();
        FormatValue(value, options, line);
        std::cout << line << '\n';
    }
    return 0;
}

} // namespace velora::tool
