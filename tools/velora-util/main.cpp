// velora-util - command-line companion of VeloraUtils: runs the library's families on files and
// arguments so their behaviour can be tried and checked by hand.
#include <VeloraUtils.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

#include "FilterCommand.h"
#include "FixCommand.h"
#include "PriceCommand.h"
#include "SymbolCommand.h"
#include "TradeTape.h"

namespace {

void PrintUsage(std::ostream& out) {
    out << "usage: velora-util <command> [arguments]\n"
           "\n"
           "commands:\n"
           "  fix scan [FILE|-]    inspect a FIX byte stream: every message checked, parsed and shown\n"
           "  fix build TAG=VALUE...  build one FIX message (velora-util fix --help for the options)\n"
           "  tape [FILE|-]        format a trade tape (time|symbol|side|quantity|price per line)\n"
           "                       and summarise it per symbol; reads stdin when FILE is - or absent\n"
           "  format NUMBER...     show each integer through the number writers\n"
           "  price [options] VALUE...  read prices or money amounts and format them\n"
           "                       (velora-util price --help for the options)\n"
           "  symbol [--kind KIND] SYMBOL...  check market symbols against the five symbol rules\n"
           "                       (velora-util symbol --help for the options)\n"
           "  filter GROUP... [FILE|-]  print the lines a token filter accepts, e.g.\n"
           "                       --and ibm --or apple,msft --not --word ibmx\n"
           "                       (velora-util filter --help for the options)\n"
           "  help                 this text\n"
           "\n"
           "exit status: 0 success, 1 malformed input records, 2 usage or I/O error\n";
}

int RunTape(int argc, char** argv) {
    if (argc > 3) {
        std::cerr << "velora-util tape: expected at most one FILE\n";
        return 2;
    }
    const std::string path = argc == 3 ? argv[2] : "-";
    int malformed;
    if (path == "-") {
        malformed = velora::tool::PrintTradeTape(std::cin, std::cout, std::cerr);
    } else {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            std::cerr << "velora-util tape: cannot open " << path << ": " << std::strerror(errno) << '\n';
            return 2;
        }
        malformed = velora::tool::PrintTradeTape(file, std::cout, std::cerr);
        if (file.bad()) {
            std::cerr << "velora-util tape: read error on " << path << '\n';
            return 2;
        }
    }
    return malformed == 0 ? 0 : 1;
}

int RunFormat(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "velora-util format: expected at least one NUMBER\n";
        return 2;
    }
    for (int i = 2; i < argc; ++i) {
        // The argument is read with the library's own signed reader, which takes digits as they are.
        const char* cursor = argv[i];
        const char* digits = cursor + (*cursor == '-' ? 1 : 0);
        const std::size_t count = std::strlen(digits);
        for (const char* c = digits; c == digits || *c != '\0'; ++c) {
            if (*c < '0' || *c > '9' || count > 18) {
                std::cerr << "velora-util format: not an integer: " << argv[i] << '\n';
                return 2;
            }
        }
        const std::int64_t value = U_ReadInt64Token(&cursor, '\0', 0);
        const auto bits = static_cast<std::uint64_t>(value);
        char buf[48];
        std::string line = argv[i];
        line.append(":\n  decimal         ");
        line.append(U_Int64ToStr(value, buf, sizeof buf, 0, 0));
        line.append("\n  with commas     ");
        line.append(U_Int64ToStrWithCommas(value, buf, sizeof buf, 0, 0));
        line.append("\n  as 4 decimals   ");
        line.append(U_Int64ToStrWithCommas(value, buf, sizeof buf, 4, 0));
        line.append("\n  hexadecimal     ");
        U_AppendUInt64Hex(line, bits, 0);
        line.append("\n  zero-prepended  ");
        line.append(U_UInt64HexToStrPrepended(bits, buf, 17, '0', 0));
        line.append("\n  bytes as chars   ");
        for (int b = 0; b < 8; ++b)
            U_AppendPrintableChar(line, static_cast<char>(bits >> (8 * b)), b < 7 ? ' ' : '\0');
        std::cout << line << '\n';
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        PrintUsage(std::cerr);
        return 2;
    }
    const std::string command = argv[1];
    if (command == "tape") return RunTape(argc, argv);
    if (command == "format") return RunFormat(argc, argv);
    if (command == "price") return velora::tool::RunPriceCommand(argc - 1, argv + 1);
    if (command == "fix") return velora::tool::RunFixCommand(argc - 1, argv + 1);
    if (command == "symbol") return velora::tool::RunSymbolCommand(argc - 1, argv + 1);
    if (command == "filter") return velora::tool::RunFilterCommand(argc - 1, argv + 1);
    if (command == "help" || command == "--help" || command == "-h") {
        PrintUsage(std::cout);
        return 0;
    }
    std::cerr << "velora-util: unknown command '" << command << "'\n";
    PrintUsage(std::cerr);
    return 2;
}
