// Fuzz target for U_ParseFix (and U_ParseFixUtc on the same bytes). The message is an exactly sized
// heap block, so ASan reports any read past `length`. The result is checked against the rules
// applied one byte at a time: the same code, error tag and field ordinal, and exactly the fields
// before the failing one, in order, added to what the map already held.
#include "VeloraUtils/FixParsing.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

using Fields = std::vector<std::pair<unsigned short, std::string>>;

struct Expected {
    unsigned char code = 0;
    unsigned short errorTag = 0xBEEF;
    unsigned short ordinal = 1;
    Fields added;
};

Expected Model(std::string_view m, const std::vector<bool>& present) {
    Expected out;
    std::vector<bool> seen = present;
    unsigned int tag = 0;
    std::string value;
    bool inValue = false;
    const auto fail = [&](unsigned char code, unsigned int errorTag) {
        out.code = code;
        out.errorTag = static_cast<unsigned short>(errorTag);
        return out;
    };
    for (const char c : m) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '\x01') {
            if (value.empty()) return fail(3, tag);
            if (tag == 0) return fail(6, 0);
            if (seen[tag]) return fail(5, tag);
            seen[tag] = true;
            out.added.emplace_back(static_cast<unsigned short>(tag), value);
            value.clear();
            ++out.ordinal;
            tag = 0;
            inValue = false;
        } else if (c == '=') {
            if (tag == 0) return fail(6, 0);
            inValue = true;
        } else if (inValue) {
            if (u < 0x20 || u > 0x7F) return fail(4, tag);
            value += c;
        } else {
            if (u < '0' || u > '9') return fail(2, 0);
            tag = tag * 10 + (u - '0');
            if (tag > 65535) return fail(1, 0);
        }
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    // The first byte: how many of the tags 1..8 the map holds before parsing.
    const unsigned int preset = data[0] % 9;
    const std::string_view message(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::unique_ptr<char[]> block(new char[message.size()]);
    message.copy(block.get(), message.size());

    FixFieldMap map;
    std::vector<bool> present(65536, false);
    Fields before;
    for (unsigned short tag = 1; tag <= preset; ++tag) {
        Require(map.insert(tag, "preset"));
        present[tag] = true;
        before.emplace_back(tag, "preset");
    }
    unsigned short errorTag = 0xBEEF;
    unsigned short ordinal = 0xBEEF;
    const unsigned char code =
        U_ParseFix(map, block.get(), static_cast<unsigned int>(message.size()), &errorTag, &ordinal);

    const Expected expected = Model(message, present);
    Require(code == expected.code && errorTag == expected.errorTag && ordinal == expected.ordinal);
    Fields got;
    for (const auto& [tag, text] : map) got.emplace_back(tag, std::string(text));
    Fields want = before;
    want.insert(want.end(), expected.added.begin(), expected.added.end());
    Require(got == want);
    for (const auto& [tag, text] : want) Require(map.value(tag) == text);
    if (code == FixParseDuplicateTag) Require(map.contains(errorTag));

    // The timestamp reader on the same bytes, NUL-terminated and exactly sized.
    const std::unique_ptr<char[]> text(new char[message.size() + 1]);
    message.copy(text.get(), message.size());
    text[message.size()] = '\0';
    unsigned int v[7];
    if (U_ParseFixUtc(text.get(), &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6]))
        Require(v[0] != 0 && v[1] >= 1 && v[1] <= 12 && v[2] >= 1 && v[2] <= 31 && v[3] <= 23 && v[4] <= 59 &&
                v[5] <= 59 && v[6] <= 999);
    return 0;
}
