// FilterCommand.cpp - `velora-util filter`: each --and/--or/--not group of the command line becomes
// part of one AND collection (an --or group is an OR collection of its own, shared into the root),
// and every line the tree accepts is printed.
#include "FilterCommand.h"

#include <VeloraUtils.h>

#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velora::tool {
namespace {

// Operator bits of an edge.
constexpr unsigned char kNegate = 1;
constexpr unsigned char kMatchCase = 2;
constexpr unsigned char kWholeWord = 4;

void PrintFilterUsage(std::ostream& out) {
    out << "usage: velora-util filter GROUP... [--explain] [FILE|-]\n"
           "\n"
           "GROUP is one of\n"
           "  --and [--word] [--case] T1,T2,...   every token must occur\n"
           "  --or  [--word] [--case] T1,T2,...   at least one token must occur\n"
           "  --not [--word] [--case] T1,T2,...   no token may occur\n"
           "--word matches only where a token is not glued to letters or digits; --case matches case\n"
           "exactly (otherwise case is ignored). The groups must all hold. Prints the lines of FILE\n"
           "(stdin when absent or -) that the filter accepts. --explain first prints the tokens the\n"
           "filter searches for.\n"
           "exit status: 0 some line accepted, 1 none, 2 usage or I/O error\n";
}

std::vector<std::string> SplitTokens(const std::string& list) {
    std::vector<std::string> tokens;
    std::string token;
    for (const char c : list + ",") {
        if (c != ',') {
            token.push_back(c);
        } else if (!token.empty()) {
            tokens.push_back(token);
            token.clear();
        }
    }
    return tokens;
}

class Filter {
public:
    Filter() : root_("filter", true) {}

    // Adds one group; returns false with a message when the group is malformed.
    bool AddGroup(const std::string& kind, unsigned char options, const std::string& list,
                  std::string& error) {
        const std::vector<std::string> tokens = SplitTokens(list);
        if (tokens.empty()) {
            error = kind + " needs a comma-separated list of tokens";
            return false;
        }
        if (kind == "--or") {
            // The alternatives form a collection of their own, held by the root as a shared child.
            auto group = std::make_unique<TokenExpressionCollection>("or " + list, false);
            for (const std::string& token : tokens)
                group->AddExpression(new TokenExpressionSimple(token), options);
            if (!root_.AddExpression(group.get(), 0)) {
                error = "the group --or " + list + " is given twice";
                return false;
            }
            group->AddUsedBy(&root_);
            groups_.push_back(std::move(group));
            return true;
        }
        const unsigned char edge = kind == "--not" ? static_cast<unsigned char>(options | kNegate) : options;
        for (const std::string& token : tokens) {
            auto leaf = std::make_unique<TokenExpressionSimple>(token);
            TokenExpressionBase* existing = root_.FindExpressionByName(token.c_str(), true);
            if (existing != nullptr) {
                error = "the token '" + token + "' is given twice";
                return false;
            }
            root_.AddExpression(leaf.release(), edge);
        }
        return true;
    }

    bool Accepts(const std::string& line) const { return root_.isTrue(line.c_str()); }

    void Explain(std::ostream& out) const {
        std::map<std::string, bool> tokens;
        std::map<std::string, bool> caseTokens;
        root_.CollectTokens(tokens, caseTokens);
        for (const auto& [token, wholeWord] : tokens)
            out << "# search \"" << token << "\" ignoring case" << (wholeWord ? ", whole word" : "") << '\n';
        for (const auto& [token, wholeWord] : caseTokens)
            out << "# search \"" << token << "\" matching case" << (wholeWord ? ", whole word" : "") << '\n';
    }

private:
    // Declared first so that they outlive the root, which unlinks itself from them when destroyed.
    std::vector<std::unique_ptr<TokenExpressionCollection>> groups_;
    TokenExpressionCollection root_;
};

int FilterStream(std::istream& in, const Filter& filter) {
    bool any = false;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (filter.Accepts(line)) {
            std::cout << line << '\n';
            any = true;
        }
    }
    return any ? 0 : 1;
}

} // namespace

int RunFilterCommand(int argc, char** argv) {
    Filter filter;
    bool explain = false;
    bool anyGroup = false;
    std::string path = "-";
    std::string error;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help") {
            PrintFilterUsage(std::cout);
            return 0;
        }
        if (arg == "--and" || arg == "--or" || arg == "--not") {
            unsigned char options = 0;
            int next = i + 1;
            for (; next < argc; ++next) {
                const std::string modifier = argv[next];
                if (modifier == "--word")
                    options |= kWholeWord;
                else if (modifier == "--case")
                    options |= kMatchCase;
                else
                    break;
            }
            if (next >= argc) {
                error = arg + " needs a comma-separated list of tokens";
            } else {
                filter.AddGroup(arg, options, argv[next], error);
                i = next;
                anyGroup = true;
            }
        } else if (arg == "--explain") {
            explain = true;
        } else if (arg.size() > 1 && arg[0] == '-' && arg[1] == '-') {
            error = "unknown option " + arg;
        } else if (path == "-" && (i == argc - 1)) {
            path = arg;
        } else {
            error = "unexpected argument " + arg;
        }
        if (!error.empty()) break;
    }
    if (error.empty() && !anyGroup) error = "give at least one --and, --or or --not group";
    if (!error.empty()) {
        std::cerr << "velora-util filter: " << error << '\n';
        PrintFilterUsage(std::cerr);
        return 2;
    }
    if (explain) filter.Explain(std::cout);
    if (path == "-") return FilterStream(std::cin, filter);
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::cerr << "velora-util filter: cannot open " << path << '\n';
        return 2;
    }
    return FilterStream(file, filter);
}

} // namespace velora::tool
