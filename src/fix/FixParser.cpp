// FixParser.cpp - the tag -> text map and U_ParseFix, which fills it from one message.
#include "VeloraUtils/FixParsing.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

namespace velora::fix::detail {

// The parser's way into the map: it copies values straight into the map's text storage and
// inserts views of them, without a second copy.
struct FixFieldMapAccess {
    using Slot = FixFieldMap::Slot;
    static constexpr std::size_t kMinSlots = 64;

    static std::size_t Hash(unsigned short tag, unsigned int shift) noexcept {
        return static_cast<std::size_t>((tag * 0x9E3779B1u) >> shift);
    }

    // At least `bytes` writable bytes at the returned cursor, in storage that never moves.
    static char* TextRoom(FixFieldMap& map, std::size_t bytes) {
        map.ReserveText(bytes);
        return map.textCursor_;
    }

    // Inserts one field after another with the table's shape and the map's counts in locals; the
    // map's members are written back when the table must grow and at the end.
    class Inserter {
    public:
        explicit Inserter(FixFieldMap& map) noexcept : map_(map) { Load(); }
        Inserter(const Inserter&) = delete;
        Inserter& operator=(const Inserter&) = delete;
        ~Inserter() { Store(); }

        // Adds `text` (in storage that outlives the entry) under `tag`; false if present.
        bool Insert(unsigned short tag, std::string_view text) {
            if (room_ == 0) Grow();
            std::size_t i = Hash(tag, shift_);
            while (slots_[i].generation == generation_) {
                if (slots_[i].tag == tag) return false;
                i = (i + 1) & mask_;
            }
            slots_[i] = Slot{static_cast<unsigned int>(count_), tag, generation_};
            entries_[count_] = FixFieldMap::value_type(tag, text);
            ++count_;
            --room_;
            return true;
        }
        // The map's text storage is used up to `end`.
        void CommitText(char* end) noexcept { text_ = end; }

    private:
        void Load() noexcept {
            slots_ = map_.slots_.data();
            mask_ = map_.slots_.size() - 1;
            shift_ = map_.hashShift_;
            generation_ = map_.generation_;
            entries_ = map_.entries_.get();
            count_ = map_.size_;
            // At most half of the slots in use, and no entry past the capacity.
            const std::size_t slotRoom =
                map_.slots_.size() / 2 > count_ ? map_.slots_.size() / 2 - count_ : 0;
            room_ = std::min(slotRoom, map_.capacity_ - count_);
        }
        void Store() noexcept {
            map_.size_ = count_;
            if (text_ != nullptr) map_.textCursor_ = text_;
        }
        void Grow() {
            Store(); // the map is whole if an allocation below throws
            if (count_ == map_.capacity_) map_.GrowEntries(std::max<std::size_t>(32, map_.capacity_ * 2));
            if ((count_ + 1) * 2 > map_.slots_.size())
                map_.Rehash(std::max(kMinSlots, map_.slots_.size() * 2));
            Load();
        }

        FixFieldMap& map_;
        Slot* slots_ = nullptr;
        FixFieldMap::value_type* entries_ = nullptr;
        char* text_ = nullptr;
        std::size_t mask_ = 0;
        std::size_t room_ = 0;
        std::size_t count_ = 0;
        unsigned int shift_ = 32;
        unsigned short generation_ = 0;
    };
};

namespace {

using Access = FixFieldMapAccess;
constexpr char kSoh = '\x01';
constexpr std::size_t kWord = sizeof(std::uint64_t);

// The eight bytes at `p` with the first one lowest, on any byte order.
std::uint64_t LoadWord(const char* p) noexcept {
    std::uint64_t w = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&w, p, kWord);
    } else {
        for (std::size_t i = 0; i < kWord; ++i)
            w |= std::uint64_t{static_cast<unsigned char>(p[i])} << (8 * i);
    }
    return w;
}

// A value ends, or needs a closer look, at SOH, at '=' and at any byte outside 0x20..0x7F.
bool IsSpecial(char c) noexcept {
    return static_cast<signed char>(c) < 0x20 || c == '=';
}

// The high bit of every special byte of `w` (and possibly of bytes after the first special one,
// which the borrows reach: only the lowest flag is used).
std::uint64_t SpecialBytes(std::uint64_t w) noexcept {
    constexpr std::uint64_t kOnes = 0x0101010101010101u;
    const std::uint64_t below20 = (w - kOnes * 0x20) & ~w;
    const std::uint64_t notEquals = w ^ (kOnes * '=');
    const std::uint64_t equals = (notEquals - kOnes) & ~notEquals;
    return (below20 | equals | w) & (kOnes * 0x80);
}

// Copies the bytes from `p` up to the first special byte to `out` and returns the special byte's
// address, or `end`. Whole words are stored before they are tested, so `out` needs one word of room
// beyond the bytes copied. Never reads at or past `end`.
const char* ScanValue(const char* p, const char* end, char*& out) noexcept {
    while (end - p >= static_cast<std::ptrdiff_t>(kWord)) {
        const std::uint64_t w = LoadWord(p);
        std::memcpy(out, p, kWord);
        const std::uint64_t special = SpecialBytes(w);
        if (special != 0) {
            const auto k = static_cast<std::size_t>(std::countr_zero(special)) / 8;
            out += k;
            return p + k;
        }
        p += kWord;
        out += kWord;
    }
    for (; p != end; ++p) {
        if (IsSpecial(*p)) return p;
        *out++ = *p;
    }
    return p;
}

} // namespace
} // namespace velora::fix::detail

using velora::fix::detail::FixFieldMapAccess;

// ---- FixFieldMap ----------------------------------------------------------------------------------

FixFieldMap::FixFieldMap() noexcept = default;

FixFieldMap::FixFieldMap(const FixFieldMap& other) {
    std::size_t textBytes = 0;
    for (const value_type& field : other) textBytes += field.second.size();
    reserve(other.size(), textBytes);
    for (const value_type& field : other) insert(field.first, field.second);
}

FixFieldMap::FixFieldMap(FixFieldMap&& other) noexcept
    : entries_(std::move(other.entries_)), size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)), slots_(std::move(other.slots_)),
      blocks_(std::move(other.blocks_)), blockSizes_(std::move(other.blockSizes_)),
      textCursor_(std::exchange(other.textCursor_, nullptr)),
      textEnd_(std::exchange(other.textEnd_, nullptr)), hashShift_(std::exchange(other.hashShift_, 32u)),
      generation_(std::exchange(other.generation_, static_cast<unsigned short>(1))) {
    other.slots_.clear();
    other.blocks_.clear();
    other.blockSizes_.clear();
}

FixFieldMap& FixFieldMap::operator=(const FixFieldMap& other) {
    if (this != &other) *this = FixFieldMap(other);
    return *this;
}

FixFieldMap& FixFieldMap::operator=(FixFieldMap&& other) noexcept {
    if (this == &other) return *this;
    FixFieldMap taken(std::move(other));
    entries_ = std::move(taken.entries_);
    size_ = taken.size_;
    capacity_ = taken.capacity_;
    slots_.swap(taken.slots_);
    blocks_.swap(taken.blocks_);
    blockSizes_.swap(taken.blockSizes_);
    textCursor_ = taken.textCursor_;
    textEnd_ = taken.textEnd_;
    hashShift_ = taken.hashShift_;
    generation_ = taken.generation_;
    taken.size_ = taken.capacity_ = 0; // what `taken` frees is this map's old storage
    return *this;
}

FixFieldMap::~FixFieldMap() = default;

FixFieldMap::const_iterator FixFieldMap::find(unsigned short tag) const noexcept {
    if (size_ == 0) return end();
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = FixFieldMapAccess::Hash(tag, hashShift_);; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.generation != generation_) return end();
        if (slot.tag == tag) return entries_.get() + slot.entry;
    }
}

std::string_view FixFieldMap::value(unsigned short tag, std::string_view fallback) const noexcept {
    const const_iterator field = find(tag);
    return field != end() ? field->second : fallback;
}

bool FixFieldMap::insert(unsigned short tag, std::string_view text) {
    if (contains(tag)) return false;
    char* const copy = FixFieldMapAccess::TextRoom(*this, text.size());
    if (!text.empty()) std::memcpy(copy, text.data(), text.size());
    FixFieldMapAccess::Inserter inserter(*this);
    inserter.Insert(tag, std::string_view(copy, text.size()));
    inserter.CommitText(copy + text.size());
    return true;
}

void FixFieldMap::clear() noexcept {
    if (size_ != 0 && ++generation_ == 0) {
        // Once every 65535 clears the stamps wrap: only then is every slot emptied.
        std::fill(slots_.begin(), slots_.end(), Slot{0, 0, 0});
        generation_ = 1;
    }
    size_ = 0;
    if (blocks_.empty()) return;
    // Keep the newest (largest) block for the next message.
    blocks_.erase(blocks_.begin(), blocks_.end() - 1);
    blockSizes_.erase(blockSizes_.begin(), blockSizes_.end() - 1);
    textCursor_ = blocks_.back().get();
    textEnd_ = textCursor_ + blockSizes_.back();
}

void FixFieldMap::reserve(size_type fields, size_type textBytes) {
    const size_type wanted = size_ + fields;
    if (wanted > capacity_) GrowEntries(wanted);
    if (wanted * 2 > slots_.size()) Rehash(std::max(FixFieldMapAccess::kMinSlots, std::bit_ceil(wanted * 2)));
    ReserveText(textBytes);
}

void FixFieldMap::GrowEntries(size_type capacity) {
    std::unique_ptr<value_type[]> grown(new value_type[capacity]);
    std::copy(entries_.get(), entries_.get() + size_, grown.get());
    entries_ = std::move(grown);
    capacity_ = capacity;
}

void FixFieldMap::Rehash(size_type slotCount) {
    slots_.assign(slotCount, Slot{0, 0, 0});
    generation_ = 1;
    hashShift_ = 32u - static_cast<unsigned int>(std::countr_zero(slotCount));
    const size_type mask = slotCount - 1;
    for (size_type e = 0; e < size_; ++e) {
        size_type i = FixFieldMapAccess::Hash(entries_[e].first, hashShift_);
        while (slots_[i].generation == generation_) i = (i + 1) & mask;
        slots_[i] = Slot{static_cast<unsigned int>(e), entries_[e].first, generation_};
    }
}

void FixFieldMap::ReserveText(size_type bytes) {
    if (static_cast<size_type>(textEnd_ - textCursor_) >= bytes) return;
    // Earlier blocks stay where they are: the views handed out point into them.
    const size_type size =
        std::max({bytes, blockSizes_.empty() ? 0 : blockSizes_.back() * 2, size_type{512}});
    blockSizes_.reserve(blockSizes_.size() + 1);
    blocks_.push_back(std::unique_ptr<char[]>(new char[size]));
    blockSizes_.push_back(size);
    textCursor_ = blocks_.back().get();
    textEnd_ = textCursor_ + size;
}

// ---- U_ParseFix -----------------------------------------------------------------------------------

unsigned char U_ParseFix(FixFieldMap& fields, const char* message, unsigned int length,
                         unsigned short* errorTag, unsigned short* fieldOrdinal) {
    using namespace velora::fix::detail;
    unsigned short ordinal = 1;
    const auto finish = [&](unsigned char code, unsigned int tag) {
        if (fieldOrdinal != nullptr) *fieldOrdinal = ordinal;
        if (code != FixParseNoError && errorTag != nullptr) *errorTag = static_cast<unsigned short>(tag);
        return code;
    };
    if (length == 0) return finish(FixParseNoError, 0);

    // All values together are shorter than the message; word-wide copies may spill one word.
    char* out = Access::TextRoom(fields, std::size_t{length} + kWord);
    Access::Inserter inserter(fields);
    const char* p = message;
    const char* const end = message + length;
    while (p != end) {
        unsigned int tag = 0;
        for (;; ++p) {
            if (p == end) return finish(FixParseNoError, 0); // a field without its SOH is not stored
            const unsigned int digit = static_cast<unsigned int>(static_cast<unsigned char>(*p)) - '0';
            if (digit > 9) break;
            tag = tag * 10 + digit;
            if (tag > 0xFFFF) return finish(FixParseTagNumberTooBig, 0);
        }
        if (*p == kSoh) return finish(FixParseNoValue, tag); // "58" SOH, or an empty field (tag 0)
        if (*p != '=') return finish(FixParseTagNotNumeric, 0);
        if (tag == 0) return finish(FixParseNoTag, 0);
        ++p;

        char* const value = out;
        for (;;) {
            p = ScanValue(p, end, out);
            if (p == end) return finish(FixParseNoError, 0);
            const char c = *p++;
            // Kept for compatibility with existing peers: an '=' inside a value is dropped.
            if (c == '=') continue;
            if (c != kSoh) return finish(FixParseInvalidValue, tag);
            if (out == value) return finish(FixParseNoValue, tag);
            if (!inserter.Insert(static_cast<unsigned short>(tag),
                                 std::string_view(value, static_cast<std::size_t>(out - value))))
                return finish(FixParseDuplicateTag, tag);
            inserter.CommitText(out);
            ++ordinal;
            break;
        }
    }
    return finish(FixParseNoError, 0);
}
