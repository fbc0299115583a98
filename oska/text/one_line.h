#pragma once

#include <string>
#include <string_view>

/// Makes text from a server, a file or a radio safe to print in one line of a log or a terminal.
/// Threads: any. Errors: none.
namespace oska::text {

/// Appends `text` to `line`, so that it can neither start a new line nor control a terminal.
///
/// These are escaped as in JSON (\b \f \n \r \t, else \u001b): control characters (C0, DEL and C1), U+2028,
/// U+2029, and each byte from 0x80 to 0x9F that is not part of well-formed UTF-8, because a Latin-1 reader
/// takes such a byte for a C1 control character. All else stays as it is, also quotes, backslashes and other
/// bytes that are not UTF-8: the result is for reading, not for parsing.
///
/// Apply it to a whole line at once: one text may end with the first half of a character, and the next text
/// begin with the second.
void appendOnOneLine(std::string& line, std::string_view text);

/// Returns what appendOnOneLine() appends.
[[nodiscard]] std::string onOneLine(std::string_view text);

}  // namespace oska::text
