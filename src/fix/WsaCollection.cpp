// WsaCollection: slot list of an outgoing message, with the buffers it owns.
#include "VeloraUtils/WsaCollection.h"

#include <cstring>
#include <memory>

namespace {

// Growth stops here: AllocateMore refuses to double an array of this many slots or more.
constexpr unsigned int kMaxGrowableCapacity = 0x8000;

} // namespace

WsaCollection::WsaCollection(const unsigned short& capacity_)
    : capacity(capacity_), count(0), totalLength(0), slots(new WSABUF[capacity_]), owned(8) {
    owned.max_load_factor(1.0f);
    ClearWSABUF();
}

WsaCollection::WsaCollection(const WsaCollection& other)
    : capacity(other.capacity), count(other.count), totalLength(other.totalLength), slots(other.slots),
      owned(other.owned), view(true) {}

WsaCollection& WsaCollection::operator=(const WsaCollection& other) {
    if (this == &other) return *this;
    if (!view) {
        DestroyOwn();
        delete[] slots;
    }
    view = true; // from here on this object frees nothing, even if copying the set throws
    capacity = other.capacity;
    count = other.count;
    totalLength = other.totalLength;
    slots = other.slots;
    owned = other.owned;
    return *this;
}

WsaCollection::~WsaCollection() {
    if (view) return;
    DestroyOwn();
    delete[] slots;
}

unsigned int WsaCollection::FillSlot(unsigned int index, const char* buffer, unsigned int length,
                                     const char*& trailingChar, unsigned char mode) {
    char* target = const_cast<char*>(buffer);
    if (buffer == nullptr) {
        length = 0; // a null buffer never gets a length: nothing could be sent from it
    } else if (length != 0) {
        if (mode == 1) {
            owned.insert(target);
        } else if (mode == 2) {
            const std::size_t size = std::size_t{length} + (trailingChar != nullptr ? 1 : 0);
            std::unique_ptr<char[]> copy(new char[size]);
            std::memcpy(copy.get(), buffer, length);
            if (trailingChar != nullptr) {
                copy[length++] = *trailingChar;
                trailingChar = nullptr;
            }
            owned.insert(copy.get());
            target = copy.release();
        }
    }
    slots[index].buf = target;
    slots[index].len = length;
    return length;
}

unsigned short WsaCollection::Append(const char* buffer, unsigned int length, const char* trailingChar,
                                     unsigned char mode) {
    if (view) return 0;
    if (length == 0 && buffer != nullptr) length = static_cast<unsigned int>(std::strlen(buffer));
    // Room for the value's slot and, when the trailing character will not go into a copy, for its
    // own slot as well.
    const bool copyTakesTrailing = mode == 2 && buffer != nullptr && length != 0;
    if (!EnsureFree(trailingChar != nullptr && !copyTakesTrailing ? 2 : 1)) return 0;

    totalLength += FillSlot(count, buffer, length, trailingChar, mode);
    ++count;
    if (trailingChar == nullptr) return count;
    slots[count].buf = const_cast<char*>(trailingChar);
    slots[count].len = 1;
    ++count;
    ++totalLength;
    return static_cast<unsigned short>(count - 1);
}

bool WsaCollection::SetTagAt(unsigned int index, const char* buffer, unsigned int length,
                             const char* trailingChar, unsigned char mode) {
    if (view || index > count) return false;
    if (length == 0 && buffer != nullptr) length = static_cast<unsigned int>(std::strlen(buffer));
    const bool appends = index == count;
    const bool last = index + 1 >= count; // the slot is (or becomes) the last one in use
    const bool copyTakesTrailing = mode == 2 && buffer != nullptr && length != 0;
    const bool trailingSlot = trailingChar != nullptr && !copyTakesTrailing && last;
    const unsigned int needed = (appends ? 1u : 0u) + (trailingSlot ? 1u : 0u);
    if (needed != 0 && !EnsureFree(needed)) return false;

    char* const oldBuffer = appends ? nullptr : slots[index].buf;
    const unsigned int oldLength = appends ? 0 : slots[index].len;
    const unsigned int newLength = FillSlot(index, buffer, length, trailingChar, mode);
    if (appends) {
        ++count;
    } else {
        totalLength -= oldLength;
        // The old buffer goes when it was ours, unless the slot was set to that same buffer again.
        if (oldBuffer != nullptr && oldBuffer != slots[index].buf && !owned.empty()) {
            const auto it = owned.find(oldBuffer);
            if (it != owned.end()) {
                owned.erase(it);
                delete[] oldBuffer;
            }
        }
    }
    totalLength += newLength;
    if (trailingChar != nullptr && trailingSlot) {
        slots[count].buf = const_cast<char*>(trailingChar);
        slots[count].len = 1;
        ++count;
        ++totalLength;
    }
    return true;
}

void WsaCollection::Reset() {
    if (view) return;
    DestroyOwn();
    count = 0;
    totalLength = 0;
}

unsigned int WsaCollection::CalculateItemControlSum(const WSABUF* const& slot) {
    if (slot == nullptr || slot->buf == nullptr) return 0;
    return velora::fix::detail::SumBytes(slot->buf, slot->len);
}

unsigned int WsaCollection::CalculateControlSumAt(const unsigned short& index) const {
    return CalculateItemControlSum(GetWsaBufAt(index));
}

unsigned int WsaCollection::CalculateControlSum() const {
    unsigned int sum = 0;
    for (unsigned short i = 0; i < count; ++i) {
        const WSABUF* const slot = slots + i;
        sum += CalculateItemControlSum(slot);
    }
    return sum;
}

bool WsaCollection::AllocateMore() {
    if (view || capacity >= kMaxGrowableCapacity) return false;
    const auto grown = static_cast<unsigned short>(capacity == 0 ? 1 : capacity * 2);
    WSABUF* const fresh = new WSABUF[grown]();
    if (count != 0) std::memcpy(fresh, slots, sizeof(WSABUF) * count);
    delete[] slots;
    slots = fresh;
    capacity = grown;
    return true;
}

bool WsaCollection::EnsureFree(unsigned int needed) {
    while (unsigned{count} + needed > capacity)
        if (!AllocateMore()) return false;
    return true;
}

void WsaCollection::ClearWSABUF() {
    for (unsigned int i = 0; i < capacity; ++i) {
        slots[i].len = 0;
        slots[i].buf = nullptr;
    }
}

void WsaCollection::DestroyOwn() {
    if (owned.empty()) return;
    for (char* const buffer : owned) delete[] buffer;
    owned.clear();
}
