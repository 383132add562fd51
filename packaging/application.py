"""Writes the manual page of the application. Its options are those of --help.

usage: application.py PROGRAM FOLDER CATALOGUES LANGUAGE...
"""

import sys

from manual import described, environment, head, heading, roff, rows, see_also, terms, write

NAME = "spacemint"
FILES = [
    ("~/.config/spacemint/app.spacemint.Spacemint.json",
     described("The settings; the application and `spacemintctl settings` change them.")),
    ("~/.local/share/Spacemint", described("The scans. Without them nothing can be compared.")),
    ("~/.local/state/spacemint", described("The free space, hour by hour.")),
]
STATUS = [
    ("0", described("Spacemint was quit, or an instance that runs already does what was asked.")),
    ("1", described("It could not start: an option or a file is wrong, there is no display, or, with `--background`, "
                    "it runs already. Standard error says which.")),
]


def page(language, program):
    def translated(pairs):
        return terms((term, language(text)) for term, text in pairs)

    text = language.help_of(program)
    arguments = text.splitlines()[0].partition(NAME)[2].strip()
    return [
        *head(language, NAME, described("watch free disk space and show what uses it"), arguments),
        roff(language(described("Watches the free space of the disk from the status area, scans the home folder now and "
                                "then, warns before the disk is full, and cleans what you confirm."))),
        ".PP", roff(language(described("If Spacemint runs already, that instance does what is asked."))),
        heading(language, described("OPTIONS")), *terms(rows(text)),
        *environment(language, ("LANGUAGE", language(described(
            "The language of all texts, such as de, where it is not the language of the desktop.")))),
        heading(language, described("FILES")), *translated(FILES),
        ".PP", roff(language(described(
            "The variables XDG_CONFIG_HOME, XDG_DATA_HOME and XDG_STATE_HOME move these folders."))),
        heading(language, described("EXIT STATUS")), *translated(STATUS),
        *see_also(language, "spacemintctl"),
    ]


def main(program, folder, catalogues, *codes):
    write(lambda language: page(language, program), NAME, folder, catalogues, codes)


main(*sys.argv[1:])
