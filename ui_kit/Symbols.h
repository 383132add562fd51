#pragma once

#include <array>
#include <string_view>

namespace spacemint {

/// The name of a symbol, and its drawing in ui_kit/icons.
struct SymbolDrawing {
  std::string_view name;
  std::string_view file;
};

inline constexpr std::array<SymbolDrawing, 46> symbolDrawings{{
    {"trash", "trash-2"},
    {"arrow.down.circle", "circle-arrow-down"},
    {"shippingbox", "package"},
    {"hammer", "hammer"},
    {"archivebox", "archive"},
    {"iphone", "smartphone"},
    {"ipad.and.iphone", "tablet-smartphone"},
    {"cube", "box"},
    {"externaldrive.badge.timemachine", "history"},
    {"message", "message-circle"},
    {"brain", "brain"},
    {"folder.badge.gearshape", "folder-cog"},
    {"safari", "compass"},
    {"mug", "mug"},
    {"gearshape", "settings"},
    {"exclamationmark.triangle.fill", "filled-alert-triangle"},
    {"arrow.clockwise", "rotate-cw"},
    {"xmark", "x"},
    {"bell", "bell"},
    {"leaf", "leaf"},
    {"sparkle.magnifyingglass", "search-sparkle"},
    {"checkmark.circle.fill", "filled-circle-check"},
    {"lock", "lock"},
    {"app.dashed", "square-dashed"},
    {"photo.on.rectangle.angled", "images"},
    {"music.note.house", "music"},
    {"folder", "folder"},
    {"externaldrive", "hard-drive"},
    {"doc", "file"},
    {"film", "film"},
    {"photo", "image"},
    {"waveform", "audio-lines"},
    {"doc.zipper", "file-archive"},
    {"chevron.right", "chevron-right"},
    {"chevron.left", "chevron-left"},
    {"chevron.down", "chevron-down"},
    {"magnifyingglass", "search"},
    {"trash.slash", "trash-off"},
    {"cube.transparent", "cube-3d-sphere"},
    {"square.stack.3d.up", "layers"},
    {"cylinder", "cylinder"},
    {"arrow.triangle.branch", "git-branch"},
    {"checkmark", "check"},
    {"hatch", "hatch"},
    {"unexplained", "square-hatched"},
    {"progress", "loader-circle"},
}};

}  // namespace spacemint
