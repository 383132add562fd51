#!/usr/bin/env python3
"""Draws the gallery in the pseudo language: every text must have the language's brackets, so that
none is left untranslated. The gallery also says which texts are cut (--texts).

usage: one_language.py GALLERY FOLDER
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
# These pages show components, with captions for developers.
OF_DEVELOPERS = re.compile(r"kit-|picture-lines$")
# What ICU says of dates.
DATE = re.compile(r"(\d+ \w+ ago|[A-Z][a-z]{2} \d+|[A-Z][a-z]{2} \d{4}|\d+:\d\d [AP]M)$")


def samples():
    """The texts of the samples, where the names of files and the like come from: strings that are no sentence."""
    for source in [*ROOT.glob("tools/gallery/*.cpp"), *ROOT.glob("tests/support/*.cpp")]:
        code = re.sub(r'"\n\s*"', "", source.read_text(encoding="utf-8"))  # a string on two lines
        for sentence, text in re.findall(r'(i18n\w*\()?"((?:[^"\\\n]|\\.)*)"', code):
            if not sentence:
                yield text.replace("\\n", "\n")


def is_name(part, known):
    numbered = re.sub(r" \d+$", "", part)
    return (not re.search(r"[^\W\d_]", part) or DATE.match(part) or
            any(re.search(rf"(?<!\w){re.escape(name)}(?!\w)", known) for name in (part, numbered)))


def is_translated(text, known):
    if text.startswith("[") and text.endswith("]") or text.endswith("~]"):
        return True
    text = re.sub("[\u2066-\u2069]", "", text)
    return all(is_name(part, known) for part in re.split(r" · | / | & |/", text))


def faults(lines):
    known = "\n".join(samples())
    for page, _, text in (line.split("\t") for line in lines):
        if OF_DEVELOPERS.match(page):
            continue
        if not is_translated(text, known):
            yield f"{page}: not translated: {text}"


gallery, folder = sys.argv[1:]
drawn = subprocess.run([gallery, "--language", "en_XA", "--dark", "--texts", folder],
                       capture_output=True, text=True, check=True)
found = sorted(set(faults(drawn.stdout.splitlines())))
print("\n".join(found))
sys.exit(1 if found or not drawn.stdout else 0)
