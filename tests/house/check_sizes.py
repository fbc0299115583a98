#!/usr/bin/env python3
"""Holds sources, tests included, to two sizes: check_sizes.py SOURCE_ROOT

A file has at most 300 lines, a function at most 40, from its first line to its closing brace. A function is what stands outside of other
functions, opens a brace and has a parameter list.
"""
import pathlib
import re
import sys

LONGEST_FILE = 300
LONGEST_FUNCTION = 40
FOLDERS = ("oska", "adapters", "tools", "examples", "tests", "bench", "fuzz")


def without_literals(text):
    """The text with its comments, strings and characters emptied, and its line breaks kept."""

    def blank(match):
        return "\n" * match[0].count("\n")

    raw = r'R"(\w*)\((?:.|\n)*?\)\1"'
    text = re.sub(r"(?m)^\s*#(?:[^\n\\]|\\\n|\\.)*", blank, text)
    return re.sub(raw + r"|//[^\n]*|/\*(?:.|\n)*?\*/|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])+'", blank, text)


def functions(text):
    """Pairs of the first line and the number of lines of each function."""
    scopes, statement, first, number = [], "", 1, 1
    for character in without_literals(text):
        is_inside = "function" in (kind for kind, _ in scopes)
        if character == "\n":
            number += 1
        if character == "{":
            is_function = not is_inside and "(" in statement and not re.match(r"\s*(namespace|enum)\b", statement)
            is_function &= not re.search(r"\b(class|struct|union)\s+\w+[^()]*$", statement)
            scopes.append(("function" if is_function else "other", first))
            statement = ""
        elif character == "}" and scopes:
            kind, begin = scopes.pop()
            if kind == "function":
                yield begin, number - begin + 1
            statement = ""
        elif character == ";" or (character == ":" and re.fullmatch(r"\s*(public|private|protected)", statement)):
            statement = ""
        else:
            if not statement.strip():
                first = number
            statement += character


SAMPLE = 'namespace a {\nstruct B {\n    int c() const { return 1; }\n};\nTEST(A, "{") {\n    f([] {\n        g();\n    });\n}\n}\n'


def main(root):
    if list(functions(SAMPLE)) != [(3, 1), (5, 5)]:
        sys.exit(f"the check itself is at fault: in its sample it found {list(functions(SAMPLE))}")
    faults, count = [], 0
    for folder in FOLDERS:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            name, text = path.relative_to(root), path.read_text()
            if text.count("\n") > LONGEST_FILE:
                faults.append(f"{name}: {text.count(chr(10))} lines, {LONGEST_FILE} are allowed")
            for line, length in functions(text):
                count += 1
                if length > LONGEST_FUNCTION:
                    faults.append(f"{name}:{line}: a function of {length} lines, {LONGEST_FUNCTION} are allowed")
    print("\n".join(faults) or f"{count} functions keep to their size")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
