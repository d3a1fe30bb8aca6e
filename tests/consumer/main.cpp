// A program outside the project that links the installed VeloraUtils and uses both text families.
#include <VeloraUtils.h>

#include <cstdio>
#include <cstring>
#include <string>

int main() {
    char buf[32];
    const char* text = U_UIntToStrWithCommas(1234567u, buf, sizeof buf, 2, 0);
    const char* cursor = "42|17";
    const unsigned int first = U_ReadUIntToken(&cursor, '|', 0);
    std::string line;
    U_AppendUInt64Hex(line, 255, '|');
    U_AppendUInt(line, first, 0);
    const bool ok = std::strcmp(text, "12,345.67") == 0 && line == "ff|42" && std::strcmp(cursor, "17") == 0;
    std::printf("consumer: %s %s -> %s\n", text, line.c_str(), ok ? "ok" : "WRONG");
    return ok ? 0 : 1;
}
