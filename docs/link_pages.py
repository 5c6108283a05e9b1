#!/usr/bin/env python3
"""Input filter of the reference: links to files that are no pages of it become plain text."""
import pathlib
import re
import sys

PAGES = {"README.md", "CHANGELOG.md", "CONTRIBUTING.md", "architecture.md", "renderer.md", "guide.md"}


def link(match):
    name = match[3].rsplit("/", 1)[-1]
    if match[1]:  # a picture, found by its name
        return f"![{match[2]}]({name})"
    # Of the files of one name, such as README.md, the one that is a page lies at the root or in docs.
    folder = match[3][:-len(name)].strip("/")
    if "://" in match[3] or name in PAGES and folder in ("", "..", "docs"):
        return match[0]
    return match[2]


text = pathlib.Path(sys.argv[1]).read_text()
print(re.sub(r"(!?)\[([^\]]+)\]\(([^)]+)\)", link, text), end="")
