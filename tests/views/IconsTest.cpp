#include "Spacemint/views/Icons.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

struct Case {
  const char* name;
  const char* symbol;
};

TEST(Icons, folderIsKnownByItsExtension) {
  const Case cases[]{{"Editor.app", "app.dashed"},
                     {"Editor.APP", "app.dashed"},
                     {"Photos Library.photoslibrary", "photo.on.rectangle.angled"},
                     {"Music.musiclibrary", "music.note.house"},
                     {"TV.tvlibrary", "music.note.house"},
                     {".Trash", "trash"},
                     {".trash", "folder"},
                     {"Trash", "folder"},
                     {"Downloads", "folder"},
                     {".app", "folder"},
                     {"movie.mp4", "folder"},
                     {"disk.img", "folder"},
                     {"", "folder"}};
  for (const auto& [name, symbol] : cases) EXPECT_EQ(Icons::symbol(name, true), symbol) << name;
}

TEST(Icons, fileIsKnownByItsTypeInTheOrderOfTheTable) {
  const Case cases[]{{"system.img", "externaldrive"},
                     {"System.IMG.gz", "externaldrive"},
                     {"backup.imgx", "externaldrive"},
                     {"Docker.raw", "externaldrive"},
                     {"docker.raw", "externaldrive"},
                     {"photo.raw", "photo"},
                     {"Makefile", "doc"},
                     {".mp4", "doc"},
                     {"core", "doc"},
                     {"data.nosuchtype", "doc"},
                     {"ends with a point.", "doc"},
                     {"holiday.mp4", "film"},
                     {"holiday.MOV", "film"},
                     {"holiday.mkv", "film"},
                     {"photo.jpeg", "photo"},
                     {"photo.HEIC", "photo"},
                     {"song.mp3", "waveform"},
                     {"song.flac", "waveform"},
                     {"debian.iso", "externaldrive"},
                     {"Installer.dmg", "externaldrive"},
                     {"machine.qcow2", "externaldrive"},
                     {"machine.vmdk", "externaldrive"},
                     {"old.zip", "doc.zipper"},
                     {"old.tar.gz", "doc.zipper"},
                     {"old.7z", "doc.zipper"},
                     {"setup.exe", "app.dashed"},
                     {"Editor.AppImage", "app.dashed"},
                     {"Editor.app", "doc"},
                     {"report.pdf", "doc"},
                     {"letter.docx", "doc"},
                     {"notes.txt", "doc"},
                     {"bad \xFF name.mp4", "film"},
                     {"", "doc"}};
  for (const auto& [name, symbol] : cases) EXPECT_EQ(Icons::symbol(name, false), symbol) << name;
}

}  // namespace
}  // namespace spacemint
