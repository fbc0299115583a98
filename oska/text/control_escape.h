#pragma once

#include <string>

/// Escapes for control characters, spelled as in JSON. Threads: any.
namespace oska::text {

/// Appends \u00XX, with XX the byte `c` in lower-case hexadecimal.
void appendUnicodeEscape(std::string& out, char c);

/// Appends \b \f \n \r or \t for these five characters, \u00XX for any other byte.
void appendControlEscape(std::string& out, char c);

}  // namespace oska::text
