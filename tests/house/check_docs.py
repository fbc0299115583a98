#!/usr/bin/env python3
"""Holds the installed headers against two rules: check_docs.py SOURCE_ROOT

Every public type, function and enumerator has a docstring (`///` above it, or `///<` behind it), and of each header's lines at
least 40 % are comments, unless FEWER_COMMENTS names the header and the reason.

Exempt are: what is deleted, destructors, comparisons, friends, overrides and definitions outside a class (the contract stands
where the operation is declared first), forward declarations, namespaces `detail`, and `fields` (its contract stands in oska/json/record.h).
"""
import pathlib
import re
import sys

from installed_headers import installed_headers

LEAST_SHARE = 0.40

# Headers in which there is less to say, and why.
FEWER_COMMENTS = {
    "adapters/native/system_wall_clock.h": "one operation, whose contract stands in the interface",
    "adapters/virtual/settable_bluetooth.h": "two short operations",
    "oska/dapo/dapo_detection.h": "a part of it lists a record's fields for the log",
    "oska/dapo/dapo_types.h": "a third of it lists the records' fields for decoding",
    "oska/foundation/number_set.h": "its operations are short and stand in it, for speed",
    "oska/foundation/ward_names.h": "half of it is the private hash table",
    "oska/json/description.h": "templates, written out for each shape of a value",
    "oska/json/json_decode.h": "templates, written out for each shape of a value",
    "oska/json/json_encode.h": "templates, written out for each shape of a value",
    "oska/json/json_reader.h": "a part of it is the private state of the reader",
    "oska/json/record_equality.h": "templates, written out for each shape of a value",
    "oska/resources/bundle.h": "a third of it lists the records' fields for decoding",
    "oska/resources/level_map.h": "a third of it lists the record's fields for decoding",
    "oska/resources/level_map_index.h": "its constructor is a template and stands in it",
}


def without_templates(text):
    """`text` without what stands in angle brackets."""
    while True:
        shorter = re.sub(r"<[^<>]*>", "", text)
        if shorter == text:
            return text
        text = shorter


def is_exempt(statement):
    return bool(
        re.match(r"(friend|static_assert|extern)\b|using\s+(namespace|enum)\b", statement)
        or re.search(r"=\s*delete$|~\w+\s*\(|\boverride\b|operator\s*(==|<=>|!=)", statement)
        or re.search(r"\bfields\s*\(|\w::\w+\s*\(", without_templates(statement.split("=")[0]))
    )


def kind_of(statement, opens_brace):
    """What a statement declares: "type", "function", "field", or None for what needs no docstring."""
    if not statement or is_exempt(statement):
        return None
    if "operator" in statement:
        return "function"
    bare = without_templates(statement)
    bare = re.sub(r"^(template|\[\[\w+\]\])\s*", "", re.sub(r"^template\s*", "", bare)).strip()
    if re.match(r"(class|struct|union|enum)\b", bare):
        return "type" if opens_brace else None
    if bare.startswith("using "):
        return "type" if "=" in bare else None
    return "function" if "(" in bare.split("=")[0] else "field"


class Scope:
    """One pair of braces: a namespace, a record, an enum, or a body whose content is skipped."""

    def __init__(self, kind, is_public=True, ends_statement=True):
        self.kind, self.is_public, self.ends_statement = kind, is_public, ends_statement


class Reader:
    """Reads a header line by line and collects what has no docstring."""

    def __init__(self):
        self.faults, self.scopes, self.documented = [], [], set()
        self.docstring_above = False
        self.start(0)

    def start(self, number):
        self.statement, self.depth, self.number, self.is_documented = "", 0, number, False

    def read(self, text):
        for number, line in enumerate(text.splitlines(), 1):
            line = re.sub(r'"(\\.|[^"\\])*"', '""', line.strip())
            line = re.sub(r"'(\\.|[^'\\])'", "0", line)
            if line.startswith("///"):
                self.docstring_above = True
            elif not line and not self.statement:
                self.docstring_above = False
            elif not line.startswith(("//", "#")):
                code, _, comment = line.partition("//")
                self.read_code(number, code.rstrip(), comment.startswith("/<"))
        return [fault for fault in self.faults if fault[2] not in self.documented]

    def read_code(self, number, code, docstring_behind):
        for at, character in enumerate(code + " "):
            if not self.statement.strip() and not character.isspace() and character not in ";}":
                self.start(number)
                self.is_documented, self.docstring_above = self.docstring_above, False
            is_last = not code[at + 1 :].strip(" ;{}")
            self.take(character, docstring_behind and (is_last or "{" in code[at:]))

    def take(self, character, docstring_behind):
        self.is_documented |= docstring_behind
        inside = self.scopes[-1].kind if self.scopes else "namespace"
        if inside == "body":
            self.take_in_body(character)
        elif character in "([" or (character == "{" and self.depth):
            self.depth += 1
            self.statement += character
        elif character in ")]" or (character == "}" and self.depth):
            self.depth -= 1
            self.statement += character
        elif self.depth:
            self.statement += character
        elif character == "{":
            self.open_brace()
        elif character == "}":
            self.close_brace()
        elif character == ";" or (character == "," and inside == "enum"):
            self.end(opens_brace=False)
        else:
            self.statement += character
            self.take_access()

    def take_in_body(self, character):
        if character == "{":
            self.scopes.append(Scope("body", ends_statement=False))
        elif character == "}" and self.scopes.pop().ends_statement:
            self.statement = ""

    def take_access(self):
        access = re.fullmatch(r"(public|protected|private)\s*:", self.statement.strip())
        if access:
            self.scopes[-1].is_public = access[1] == "public"
            self.statement = ""

    def open_brace(self):
        statement = self.statement.strip()
        if re.match(r"(inline )?namespace\b", statement):
            name = statement.partition("namespace")[2].strip()
            self.scopes.append(Scope("namespace", is_public=bool(name) and not name.endswith("detail")))
            self.statement = ""
            return
        kind = kind_of(statement, opens_brace=True)
        if kind == "type":
            bare = without_templates(statement)
            self.end(opens_brace=True)
            opened = "enum" if "enum" in bare.split() else "record"
            self.scopes.append(Scope(opened, is_public=opened == "enum" or "class" not in bare.split()))
        elif kind == "field":  # its initialiser; the statement goes on to its semicolon
            self.scopes.append(Scope("body", ends_statement=False))
        else:
            self.end(opens_brace=True)
            self.scopes.append(Scope("body"))

    def close_brace(self):
        if self.scopes and self.scopes[-1].kind == "enum":
            self.end(opens_brace=False)
        if self.scopes:
            self.scopes.pop()
        self.statement = ""

    def end(self, opens_brace):
        statement, self.statement = re.sub(r"\s+", " ", self.statement.strip()), ""
        is_enumerator = bool(self.scopes) and self.scopes[-1].kind == "enum"
        kind = "enumerator" if is_enumerator and statement else kind_of(statement, opens_brace)
        is_public = all(scope.is_public for scope in self.scopes)
        if kind == "function" and self.is_documented:
            self.documented.add(statement)  # a function that is declared twice needs one docstring
        if kind in ("type", "function", "enumerator") and is_public and not self.is_documented:
            self.faults.append((self.number, kind, statement))


def comment_share(text):
    """Comment lines, those behind code included, of comment lines and code lines."""
    comments = code = 0
    for line in filter(None, map(str.strip, text.splitlines())):
        is_comment = line.startswith("//")
        comments += is_comment or "///<" in line
        code += not is_comment
    return comments / (comments + code)


SAMPLE = """
namespace a {
/// Documented.
enum class Kind {
    one,  ///< said
    two,
};
struct Bare {
    int field = 0;
    int nowhere() const { return f({1, 2}); }
    void here();  ///< said
    ~Bare();
    Bare(const Bare&) = delete;

protected:
    void hidden();
};
/// Documented.
template <class T>
class Full {
    void hidden();

public:
    /// Documented, over
    /// two lines.
    void some(std::function<void(int)> f = {},
              int b = 2);
    void late(int a,
              std::vector<int> b) override;
    explicit Full(int a) : a_{a} {}
    using Undocumented = int;
};
class Forward;
}
"""
SAMPLE_FAULTS = ["two", "struct Bare", "int nowhere() const", "explicit Full(int a) : a_", "using Undocumented = int"]


def faults_of(header, text):
    for number, kind, statement in Reader().read(text):
        yield f"{header}:{number}: {kind} without a docstring: {statement}"
    share = comment_share(text)
    if share < LEAST_SHARE and header not in FEWER_COMMENTS:
        yield f"{header}: {share:.0%} of its lines are comments, {LEAST_SHARE:.0%} are asked"
    if share >= LEAST_SHARE and header in FEWER_COMMENTS:
        yield f"{header}: has its comments and need not be in FEWER_COMMENTS"


def main(root):
    found = [statement for _, _, statement in Reader().read(SAMPLE)]
    if found != SAMPLE_FAULTS:
        sys.exit(f"the check itself is at fault: in its sample it found {found}")
    headers = installed_headers(root)
    faults = [fault for header in headers for fault in faults_of(header, (root / header).read_text())]
    faults += [f"{header} is in FEWER_COMMENTS and not installed" for header in FEWER_COMMENTS if header not in headers]
    print("\n".join(faults) or f"{len(headers)} installed headers have their docstrings")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
