// TradeTape.h - the trade-tape report of velora-util: reads delimited trade records and prints
// them with the library's token readers and number writers.
#pragma once

#include <iosfwd>

namespace velora::tool {

// Reads records "HH:MM:SS.mmm|SYMBOL|SIDE|QUANTITY|PRICE" (lines starting with '#' and blank lines
// are skipped) from `in` and writes one formatted line per trade, then a per-symbol summary, to
// `out`. Malformed records are reported on `err` with their line number and counted.
// Returns the number of malformed records.
int PrintTradeTape(std::istream& in, std::ostream& out, std::ostream& err);

} // namespace velora::tool
