"""What the manual pages of both programs have in common. A page is written in English and in every language for which
there is a catalogue, where man finds it: FOLDER/man[/LANGUAGE]/man1/PROGRAM.1.gz.

In C.UTF-8 the programs may not translate: call this in another locale.
"""

import gettext
import gzip
import os
import pathlib
import re
import subprocess


def described(text):
    """Marks a text for the catalogue."""
    return text


class Language:
    """Translates texts of the catalogue."""

    def __init__(self, code, catalogues):
        self.code = code
        self.translation = gettext.translation("spacemint", catalogues, [code], fallback=code == "en")

    def __call__(self, text):
        return re.sub("[\u200e\u200f\u2066-\u2069]", "", self.translation.gettext(text))  # marks of direction

    def help_of(self, program, *path):
        """What the program prints for --help in this language."""
        return subprocess.run([program, *path, "--help"], check=True, capture_output=True, text=True,
                              env={**os.environ, "LANGUAGE": self.code}).stdout


def rows(text):
    """The pairs of term and help text in lines of --help. A help text stands in the line of its term, or in the next
    line if the term is long."""
    return [tuple(re.split(r"\s{2,}", line, maxsplit=1))
            for line in re.findall(r"^  (\S.*(?:\n {8,}\S.*)*)", text, re.MULTILINE)]


def roff(text):
    """What stands in backquotes becomes bold. A line may end between the letters of a script without spaces: man does
    not end with a Chinese text that is longer than its line."""
    text = re.sub(r"`([^`]*)`", r"\\fB\1\\fP", text.replace("\\", "\\e").replace("-", "\\-"))
    text = re.sub(r"([\u2e80-\u9fff\uff00-\uffef])(?<![「『（《])(?=\w)", r"\1\\:", text)
    return re.sub(r"^(?=[.'])", r"\\&", text, flags=re.MULTILINE)


def heading(language, text):
    return f".SH {language(text)}"


def terms(pairs):
    """The lines of a list of terms, each with its text below it."""
    return [line for term, text in pairs for line in (".TP", f".B {roff(term)}", roff(text))]


def head(language, name, summary, arguments):
    """The lines of a page up to its description."""
    manual = language(described("User Commands"))
    return [f'.TH {name.upper()} 1 "" "" "{manual}"', ".ad l", heading(language, described("NAME")),
            f"{name} \\- {language(summary)}", heading(language, described("SYNOPSIS")), f".B {name}", roff(arguments),
            heading(language, described("DESCRIPTION"))]


def environment(language, *more):
    """The variables of both programs, and more pairs of a variable and its text."""
    log = language(described(
        "info or debug: write the reason of each decision to standard error, one line for each."))
    return [heading(language, described("ENVIRONMENT")), *terms([("SPACEMINT_LOG", log), *more])]


def see_also(language, name):
    return [heading(language, described("SEE ALSO")), f".BR {name} (1)"]


def write(page, name, folder, catalogues, codes):
    """Writes `page`, which makes the lines of the page in a language, in all languages."""
    for code in ("en", *codes):
        file = pathlib.Path(folder, "man", "" if code == "en" else code, "man1", f"{name}.1.gz")
        file.parent.mkdir(parents=True, exist_ok=True)
        text = "\n".join([*page(Language(code, catalogues)), ""])
        file.write_bytes(gzip.compress(text.encode(), mtime=0))
