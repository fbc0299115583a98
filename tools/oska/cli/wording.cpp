#include "tools/oska/cli/wording.h"

#include "oska/json/json.h"
#include "oska/text/one_line.h"

namespace oska::tool {

using json::DecodeError;

std::string inQuotes(std::string_view text) {
    std::string out;
    json::appendText(out, text);
    return text::onOneLine(out);
}

std::string faultText(const DecodeError& error) {
    const auto place = error.path.empty() ? std::string("document") : error.path;
    const auto fault = error.kind == DecodeError::Kind::malformed ? "malformed JSON, expected "
                       : error.kind == DecodeError::Kind::missing ? "missing, expected "
                                                                  : "expected ";
    return place + ": " + fault + error.expected + ", found " + error.found;
}

std::string faultLine(const std::string& file, const DecodeError& error) {
    return file + ":" + std::to_string(error.line) + ": " + faultText(error);
}

}  // namespace oska::tool
