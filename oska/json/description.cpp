#include "oska/json/description.h"

#include <charconv>

#include "oska/json/json_writer.h"

namespace oska {

void appendDescription(std::string& out, bool value) { out += value ? "true" : "false"; }

void appendDescription(std::string& out, std::int64_t value) { json::appendInteger(out, value); }

void appendDescription(std::string& out, double value) {
    char digits[32];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void appendDescription(std::string& out, std::string_view value) { json::appendText(out, value); }

}  // namespace oska
