// TradeTape.cpp - trade records read with the token readers, written with the number writers.
#include "TradeTape.h"

#include <VeloraUtils.h>

#include <algorithm>
#include <istream>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace velora::tool {
namespace {

constexpr unsigned char kPriceDecimals = 4;
constexpr unsigned int kNoTime = 0xFFFFFFFFu;

struct Trade {
    unsigned int millisecond = 0;
    char symbol[16] = {};
    char side = '?';
    std::uint64_t quantity = 0;
    std::uint64_t price = 0; // in units of 10^-4
};

struct SymbolTotals {
    std::string symbol;
    unsigned int trades = 0;
    std::uint64_t bought = 0;
    std::uint64_t sold = 0;
    std::uint64_t notional = 0; // in units of 10^-4
};

// "187.25" or "187" up to '|' or the end: whole part, then at most four fraction digits.
bool ReadPrice(const char** cursor, std::uint64_t& price) {
    if (**cursor == '\0' || **cursor == '|') return false;
    const std::uint64_t whole = U_ReadUInt64TokenWith2Delimiters(cursor, '.', '|', 0);
    std::uint64_t fraction = 0;
    unsigned char digits = kPriceDecimals;
    if (**cursor == '.') {
        ++*cursor;
        fraction = U_ReadUIntTokenWithDigitCount(cursor, &digits, '|', 0);
    } else {
        digits = 0;
        U_SkipToDelimiter(cursor, '|');
    }
    for (unsigned char d = digits; d < kPriceDecimals; ++d) fraction *= 10;
    price = whole * 10000 + fraction;
    return true;
}

bool ParseTrade(const std::string& line, Trade& trade, std::string& problem) {
    const char* cursor = line.c_str();
    trade.millisecond = U_ReadMillisecondFromStr(&cursor, '|', kNoTime, ':', '.');
    if (trade.millisecond == kNoTime) {
        problem = "time is not HH:MM:SS.mmm";
        return false;
    }
    if (!U_ReadCharBufferToken(trade.symbol, sizeof trade.symbol, &cursor, '|') || trade.symbol[0] == '\0') {
        problem = "symbol missing or longer than 15 characters";
        return false;
    }
    trade.side = U_ReadCharToken(&cursor, '|', '?');
    if (trade.side != 'B' && trade.side != 'S') {
        problem = "side is not B or S";
        return false;
    }
    trade.quantity = U_ReadUInt64Token(&cursor, '|', 0);
    if (trade.quantity == 0) {
        problem = "quantity missing or zero";
        return false;
    }
    if (!ReadPrice(&cursor, trade.price)) {
        problem = "price missing";
        return false;
    }
    return true;
}

void AppendTime(std::string& line, unsigned int ms) {
    U_AppendTwoDigits(line, ms / 3600000, ':');
    U_AppendTwoDigits(line, ms / 60000 % 60, ':');
    U_AppendTwoDigits(line, ms / 1000 % 60, '.');
    U_AppendThreeDigits(line, ms % 1000, 0);
}

// Right-aligns the text of a buffer-family writer in a column of `width` characters.
void AppendColumn(std::string& line, const char* text, std::size_t width) {
    const std::string_view view(text);
    if (view.size() < width) line.append(width - view.size(), ' ');
    line.append(view);
}

void AppendMoney(std::string& line, std::uint64_t tenThousandths, std::size_t width) {
    char buf[40];
    AppendColumn(line, U_UInt64ToStrWithCommas(tenThousandths, buf, sizeof buf, kPriceDecimals, 0), width);
}

void AppendCount(std::string& line, std::uint64_t count, std::size_t width) {
    char buf[40];
    AppendColumn(line, U_UInt64ToStrWithCommas(count, buf, sizeof buf, 0, 0), width);
}

void AppendSymbol(std::string& line, const char* symbol) {
    char field[9];
    U_CopyAndPad(field, sizeof field, symbol, ' ', true);
    field[8] = '\0';
    line.append(field);
}

} // namespace

int PrintTradeTape(std::istream& in, std::ostream& out, std::ostream& err) {
    // Symbols of up to 8 characters become one 64-bit key, so the summary map compares numbers.
    std::map<std::uint64_t, SymbolTotals> totals;
    std::string line;
    std::string text;
    unsigned int lineNumber = 0;
    int malformed = 0;
    out << "time          symbol   side      quantity         price              notional\n";
    while (std::getline(in, line)) {
        ++lineNumber;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        Trade trade;
        std::string problem;
        if (!ParseTrade(line, trade, problem)) {
            text.clear();
            U_AppendUInt(text, lineNumber, 0);
            err << "line " << text << ": " << problem << ": " << line << '\n';
            ++malformed;
            continue;
        }
        const std::uint64_t notional = trade.quantity * trade.price;
        text.clear();
        AppendTime(text, trade.millisecond);
        text.append("  ");
        AppendSymbol(text, trade.symbol);
        text.append(trade.side == 'B' ? " buy " : " sell");
        AppendCount(text, trade.quantity, 14);
        AppendMoney(text, trade.price, 14);
        AppendMoney(text, notional, 22);
        out << text << '\n';

        SymbolTotals& t = totals[U_StringToUInt64(trade.symbol)];
        t.symbol = trade.symbol;
        ++t.trades;
        (trade.side == 'B' ? t.bought : t.sold) += trade.quantity;
        t.notional += notional;
    }

    out << "\nsymbol     trades        bought          sold          VWAP              notional\n";
    std::uint64_t allTrades = 0;
    std::uint64_t allNotional = 0;
    // Report in symbol order (the map is ordered by the packed key, which is not alphabetical).
    std::vector<const SymbolTotals*> ordered;
    for (const auto& entry : totals) ordered.push_back(&entry.second);
    std::sort(ordered.begin(), ordered.end(),
              [](const SymbolTotals* a, const SymbolTotals* b) { return a->symbol < b->symbol; });
    for (const SymbolTotals* row : ordered) {
        const SymbolTotals& t = *row;
        const std::uint64_t volume = t.bought + t.sold;
        // Volume-weighted price rounded half up to four decimals.
        const std::uint64_t vwap = (t.notional + volume / 2) / volume;
        text.clear();
        AppendSymbol(text, t.symbol.c_str());
        AppendCount(text, t.trades, 9);
        AppendCount(text, t.bought, 14);
        AppendCount(text, t.sold, 14);
        AppendMoney(text, vwap, 14);
        AppendMoney(text, t.notional, 22);
        out << text << '\n';
        allTrades += t.trades;
        allNotional += t.notional;
    }
    text.assign("total   ");
    AppendCount(text, allTrades, 9);
    text.append(42, ' ');
    AppendMoney(text, allNotional, 22);
    out << text << '\n';
    if (malformed != 0) out << malformed << " malformed record(s) skipped, see the messages above\n";
    return malformed;
}

} // namespace velora::tool
