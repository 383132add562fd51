#!/usr/bin/env python3
"""Checks the catalogues of translations: every text of the sources is in spacemint.pot, every language has all of
them, with the same placeholders, and no text names a part of another platform.

usage: check.py FOLDER-FOR-FILES
"""
import gettext
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
OTHER_PLATFORM = re.compile(r"\b(Finder|Mac|macOS|[Mm]enu bar|Dock|OrbStack)\b")
PLACEHOLDER = re.compile(r"\{[A-Za-z]+\}")


def run(*command):
    """The errors that a program prints, or an empty text if it is content."""
    result = subprocess.run(command, capture_output=True, text=True)
    return result.stderr if result.returncode != 0 else ""


def texts_of(catalogue):
    """Of a compiled catalogue: an English text, its translation, and the placeholders that need not agree."""
    with open(catalogue, "rb") as file:
        entries = gettext.GNUTranslations(file)._catalog
    for key, translation in entries.items():
        source = key[0] if isinstance(key, tuple) else key
        # A form for one thing alone need not name the number, in English as elsewhere.
        free = {"{count}", "{number}"} if isinstance(key, tuple) else set()
        if source:
            yield source.split("\x04")[-1], translation, free


def problems_of_language(language, compiled):
    file = HERE / f"{language}.po"
    yield run("msgfmt", "--check", "-o", compiled, file)
    yield run("msgcmp", file, HERE / "spacemint.pot")
    if f'"Language: {language}\\n"' not in file.read_text():
        yield f"{file.name}: the header does not say Language: {language}\n"
    for source, translation, free in texts_of(compiled):
        if (set(PLACEHOLDER.findall(source)) ^ set(PLACEHOLDER.findall(translation))) - free:
            yield f"{file.name}: other placeholders than in “{source}”: “{translation}”\n"
        if OTHER_PLATFORM.search(translation):
            yield f"{file.name}: another platform in “{translation}”\n"


def problems(folder):
    template = (HERE / "spacemint.pot").read_text()
    extracted = subprocess.run([HERE / "extract.sh"], capture_output=True, text=True, check=True).stdout
    if extracted != template:
        yield "the texts of the sources are others than those in po/spacemint.pot: run ./dev words\n"
    for text in re.findall(r'^"?msgid.*(?:\n".*)*', template, re.M):
        if OTHER_PLATFORM.search(text):
            yield f"another platform in {text}\n"
    for language in (HERE / "LINGUAS").read_text().split():
        yield from problems_of_language(language, pathlib.Path(folder) / f"{language}.mo")


found = [text for text in problems(sys.argv[1]) if text]
sys.stderr.writelines(found)
sys.exit(1 if found else 0)
