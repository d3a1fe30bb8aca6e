// FixParsing.h - received FIX tag=value messages: a resumable scanner that cuts complete messages
// out of a byte stream by their header and trailer, a parser from one message to a tag -> text map,
// the parser's error texts and session-reject reasons, UTC timestamps, the checksum sum, and two
// helpers that build and log message text. Nothing here keeps state between calls.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "VeloraUtils/Export.h"

namespace velora::fix::detail {
struct FixFieldMapAccess;
} // namespace velora::fix::detail

// Result codes of U_ParseFix (U_GetParseFixErrorDescription turns them into text).
enum FixParseError : unsigned char {
    FixParseNoError = 0,
    FixParseTagNumberTooBig = 1, // a tag above 65535
    FixParseTagNotNumeric = 2,   // a tag character that is not a digit
    FixParseNoValue = 3,         // SOH with an empty value: "58=", "58" or an empty field
    FixParseInvalidValue = 4,    // a value byte outside 0x20..0x7F
    FixParseDuplicateTag = 5,    // the tag is already in the map
    FixParseNoTag = 6,           // "=" with no tag before it, or tag 0
    FixParseMissingTag = 7,      // never produced by U_ParseFix; for callers' required-tag checks
};

// Result codes of U_CheckFixIntegrity.
enum FixIntegrityCode : unsigned char {
    FixIntegrityOk = 0, // complete when the `complete` state flag is 1, otherwise needs more data
    FixIntegrityBadBeginString = 1,
    FixIntegrityBadBodyLength = 2,
    FixIntegrityBadMsgType = 3,
    FixIntegrityBadTrailer = 4,
};

// The fields of one FIX message, keyed by tag number: unique keys, an insertion of a tag already
// present fails and changes nothing. Iteration visits the fields in insertion (message) order as
// std::pair<tag, text>. The texts are views into storage the map owns: each stays valid, at the
// same address, until the map is cleared, assigned to or destroyed; inserting more fields never
// moves them (iterators, like a vector's, may move on insert). clear() keeps the capacity, so a map
// reused for every message stops allocating. Copies are deep. One thread at a time.
class VELORA_API FixFieldMap {
public:
    using key_type = unsigned short;
    using mapped_type = std::string_view;
    using value_type = std::pair<unsigned short, std::string_view>;
    using size_type = std::size_t;
    using const_iterator = const value_type*;
    using iterator = const_iterator;

    FixFieldMap() noexcept;
    FixFieldMap(const FixFieldMap& other);
    FixFieldMap(FixFieldMap&& other) noexcept;
    FixFieldMap& operator=(const FixFieldMap& other);
    FixFieldMap& operator=(FixFieldMap&& other) noexcept;
    ~FixFieldMap();

    size_type size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    const_iterator begin() const noexcept { return entries_.get(); }
    const_iterator end() const noexcept { return entries_.get() + size_; }
    const_iterator cbegin() const noexcept { return begin(); }
    const_iterator cend() const noexcept { return end(); }

    // The field with `tag`, or end().
    const_iterator find(unsigned short tag) const noexcept;
    bool contains(unsigned short tag) const noexcept { return find(tag) != end(); }
    size_type count(unsigned short tag) const noexcept { return contains(tag) ? 1 : 0; }
    // The text of `tag`, or `fallback` when the tag is absent.
    std::string_view value(unsigned short tag, std::string_view fallback = {}) const noexcept;

    // Copies `text` and adds it under `tag`. False, with nothing changed, when `tag` is present.
    bool insert(unsigned short tag, std::string_view text);
    // Removes every field; keeps the table and the text storage for reuse.
    void clear() noexcept;
    // Makes room for `fields` more fields and `textBytes` more bytes of text.
    void reserve(size_type fields, size_type textBytes);

private:
    friend struct velora::fix::detail::FixFieldMapAccess;

    struct Slot {
        unsigned int entry; // index into entries_
        unsigned short tag;
        unsigned short generation; // the slot is in use when this equals generation_
    };

    void Rehash(size_type slotCount);
    void GrowEntries(size_type capacity);
    void ReserveText(size_type bytes);

    std::unique_ptr<value_type[]> entries_; // in insertion order
    size_type size_ = 0;
    size_type capacity_ = 0;
    std::vector<Slot> slots_; // open addressing, linear probing, a power of two long
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::vector<size_type> blockSizes_;
    char* textCursor_ = nullptr; // next free byte of the last block
    char* textEnd_ = nullptr;
    unsigned int hashShift_ = 32;   // 32 - log2(slot count)
    unsigned short generation_ = 1; // clear() starts a new one instead of emptying every slot
};

VELORA_CXX_IN_C_API_BEGIN

// Sum of the `length` bytes of `data`, each taken as a signed 8-bit value, in unsigned 32-bit
// arithmetic, not reduced: a FIX CheckSum is this sum modulo 256 over the message up to and
// including the SOH before "10=". Reads exactly `length` bytes; null `data` is allowed with length 0.
VELORA_C_API unsigned int U_CalculateControlSum(const char* data, unsigned int length);

// Appends one SOH (byte 1) when `text` is non-empty and does not already end with SOH; returns
// whether it appended. An empty text stays empty.
VELORA_C_API bool U_AppendSohIfNecessary(std::string& text);

// For logs: appends `prefix` (when non-null and non-empty), then the `length` bytes of `message`,
// with every SOH among those message bytes replaced by `sohReplacement` unless it is SOH itself.
// Does nothing at all when `message` is null or `length` is 0.
VELORA_C_API void U_AppendFixMessageContents(std::string& out, const char* message, unsigned short length,
                                             const char* prefix, char sohReplacement);

// The static text of a U_ParseFix code ("No Error", "Tag Number too big", ..., "Unknown Error" for
// codes above 7) and, through `rejectReason` when it is non-null, the FIX SessionRejectReason (373)
// that goes with it: 255 for no error, 99 for an unknown code.
VELORA_C_API const char* U_GetParseFixErrorDescription(unsigned char code, unsigned char* rejectReason);

// Parses the `length` bytes of one message into `fields`, which is only added to, never cleared.
// Returns a FixParseError. *fieldOrdinal is set to 1 first and counts the fields stored, so on an
// error it is the 1-based ordinal of the failing field (16-bit, wrapping); *errorTag is written only
// on an error: the failing field's tag, or 0 for codes 1, 2 and 6. Fields stored before an error
// stay in `fields`. Kept for compatibility with existing peers: an "=" inside a value is dropped
// ("35==A" stores "A"), leading zeros of a tag are accepted, and bytes after the last SOH are not
// stored (but are still checked). Either pointer may be null when the caller does not want it.
VELORA_C_API unsigned char U_ParseFix(FixFieldMap& fields, const char* message, unsigned int length,
                                      unsigned short* errorTag, unsigned short* fieldOrdinal);

// Reads YYYYMMDD-HH:MM:SS, optionally followed by "." and exactly three millisecond digits, from
// NUL- or SOH-terminated `text`. All seven outputs are zeroed first and each is written once its
// digits have passed, so a failure leaves the earlier ones filled. False at the first violation.
// Deliberately lenient calendar: only a day 30 or 31 in February is refused (31 April passes), and
// nothing after the three millisecond digits is looked at. Reads at most 21 bytes, never past the
// terminator. A null `text` gives false.
VELORA_C_API bool U_ParseFixUtc(const char* text, unsigned int* year, unsigned int* month, unsigned int* day,
                                unsigned int* hour, unsigned int* minute, unsigned int* second,
                                unsigned int* millisecond);

// Resumable check of one message's header (8=, 9=, 35=) and trailer (10= and three characters,
// not validated as digits) that finds where the message ends in a byte stream. The caller keeps
// every state field below for the message under construction and zeroes all of them before the
// first call for each new message. Each call passes the bytes of this message received by earlier
// calls as `held`/`*heldLength` and the fresh bytes as `*newData`/`*newLength`; a field that a
// piece boundary cut is read again from its start, so any split gives the same result.
// Returns a FixIntegrityCode. On 0 with *complete == 1, *position is the message's final SOH and
// *newData/*newLength stop just past it (the rest belongs to the next message); on 0 with *complete
// == 0 every fresh byte was taken and *position is the number of message bytes seen so far.
// Saved positions (the *Pos fields) are positions from the message's first byte plus one, 0 meaning
// not reached. *checkSum is 65535 while its third character has not been reached in the trailer;
// *currentChar is 0 after a call that ended inside the body. The CheckSum value is not compared with
// the bytes: callers use U_CalculateControlSum up to and including the body's last SOH.
// Reads only held[0, *heldLength) and the fresh bytes; *heldLength is not changed. No allocation.
// (Kept on one line with its return type, where the export check finds the name.)
// clang-format off
VELORA_C_API unsigned char U_CheckFixIntegrity(
    const char* held, unsigned int* heldLength, const char** newData, unsigned int* newLength,
    unsigned int* position, char protocol[8], unsigned int* version, unsigned short* beginStringValuePos,
    unsigned short* versionPos, unsigned short* bodyLengthTagPos, unsigned short* bodyLength,
    unsigned short* bodyLengthValuePos, unsigned short* bodyStartPos, unsigned short* msgType,
    unsigned short* msgTypeValuePos, unsigned short* msgTypeEndPos, unsigned short* checkSum,
    unsigned short* checkSumValuePos, unsigned short* checkSumEndPos, unsigned char* complete,
    char* currentChar, char* previousChar);
// clang-format on

VELORA_CXX_IN_C_API_END
