// FixTagCollection: FIX message builder on WsaCollection slots, with the checksum sum kept up to
// date by every change so that Finalize only writes digits into fixed places.
#include "VeloraUtils/FixTagCollection.h"

#include <algorithm>
#include <cstring>

#include "text/detail/DigitWriter.h"

namespace velora::fix::detail {
namespace {

constexpr char kSoh = '\x01';
// Trailing-character slots point here, so the SOH outlives every message.
const char kSohChar = kSoh;
const char kTargetCompIdTag[] = "56=";
const char kSenderCompIdTag[] = "49=";
const char kTestReqIdTag[] = "112=";

// Places in "52=YYYYMMDD-HH:MM:SS.sss" SOH.
constexpr unsigned int kDateFrom = 3;
constexpr unsigned int kTimeFrom = 12;
constexpr unsigned int kTimeEnd = 24;
constexpr char kSendingTimeTemplate[25] = {'5', '2', '=', 0, 0,   0, 0, 0,   0, 0, 0, '-', 0,
                                           0,   ':', 0,   0, ':', 0, 0, '.', 0, 0, 0, kSoh};
// SOH "35=" type, second type character or SOH, SOH.
constexpr unsigned int kMsgTypePieceBase = 6;
constexpr unsigned int kMsgTypePieceSize = 7;
constexpr unsigned int kTrailerSize = 7;

unsigned int Signed(char c) {
    return static_cast<unsigned int>(static_cast<int>(static_cast<signed char>(c)));
}

unsigned int SumSlot(const WSABUF& slot) {
    return slot.buf == nullptr ? 0 : SumBytes(slot.buf, slot.len);
}

// Length of a value as Append takes it: 0 for null, the NUL-terminated length when 0 is given.
inline unsigned int ValueLength(const char* value, unsigned int length) {
    if (value == nullptr) return 0;
    return length != 0 ? length : static_cast<unsigned int>(std::strlen(value));
}

// Points `slot` at `value` (and the next slot at the SOH when `soh`), as WsaCollection::Append
// does in mode 0; advances `slot`, `totalLength` and `count`, and returns the bytes' sum. The
// caller has made sure the slots are free.
inline unsigned int PutReference(WSABUF*& slot, const char* value, unsigned int length, bool soh,
                                 unsigned int& totalLength, unsigned short& count) {
    slot->buf = const_cast<char*>(value);
    slot->len = length;
    ++slot;
    unsigned int sum = SumBytes(value, length);
    totalLength += length;
    ++count;
    if (soh) {
        slot->buf = const_cast<char*>(&kSohChar);
        slot->len = 1;
        ++slot;
        ++sum;
        ++totalLength;
        ++count;
    }
    return sum;
}

unsigned short SlotCapacity(unsigned short capacity) {
    return static_cast<unsigned short>(std::min(unsigned{capacity} + 7u, 0xFFFFu));
}

// "4.2" for 0x0402: the bytes from the most significant down, leading zero bytes skipped, the
// lowest always written. Returns the length (at most 15).
unsigned int WriteVersionText(char* out, unsigned int version) {
    int shift = 24;
    while (shift > 0 && ((version >> shift) & 0xFF) == 0) shift -= 8;
    char* p = out;
    for (; shift >= 0; shift -= 8) {
        char digits[3];
        char* const end = digits + 3;
        const char* first = velora::text::detail::WriteDecimalBackward(end, (version >> shift) & 0xFFu);
        while (first != end) *p++ = *first++;
        if (shift != 0) *p++ = '.';
    }
    return static_cast<unsigned int>(p - out);
}

} // namespace
} // namespace velora::fix::detail

namespace vfd = velora::fix::detail;
namespace vtd = velora::text::detail;

FixTagCollection::FixTagCollection(const unsigned short& capacity_, const unsigned int& version,
                                   const char* protocol)
    : WsaCollection(vfd::SlotCapacity(capacity_)), fixProtocol(0), fixVersion(version), messageLength(0),
      controlSum(0), baseControlSum(0), headerLength(0), msgTypePieceLength(vfd::kMsgTypePieceBase),
      header(nullptr), bodyLengthDigits{}, msgTypePiece{vfd::kSoh, '3', '5', '=', 0, vfd::kSoh, vfd::kSoh},
      trailer{'1', '0', '=', 0, 0, 0, vfd::kSoh}, msgSeqNumDigits{}, msgSeqNumSlot(0), targetCompIdSlot(0),
      senderCompIdSlot(0), testReqIdSlot(0), sendingTime{}, sendingTimeSlot(0), msgSeqNum(0),
      finalized(false) {
    unsigned int protocolLength = 0;
    while (protocol != nullptr && protocolLength < 7 && protocol[protocolLength] != 0) ++protocolLength;
    if (protocolLength != 0) std::memcpy(&fixProtocol, protocol, protocolLength);
    msgSeqNumDigits[10] = vfd::kSoh;
    std::memcpy(sendingTime, vfd::kSendingTimeTemplate, sizeof sendingTime);

    char versionText[16];
    const unsigned int versionLength = vfd::WriteVersionText(versionText, version);
    headerLength = protocolLength + versionLength + 6;
    header = new char[headerLength];
    char* p = header;
    *p++ = '8';
    *p++ = '=';
    if (protocolLength != 0) std::memcpy(p, protocol, protocolLength); // null protocol: none
    p += protocolLength;
    *p++ = '.';
    std::memcpy(p, versionText, versionLength);
    p += versionLength;
    *p++ = vfd::kSoh;
    *p++ = '9';
    *p = '=';

    slots[0] = WSABUF{headerLength, header};
    slots[1] = WSABUF{0, bodyLengthDigits + sizeof bodyLengthDigits};
    slots[2] = WSABUF{vfd::kMsgTypePieceBase, msgTypePiece};
    count = 3;
    controlSum = vfd::SumSlot(slots[0]) + vfd::SumSlot(slots[2]);
    baseControlSum = controlSum;
    totalLength = headerLength + vfd::kMsgTypePieceBase + vfd::kTrailerSize;
}

FixTagCollection::FixTagCollection(const FixTagCollection& other)
    : WsaCollection(other), fixProtocol(other.fixProtocol), fixVersion(other.fixVersion),
      messageLength(other.messageLength), controlSum(other.controlSum), baseControlSum(other.baseControlSum),
      headerLength(other.headerLength), msgTypePieceLength(other.msgTypePieceLength), header(other.header),
      msgSeqNumSlot(other.msgSeqNumSlot), targetCompIdSlot(other.targetCompIdSlot),
      senderCompIdSlot(other.senderCompIdSlot), testReqIdSlot(other.testReqIdSlot),
      sendingTimeSlot(other.sendingTimeSlot), msgSeqNum(other.msgSeqNum), finalized(other.finalized) {
    std::memcpy(bodyLengthDigits, other.bodyLengthDigits, sizeof bodyLengthDigits);
    std::memcpy(msgTypePiece, other.msgTypePiece, sizeof msgTypePiece);
    std::memcpy(trailer, other.trailer, sizeof trailer);
    std::memcpy(msgSeqNumDigits, other.msgSeqNumDigits, sizeof msgSeqNumDigits);
    std::memcpy(sendingTime, other.sendingTime, sizeof sendingTime);
}

FixTagCollection& FixTagCollection::operator=(const FixTagCollection& other) {
    if (this == &other) return *this;
    if (!isView()) delete[] header;
    header = nullptr;
    WsaCollection::operator=(other);
    fixProtocol = other.fixProtocol;
    fixVersion = other.fixVersion;
    messageLength = other.messageLength;
    controlSum = other.controlSum;
    baseControlSum = other.baseControlSum;
    headerLength = other.headerLength;
    msgTypePieceLength = other.msgTypePieceLength;
    header = other.header;
    std::memcpy(bodyLengthDigits, other.bodyLengthDigits, sizeof bodyLengthDigits);
    std::memcpy(msgTypePiece, other.msgTypePiece, sizeof msgTypePiece);
    std::memcpy(trailer, other.trailer, sizeof trailer);
    std::memcpy(msgSeqNumDigits, other.msgSeqNumDigits, sizeof msgSeqNumDigits);
    msgSeqNumSlot = other.msgSeqNumSlot;
    targetCompIdSlot = other.targetCompIdSlot;
    senderCompIdSlot = other.senderCompIdSlot;
    testReqIdSlot = other.testReqIdSlot;
    std::memcpy(sendingTime, other.sendingTime, sizeof sendingTime);
    sendingTimeSlot = other.sendingTimeSlot;
    msgSeqNum = other.msgSeqNum;
    finalized = other.finalized;
    return *this;
}

FixTagCollection::~FixTagCollection() {
    if (!isView()) delete[] header;
}

const WSABUF* FixTagCollection::GetTagMsgSeqNum() const {
    return msgSeqNumSlot != 0 && msgSeqNumSlot < count ? slots + msgSeqNumSlot : nullptr;
}

const char* FixTagCollection::GetTagMsgSeqNumValue() const {
    const WSABUF* const slot = GetTagMsgSeqNum();
    return slot != nullptr ? slot->buf : nullptr;
}

unsigned short FixTagCollection::Append(const char* value, unsigned int length, bool addSoh,
                                        unsigned char mode) {
    length = vfd::ValueLength(value, length);
    const bool soh = addSoh && (length == 0 || value[length - 1] != vfd::kSoh);
    // References go straight into free slots: the common case of a message that allocates nothing.
    if (mode == 0 && !isView() && unsigned{count} + 2 <= capacity) {
        const auto ordinal = static_cast<unsigned short>(count + 1);
        WSABUF* slot = slots + count;
        controlSum += vfd::PutReference(slot, value, length, soh, totalLength, count);
        return ordinal;
    }
    const unsigned short first = count;
    const unsigned short ordinal = WsaCollection::Append(value, length, soh ? &vfd::kSohChar : nullptr, mode);
    if (ordinal == 0) return 0;
    for (unsigned short i = first; i < count; ++i) controlSum += vfd::SumSlot(slots[i]);
    return ordinal;
}

unsigned short FixTagCollection::AppendTag(const char* tag, const char* value, unsigned int tagLength,
                                           unsigned int valueLength, unsigned char mode, bool addSoh) {
    if (mode == 0 && !isView() && unsigned{count} + 3 <= capacity) {
        // Tag, value and SOH by reference in one step (the same slots as the two Appends below).
        tagLength = vfd::ValueLength(tag, tagLength);
        valueLength = vfd::ValueLength(value, valueLength);
        const bool soh = addSoh && (valueLength == 0 || value[valueLength - 1] != vfd::kSoh);
        WSABUF* slot = slots + count;
        unsigned int sum = vfd::PutReference(slot, tag, tagLength, false, totalLength, count);
        const auto ordinal = static_cast<unsigned short>(count + 1);
        sum += vfd::PutReference(slot, value, valueLength, soh, totalLength, count);
        controlSum += sum;
        return ordinal;
    }
    if (Append(tag, tagLength, false, 0) == 0) return 0;
    return Append(value, valueLength, addSoh, mode);
}

unsigned short FixTagCollection::AppendUIntTag(const char* tag, unsigned int value, unsigned int tagLength) {
    char text[11];
    text[10] = vfd::kSoh;
    const char* const first = vtd::WriteDecimalBackward(text + 10, value);
    return AppendTag(tag, first, tagLength, static_cast<unsigned int>(text + 11 - first), 2, true);
}

unsigned short FixTagCollection::AppendUInt64Tag(const char* tag, std::uint64_t value,
                                                 unsigned int tagLength) {
    char text[21];
    text[20] = vfd::kSoh;
    const char* const first = vtd::WriteDecimalBackward(text + 20, value);
    return AppendTag(tag, first, tagLength, static_cast<unsigned int>(text + 21 - first), 2, true);
}

unsigned short FixTagCollection::AppendPackedCharsTag(const char* tag, std::uint32_t value,
                                                      unsigned int maxChars, unsigned int tagLength) {
    char text[5];
    unsigned int length = 0;
    for (; length < maxChars; ++length) {
        const auto c = static_cast<char>((value >> (8 * length)) & 0xFFu);
        if (c == 0) break;
        text[length] = c;
    }
    text[length++] = vfd::kSoh;
    return AppendTag(tag, text, tagLength, length, 2, true);
}

unsigned short FixTagCollection::AppendUIntTagAsString(const char* tag, unsigned int value,
                                                       unsigned int tagLength) {
    return AppendPackedCharsTag(tag, value, 4, tagLength);
}

unsigned short FixTagCollection::AppendUShortTagAsString(const char* tag, unsigned short value,
                                                         unsigned int tagLength) {
    return AppendPackedCharsTag(tag, value, 2, tagLength);
}

unsigned short FixTagCollection::AppendMsgSeqNumValue(unsigned int value) {
    if (isView()) return 0;
    if (msgSeqNumSlot == 0) {
        const unsigned short ordinal = Append(msgSeqNumDigits + 10, 1, false, 0);
        if (ordinal == 0) return 0;
        msgSeqNumSlot = static_cast<unsigned short>(ordinal - 1);
    }
    if (value != 0) UpdateMsgSeqNumValue(value);
    return msgSeqNumSlot;
}

bool FixTagCollection::UpdateMsgSeqNumValue(unsigned int value) {
    if (isView() || msgSeqNumSlot == 0 || msgSeqNumSlot >= count) return false;
    WSABUF& slot = slots[msgSeqNumSlot];
    const unsigned int oldSum = vfd::SumSlot(slot);
    const unsigned int oldLength = slot.len;
    msgSeqNum = value;
    char* const first = vtd::WriteDecimalBackward(msgSeqNumDigits + 10, value);
    slot.buf = first;
    slot.len = static_cast<unsigned int>(msgSeqNumDigits + sizeof msgSeqNumDigits - first);
    totalLength += slot.len - oldLength;
    controlSum += vfd::SumSlot(slot) - oldSum;
    return true;
}

unsigned short FixTagCollection::AppendCompId(unsigned short& slot, const char* tag, const char* value,
                                              unsigned int length, unsigned char mode) {
    if (slot == 0) {
        if (Append(tag, static_cast<unsigned int>(std::strlen(tag)), false, 0) == 0) return 0;
        const unsigned short ordinal = Append(nullptr, 0, true, 0); // empty value slot, then SOH
        if (ordinal == 0) return 0;
        slot = static_cast<unsigned short>(ordinal - 1);
    }
    return SetCompIdValue(slot, value, length, mode) ? slot : 0;
}

bool FixTagCollection::SetCompIdValue(const unsigned short& slot, const char* value, unsigned int length,
                                      unsigned char mode) {
    if (slot == 0) return false;
    return SetTagAt(slot, value, length, nullptr, mode);
}

unsigned short FixTagCollection::AppendTagTargetCompId(const char* value, unsigned int length,
                                                       unsigned char mode) {
    return AppendCompId(targetCompIdSlot, vfd::kTargetCompIdTag, value, length, mode);
}

unsigned short FixTagCollection::AppendTagSenderCompId(const char* value, unsigned int length,
                                                       unsigned char mode) {
    return AppendCompId(senderCompIdSlot, vfd::kSenderCompIdTag, value, length, mode);
}

unsigned short FixTagCollection::AppendTagTestReqId(const char* value, unsigned int length,
                                                    unsigned char mode) {
    return AppendCompId(testReqIdSlot, vfd::kTestReqIdTag, value, length, mode);
}

bool FixTagCollection::UpdateTagTargetCompId(const char* value, unsigned int length, unsigned char mode) {
    return SetCompIdValue(targetCompIdSlot, value, length, mode);
}

bool FixTagCollection::UpdateTagSenderCompId(const char* value, unsigned int length, unsigned char mode) {
    return SetCompIdValue(senderCompIdSlot, value, length, mode);
}

bool FixTagCollection::UpdateTagTestReqId(const char* value, unsigned int length, unsigned char mode) {
    return SetCompIdValue(testReqIdSlot, value, length, mode);
}

unsigned short FixTagCollection::DoAppendTagUtc() {
    if (isView()) return 0;
    if (sendingTimeSlot == 0) {
        const unsigned short ordinal = Append(sendingTime, sizeof sendingTime, false, 0);
        if (ordinal == 0) return 0;
        sendingTimeSlot = static_cast<unsigned short>(ordinal - 1);
    }
    return sendingTimeSlot;
}

unsigned short FixTagCollection::AppendTagUtc(unsigned short month, unsigned short day, unsigned short year,
                                              unsigned int millisecondOfDay) {
    const unsigned short slot = DoAppendTagUtc();
    if (slot == 0) return 0;
    if (year != 0) UpdateTagUtcDate(month, day, year);
    if (millisecondOfDay != 0xFFFFFFFFu) UpdateTagUtcTime(millisecondOfDay);
    return slot;
}

unsigned short FixTagCollection::AppendTagUtc(const char* yyyymmdd, unsigned int millisecondOfDay) {
    const unsigned short slot = DoAppendTagUtc();
    if (slot == 0) return 0;
    if (yyyymmdd != nullptr) UpdateTagUtcDate(yyyymmdd);
    if (millisecondOfDay != 0xFFFFFFFFu) UpdateTagUtcTime(millisecondOfDay);
    return slot;
}

template <class Write>
void FixTagCollection::RewriteSendingTime(unsigned int from, unsigned int size, Write write) {
    const unsigned int oldSum = vfd::SumBytes(sendingTime + from, size);
    write(sendingTime);
    controlSum += vfd::SumBytes(sendingTime + from, size) - oldSum;
}

bool FixTagCollection::UpdateTagUtcDate(unsigned short month, unsigned short day, unsigned short year) {
    if (isView() || sendingTimeSlot == 0) return false;
    RewriteSendingTime(vfd::kDateFrom, 8, [&](char* text) {
        vtd::WriteFixedDigitsBackward(text + 7, year % 10000u, 4);
        vtd::WriteFixedDigitsBackward(text + 9, month % 100u, 2);
        vtd::WriteFixedDigitsBackward(text + 11, day % 100u, 2);
    });
    return true;
}

bool FixTagCollection::UpdateTagUtcDate(const char* yyyymmdd) {
    if (isView() || sendingTimeSlot == 0 || yyyymmdd == nullptr) return false;
    RewriteSendingTime(vfd::kDateFrom, 8, [&](char* text) {
        // Eight characters; a shorter text stops at its terminator and leaves the rest as it was.
        for (unsigned int i = 0; i < 8 && yyyymmdd[i] != 0; ++i) text[vfd::kDateFrom + i] = yyyymmdd[i];
    });
    return true;
}

bool FixTagCollection::UpdateTagUtcTime(unsigned int millisecondOfDay) {
    if (isView() || sendingTimeSlot == 0) return false;
    RewriteSendingTime(vfd::kTimeFrom, vfd::kTimeEnd - vfd::kTimeFrom, [&](char* text) {
        const unsigned int v = millisecondOfDay;
        vtd::WriteFixedDigitsBackward(text + 14, v / 3600000u % 100u, 2);
        vtd::WriteFixedDigitsBackward(text + 17, v % 3600000u / 60000u, 2);
        vtd::WriteFixedDigitsBackward(text + 20, v % 60000u / 1000u, 2);
        vtd::WriteFixedDigitsBackward(text + 24, v % 1000u, 3);
    });
    return true;
}

bool FixTagCollection::SetTagAt(unsigned int index, const char* buffer, unsigned int length,
                                const char* trailingChar, unsigned char mode) {
    if (isView()) return false;
    const unsigned int usedBefore = std::max<unsigned int>(count, index + 1);
    const unsigned int oldSum = index < count ? vfd::SumSlot(slots[index]) : 0;
    if (!WsaCollection::SetTagAt(index, buffer, length, trailingChar, mode)) return false;
    unsigned int newSum = vfd::SumSlot(slots[index]);
    // A trailing character that got a slot of its own (it follows the value's slot).
    if (count > usedBefore) newSum += vfd::SumSlot(slots[index + 1]);
    controlSum += newSum - oldSum;
    return true;
}

bool FixTagCollection::Finalize(char msgType1, char msgType2) {
    if (isView() || count < 3) return false;
    if (unsigned{count} + 1 >= capacity && !AllocateMore()) return false;

    WSABUF& typeSlot = slots[2];
    const unsigned int previousTypeLength = typeSlot.len;
    const char second = msgType2 != 0 ? msgType2 : vfd::kSoh;
    if (msgTypePiece[4] != msgType1 || msgTypePiece[5] != second) {
        controlSum -= vfd::Signed(msgTypePiece[4]);
        if (msgTypePiece[5] != vfd::kSoh) controlSum -= vfd::Signed(msgTypePiece[5]);
        // Grown from the recorded length, not from 6 (see the header).
        const unsigned int length = msgTypePieceLength + (msgType2 != 0 ? 1u : 0u);
        msgTypePiece[4] = msgType1;
        msgTypePiece[5] = second;
        controlSum += vfd::Signed(msgType1) + vfd::Signed(msgType2);
        // The slot never reaches past the 7 bytes of the piece.
        typeSlot.len = std::min(length, vfd::kMsgTypePieceSize);
        if (length != msgTypePieceLength) {
            totalLength += length - msgTypePieceLength;
            msgTypePieceLength = length;
        }
    }

    // Not counted: header, BodyLength digits, the SOH before "35=" and the 7 trailer bytes.
    const unsigned int bodyLength = totalLength - headerLength - slots[1].len - 8;
    if (bodyLength > maxMsgLength) {
        typeSlot.len = previousTypeLength;
        return false;
    }

    WSABUF& lengthSlot = slots[1];
    if (bodyLength != messageLength) {
        controlSum -= vfd::SumSlot(lengthSlot);
        totalLength -= lengthSlot.len;
        char* const first = vtd::WriteDecimalBackward(bodyLengthDigits + sizeof bodyLengthDigits, bodyLength);
        lengthSlot.buf = first;
        lengthSlot.len = static_cast<unsigned int>(bodyLengthDigits + sizeof bodyLengthDigits - first);
        controlSum += vfd::SumSlot(lengthSlot);
        totalLength += lengthSlot.len;
        messageLength = bodyLength;
    }

    vtd::WriteFixedDigitsBackward(trailer + 6, controlSum & 0xFFu, 3);
    if (!finalized) {
        // The trailer's 7 bytes are in totalLength from the start.
        slots[count] = WSABUF{vfd::kTrailerSize, trailer};
        ++count;
        finalized = true;
    }
    return true;
}

bool FixTagCollection::Finalize(const char* msgType) {
    if (msgType == nullptr) return false;
    return Finalize(msgType[0], msgType[0] != 0 ? msgType[1] : '\0');
}

bool FixTagCollection::Finalize(const unsigned short& msgType) {
    return Finalize(static_cast<char>(msgType & 0xFFu), static_cast<char>(msgType >> 8));
}

void FixTagCollection::Reset() {
    if (isView()) return;
    WsaCollection::Reset();
    count = 3;
    slots[0] = WSABUF{headerLength, header};
    slots[1] = WSABUF{0, bodyLengthDigits + sizeof bodyLengthDigits};
    slots[2] = WSABUF{vfd::kMsgTypePieceBase, msgTypePiece};
    finalized = false;
    messageLength = 0;
    msgSeqNum = 0;
    msgSeqNumSlot = targetCompIdSlot = senderCompIdSlot = testReqIdSlot = sendingTimeSlot = 0;
    controlSum = baseControlSum;
    std::memset(bodyLengthDigits, 0, sizeof bodyLengthDigits);
    msgTypePiece[4] = 0;
    msgTypePiece[5] = vfd::kSoh;
    std::memset(trailer + 3, 0, 3);
    std::memcpy(sendingTime, vfd::kSendingTimeTemplate, sizeof sendingTime);
    // Read before it goes back to 6: a two-character MsgType leaves totalLength one byte high.
    totalLength = headerLength + msgTypePieceLength + vfd::kTrailerSize;
    msgTypePieceLength = vfd::kMsgTypePieceBase;
}

void FixTagCollection::toString(std::string& out, const char* sohReplacement) const {
    for (unsigned short i = 0; i < count; ++i) {
        const WSABUF& slot = slots[i];
        for (unsigned int j = 0; j < slot.len; ++j) {
            const char c = slot.buf[j];
            if (c != vfd::kSoh)
                out.push_back(c);
            else if (sohReplacement != nullptr)
                out.append(sohReplacement);
        }
    }
}
