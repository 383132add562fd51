"""Writes the man page and the shell completions of a program, generated from its --help.

usage: commandLine.py PROGRAM FOLDER
"""

import os
import pathlib
import re
import subprocess
import sys


class Command:
    """A command of the program: the contents of its --help, and its subcommands."""

    def __init__(self, program, path=()):
        self.path = path
        text = subprocess.run([program, *path, "--help"], check=True, capture_output=True, text=True,
                              env={**os.environ, "LC_ALL": "C"}).stdout
        self.summary, self.usage = text.splitlines()[:2]
        self.usage = self.usage.removeprefix("Usage: ")
        self.arguments = rows(text, "Positionals")
        self.options = rows(text, "Options")
        self.commands = [Command(program, (*path, name)) for name, _ in rows(text, "Subcommands")]

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
    return [tuple(re.split(r"\s{2,}| (?=Print this)", line, maxsplit=1)) for line in lines]


def described(text):
    """Marks a short description for the catalogue."""
    return text


def roff(text):
    return text.replace("\\", "\\e").replace("-", "\\-")


def man(root):
    name = root.usage.split()[0]
    page = [f".TH {name.upper()} 1", ".SH NAME", f"{name} \\- " + described("see what is big on your disk and clean it from a terminal"),
            ".SH SYNOPSIS", f".B {name}", "COMMAND [OPTION ...]", ".SH DESCRIPTION", roff(root.summary) + "."]
    for command in root.all():
        page += [".SH OPTIONS"] if not command.path else [".SH COMMANDS"] if command is root.commands[0] else []
        if command.path:
            page += [f".SS {roff(command.usage)}", roff(command.summary) + "."]
        for term, help in command.arguments + command.options:
            page += [".TP", f".B {roff(term)}", roff(help)]
    page += [".SH ENVIRONMENT", ".TP", ".B SPACEMINT_LOG",
             roff("info or debug: write the reason of each decision to standard error, one line for each.")]
    return "\n".join([*page, ".SH SEE ALSO", ".BR spacemint (1)", ""])


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


def main(program, folder):
    root = Command(program)
    name = root.usage.split()[0]
    out = pathlib.Path(folder)
    out.mkdir(parents=True, exist_ok=True)
    for file, text in {f"{name}.1": man(root), f"{name}.bash": bash(root), f"_{name}": zsh(root), f"{name}.fish": fish(root)}.items():
        (out / file).write_text(text)


main(*sys.argv[1:])
