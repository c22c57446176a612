#!/usr/bin/env python3
"""Renews docs/page.svg, the picture in README.md, from a world of lumo-sim and the page that zorv-explain writes of it:
docs/page_picture.py [BIN_DIR [FILE]]. The same programs give the same bytes."""
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from pathlib import Path

HERE = Path(__file__).parent
RANGE = ["20230105103000", "20230105143000"]
ZONE = {**os.environ, "TZ": "CST-8"}
WIDTH, MARGIN = 1000.0, 16.0
SVG = "{http://www.w3.org/2000/svg}"


def page_of(bin_dir):
    with tempfile.TemporaryDirectory() as world:
        page = Path(world) / "page.html"
        subprocess.run([bin_dir / "lumo-sim", "--root", world, "--scenario", "slow-disk", "--end", RANGE[1]], check=True,
                       stdout=subprocess.DEVNULL, env=ZONE)
        subprocess.run([bin_dir / "zorv-explain", "--root", world, "--html", page, *RANGE], check=True,
                       stdout=subprocess.DEVNULL, env=ZONE)
        return page.read_text()


def style_of(page, classes):
    """Of the page's style the colours, light and dark, and the rules of these classes and of text."""
    style = re.search(r"<style>(.*?)</style>", page, re.S)[1]
    colours = re.match(r"\s*(:root .*?\n@media \(prefers-color-scheme.*?\} \}\n)", style, re.S)
    rules = [rule for rule in re.findall(r"^[.s].*\}$", style[colours.end():], re.M)
             if rule.startswith("svg text") or classes & set(re.findall(r"\.([a-z-]+)", rule.partition("{")[0]))]
    return colours[1] + "\n".join(rules)


def picture_of(page):
    root = ElementTree.fromstring(page.removeprefix("<!DOCTYPE html>"))
    drawings = [drawing for drawing in root.iter(SVG + "svg") if drawing.get("class") == "graph"][:1]
    named = [figure for figure in root.iter("figure") if figure.find("figcaption/strong") is not None][:1]
    captions = {figure.find(f".//{SVG}svg"): figure.find("figcaption/strong").text for figure in named}
    drawings[:0] = captions
    ElementTree.register_namespace("", SVG[1:-1])
    height, body = MARGIN, ""
    for drawing in drawings:
        _, _, width, tall = map(float, drawing.get("viewBox").split())
        shown = tall * (WIDTH - 2 * MARGIN) / width
        point = captions.get(drawing, "")
        height += 14 if point else 0
        body += f'<text x="{MARGIN:.0f}" y="{height:.1f}" class="name">{point}</text>\n' if point else ""
        drawing.set("x", f"{MARGIN:.0f}"), drawing.set("y", f"{height:.1f}")
        drawing.set("width", f"{WIDTH - 2 * MARGIN:.0f}"), drawing.set("height", f"{shown:.1f}")
        height += shown + MARGIN
        body += ElementTree.tostring(drawing, encoding="unicode") + "\n"
    style = style_of(page, {word for names in re.findall(r'class="([^"]*)"', body) for word in names.split()})
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH:.0f} {height:.1f}" width="{WIDTH:.0f}" height="{height:.1f}" '
            f'font-family="ui-monospace, monospace" font-size="11">\n<style>\n{style}\n</style>\n'
            f'<rect width="100%" height="100%" style="fill: var(--card)"/>\n{body}</svg>\n')


bin_dir = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "build/dev/bin"
(Path(sys.argv[2]) if len(sys.argv) > 2 else HERE / "page.svg").write_text(picture_of(page_of(bin_dir)))
