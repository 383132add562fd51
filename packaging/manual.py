"""Writes the manual pages of spacemint and spacemintctl in a language: their short descriptions, which `whatis` and
`apropos` show, are translated; the pages themselves are in English.

usage: manual.py CATALOGUE PAGE... FOLDER
"""

import gettext
import gzip
import pathlib
import re
import sys


def described(text):
    """Marks a short description for the catalogue."""
    return text


described("watch free disk space and show what uses it")

catalogue, *pages, folder = sys.argv[1:]
with open(catalogue, "rb") as file:
    translate = gettext.GNUTranslations(file).gettext
for page in map(pathlib.Path, pages):
    text = re.sub(r"(?<=\n)(\w+ \\- )(.*)", lambda line: line[1] + translate(line[2]), page.read_text(), count=1)
    target = pathlib.Path(folder) / (page.name + ".gz")
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(gzip.compress(text.encode(), mtime=0))
