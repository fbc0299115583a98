#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace oska {

/// A set of numbers below a limit that is emptied in ascending order. Faster than sorting when it holds
/// hundreds of numbers. Inserting costs the same for any limit; `drain` costs about the same for any limit up
/// to some hundred thousand. Allocates memory in `setLimit` only. Threads: one at a time.
class NumberSet {
public:
    /// Empties the set. Numbers must then be below `limit`.
    void setLimit(std::size_t limit) {
        words_.assign(limit / BITS + 1, 0);
        usedWords_.assign(words_.size() / BITS + 1, 0);
        size_ = 0;
    }

    /// Requires: `number` is not in the set.
    void insert(std::size_t number) {
        words_[number / BITS] |= bit(number);
        usedWords_[number / BITS / BITS] |= bit(number / BITS);
        ++size_;
    }

    /// The count of the numbers in the set.
    [[nodiscard]] std::size_t size() const { return size_; }

    /// Calls `visit` with each number, ascending, and empties the set.
    template <class Visit>
    void drain(Visit visit) {
        for (std::size_t i = 0; size_ > 0; ++i) {
            drainWord(usedWords_[i], i * BITS, [&](std::size_t word) {
                drainWord(words_[word], word * BITS, [&](std::size_t number) {
                    --size_;
                    visit(number);
                });
            });
        }
    }

private:
    using Word = std::uint64_t;
    static constexpr std::size_t BITS = 64;

    static Word bit(std::size_t number) { return Word{1} << (number % BITS); }

    template <class Visit>
    static void drainWord(Word& word, std::size_t first, Visit visit) {
        for (auto left = std::exchange(word, 0); left != 0; left &= left - 1) {
            visit(first + static_cast<std::size_t>(std::countr_zero(left)));
        }
    }

    std::vector<Word> words_;      // a bit for each number
    std::vector<Word> usedWords_;  // a bit for each word that is not zero
    std::size_t size_ = 0;
};

}  // namespace oska
