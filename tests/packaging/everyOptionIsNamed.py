"""Fails when the man page or a completion leaves out a command or an option that the program has.

usage: everyOptionIsNamed.py PROGRAM FOLDER
"""

import gzip
import pathlib
import re
import subprocess
import sys

program, folder = sys.argv[1], pathlib.Path(sys.argv[2])


def words(path=()):
    """What --help lists at the start of its indented lines: commands and spellings of options."""
    text = subprocess.run([program, *path, "--help"], check=True, capture_output=True, text=True).stdout
    found = set(re.findall(r"(?:^  |,)(--?[a-z][a-z0-9-]*)", text, re.MULTILINE))
    for command in re.findall(r"^  ([a-z]+) ", text.partition("Subcommands:")[2], re.MULTILINE):
        found |= {command} | words((*path, command))
    return found


expected = words()
if len(expected) < 20:
    sys.exit(f"--help was not understood: {expected}")
bad = False
manuals = [str(page.relative_to(folder)) for page in folder.glob("man/**/spacemintctl.1.gz")]
if len(manuals) < 2:
    sys.exit("there are no translated manual pages")
for file, spell in {
    **{manual: lambda word: re.escape(word.replace("-", "\\-")) for manual in manuals},
    "spacemintctl.bash": re.escape,
    "_spacemintctl": re.escape,
    "spacemintctl.fish": lambda w: re.sub("^(-[a-z])$", r"-s \1", w).replace("-s -", "-s ").replace("--", "-l ", 1),
}.items():
    content = (folder / file).read_bytes()
    text = (gzip.decompress(content) if file.endswith(".gz") else content).decode()
    for word in sorted(expected):
        if not re.search(rf"(?<![\w-]){spell(word)}(?![\w-])", text):
            print(f"{file} does not name {word}")
            bad = True
sys.exit(bad)
