// quickfix_anchor.cpp - QuickFIX parsing and building for the FIX benchmarks (compiled as C++14).
#include "quickfix_anchor.h"

#include <quickfix/Message.h>

namespace velora {
namespace bench {

std::size_t QuickFixParse(const std::string& message) {
    FIX::Message parsed(message, false);
    return parsed.totalFields();
}

std::string QuickFixBuildNewOrderSingle(unsigned int seqNum) {
    FIX::Message message;
    FIX::Header& header = message.getHeader();
    header.setField(FIX::BeginString("FIX.4.4"));
    header.setField(FIX::MsgType("D"));
    header.setField(FIX::SenderCompID("VELORA"));
    header.setField(FIX::TargetCompID("BROKER1"));
    header.setField(FIX::MsgSeqNum(static_cast<int>(seqNum)));
    header.setField(FIX::StringField(52, "20261121-09:30:00.125"));
    message.setField(FIX::StringField(11, "ORD000001"));
    message.setField(FIX::StringField(21, "1"));
    message.setField(FIX::StringField(55, "AAPL"));
    message.setField(FIX::StringField(54, "1"));
    message.setField(FIX::StringField(60, "20261121-09:30:00.100"));
    message.setField(FIX::StringField(38, "100"));
    message.setField(FIX::StringField(40, "2"));
    message.setField(FIX::StringField(44, "187.25"));
    message.setField(FIX::StringField(59, "0"));
    return message.toString();
}

} // namespace bench
} // namespace velora
