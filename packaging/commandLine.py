"""Writes the manual page and the shell completions of the program for the terminal, generated from its --help.

usage: commandLine.py PROGRAM FOLDER CATALOGUES LANGUAGE...
"""

import pathlib
import re
import sys

from manual import Language, described, environment, head, heading, roff, rows, see_also, terms, write


class Command:
    """A command of the program: the contents of its --help in a language, and its subcommands."""

    def __init__(self, program, language, path=()):
        self.path = path
        text = language.help_of(program, *path)
        self.summary, self.usage = text.splitlines()[:2]
        self.usage = self.usage.removeprefix(language("Usage") + ": ")
        self.arguments = section(text, language("Positionals"))
        self.options = section(text, language("Options"))
        self.commands = [Command(program, language, (*path, name)) for name, _ in section(text, language("Subcommands"))]

    def all(self):
        yield self
        for command in self.commands:
            yield from command.all()

    def flags(self):
        """Pairs of an option's spelling and its help text, one for each spelling."""
        return [(flag, help) for names, help in self.options for flag in re.split(r"[ =]", names)[0].split(",")]

    def words(self):
        return [(command.path[-1], command.summary) for command in self.commands] + self.flags()


def section(text, name):
    """The pairs of term and help text in a section of --help."""
    found = re.search(rf"^{re.escape(name)}:\n((?:  .*\n)*)", text, re.MULTILINE)
    return rows(found.group(1)) if found else []


def page(root, language):
    lines = [*head(language, root.usage.split()[0], described("see what is big on your disk and clean it from a terminal"),
                   language(described("COMMAND [OPTION ...]"))),
             roff(language("{text}.").format(text=root.summary))]
    for command in root.all():
        if not command.path:
            lines += [heading(language, "OPTIONS")]
        elif command is root.commands[0]:
            lines += [heading(language, described("COMMANDS"))]
        if command.path:
            lines += [f".SS {roff(command.usage)}", roff(language("{text}.").format(text=command.summary))]
        lines += terms(command.arguments + command.options)
    return [*lines, *environment(language), *see_also(language, "spacemint")]


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
    root = Command(program, Language("en", catalogues))
    name = root.usage.split()[0]
    out = pathlib.Path(folder)
    out.mkdir(parents=True, exist_ok=True)
    for file, text in {f"{name}.bash": bash(root), f"_{name}": zsh(root), f"{name}.fish": fish(root)}.items():
        (out / file).write_text(text)
    write(lambda language: page(Command(program, language), language), name, folder, catalogues, codes)


main(*sys.argv[1:])
