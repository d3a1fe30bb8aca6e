// Fuzzes the buffer-family number writers with arbitrary values, buffer sizes, decimals and
// separators. Each buffer is heap-allocated at exactly its size, so ASan reports any write past
// either end; the result must lie inside the buffer and end at its terminator.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "VeloraUtils/NumberFormatting.h"

namespace {

void Check(bool condition) {
    if (!condition) std::abort();
}

void CheckResult(const char* buf, unsigned int size, const char* first) {
    if (size == 0) {
        Check(first == buf);
        return;
    }
    Check(first >= buf && first <= buf + size - 1);
    Check(buf[size - 1] == '\0');
    Check(std::strlen(first) == static_cast<std::size_t>(buf + size - 1 - first));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
    if (length < 12) return 0;
    std::uint64_t value;
    std::memcpy(&value, data, 8);
    const unsigned int size = data[8] % 48;
    const auto decimals = static_cast<unsigned char>(data[9] % 32);
    const auto sep = static_cast<char>(data[10] % 3 == 0 ? 0 : data[10]);
    const unsigned int which = data[11] % 22;

    std::vector<char> storage(size);
    char* buf = size == 0 ? nullptr : storage.data();
    char* first = nullptr;
    const auto v32 = static_cast<unsigned int>(value);
    switch (which) {
    case 0:
        first = U_IntToStr(static_cast<int>(v32), buf, size, decimals, sep);
        break;
    case 1:
        first = U_Int64ToStr(static_cast<std::int64_t>(value), buf, size, decimals, sep);
        break;
    case 2:
        first = U_UIntToStr(v32, buf, size, decimals, sep);
        break;
    case 3:
        first = U_UInt64ToStr(value, buf, size, decimals, sep);
        break;
    case 4:
        first = U_ShortToStr(static_cast<short>(value), buf, size, sep);
        break;
    case 5:
        first = U_UShortToStr(static_cast<unsigned short>(value), buf, size, sep);
        break;
    case 6:
        first = U_UCharToStr(static_cast<unsigned char>(value), buf, size, sep);
        break;
    case 7:
        first = U_CharAsIntToStr(static_cast<char>(value), buf, size, sep);
        break;
    case 8:
        first = U_UCharHexToStr(static_cast<unsigned char>(value), buf, size, sep);
        break;
    case 9:
        first = U_UShortHexToStr(static_cast<unsigned short>(value), buf, size, sep);
        break;
    case 10:
        first = U_UIntHexToStr(v32, buf, size, sep);
        break;
    case 11:
        first = U_UInt64HexToStr(value, buf, size, sep);
        break;
    case 12:
        first = U_IntToStrWithCommas(static_cast<int>(v32), buf, size, decimals, sep);
        break;
    case 13:
        first = U_UIntToStrWithCommas(v32, buf, size, decimals, sep);
        break;
    case 14:
        first = U_UShortToStrWithCommas(static_cast<unsigned short>(value), buf, size, decimals, sep);
        break;
    case 15:
        first = U_Int64ToStrWithCommas(static_cast<std::int64_t>(value), buf, size, decimals, sep);
        break;
    case 16:
        first = U_UInt64ToStrWithCommas(value, buf, size, decimals, sep);
        break;
    case 17:
        first = U_UIntToStrPad(v32, buf, size, data[9], (data[10] & 1) != 0, sep);
        break;
    case 18:
        first = U_UIntToStrPrepended(v32, buf, size, 'x', sep);
        break;
    case 19:
        first = U_UInt64ToStrPrepended(value, buf, size, ' ', sep);
        break;
    case 20:
        first = U_UIntHexToStrPrepended(v32, buf, size, '0', sep);
        break;
    default:
        first = U_UInt64HexToStrPrepended(value, buf, size, '0', sep);
        break;
    }
    CheckResult(buf, size, first);
    return 0;
}
