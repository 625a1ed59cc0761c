#!/usr/bin/env python3
"""Draws the graphs of the pages about algorithms.

usage: draw.py PAGE.md...    writes PAGE.svg beside each page, by Graphviz

What is drawn is the text of the page's ExampleGraph. A comment in the page says how:

    <!-- picture: colours path, detour; numbers distance; layout rankdir=TB -->

`colours` gives each line of the expected output that begins with one of the words a colour of its own, and
what is named in the line takes it; `numbers` writes on a node its place in such a line, or the value of
`node=value`, and before the label of an edge the value of `edge=value`; `layout` is for Graphviz.

A picture carries the text that it was drawn from, and is drawn again when that has changed.
"""
import pathlib
import re
import subprocess
import sys

FILLS = ["#a8d1f0", "#f6c18f", "#b5dfa4", "#d8bfe8", "#f4b0b0", "#ecdf90", "#a9e0da", "#d6c4b0"]
LINES = ["#1b6ca8", "#c25e00", "#3a8a1f", "#7a3fa0", "#c02a2a", "#94800a", "#12807a", "#7c5a32"]


def quoted(text):
    return '"' + text.replace('"', '\\"') + '"'


def attributes(values):
    return " [" + ", ".join(f"{name}={value}" for name, value in values.items()) + "]" if values else ""


def directives(page):
    found = re.search(r"<!-- picture:(.*?)-->", page, re.S)
    parts = [part.split(None, 1) for part in found.group(1).split(";") if part.strip()] if found else []
    return {kind: rest.strip() for kind, rest in parts}


def output_lines(page, words):
    """The words behind the colon, for every line of the output that begins with one of the words."""
    expected = re.search(r"^```text\n(.*?)^```", page, re.S | re.M).group(1)
    wanted = tuple(word.strip() for word in words.split(",") if word.strip())
    lines = [line.partition(":") for line in expected.splitlines() if wanted and line.startswith(wanted)]
    if wanted and not lines:
        raise ValueError(f"no line of the output begins with {words}")
    return [re.split(r"[\s,]+", rest.strip()) for _, _, rest in lines]


def graph_tokens(page):
    literals = re.search(r'ExampleGraph \w+\(((?:\s*"[^"]*")+)\)', page).group(1)
    return "".join(re.findall(r'"([^"]*)"', literals)).split()


def dot_text(page):
    say = directives(page)
    colours = {}  # of a node or edge, the last line that names it
    for place, words in enumerate(output_lines(page, say.get("colours", ""))):
        colours.update((word.partition("=")[0], place % len(FILLS)) for word in words)
    numbers = {}
    for words in output_lines(page, say.get("numbers", "")):
        for place, word in enumerate(words, 1):
            name, _, value = word.partition("=")
            numbers[name] = value or str(place)

    nodes = {}
    edges = []
    for token in graph_tokens(page):
        ends, _, label = token.partition(":")
        arrow = re.search("->|--", ends)
        for name in [ends[: arrow.start()], ends[arrow.end() :]] if arrow else [ends]:
            nodes.setdefault(name, "")
        if not arrow:
            nodes[ends] = label
            continue
        written = "/".join(part for part in (numbers.get(ends, ""), label) if part)
        shown = {"label": quoted(written)} if written else {}
        if arrow.group() == "--":
            shown["dir"] = "none"
        # Colours follow the whole token where edges are parallel, else what the pages print.
        place = colours.get(token, colours.get(ends))
        if place is not None:
            shown.update(color=quoted(LINES[place]), penwidth="2.5")
        edges.append((ends[: arrow.start()], ends[arrow.end() :], shown))

    lines = ["digraph {", f"  graph [{say.get('layout', 'rankdir=LR')}, bgcolor=transparent]"]
    lines.append('  node [fontname="DejaVu Sans", fontsize=12, height=0.4, style=filled, fillcolor="#f4f4f4"]')
    lines.append('  edge [fontname="DejaVu Sans", fontsize=11, color="#666666"]')
    for name, label in nodes.items():
        rows = name + (":" + label if label else "") + ("\\n" + numbers[name] if name in numbers else "")
        shown = {"label": quoted(rows)} if rows != name else {}
        if name in colours:
            place = colours[name]
            shown.update(fillcolor=quoted(FILLS[place]), color=quoted(LINES[place]))
        lines.append(f"  {quoted(name)}{attributes(shown)}")
    lines += [f"  {quoted(a)} -> {quoted(b)}{attributes(shown)}" for a, b, shown in edges]
    return "\n".join(lines + ["}"]) + "\n"


for path in map(pathlib.Path, sys.argv[1:]):
    page = path.read_text()
    if "ExampleGraph" not in page:
        continue
    try:
        if f"]({path.stem}.svg)" not in page:
            raise ValueError("it does not show its picture")
        dot = dot_text(page)
    except (AttributeError, ValueError) as error:
        sys.exit(f"{path}: cannot be drawn: {error}")
    note = f"<!-- Drawn from\n{dot}-->\n"
    picture = path.with_suffix(".svg")
    if not picture.exists() or note not in picture.read_text():
        svg = subprocess.run(["dot", "-Tsvg"], input=dot, capture_output=True, text=True, check=True).stdout
        picture.write_text(svg + note)
        print(f"drawn: {picture}")
