// quickfix_anchor.h - the QuickFIX side of the FIX benchmarks, behind a plain interface: QuickFIX's
// headers need C++14 (they still use throw(...) lists on functions), so they stay in their own translation unit.
#pragma once

#include <cstddef>
#include <string>

namespace velora {
namespace bench {

// Parses `message` into a QuickFIX message without validation; returns the number of body fields.
std::size_t QuickFixParse(const std::string& message);

// Builds a NewOrderSingle with the same fields as the library's benchmark and serialises it;
// returns the message text.
std::string QuickFixBuildNewOrderSingle(unsigned int seqNum);

} // namespace bench
} // namespace velora
