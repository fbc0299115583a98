// Canonical equivalence, over utf8proc's decomposition and composition. Its functions for whole texts are not
// used: they sort combining marks by insertion, which takes minutes for a long text of marks only.
#include <utf8proc.h>

#include <algorithm>
#include <iterator>
#include <span>
#include <vector>

#include "oska/text/text.h"

namespace oska::text {
namespace {

using Scalars = std::vector<utf8proc_int32_t>;

// Starters that neither decompose nor compose with the scalar before them: all scalars below the combining
// marks, unified ideographs and Hangul syllables. A text of only these is already composed.
bool staysAsItIs(utf8proc_int32_t scalar) {
    return (scalar >= 0 && scalar < 0x300) || (scalar >= 0x4E00 && scalar <= 0x9FFF) ||
           (scalar >= 0xAC00 && scalar <= 0xD7A3);
}

bool isPlainlyComposed(std::string_view text) {
    if (isAscii(text)) return true;
    while (!text.empty()) {
        const Scalar first = firstScalar(text);
        if (!staysAsItIs(first.value)) return false;
        text.remove_prefix(first.length);
    }
    return true;
}

void appendDecomposed(Scalars& scalars, utf8proc_int32_t scalar) {
    utf8proc_int32_t parts[8];  // the longest canonical decomposition has four
    int lastBoundClass = 0;
    const auto count = utf8proc_decompose_char(scalar, parts, 8, UTF8PROC_DECOMPOSE, &lastBoundClass);
    scalars.insert(scalars.end(), parts, parts + count);
}

/// Returns false when the text is not well-formed UTF-8 throughout.
bool decompose(Scalars& scalars, std::string_view text) {
    scalars.clear();
    scalars.reserve(text.size());
    while (!text.empty()) {
        const Scalar first = firstScalar(text);
        if (first.value < 0) return false;
        appendDecomposed(scalars, first.value);
        text.remove_prefix(first.length);
    }
    return true;
}

auto combiningClass(utf8proc_int32_t scalar) { return utf8proc_get_property(scalar)->combining_class; }

/// Sorts stably. Short runs, the usual case, are sorted by hand, because std::stable_sort allocates memory
/// for each run.
void sortRun(std::span<utf8proc_int32_t> run) {
    constexpr std::size_t FEW = 16;
    const auto comesBefore = [](auto a, auto b) { return combiningClass(a) < combiningClass(b); };
    if (run.size() > FEW) return std::stable_sort(run.begin(), run.end(), comesBefore);
    for (auto mark = run.begin(); mark != run.end(); ++mark) {
        std::rotate(std::upper_bound(run.begin(), mark, *mark, comesBefore), mark, std::next(mark));
    }
}

void sortMarks(Scalars& scalars) {
    const auto isStarter = [](utf8proc_int32_t scalar) { return combiningClass(scalar) == 0; };
    for (auto run = scalars.begin(); run != scalars.end();) {
        run = std::find_if_not(run, scalars.end(), isStarter);
        const auto end = std::find_if(run, scalars.end(), isStarter);
        sortRun({run, end});
        run = end;
    }
}

void appendPairsComposed(std::string& text, std::span<utf8proc_int32_t> scalars) {
    const auto options = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE);
    const auto count =
        utf8proc_normalize_utf32(scalars.data(), static_cast<utf8proc_ssize_t>(scalars.size()), options);
    for (const auto scalar : scalars.first(static_cast<std::size_t>(count))) appendScalar(text, scalar);
}

// U+11A7 is the number before the first final jamo and composes with nothing. utf8proc 2.8 drops it after a
// syllable without a final jamo, so the text is handed to the library in parts without it.
void appendRecomposed(std::string& text, std::span<utf8proc_int32_t> scalars) {
    constexpr utf8proc_int32_t BEFORE_FINAL_JAMOS = 0x11A7;
    while (true) {
        const auto found = std::find(scalars.begin(), scalars.end(), BEFORE_FINAL_JAMOS);
        const auto length = static_cast<std::size_t>(found - scalars.begin());
        appendPairsComposed(text, scalars.first(length));
        if (found == scalars.end()) return;
        appendScalar(text, BEFORE_FINAL_JAMOS);
        scalars = scalars.subspan(length + 1);
    }
}

}  // namespace

std::string composed(std::string_view text) {
    std::string composed;
    Scalars scalars;
    appendComposed(composed, text, scalars);
    return composed;
}

void appendComposed(std::string& composed, std::string_view text, std::vector<std::int32_t>& scalars) {
    if (isPlainlyComposed(text) || !decompose(scalars, text)) {
        composed += text;
        return;
    }
    sortMarks(scalars);
    appendRecomposed(composed, scalars);
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (isPlainlyComposed(a) && isPlainlyComposed(b)) return false;
    return composed(a) == composed(b);
}

bool CanonicalLess::operator()(std::string_view a, std::string_view b) const {
    if (isPlainlyComposed(a) && isPlainlyComposed(b)) return a < b;
    return composed(a) < composed(b);
}

}  // namespace oska::text
