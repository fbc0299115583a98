#include "tools/oska/cli/nearest_word.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace oska::tool {
namespace {

constexpr std::size_t SHORTEST_BEGINNING = 3;

std::string_view withoutDashes(std::string_view word) {
    return word.substr(std::min(word.find_first_not_of('-'), word.size()));
}

/// How many letters must be put in, taken out, replaced or swapped with their neighbour.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            cost[i][j] = std::min({replaced, cost[i - 1][j] + 1, cost[i][j - 1] + 1});
            const bool isSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (isSwapped) cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}

}  // namespace

std::optional<std::string> nearestWord(const std::string& word, const std::vector<std::string>& candidates) {
    constexpr std::size_t LONGEST = 64;  // no word of ours is so long
    const auto typed = withoutDashes(word);
    if (typed.empty() || typed.size() > LONGEST) return std::nullopt;
    const auto limit = std::max<std::size_t>(1, typed.size() / 3);
    std::optional<std::string> nearest;
    std::size_t best = limit + 1;
    for (const auto& candidate : candidates) {
        const auto known = withoutDashes(candidate);
        const bool isBeginning = typed.size() >= SHORTEST_BEGINNING && known.starts_with(typed);
        const auto found = isBeginning ? 1 : distance(typed, known);
        if (found >= best) continue;
        best = found;
        nearest = candidate;
    }
    return nearest;
}

}  // namespace oska::tool
