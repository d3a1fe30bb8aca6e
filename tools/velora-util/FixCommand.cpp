// FixCommand.cpp - `velora-util fix scan` and `velora-util fix build`.
#include "FixCommand.h"

#include <VeloraUtils.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "FixScan.h"

namespace velora::tool {
namespace {

void PrintFixUsage(std::ostream& out) {
    out << "usage: velora-util fix scan [options] [FILE|-]\n"
           "       velora-util fix build [options] TAG=VALUE...\n"
           "\n"
           "fix scan reads a FIX byte stream (stdin by default) in pieces, cuts out every complete\n"
           "message, checks its CheckSum, parses it and prints one line per message, then a summary.\n"
           "After a bad message it goes on at the next BeginString; every skipped byte range is shown.\n"
           "  --chunk N        read N bytes at a time (default 65536; any size gives the same report)\n"
           "  --soh C          show SOH as the character C (default |)\n"
           "  --type T[,T...]  show only these MsgTypes, and any message with a problem (the summary\n"
           "                   counts all)\n"
           "  --json           one JSON object per line\n"
           "  --quiet          the summary only\n"
           "\n"
           "fix build writes one message built from TAG=VALUE fields to stdout.\n"
           "  --type T         MsgType (required: one or two characters)\n"
           "  --protocol P     BeginString protocol (default FIX)\n"
           "  --version V      BeginString version (default 4.4)\n"
           "  --seq N          MsgSeqNum (34)\n"
           "  --sender S       SenderCompID (49)\n"
           "  --target T       TargetCompID (56)\n"
           "  --time T         SendingTime (52) as YYYYMMDD-HH:MM:SS[.mmm] (default: now, UTC)\n"
           "  --soh C          show SOH as the character C and end with a newline\n"
           "\n"
           "exit status: 0 all messages good, 1 a bad message, 2 usage or I/O error\n";
}

bool ParseUnsigned(const char* text, unsigned long long max, unsigned long long& out) {
    if (text == nullptr || *text < '0' || *text > '9') return false;
    char* end = nullptr;
    out = std::strtoull(text, &end, 10);
    return *end == '\0' && out <= max;
}

int Usage(const std::string& problem) {
    std::cerr << "velora-util fix: " << problem << '\n';
    PrintFixUsage(std::cerr);
    return 2;
}

int RunScan(int argc, char** argv) {
    FixScanOptions options;
    std::size_t chunk = 65536;
    std::string path = "-";
    bool havePath = false;
    for (int i = 2; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        unsigned long long number = 0;
        if (arg == "--chunk" && hasValue) {
            if (!ParseUnsigned(argv[++i], 1ULL << 30, number) || number == 0)
                return Usage("--chunk takes a byte count from 1 to 1073741824");
            chunk = static_cast<std::size_t>(number);
        } else if (arg == "--soh" && hasValue) {
            if (std::strlen(argv[++i]) != 1) return Usage("--soh takes one character");
            options.soh = argv[i][0];
        } else if (arg == "--type" && hasValue) {
            for (std::string list = argv[++i]; !list.empty();) {
                const std::size_t comma = list.find(',');
                const std::string type = list.substr(0, comma);
                if (type.empty() || type.size() > 2)
                    return Usage("--type takes MsgTypes of one or two characters, separated by commas");
                options.types.insert(type);
                list = comma == std::string::npos ? "" : list.substr(comma + 1);
            }
        } else if (arg == "--json") {
            options.json = true;
        } else if (arg == "--quiet") {
            options.quiet = true;
        } else if (arg.size() > 1 && arg[0] == '-') {
            return Usage("unknown option " + arg);
        } else if (!havePath) {
            path = arg;
            havePath = true;
        } else {
            return Usage("give at most one FILE");
        }
    }

    std::FILE* in = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
    if (in == nullptr) {
        std::cerr << "velora-util fix scan: cannot open " << path << ": " << std::strerror(errno) << '\n';
        return 2;
    }
    FixStreamScanner scanner(options, std::cout);
    std::vector<char> piece(chunk);
    const auto started = std::chrono::steady_clock::now();
    for (;;) {
        const std::size_t got = std::fread(piece.data(), 1, piece.size(), in);
        if (got > 0) scanner.Feed(piece.data(), got);
        if (got < piece.size()) break;
    }
    const bool readError = std::ferror(in) != 0;
    if (in != stdin) std::fclose(in);
    if (readError) {
        std::cerr << "velora-util fix scan: read error on " << path << '\n';
        return 2;
    }
    scanner.Finish();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    PrintFixScanSummary(scanner.Totals(), seconds, options.json, std::cout);
    return scanner.Totals().AllGood() ? 0 : 1;
}

// "4.4" -> 0x0404, "1.1.0" -> 0x010100: at most four numbers of at most 255.
bool ParseVersion(const std::string& text, unsigned int& version) {
    version = 0;
    unsigned parts = 0;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t dot = std::min(text.find('.', at), text.size());
        unsigned long long number = 0;
        if (dot == at || !ParseUnsigned(text.substr(at, dot - at).c_str(), 255, number) || ++parts > 4)
            return false;
        version = version << 8 | static_cast<unsigned int>(number);
        at = dot + 1;
    }
    return true;
}

// "20261121-09:30:00.125" -> date "20261121" and the millisecond of the day.
bool ParseSendingTime(const std::string& text, std::string& date, unsigned int& millisecond) {
    unsigned int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, ms = 0;
    if (!U_ParseFixUtc(text.c_str(), &year, &month, &day, &hour, &minute, &second, &ms) || hour > 23 ||
        minute > 59 || second > 60 || month < 1 || month > 12 || day < 1)
        return false;
    date = text.substr(0, 8);
    millisecond = ((hour * 60 + minute) * 60 + second) * 1000 + ms;
    return true;
}

std::string NowUtc() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm utc{};
    const std::tm* parts = std::gmtime(&seconds); // only this thread formats times
    if (parts != nullptr) utc = *parts;
    char text[80]; // room for any int the compiler can imagine in each field
    std::snprintf(text, sizeof text, "%04d%02d%02d-%02d:%02d:%02d.%03d", utc.tm_year + 1900, utc.tm_mon + 1,
                  utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, static_cast<int>(ms));
    return text;
}

int RunBuild(int argc, char** argv) {
    std::string msgType, protocol = "FIX", versionText = "4.4", sender, target, timeText;
    unsigned long long seq = 0;
    bool haveSeq = false;
    char soh = '\0';
    std::vector<std::string> tags;   // "55=" texts; the collection refers to them
    std::vector<const char*> values; // the values, by reference into argv
    for (int i = 2; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--type" && hasValue) {
            msgType = argv[++i];
        } else if (arg == "--protocol" && hasValue) {
            protocol = argv[++i];
        } else if (arg == "--version" && hasValue) {
            versionText = argv[++i];
        } else if (arg == "--seq" && hasValue) {
            if (!ParseUnsigned(argv[++i], 0xFFFFFFFFu, seq) || seq == 0)
                return Usage("--seq takes a number from 1 to 4294967295");
            haveSeq = true;
        } else if (arg == "--sender" && hasValue) {
            sender = argv[++i];
        } else if (arg == "--target" && hasValue) {
            target = argv[++i];
        } else if (arg == "--time" && hasValue) {
            timeText = argv[++i];
        } else if (arg == "--soh" && hasValue) {
            if (std::strlen(argv[++i]) != 1) return Usage("--soh takes one character");
            soh = argv[i][0];
        } else if (arg.size() > 1 && arg[0] == '-' && arg[1] == '-') {
            return Usage("unknown option " + arg);
        } else {
            const std::size_t equals = arg.find('=');
            unsigned long long tag = 0;
            if (equals == std::string::npos || !ParseUnsigned(arg.substr(0, equals).c_str(), 65535, tag) ||
                tag == 0 || equals + 1 == arg.size())
                return Usage("fields are TAG=VALUE with a tag from 1 to 65535 and a value: " + arg);
            if (tag == 8 || tag == 9 || tag == 10 || tag == 35 || tag == 34 || tag == 49 || tag == 52 ||
                tag == 56)
                return Usage("tag " + std::to_string(tag) + " is set by the builder or its options");
            if (arg.find('\x01') != std::string::npos) return Usage("a value cannot hold SOH: " + arg);
            tags.push_back(arg.substr(0, equals + 1));
            values.push_back(argv[i] + equals + 1);
        }
    }
    if (msgType.empty() || msgType.size() > 2)
        return Usage("--type takes a MsgType of one or two characters");
    unsigned int version = 0;
    if (!ParseVersion(versionText, version))
        return Usage("--version takes up to four numbers of at most 255, such as 4.4");
    if (protocol.empty() || protocol.size() > 7) return Usage("--protocol takes 1 to 7 characters");
    if (timeText.empty()) timeText = NowUtc();
    std::string date;
    unsigned int millisecond = 0;
    if (!ParseSendingTime(timeText, date, millisecond))
        return Usage("--time takes YYYYMMDD-HH:MM:SS or YYYYMMDD-HH:MM:SS.mmm");

    FixTagCollection message(static_cast<unsigned short>(tags.size() * 2 + 16), version, protocol.c_str());
    bool ok = true;
    if (!sender.empty())
        ok = ok &&
             message.AppendTagSenderCompId(sender.c_str(), static_cast<unsigned int>(sender.size()), 0) != 0;
    if (!target.empty())
        ok = ok &&
             message.AppendTagTargetCompId(target.c_str(), static_cast<unsigned int>(target.size()), 0) != 0;
    if (haveSeq) {
        ok = ok && message.Append("34=", 3, false, 0) != 0; // the digits follow in the collection's own slot
        ok = ok && message.AppendMsgSeqNumValue(static_cast<unsigned int>(seq)) != 0;
    }
    ok = ok && message.AppendTagUtc(date.c_str(), millisecond) != 0;
    for (std::size_t i = 0; ok && i < tags.size(); ++i)
        ok = message.AppendTag(tags[i].c_str(), values[i], static_cast<unsigned int>(tags[i].size()), 0, 0,
                               true) != 0;
    if (!ok || !message.Finalize(msgType.c_str())) {
        std::cerr << "velora-util fix build: the message could not be built (over "
                  << FixTagCollection::maxMsgLength << " bytes of body?)\n";
        return 2;
    }
    std::string text;
    const char replacement[2] = {soh == '\0' ? '\x01' : soh, '\0'};
    message.toString(text, replacement);
    if (soh != '\0') text.push_back('\n');
    std::fwrite(text.data(), 1, text.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 2;
}

} // namespace

int RunFixCommand(int argc, char** argv) {
    const std::string sub = argc > 1 ? argv[1] : "";
    if (sub == "scan") return RunScan(argc, argv);
    if (sub == "build") return RunBuild(argc, argv);
    if (sub == "--help" || sub == "help") {
        PrintFixUsage(std::cout);
        return 0;
    }
    return Usage(sub.empty() ? "expected scan or build" : "unknown fix command " + sub);
}

} // namespace velora::tool
