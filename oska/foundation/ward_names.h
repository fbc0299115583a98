#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/foundation/ward_name.h"

namespace oska {

/// The normalised names of a site's wards. Each has a number, counted from 0 without gaps, and the weakest
/// reading that can count for a ward of that name.
///
/// `find` is made for a stream of samples. Its cost does not depend on the number of wards. It allocates
/// memory once, of a fixed size, however many other names are broadcast. Threads: one at a time, also for
/// `find`. Errors: none.
class WardNames {
public:
    /// The number of a name.
    using Number = std::uint32_t;

    /// Returns the number of `name`: a new one when no name with the same normal form was added before.
    /// `threshold` is in dBm; the lowest of the values given for one name is used.
    Number add(std::string_view name, double threshold = -std::numeric_limits<double>::infinity());

    /// The number of a name as broadcast, not normalised. Nullopt for an unknown name.
    [[nodiscard]] std::optional<Number> find(std::string_view name) const;

    /// Whether a reading, in dBm, meets the threshold of the name with that number, which must exist.
    [[nodiscard]] bool canCount(Number number, double strength) const {
        return names_[number].threshold <= strength;
    }

    /// The number of different names.
    [[nodiscard]] std::size_t size() const { return names_.size(); }

private:
    // Holds the half of the hash that does not choose the slot: it rules out nearly all other names without a
    // comparison of texts.
    struct Slot {
        std::uint32_t hash;
        std::uint32_t numberPlusOne;  // 0: the slot is free
    };

    struct Name {
        std::size_t keyStart;
        double threshold;
    };

    // A name as broadcast, and the result for it: radios send the same names over and over. Longer names are
    // not remembered.
    struct Remembered {
        static constexpr std::size_t MOST_BYTES = 54;
        std::optional<Number> number;
        bool isTaken = false;
        std::uint8_t length = 0;
        char text[MOST_BYTES] = {};
    };

    [[nodiscard]] std::string_view keyOf(Number number) const;
    [[nodiscard]] std::size_t slotOf(std::string_view key, std::uint64_t hash) const;
    [[nodiscard]] std::optional<Number> findKey(std::string_view key) const;
    void grow();

    // A hash table with open addressing. Its size is a power of two, and at least half of the slots are free.
    std::vector<Slot> slots_;
    std::vector<Name> names_;  // by number
    std::string keys_;         // all names, one after the other
    mutable WardNameNormalizer normalize_;
    mutable std::vector<Remembered> remembered_;
};

}  // namespace oska
