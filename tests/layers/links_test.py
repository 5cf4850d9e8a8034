#!/usr/bin/env python3
"""Links and pictures in Markdown lead to files and headings that exist. usage: links_test.py ROOT"""
import os
import pathlib
import re
import sys

OUTSIDE = {".git", "build", "out", "node_modules"}  # generated, or not ours


def without_code(text):
    return re.sub(r"^( *)```.*?^\1```", "", text, flags=re.MULTILINE | re.DOTALL)


def pages(root):
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name not in OUTSIDE]
        yield from (pathlib.Path(folder, name) for name in names if name.endswith(".md"))


def anchors(page):
    """As on the usual hosting sites: lower case, punctuation dropped, hyphens for spaces, repeats numbered."""
    found = {}
    for heading in re.findall(r"^#+ (.*)$", without_code(page.read_text()), re.MULTILINE):
        text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading.strip())
        anchor = re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")
        found[anchor] = found.get(anchor, -1) + 1
        yield f"{anchor}-{found[anchor]}" if found[anchor] else anchor


def broken_links(root):
    links = 0
    for page in sorted(pages(root)):
        for match in re.finditer(r'\]\(\s*([^)\s]+)|(?:src|href)="([^"]+)"', without_code(page.read_text())):
            link = match[1] or match[2]
            links += 1
            if re.match(r"[a-z]+:", link):
                continue
            path, _, anchor = link.partition("#")
            target = page.parent / path if path else page
            if not target.exists():
                yield f"{page.relative_to(root)}: {link}: no such file"
            elif anchor and (target.suffix != ".md" or anchor not in anchors(target)):
                yield f"{page.relative_to(root)}: {link}: no such heading"
    if links == 0:
        yield "no links found"


broken = list(broken_links(pathlib.Path(sys.argv[1])))
print("\n".join(broken))
sys.exit(1 if broken else 0)
