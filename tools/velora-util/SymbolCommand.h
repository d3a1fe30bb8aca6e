// SymbolCommand.h - the `symbol` command of velora-util: checks market symbols against the library's
// five symbol rules and says where an invalid one breaks its rule.
#pragma once

namespace velora::tool {

// argv[0] is "symbol"; returns the process exit status (0 all valid for the chosen kind, 1 some
// invalid, 2 usage or I/O error).
int RunSymbolCommand(int argc, char** argv);

} // namespace velora::tool
