#!/usr/bin/env python3
"""What Doxygen reads in place of a file of this project; see FILTER_PATTERNS in docs/Doxyfile.

usage: filter.py FILE    (from the root of the project)

In headers, `//` comments that stand above or behind a declaration become `///` and `///<`, the comment at the
head becomes that of the file and of the algorithm in it, and what is indented in a comment becomes code. In
Markdown, links to what has no page here become plain text, and links into pages links to them.
"""
import os
import pathlib
import re
import sys


def comment_lines(lines, indent):
    """A block of comment lines without their slashes, as a comment of Doxygen."""
    result = []
    code = False
    for line in lines:
        indented = line.startswith("  ") and (code or not result or result[-1] == "")
        if indented and not code:
            result.append("@code{.cpp}")
        elif code and not line.startswith("  ") and line:
            result.append("@endcode")
        code = indented or (code and not line)
        if not code:  # what is no code is plain text
            line = re.sub(r"([<>&@#])", r"\\\1", line)
        result.append(line)
    if code:
        result.append("@endcode")
    return "".join(f"{indent}/// {line}".rstrip() + "\n" for line in result)


def header(path, text):
    lines = text.split("\n")
    page = pathlib.Path("docs/algorithms") / (path.stem + ".md")
    link = f"See the page @ref md_docs_algorithms_{path.stem}." if page.exists() else ""
    result = []
    block = []
    at_head = True
    for line in lines:
        comment = re.match(r"^(\s*)//(?: (.*)|$)", line)
        if comment and not re.match(r"NOLINT", comment.group(2) or ""):
            block.append((comment.group(1), comment.group(2) or ""))
            continue
        documented = bool(block) and line.strip() != ""
        if at_head and block:
            head = comment_lines([text for _, text in block], "")
            result.append(f"/// @file\n{head}")
            if link:
                result.append(f"///\n/// {link}\n")
            at_head = documented = False
        elif block:
            result.append(comment_lines([text for _, text in block], block[0][0]))
            if not line.strip():  # about what follows, not about one declaration
                result[-1] = result[-1].replace("///", "//")
        block = []
        algorithm = re.match(r"class RV_EXPORT (RV\w+) (?:final )?:", line)
        if algorithm and not documented:
            if algorithm.group(1).endswith("Algorithm"):
                result.append(f"/// @copydoc {path}\n")
            else:
                result.append(f"/// Its contract is in {path}.\n")
        line = re.sub(r"([;,}{]\s*)// (?!NOLINT)(.*)", r"\1///< \2", line)
        result.append(line + "\n")
    return "".join(result)


def markdown(path, text):
    def link(match):
        words, target = match.groups()
        if re.match(r"https?:|#", target):
            return match.group(0)
        page = os.path.normpath(path.parent / target.partition("#")[0])
        if not page.endswith(".md"):
            return words
        label = "index" if page == "README.md" else "md_" + page[:-3].replace("/", "_")
        return f"[{words}](@ref {label})"

    return re.sub(r"(?<!!)\[([^\]]*)\]\(([^)]*)\)", link, text)


path = pathlib.Path(sys.argv[1])
if path.is_absolute():
    path = path.relative_to(pathlib.Path.cwd())
contents = path.read_text()
sys.stdout.write(markdown(path, contents) if path.suffix == ".md" else header(path, contents))
