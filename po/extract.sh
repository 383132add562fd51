#!/bin/sh
# Writes all texts that a user reads, for translators, to standard output: those of the sources, of the menu entry, of
# the metainfo file, and the manual pages.
set -eu
cd "$(dirname "$0")/.."
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

extract() {
  xgettext --output="$folder/texts.pot" --join-existing --from-code=UTF-8 --package-name=Spacemint \
    --add-comments=Translators: --add-location=file --width=100 "$@"
}

: >"$folder/texts.pot"
find core spacemintctl Spacemint AppServices ui_kit -name '*.cpp' -o -name '*.h' | LC_ALL=C sort |
  extract --files-from=- --language=C++ --keyword --keyword=i18n:1 --keyword=i18nc:1c,2 --keyword=i18np:1,2 \
    --keyword=i18nMark:1 --keyword=counted:2,3
extract --language=Desktop --keyword --keyword=Name --keyword=GenericName --keyword=Comment --keyword=Keywords \
  packaging/app.spacemint.Spacemint.desktop
extract --its=po/its/metainfo.its packaging/app.spacemint.Spacemint.metainfo.xml
extract --language=Python --keyword --keyword=described packaging/manual.py packaging/application.py packaging/commandLine.py
sed '/^"POT-Creation-Date:/d' "$folder/texts.pot"
