// Fuzz target for the time-of-day text readers. The first three bytes choose the terminator, the
// separator and the millisecond separator; the rest becomes an exactly sized NUL-terminated text on
// the heap, so ASan reports any read past the NUL. Each call checks that the cursor stays within the
// text, that it stops just past the terminator or on the NUL, and that a text the minute writer made
// reads back as the minute it came from.
#include "VeloraUtils/DateTime.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

// The reader left `cursor` inside [text, NUL]; when it consumed the terminator it stands just after it.
void CheckCursor(const char* text, const char* cursor, char terminator) {
    const char* nul = text + std::strlen(text);
    Require(cursor >= text && cursor <= nul);
    if (cursor > text && cursor[-1] == terminator && terminator != '\0') return;
    Require(cursor == nul || *cursor != terminator || terminator == '\0');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    const char terminator = static_cast<char>(data[0]);
    const char separator = static_cast<char>(data[1]);
    const char millisecondSeparator = static_cast<char>(data[2]);
    data += 3;
    size -= 3;
    std::unique_ptr<char[]> text(new char[size + 1]);
    if (size != 0) std::memcpy(text.get(), data, size);
    text[size] = '\0';

    const char* cursor = text.get();
    U_StringToMinute(cursor, terminator, separator);
    CheckCursor(text.get(), cursor, terminator);

    cursor = text.get();
    U_StringToMillisecond(cursor, terminator, separator, millisecondSeparator);
    CheckCursor(text.get(), cursor, terminator);

    // Whatever the minute writer makes from the first two bytes reads back as that minute when the
    // separator and terminator are not digits.
    if (size >= 2 && (separator < '0' || separator > '9') && separator != '\0' &&
        (terminator < '0' || terminator > '9') && terminator != separator) {
        const auto minute = static_cast<unsigned short>((data[0] | data[1] << 8) % 1440);
        std::string written;
        U_AppendMinute(written, minute, terminator, separator);
        cursor = written.c_str();
        Require(U_StringToMinute(cursor, terminator, separator) == minute);
    }
    return 0;
}
