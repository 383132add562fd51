"""Writes the manual page of the application in a language: its short description, which `whatis` and `apropos` show,
is translated; the page itself is in English.

usage: manual.py CATALOGUE PAGE FOLDER
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

catalogue, page, folder = sys.argv[1:]
with open(catalogue, "rb") as file:
    translate = gettext.GNUTranslations(file).gettext
text = re.sub(r"(?<=\n)(\w+ \\- )(.*)", lambda line: line[1] + translate(line[2]), pathlib.Path(page).read_text(),
              count=1)
target = pathlib.Path(folder) / (pathlib.Path(page).name + ".gz")
target.parent.mkdir(parents=True, exist_ok=True)
target.write_bytes(gzip.compress(text.encode(), mtime=0))
