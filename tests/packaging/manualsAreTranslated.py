"""Writes the manual pages in the pseudo language, whose texts are in brackets: all but names must be.

usage: manualsAreTranslated.py APPLICATION TERMINAL_PROGRAM CATALOGUES FOLDER
"""

import gzip
import pathlib
import re
import subprocess
import sys

packaging = pathlib.Path(__file__).resolve().parents[2] / "packaging"
application, terminal, catalogues, folder = sys.argv[1:]
bad = []
for script, program in (("application.py", application), ("commandLine.py", terminal)):
    subprocess.run([sys.executable, packaging / script, program, folder, catalogues, "en_XA"], check=True)
    page = pathlib.Path(folder, "man", "en_XA", "man1", pathlib.Path(program).name + ".1.gz")
    lines = gzip.decompress(page.read_bytes()).decode().splitlines()
    prose = [line for line in lines if not re.match(r"\.(ad|B|BR|PP|SS|TP)\b", line)]
    bad += [line for line in prose if not re.search(r"\[.*\]", line)]
    if len(prose) < 20:
        bad.append(f"{page} has {len(prose)} lines of text")
print("\n".join(bad))
sys.exit(bool(bad))
