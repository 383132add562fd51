"""Writes the manual page and the shell completions of a program, generated from its --help. The page is written in
every language for which there is a catalogue, below FOLDER/man, as man finds it.

In C.UTF-8 the program may not translate: call this in another locale.

usage: commandLine.py PROGRAM FOLDER CATALOGUES LANGUAGE...
"""

import gettext
import gzip
import os
import pathlib
import re
import subprocess
import sys


class Language:
    """Translates texts of the catalogue."""

    def __init__(self, code, catalogues):
        self.code = code
        self.translation = gettext.translation("spacemint", catalogues, [code], fallback=code == "en")

    def __call__(self, text):
        return self.translation.gettext(text)


class Command:
    """A command of the program: the contents of its --help in a language, and its subcommands."""

    def __init__(self, program, language, path=()):
        self.path = path
        text = subprocess.run([program, *path, "--help"], check=True, capture_output=True, text=True,
                              env={**os.environ, "LANGUAGE": language.code}).stdout
        self.summary, self.usage = text.splitlines()[:2]
        self.usage = self.usage.removeprefix(language("Usage") + ": ")
        self.arguments = rows(text, language("Positionals"))
        self.options = rows(text, language("Options"))
        self.commands = [Command(program, language, (*path, name)) for name, _ in rows(text, language("Subcommands"))]

    def all(self):
        yield self
        for command in self.commands:
            yield from command.all()

    def flags(self):
        """Pairs of an option's spelling and its help text, one for each spelling."""
        return [(flag, help) for names, help in self.options for flag in re.split(r"[ =]", names)[0].split(",")]

    def words(self):
        return [(command.path[-1], command.summary) for command in self.commands] + self.flags()


def rows(text, section):
    """The pairs of term and help text in a section of --help."""
    found = re.search(rf"^{section}:\n((?:  .*\n)*)", text, re.MULTILINE)
    # A help text stands in the line of its term, or in the next line if the term is long.
    lines = re.findall(r"^  (\S.*(?:\n {8,}\S.*)*)", found.group(1), re.MULTILINE) if found else []
    return [tuple(re.split(r"\s{2,}", line, maxsplit=1)) for line in lines]


def described(text):
    """Marks a short description for the catalogue."""
    return text


def roff(text):
    return text.replace("\\", "\\e").replace("-", "\\-")


def man(root, language):
    def heading(text):
        return f".SH {language(text)}"

    name = root.usage.split()[0]
    page = [f".TH {name.upper()} 1", heading(described("NAME")),
            f"{name} \\- " + language(described("see what is big on your disk and clean it from a terminal")),
            heading(described("SYNOPSIS")), f".B {name}", language(described("COMMAND [OPTION ...]")),
            heading(described("DESCRIPTION")), roff(language("{text}.").format(text=root.summary))]
    for command in root.all():
        if not command.path:
            page += [heading("OPTIONS")]
        elif command is root.commands[0]:
            page += [heading(described("COMMANDS"))]
        if command.path:
            page += [f".SS {roff(command.usage)}", roff(language("{text}.").format(text=command.summary))]
        for term, help in command.arguments + command.options:
            page += [".TP", f".B {roff(term)}", roff(help)]
    page += [heading(described("ENVIRONMENT")), ".TP", ".B SPACEMINT_LOG", roff(language(described(
        "info or debug: write the reason of each decision to standard error, one line for each.")))]
    return "\n".join([*page, heading(described("SEE ALSO")), ".BR spacemint (1)", ""])


def bash(root):
    name = root.usage.split()[0]
    cases = "\n".join(f'    "{" ".join(c.path)}") words="{" ".join(w for w, _ in c.words())}" ;;' for c in root.all())
    known = "|".join(f'"{" ".join(c.path)}"' for c in root.all() if c.path)
    return f"""# bash completion for {name}
_{name}() {{
  local word path="" words="" current=${{COMP_WORDS[COMP_CWORD]}}
  for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
    case "${{path:+$path }}$word" in
      {known}) path="${{path:+$path }}$word" ;;
    esac
  done
  case "$path" in
{cases}
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}}
complete -o default -F _{name} {name}
"""


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh(root):
    name = root.usage.split()[0]
    cases = "\n".join(f'    "{" ".join(c.path)}") entries=({" ".join(quoted(w + ":" + h.replace(":", chr(92) + ":")) for w, h in c.words())}) ;;'
                      for c in root.all())
    known = "|".join(f'"{" ".join(c.path)}"' for c in root.all() if c.path)
    return f"""#compdef {name}
local word branch=""
local -a entries
for word in "${{words[@]:1:$((CURRENT - 2))}}"; do
  case "${{branch:+$branch }}$word" in
    {known}) branch="${{branch:+$branch }}$word" ;;
  esac
done
case "$branch" in
{cases}
esac
_describe command entries
_files
"""


def fish(root):
    name = root.usage.split()[0]
    lines = [f"# fish completion for {name}"]
    for command in root.all():
        below = " ".join(child.path[-1] for child in command.commands)
        tests = [f"__fish_seen_subcommand_from {word}" for word in command.path]
        here = "; and ".join(tests + ([f"not __fish_seen_subcommand_from {below}"] if below else []))
        for child in command.commands:
            lines.append(f"complete -c {name} -n {quoted(here)} -f -a {child.path[-1]} -d {quoted(child.summary)}")
        for flag, help in command.flags():
            kind = f"-l {flag[2:]}" if flag.startswith("--") else f"-s {flag[1:]}"
            lines.append(f"complete -c {name} -n {quoted(here)} {kind} -d {quoted(help)}")
    return "\n".join([*lines, ""])


def main(program, folder, catalogues, *codes):
    english = Language("en", catalogues)
    root = Command(program, english)
    name = root.usage.split()[0]
    out = pathlib.Path(folder)
    out.mkdir(parents=True, exist_ok=True)
    for language in (Language(code, catalogues) for code in codes):
        page = out / "man" / language.code / "man1" / f"{name}.1.gz"
        page.parent.mkdir(parents=True, exist_ok=True)
        page.write_bytes(gzip.compress(man(Command(program, language), language).encode(), mtime=0))
    for file, text in {f"{name}.1": man(root, english), f"{name}.bash": bash(root), f"_{name}": zsh(root), f"{name}.fish": fish(root)}.items():
        (out / file).write_text(text)


main(*sys.argv[1:])
