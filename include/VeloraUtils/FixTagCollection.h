// FixTagCollection.h - builds one outgoing FIX tag=value message as WsaCollection slots, ready for
// one gathered send. The header pieces are built once; BodyLength, MsgType and CheckSum are written
// into fixed places on Finalize without moving any other byte, and the same object builds the next
// message after Reset.
#pragma once

#include <cstdint>
#include <string>

#include "VeloraUtils/Export.h"
#include "VeloraUtils/WsaCollection.h"

// Slot layout: 0 "8=<protocol>.<version>" SOH "9=", 1 the BodyLength digits, 2 SOH "35=" MsgType SOH,
// then the caller's fields, then (after the first Finalize) "10=" three digits SOH. The checksum
// sum is kept up to date by every change, so Finalize never passes over the message.
//
// Typical use per message: AppendTag / AppendMsgSeqNumValue / AppendTagUtc ..., Finalize("D"),
// send GetWsaBufAt(0)..GetCount() slots, Reset. Fields appended by reference (mode 0) must stay
// valid until the send; the per-message values written with the Append*/Update* members below live
// inside the object, so such a message allocates nothing once the slot array is large enough.
//
// Copies are views, as for WsaCollection: the copy shares the slot array, the owned buffers and the
// header with its source, its slots 1 and 2, MsgSeqNum, SendingTime and trailer slots point into
// the source's own bytes, and it is valid only while the source lives and is unchanged. A view
// frees nothing and refuses every change (appends return 0, updates and Finalize return false,
// Reset does nothing).
//
// Two deliberate behaviours of the MsgType piece are kept:
// - Finalize grows slot 2 from its recorded length, so a second, different two-character MsgType
//   without Reset adds one more byte to totalLength and BodyLength (the slot itself stays at its
//   7 bytes); a one-character MsgType after a two-character one without Reset keeps the 7-byte
//   piece, whose extra SOH the checksum sum does not count.
// - Reset sets totalLength from the recorded MsgType piece length before putting it back to 6, so
//   the message built after one with a two-character MsgType has a BodyLength one above its bytes.
class VELORA_API FixTagCollection : public WsaCollection {
public:
    // Largest BodyLength that Finalize accepts.
    static constexpr unsigned short maxMsgLength = 65000;

    // `capacity` + 7 slots (saturating at 65535); `version` packed one byte per number, most
    // significant first (0x0402 is "4.2", 0x01000100 "1.0.1.0"); at most 7 characters of
    // `protocol` (null is taken as empty).
    FixTagCollection(const unsigned short& capacity, const unsigned int& version, const char* protocol);
    FixTagCollection(const FixTagCollection& other);
    FixTagCollection& operator=(const FixTagCollection& other);
    ~FixTagCollection() override;

    // The protocol name as NUL-terminated text, and the same 8 bytes as one number (first
    // character in the lowest byte).
    const char* GetFixProtocol() const { return reinterpret_cast<const char*>(&fixProtocol); }
    const std::uint64_t& GetFixProtocolNum() const { return fixProtocol; }
    const unsigned int& GetFixVersion() const { return fixVersion; }
    // BodyLength written by the last successful Finalize; 0 after Reset.
    const unsigned int& GetMessageLength() const { return messageLength; }
    // Running checksum sum of the message without its trailer (reduce modulo 256).
    const unsigned int& GetControlSum() const { return controlSum; }
    const bool& isFinalized() const { return finalized; }
    const unsigned int& GetMsgSeqNum() const { return msgSeqNum; }
    // Index of the MsgSeqNum slot (0: not appended since construction or Reset), the slot itself
    // and its first byte (null when not appended).
    const unsigned short& GetTagMsgSeqNumOrdinal() const { return msgSeqNumSlot; }
    const WSABUF* GetTagMsgSeqNum() const;
    const char* GetTagMsgSeqNumValue() const;

    // Appends a value (length 0: NUL-terminated) in `mode` 0 reference, 1 hand-over, 2 copy, with
    // a SOH after it when `addSoh` is set and the value is empty or does not already end in SOH.
    // Returns the 1-based ordinal of the value's slot, 0 when the slot array cannot grow.
    unsigned short Append(const char* value, unsigned int length, bool addSoh, unsigned char mode);
    // Appends `tag` (caller's text such as "49=", by reference, no SOH), then the value as Append
    // does. 0 when the tag could not be appended, else the value's ordinal.
    unsigned short AppendTag(const char* tag, const char* value, unsigned int tagLength,
                             unsigned int valueLength, unsigned char mode, bool addSoh);
    // Tag, then the decimal digits of `value` and SOH, copied (mode 2).
    unsigned short AppendUIntTag(const char* tag, unsigned int value, unsigned int tagLength);
    unsigned short AppendUInt64Tag(const char* tag, std::uint64_t value, unsigned int tagLength);
    // Tag, then the characters packed in `value` lowest byte first, up to the first zero byte (at
    // most 4, respectively 2), and SOH, copied (mode 2). 'D' | 'E' << 8 gives "DE".
    unsigned short AppendUIntTagAsString(const char* tag, unsigned int value, unsigned int tagLength);
    unsigned short AppendUShortTagAsString(const char* tag, unsigned short value, unsigned int tagLength);

    // MsgSeqNum value; the caller appends "34=" before it. On first use appends a slot that holds
    // the value's SOH; then writes `value` unless it is 0. Returns the slot index (0 on failure).
    unsigned short AppendMsgSeqNumValue(unsigned int value);
    // Writes the digits of `value` (up to 10) before the SOH and widens the slot to them. False
    // when the slot was never appended.
    bool UpdateMsgSeqNumValue(unsigned int value);

    // TargetCompID (56), SenderCompID (49), TestReqID (112): on first use append the tag text, an
    // empty value slot and a SOH slot; then set the value slot through SetTagAt in `mode`. Return
    // the value slot's index (0 on failure). The Update forms only set the value, false when the
    // slot was never appended.
    unsigned short AppendTagTargetCompId(const char* value, unsigned int length, unsigned char mode);
    unsigned short AppendTagSenderCompId(const char* value, unsigned int length, unsigned char mode);
    unsigned short AppendTagTestReqId(const char* value, unsigned int length, unsigned char mode);
    bool UpdateTagTargetCompId(const char* value, unsigned int length, unsigned char mode);
    bool UpdateTagSenderCompId(const char* value, unsigned int length, unsigned char mode);
    bool UpdateTagTestReqId(const char* value, unsigned int length, unsigned char mode);

    // SendingTime (52) "YYYYMMDD-HH:MM:SS.sss" held inside the object. On first use appends it;
    // writes the date when `year` is not 0 (`yyyymmdd` not null) and the time when
    // `millisecondOfDay` is not 0xFFFFFFFF. Returns the slot index, 0 when it cannot be appended.
    // The month, day, year order is deliberate.
    unsigned short AppendTagUtc(unsigned short month, unsigned short day, unsigned short year,
                                unsigned int millisecondOfDay);
    unsigned short AppendTagUtc(const char* yyyymmdd, unsigned int millisecondOfDay);
    // No range checks: each place takes its decimal digit of the value (year 12345 gives "2345",
    // hour 24 gives "24"). The text form copies 8 characters unchecked (null: false). All false
    // when the SendingTime slot was never appended.
    bool UpdateTagUtcDate(unsigned short month, unsigned short day, unsigned short year);
    bool UpdateTagUtcDate(const char* yyyymmdd);
    bool UpdateTagUtcTime(unsigned int millisecondOfDay);

    // WsaCollection::SetTagAt that keeps the checksum sum: the old bytes of the slot are taken out
    // and the new ones, with a trailing character that got its own slot, are added.
    bool SetTagAt(unsigned int index, const char* buffer, unsigned int length, const char* trailingChar,
                  unsigned char mode) override;

    // Writes MsgType (a zero second character means a one-character type), BodyLength and the
    // three CheckSum digits in place and adds the trailer slot the first time. False with fewer
    // than 3 slots, when the slot array cannot grow, or when BodyLength would exceed 65000 (then
    // slot 2 gets back its previous length and no digits are written; the MsgType bytes, the sum
    // and the recorded piece length keep their new values). May be called again after changes.
    bool Finalize(char msgType1, char msgType2);
    // The first two characters of the text ("D", "AE"); null is refused, "" gives (0, 0).
    bool Finalize(const char* msgType);
    // The low byte is the first character, the high byte the second.
    bool Finalize(const unsigned short& msgType);

    // Frees the owned buffers and goes back to the three header slots, ready for the next message.
    void Reset() override;

    // Appends every byte of every slot to `out`, each SOH replaced by `sohReplacement` (dropped
    // when null). For logs.
    void toString(std::string& out, const char* sohReplacement) const;

private:
    bool SetCompIdValue(const unsigned short& slot, const char* value, unsigned int length,
                        unsigned char mode);
    unsigned short AppendCompId(unsigned short& slot, const char* tag, const char* value, unsigned int length,
                                unsigned char mode);
    unsigned short DoAppendTagUtc();
    unsigned short AppendPackedCharsTag(const char* tag, std::uint32_t value, unsigned int maxChars,
                                        unsigned int tagLength);
    // Replaces bytes [from, from + size) of sendingTime (which `write` changes) and corrects the sum.
    template <class Write> void RewriteSendingTime(unsigned int from, unsigned int size, Write write);

    std::uint64_t fixProtocol;
    unsigned int fixVersion;
    unsigned int messageLength;
    unsigned int controlSum;
    unsigned int baseControlSum;
    unsigned int headerLength;
    unsigned int msgTypePieceLength;
    char* header;
    char bodyLengthDigits[5];
    char msgTypePiece[7];
    char trailer[7];
    char msgSeqNumDigits[11];
    unsigned short msgSeqNumSlot;
    unsigned short targetCompIdSlot;
    unsigned short senderCompIdSlot;
    unsigned short testReqIdSlot;
    char sendingTime[25];
    unsigned short sendingTimeSlot;
    unsigned int msgSeqNum;
    bool finalized;
};
