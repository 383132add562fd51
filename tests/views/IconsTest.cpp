#include "Spacemint/views/Icons.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

struct Case {
  const char* name;
  const char* symbol;
};

TEST(Icons, folderIsKnownByItsExtension) {
  const Case cases[]{
      {"Editor.app", "app.dashed"}, {"Editor.APP", "app.dashed"}, {".Trash", "trash"}, {".trash", "folder"},
      {".app", "folder"},           {"movie.mp4", "folder"},      {"", "folder"}};
  for (const auto& [name, symbol] : cases) EXPECT_EQ(Icons::symbol(name, true), symbol) << name;
}

TEST(Icons, fileIsKnownByItsTypeInTheOrderOfTheTable) {
  const Case cases[]{{"System.IMG.gz", "externaldrive"},
                     {"docker.raw", "externaldrive"},
                     {"photo.raw", "photo"},
                     {".mp4", "doc"},
                     {"data.nosuchtype", "doc"},
                     {"holiday.MOV", "film"},
                     {"song.mp3", "waveform"},
                     {"debian.iso", "externaldrive"},
                     {"machine.qcow2", "externaldrive"},
                     {"old.tar.gz", "doc.zipper"},
                     {"Editor.AppImage", "app.dashed"},
                     {"Editor.app", "doc"},
                     {"bad \xFF name.mp4", "film"},
                     {"", "doc"}};
  for (const auto& [name, symbol] : cases) EXPECT_EQ(Icons::symbol(name, false), symbol) << name;
}

}  // namespace
}  // namespace spacemint
