"""The headers that a host may include: those that the CMake lists name in FILE_SET HEADERS."""
import re


def installed_headers(root):
    """Paths below `root`, in order."""
    headers = set()
    for lists in [root / "oska/CMakeLists.txt", *root.glob("adapters/*/CMakeLists.txt")]:
        folder = lists.parent.relative_to(root)
        for block in re.findall(r"FILE_SET HEADERS.*?FILES(.*?)\)", lists.read_text(), re.S):
            headers |= {f"{folder}/{name}" for name in block.split()}
    return sorted(headers)
