// Lower case: utf8proc's simple mapping, and the two rules that Unicode's SpecialCasing.txt adds for all
// locales: U+0130, and the final sigma (the Unicode Standard, section 3.13).
#include <utf8proc.h>

#include <algorithm>

#include "oska/text/text.h"

namespace oska::text {
namespace {

constexpr utf8proc_int32_t CAPITAL_I_WITH_DOT = 0x130;
constexpr utf8proc_int32_t CAPITAL_SIGMA = 0x3A3;

// Case_Ignorable (DerivedCoreProperties.txt): five categories, and the Word_Break classes MidLetter,
// MidNumLet and Single_Quote (WordBreakProperty.txt).
bool isCaseIgnorable(utf8proc_int32_t scalar, int category) {
    switch (category) {
        case UTF8PROC_CATEGORY_MN:
        case UTF8PROC_CATEGORY_ME:
        case UTF8PROC_CATEGORY_CF:
        case UTF8PROC_CATEGORY_LM:
        case UTF8PROC_CATEGORY_SK:
            return true;
        default:
            break;
    }
    switch (scalar) {
        case 0x27:
        case 0x2E:
        case 0x3A:
        case 0xB7:
        case 0x387:
        case 0x55F:
        case 0x5F4:  // clang-format off
        case 0x2018: case 0x2019: case 0x2024: case 0x2027:
        case 0xFE13: case 0xFE52: case 0xFE55: case 0xFF07: case 0xFF0E: case 0xFF1A:  // clang-format on
            return true;
        default:
            return false;
    }
}

// Other_Lowercase and Other_Uppercase (PropList.txt), except for those that are case-ignorable: ordinal
// indicators, Roman numerals, enclosed and squared letters.
bool isCasedSymbol(utf8proc_int32_t scalar) {
    return scalar == 0xAA || scalar == 0xBA || (scalar >= 0x2160 && scalar <= 0x217F) ||
           (scalar >= 0x24B6 && scalar <= 0x24E9) || (scalar >= 0x1F130 && scalar <= 0x1F149) ||
           (scalar >= 0x1F150 && scalar <= 0x1F169) || (scalar >= 0x1F170 && scalar <= 0x1F189);
}

enum class CaseRole { cased, ignorable, other };

// The role of a scalar near a sigma. One that is both cased and ignorable counts as ignorable.
CaseRole caseRole(utf8proc_int32_t scalar) {
    if (scalar < 0) return CaseRole::other;
    const int category = utf8proc_category(scalar);
    if (isCaseIgnorable(scalar, category)) return CaseRole::ignorable;
    const bool letter = category == UTF8PROC_CATEGORY_LU || category == UTF8PROC_CATEGORY_LL ||
                        category == UTF8PROC_CATEGORY_LT;
    return letter || isCasedSymbol(scalar) ? CaseRole::cased : CaseRole::other;
}

bool casedComesNext(std::string_view text) {
    while (!text.empty()) {
        const Scalar first = firstScalar(text);
        const CaseRole role = caseRole(first.value);
        if (role != CaseRole::ignorable) return role == CaseRole::cased;
        text.remove_prefix(first.length);
    }
    return false;
}

void appendLowercase(std::string& lower, utf8proc_int32_t scalar, bool afterCased, std::string_view rest) {
    if (scalar == CAPITAL_I_WITH_DOT) {
        lower += "i\u0307";
    } else if (scalar == CAPITAL_SIGMA) {
        lower += afterCased && !casedComesNext(rest) ? "\u03C2" : "\u03C3";
    } else {
        appendScalar(lower, utf8proc_tolower(scalar));
    }
}

void appendAsciiLowercased(std::string& lower, std::string_view text) {
    const auto begin = static_cast<std::ptrdiff_t>(lower.size());
    lower += text;
    std::for_each(lower.begin() + begin, lower.end(),
                  [](char& c) { c = static_cast<char>(c + (c >= 'A' && c <= 'Z' ? 'a' - 'A' : 0)); });
}

}  // namespace

std::string lowercased(std::string_view text) {
    std::string lower;
    lower.reserve(text.size());
    appendLowercased(lower, text);
    return lower;
}

void appendLowercased(std::string& lower, std::string_view text) {
    if (isAscii(text)) return appendAsciiLowercased(lower, text);
    bool afterCased = false;
    while (!text.empty()) {
        const Scalar first = firstScalar(text);
        const std::string_view rest = text.substr(first.length);
        if (first.value < 0) {
            lower += text.front();
        } else {
            appendLowercase(lower, first.value, afterCased, rest);
        }
        const CaseRole role = caseRole(first.value);
        if (role != CaseRole::ignorable) afterCased = role == CaseRole::cased;
        text = rest;
    }
}

}  // namespace oska::text
