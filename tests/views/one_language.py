#!/usr/bin/env python3
"""Draws the gallery in the pseudo language: every text must have the language's brackets, so that none is left
untranslated. Then draws it in other languages: no text may be cut but the names of files and folders.

usage: one_language.py GALLERY FOLDER LANGUAGE...
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
PATH = re.compile(r"~?/\w")


def samples():
    """The texts of the samples, where the names of files and the like come from: strings that are no sentence."""
    for source in [*ROOT.glob("tools/gallery/*.cpp"), *ROOT.glob("tests/support/*.cpp")]:
        code = re.sub(r'"\n\s*"', "", source.read_text(encoding="utf-8"))  # a string on two lines
        for sentence, text in re.findall(r'(i18n\w*\()?"((?:[^"\\\n]|\\.)*)"', code):
            if not sentence:
                yield text.replace("\\n", "\n")


def parts_of(text):
    return re.split(r" · | / | & |/", re.sub("[\u200e\u200f\u2066-\u2069]", "", text))


def has_letters(part):
    return re.search(r"[^\W\d_]", part)


def is_name(part, known):
    numbered = re.sub(r" \d+$", "", part)
    return any(re.search(rf"(?<!\w){re.escape(name)}(?!\w)", known) for name in (part, numbered))


def is_translated(text, known):
    if text.startswith("[") and text.endswith("]") or text.endswith("~]"):
        return True
    return all(not has_letters(part) or DATE.match(part) or is_name(part, known) for part in parts_of(text))


def may_be_cut(fit, text, known):
    """A text that leaves out its middle may have more in it than a name."""
    names = [PATH.match(part) or is_name(part, known) for part in parts_of(text) if has_letters(part)]
    return fit == "-" or (any(names) or PATH.search(text) if fit == "shortened" else all(names))


def texts(language, *options):
    """The page, the fit and the text of everything that the gallery shows in a language."""
    drawn = subprocess.run([gallery, "--language", language, "--texts", *options], capture_output=True, text=True,
                           check=True)
    lines = [line.split("\t") for line in drawn.stdout.splitlines()]
    return [line for line in lines if not OF_DEVELOPERS.match(line[0])] or sys.exit("the gallery shows no text")


gallery, folder, *languages = sys.argv[1:]
known_names = "\n".join(samples())
found = {f"{page}: not translated: {text}" for page, _, text in texts("en_XA", "--dark", folder)
         if not is_translated(text, known_names)}
for each in languages:
    found |= {f"{page}, {each}: cut: {text}" for page, fit, text in texts(each)
              if not may_be_cut(fit, text, known_names)}
print("\n".join(sorted(found)))
sys.exit(bool(found))
