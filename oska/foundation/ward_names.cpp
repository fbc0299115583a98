#include "oska/foundation/ward_names.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace oska {
namespace {

constexpr std::size_t REMEMBERED_NAMES = 4096;  // a power of two

std::uint64_t hashOf(std::string_view text) { return std::hash<std::string_view>{}(text); }

std::uint32_t upperHalf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32U); }

}  // namespace

WardNames::Number WardNames::add(std::string_view name, double threshold) {
    remembered_.clear();
    if (slots_.size() <= 2 * size()) grow();
    const auto key = normalize_(name);
    const auto hash = hashOf(key);
    auto& slot = slots_[slotOf(key, hash)];
    if (slot.numberPlusOne == 0) {
        names_.push_back({keys_.size(), threshold});
        keys_ += key;
        slot = {upperHalf(hash), static_cast<std::uint32_t>(size())};
    }
    const auto number = slot.numberPlusOne - 1;
    names_[number].threshold = std::fmin(names_[number].threshold, threshold);
    return number;
}

std::optional<WardNames::Number> WardNames::find(std::string_view name) const {
    if (name.size() > Remembered::MOST_BYTES) return findKey(normalize_(name));
    if (remembered_.empty()) remembered_.resize(REMEMBERED_NAMES);
    auto& remembered = remembered_[hashOf(name) % REMEMBERED_NAMES];
    if (!remembered.isTaken || std::string_view(remembered.text, remembered.length) != name) {
        remembered.number = findKey(normalize_(name));
        remembered.isTaken = true;
        remembered.length = static_cast<std::uint8_t>(name.copy(remembered.text, name.size()));
    }
    return remembered.number;
}

std::optional<WardNames::Number> WardNames::findKey(std::string_view key) const {
    if (slots_.empty()) return std::nullopt;
    const auto& slot = slots_[slotOf(key, hashOf(key))];
    if (slot.numberPlusOne == 0) return std::nullopt;
    return slot.numberPlusOne - 1;
}

std::string_view WardNames::keyOf(Number number) const {
    const auto start = names_[number].keyStart;
    const auto end = number + 1 < size() ? names_[number + 1].keyStart : keys_.size();
    return std::string_view(keys_).substr(start, end - start);
}

/// The slot of `key`, or the free one where it belongs.
std::size_t WardNames::slotOf(std::string_view key, std::uint64_t hash) const {
    for (auto at = hash;; ++at) {
        const auto place = at & (slots_.size() - 1);
        const auto& slot = slots_[place];
        if (slot.numberPlusOne == 0) return place;
        if (slot.hash == upperHalf(hash) && keyOf(slot.numberPlusOne - 1) == key) return place;
    }
}

void WardNames::grow() {
    constexpr std::size_t FIRST_SIZE = 16;
    slots_.assign(std::max(FIRST_SIZE, 2 * slots_.size()), {});
    for (Number number = 0; number < size(); ++number) {
        const auto hash = hashOf(keyOf(number));
        slots_[slotOf(keyOf(number), hash)] = {upperHalf(hash), number + 1};
    }
}

}  // namespace oska
