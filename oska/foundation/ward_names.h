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

/// The names of a site's wards, normalised, each with a dense number from 0, and with the weakest reading
/// that can count for a ward of that name.
///
/// `find` is made for the stream of samples: it costs about the same however many wards there are, and it
/// allocates nothing but storage of its own, which it keeps and whose size does not depend on how many names
/// a busy street broadcasts. Threads: one at a time, `find` included.
class WardNames {
public:
    using Number = std::uint32_t;

    /// The number of `name`, a new one when no equal name was added before. `threshold` is in dBm; of those
    /// given for one name the lowest holds.
    Number add(std::string_view name, double threshold = -std::numeric_limits<double>::infinity());

    /// The number of a name as broadcast.
    [[nodiscard]] std::optional<Number> find(std::string_view name) const;

    /// Whether a reading, in dBm, meets the threshold of the name with that number.
    [[nodiscard]] bool canCount(Number number, double strength) const {
        return names_[number].threshold <= strength;
    }

    [[nodiscard]] std::size_t size() const { return names_.size(); }

private:
    // The half of a hash that does not choose the slot tells nearly all other names apart without a look at
    // the name.
    struct Slot {
        std::uint32_t hash;
        std::uint32_t numberPlusOne;  // 0: the slot is free
    };

    struct Name {
        std::size_t keyStart;
        double threshold;
    };

    // A name as broadcast, short enough to keep, and what it was found to be: radios repeat themselves.
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

    // A power of two of them, half of them free or more; a name lies in the first that was free for it.
    std::vector<Slot> slots_;
    std::vector<Name> names_;  // by number
    std::string keys_;         // one after the other
    mutable WardNameNormalizer normalize_;
    mutable std::vector<Remembered> remembered_;
};

}  // namespace oska
