#!/bin/sh
# Writes all texts of the sources that a user reads, for translators, to standard output.
set -eu
cd "$(dirname "$0")/.."
find core spacemintctl Spacemint AppServices ui_kit -name '*.cpp' -o -name '*.h' | LC_ALL=C sort |
  xgettext --files-from=- --output=- --language=C++ --from-code=UTF-8 --package-name=Spacemint \
    --keyword --keyword=i18n:1 --keyword=i18nc:1c,2 --keyword=i18np:1,2 --keyword=i18nMark:1 --keyword=counted:2,3 \
    --add-comments=Translators: --add-location=file --width=100 |
  sed '/^"POT-Creation-Date:/d'
