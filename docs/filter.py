#!/usr/bin/env python3
"""What Doxygen reads in place of a file of this project; see FILTER_PATTERNS in docs/Doxyfile.

usage: filter.py FILE    (from the root of the project)

In headers, `//` comments that stand above or behind a declaration become `///` and `///<`, that of a getter is
also the setter's, the one at the head becomes that of the file and of the algorithms in it, and what is indented
becomes code. In Markdown, links to what has no page become plain text, all others references to pages.
"""
import os
import pathlib
import re
import sys

ALGORITHMS = pathlib.Path("docs/algorithms")


def page_label(page):
    return "index" if page == "README.md" else "md_" + page[: -len(".md")].replace("/", "_")


def documentation(block):
    """A block of comment lines, without their slashes, for Doxygen."""
    result = []
    code = False
    for line in block:
        starts = line.startswith("  ") and (not result or result[-1] == "")
        if not code and starts:
            result.append("@code{.cpp}")
            code = True
        elif code and line and not line.startswith("  "):
            result.append("@endcode")
            code = False
        result.append(line if code else re.sub(r"([<>&@#])", r"\\\1", line))
    if code:
        result.append("@endcode")
    return [f"/// {line}".rstrip() for line in result]


def header(path, text):
    page = ALGORITHMS / (path.stem + ".md")
    see = ["///", f"/// See also the page @ref {page_label(str(page))}."] if page.exists() else []
    result = []
    block = []  # the comment that is being read
    getter = ("", [])  # the last function with a comment, and that comment
    at_head = True
    for line in text.split("\n"):
        comment = re.match(r"\s*//(?: (.*)|$)", line)
        if comment and not (comment.group(1) or "").startswith("NOLINT"):
            block.append(comment.group(1) or "")
            continue
        own = documentation(block) if block and (line.strip() or at_head) else []
        if at_head and own:
            result += ["/// @file", *own, *see]
            own = []
        block = []
        at_head = False

        type_name = re.match(r"class RV_EXPORT (RV\w+) ", line)
        function = re.match(r" {4}\w[\w:<>*& ]*?(\w+)\(", line)
        if type_name and not own:
            is_algorithm = type_name.group(1).endswith("Algorithm")
            own = [f"/// @copydoc {path}" if is_algorithm else f"/// Its contract is in {path}."]
        elif function and not own and function.group(1) == getter[0]:
            own = getter[1]
        if function:
            getter = (function.group(1), own)
        result += own
        result.append(re.sub(r"([;,]\s*)// (?!NOLINT)", r"\1///< ", line))
    return "\n".join(result)


def markdown(path, text):
    listed = set()

    def link(match):
        words, target = match.groups()
        if re.match(r"https?:|#", target):
            return match.group(0)
        words = " ".join(words.split())
        page = os.path.normpath(path.parent / target.partition("#")[0])
        if not page.endswith(".md"):
            return words
        # The index is above the pages that it lists.
        if path == ALGORITHMS / "README.md" and page not in listed:
            listed.add(page)
            return f'@subpage {page_label(page)} "{words}"'
        return f"[{words}](@ref {page_label(page)})"

    return re.sub(r"(?<!!)\[([^\]]*)\]\(([^)]*)\)", link, text)


path = pathlib.Path(sys.argv[1])
if path.is_absolute():
    path = path.relative_to(pathlib.Path.cwd())
contents = path.read_text()
sys.stdout.write(markdown(path, contents) if path.suffix == ".md" else header(path, contents))
