#include "tools/oska/explaining/near_names.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "oska/foundation/ward_name.h"
#include "oska/text/text.h"
#include "tools/oska/cli/text_table.h"

namespace oska::tool {
namespace {

/// Blanks that a name may hold without anybody seeing them, and what they are called.
constexpr std::array<std::pair<char32_t, std::string_view>, 12> BLANKS{{
    {U' ', "a blank"},
    {U'\t', "a tab"},
    {U'\n', "a line feed"},
    {U'\r', "a carriage return"},
    {U'\u00a0', "a no-break space"},
    {U'\u00ad', "a soft hyphen"},
    {U'\u200b', "a zero-width space"},
    {U'\u200c', "a zero-width non-joiner"},
    {U'\u200d', "a zero-width joiner"},
    {U'\u2060', "a word joiner"},
    {U'\u3000', "an ideographic space"},
    {U'\ufeff', "a byte order mark"},
}};

std::optional<std::string_view> blankName(char32_t scalar) {
    const auto* const found = std::find_if(BLANKS.begin(), BLANKS.end(),
                                           [scalar](const auto& blank) { return blank.first == scalar; });
    return found == BLANKS.end() ? std::nullopt : std::optional(found->second);
}

std::u32string withoutBlanks(std::u32string text) {
    std::erase_if(text, [](char32_t scalar) { return blankName(scalar).has_value(); });
    return text;
}

/// How many letters must be put in, taken out or replaced.
std::size_t distance(const std::u32string& a, const std::u32string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const auto replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j + 1] + 1, row[j] + 1});
        }
    }
    return row.back();
}

/// The first blank of `text` that `other` has not, and where it stands.
std::optional<std::string> surplusBlank(const std::u32string& text, const std::u32string& other) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto blank = blankName(text[i]);
        if (!blank || (i < other.size() && text[i] == other[i])) continue;
        const auto* const where = i == 0                 ? " at its beginning, which is not trimmed"
                                  : i + 1 == text.size() ? " at its end, which is not trimmed"
                                                         : " inside, which counts";
        return std::string(*blank) + where;
    }
    return std::nullopt;
}

/// What makes `known` of `text`, both normalised.
std::string differenceOf(const std::u32string& text, const std::u32string& known) {
    if (withoutBlanks(text) != withoutBlanks(known)) {
        const auto letters = distance(text, known);
        return std::to_string(letters) + (letters == 1 ? " letter differs" : " letters differ");
    }
    // Both have lost the blanks at their ends that the kit takes off.
    if (const auto blank = surplusBlank(text, known)) return "without " + *blank;
    if (const auto blank = surplusBlank(known, text)) return "with " + *blank;
    return "with other blanks";
}

std::u32string key(std::string_view name) { return scalarsOf(normalizeWardName(name)); }

}  // namespace

std::vector<NearName> nearestNames(std::string_view name, const std::vector<std::string>& known,
                                   std::size_t count) {
    const auto wanted = key(name);
    struct Ranked {
        std::size_t distance;
        std::size_t place;
    };
    std::vector<Ranked> ranked;
    for (std::size_t i = 0; i < known.size(); ++i) {
        const auto candidate = key(known[i]);
        const bool isAlike = withoutBlanks(candidate) == withoutBlanks(wanted);
        ranked.push_back({isAlike ? 0 : distance(candidate, wanted), i});
    }
    const auto kept = std::min(count, ranked.size());
    std::partial_sort(ranked.begin(), ranked.begin() + static_cast<std::ptrdiff_t>(kept), ranked.end(),
                      [](const Ranked& a, const Ranked& b) {
                          return std::pair(a.distance, a.place) < std::pair(b.distance, b.place);
                      });
    std::vector<NearName> near;
    for (std::size_t i = 0; i < kept; ++i) {
        const auto& found = known[ranked[i].place];
        near.push_back({found, differenceOf(wanted, key(found))});
    }
    return near;
}

std::optional<NearName> closeName(std::string_view name, const std::vector<std::string>& known) {
    const auto near = nearestNames(name, known, 1);
    if (near.empty()) return std::nullopt;
    const auto wanted = key(name);
    const auto found = key(near.front().name);
    const bool isAlike = withoutBlanks(wanted) == withoutBlanks(found);
    const bool isClose = distance(wanted, found) <= std::min<std::size_t>(2, wanted.size() / 4);
    return isAlike || isClose ? std::optional(near.front()) : std::nullopt;
}

}  // namespace oska::tool
