#!/usr/bin/env python3
"""Makes the catalogue of a language that nobody speaks from the template: letters with accents, two fifths longer, in
brackets. A text without brackets on the screen is not in the catalogue; one that is cut will be cut in German too.

usage: pseudo.py TEMPLATE >CATALOGUE
"""
import re
import sys

ACCENTED = str.maketrans("AaCcEeGgIiLlNnOoSsUuYyZz", "ÅåÇçÉéĜĝÎîĽľÑñÖöŠšÜüÝýŽž")
# What stays as it is: placeholders, commands in backquotes, escapes.
FIXED = re.compile(r"(\{[A-Za-z]+\}|`[^`]*`|\\.)")


def pseudo(text):
    parts = FIXED.split(text)
    letters = sum(len(part) for part in parts[::2])
    parts[::2] = [part.translate(ACCENTED) for part in parts[::2]]
    longer = " ".join(["~~~~~"] * (letters // 15)) + "~" * (letters % 15 * 2 // 5)
    return "[" + "".join(parts) + (" " if letters > 40 else "") + longer + "]"


def entries(template):
    """The fields of each entry, with their texts in one piece: {"msgid": text, …}."""
    for block in template.split("\n\n"):
        fields = re.findall(r'^(msg\S+) ((?:".*"\n?)+)', block, re.M)
        yield {name: "".join(re.findall(r'^"(.*)"$', value, re.M)) for name, value in fields}


print('msgid ""\nmsgstr "Language: en_XA\\nContent-Type: text/plain; charset=UTF-8\\n"')
print('"Plural-Forms: nplurals=2; plural=(n != 1);\\n"')
for entry in entries(open(sys.argv[1], encoding="utf-8").read()):
    if not entry.get("msgid"):
        continue
    print()
    for name in ("msgctxt", "msgid", "msgid_plural"):
        if name in entry:
            print(f'{name} "{entry[name]}"')
    if "msgid_plural" in entry:
        print(f'msgstr[0] "{pseudo(entry["msgid"])}"\nmsgstr[1] "{pseudo(entry["msgid_plural"])}"')
    else:
        print(f'msgstr "{pseudo(entry["msgid"])}"')
