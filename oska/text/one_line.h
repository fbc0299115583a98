#pragma once

#include <string>
#include <string_view>

/// The one place that decides what a line for people, in a log or on a terminal, may carry of a text that a
/// server, a file or a radio brought. Threads: any.
namespace oska::text {

/// Appends `text` so that it can neither start a line of its own, for any reader of lines, nor steer a
/// terminal. C0, DEL and C1 control characters, U+2028 and U+2029 are escaped as in JSON: \b \f \n \r \t,
/// else \u001b. So is a byte from 0x80 to 0x9F that is no part of well-formed UTF-8, as the C1 character that
/// a Latin-1 reader takes it for: \u0085. All else stays as it is, quotes, backslashes and other bytes that
/// are not UTF-8 included: the result is for reading, not for parsing. Apply it to a whole line: two texts
/// may end and begin with the halves of one character.
void appendOnOneLine(std::string& line, std::string_view text);

[[nodiscard]] std::string onOneLine(std::string_view text);

}  // namespace oska::text
