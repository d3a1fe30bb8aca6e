// SymbolCommand.cpp - `velora-util symbol`: each symbol from the arguments or a file is checked
// against one rule (--kind) or all five, with the reason when a rule rejects it.
#include "SymbolCommand.h"

#include <VeloraUtils.h>

#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace velora::tool {
namespace {

struct SymbolKind {
    const char* name;
    bool (*isSymbolValid)(const char*);
    bool (*isCharValid)(char, bool);
};

const SymbolKind kKinds[] = {
    {"stock", U_IsStockSymbolValid, U_IsStockCharValid},
    {"index", U_IsIndexSymbolValid, U_IsIndexCharValid},
    {"mmid", U_IsMmidSymbolValid, U_IsMmidCharValid},
    {"basket", U_IsBasketSymbolValid, U_IsBasketCharValid},
    {"option", U_IsOptionSymbolValid, U_IsOptionCharValid},
};

void PrintSymbolUsage(std::ostream& out) {
    out << "usage: velora-util symbol [--kind KIND] SYMBOL...\n"
           "       velora-util symbol [--kind KIND] --file FILE   (one symbol per line, # comments)\n"
           "\n"
           "Checks each symbol against the rule of KIND (stock, index, mmid, basket, option) or, by\n"
           "default, against all five, and says why a rule rejects it. Symbols are taken as written:\n"
           "only upper-case letters are ever valid.\n"
           "exit status: 0 every symbol valid (with --kind) or all checked (without), 1 some symbol\n"
           "invalid for --kind, 2 usage or I/O error\n";
}

std::string Printable(char c) {
    if (c >= 0x20 && c < 0x7f) return std::string("'") + c + "'";
    std::string text = "byte ";
    U_AppendUInt(text, static_cast<unsigned char>(c), '\0');
    return text;
}

// Why the rule rejects the symbol: the first character outside its set, else the length.
std::string Reason(const SymbolKind& kind, const std::string& symbol) {
    if (symbol.empty()) return "empty";
    for (std::size_t i = 0; i < symbol.size(); ++i) {
        if (!kind.isCharValid(symbol[i], i == 0)) {
            std::string text = Printable(symbol[i]) + (i == 0 ? " cannot open a symbol" : " not allowed");
            if (i > 0) {
                text += " at position ";
                U_AppendUInt(text, static_cast<unsigned int>(i + 1), '\0');
            }
            return text;
        }
    }
    return "too long";
}

} // namespace

int RunSymbolCommand(int argc, char** argv) {
    const SymbolKind* only = nullptr;
    std::string file;
    std::vector<std::string> symbols;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help") {
            PrintSymbolUsage(std::cout);
            return 0;
        }
        if (arg == "--kind" && i + 1 < argc) {
            const std::string name = argv[++i];
            for (const SymbolKind& kind : kKinds)
                if (name == kind.name) only = &kind;
            if (only == nullptr) {
                std::cerr << "velora-util symbol: unknown kind '" << name << "'\n";
                PrintSymbolUsage(std::cerr);
                return 2;
            }
        } else if (arg == "--file" && i + 1 < argc) {
            file = argv[++i];
        } else if (arg.size() > 1 && arg[0] == '-' && arg[1] == '-') {
            std::cerr << "velora-util symbol: unknown option " << arg << '\n';
            PrintSymbolUsage(std::cerr);
            return 2;
        } else {
            symbols.push_back(arg);
        }
    }
    if (symbols.empty() == file.empty()) {
        std::cerr << "velora-util symbol: give either symbols or --file FILE\n";
        PrintSymbolUsage(std::cerr);
        return 2;
    }
    if (!file.empty()) {
        std::ifstream in(file, std::ios::binary);
        if (!in) {
            std::cerr << "velora-util symbol: cannot open " << file << '\n';
            return 2;
        }
        for (std::string line; std::getline(in, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (!line.empty() && line[0] != '#') symbols.push_back(line);
        }
    }

    bool allValid = true;
    std::string line;
    for (const std::string& symbol : symbols) {
        line = "\"" + symbol + "\"";
        line.append(line.size() < 16 ? 16 - line.size() : 1, ' ');
        const std::string_view separator = only != nullptr ? "" : "  ";
        for (const SymbolKind& kind : kKinds) {
            if (only != nullptr && only != &kind) continue;
            const bool valid = kind.isSymbolValid(symbol.c_str());
            allValid = allValid && valid;
            line += separator;
            line += kind.name;
            line += valid ? " ok" : " no (" + Reason(kind, symbol) + ")";
        }
        std::cout << line << '\n';
    }
    return only == nullptr || allValid ? 0 : 1;
}

} // namespace velora::tool
