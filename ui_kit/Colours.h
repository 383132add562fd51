#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace spacemint {

/// A colour of the interface in the light and the dark appearance, as 0xRRGGBB.
struct Colour {
  std::string_view name;
  std::uint32_t light;
  std::uint32_t dark;
};

/// All colours. No other file may name a colour.
inline constexpr std::array<Colour, 33> colours{{
    {"chrome", 0xF2F0EB, 0x161514},         {"canvas", 0xFAF9F6, 0x1C1B1A},
    {"card", 0xFFFFFF, 0x252321},           {"well", 0xF4F2EE, 0x22201E},
    {"border", 0xE8E5DF, 0x363330},         {"ink", 0x1B1A19, 0xF3F1EC},
    {"secondary", 0x6F6A63, 0xA29D96},      {"tertiary", 0xA6A098, 0x6F6A64},
    {"hover", 0xF1EFEA, 0x2E2C29},          {"selected", 0xE9E6E0, 0x302E2B},
    {"button", 0xEDEAE4, 0x34312E},         {"lavender", 0xF5EEFC, 0x2A2433},
    {"lavenderBorder", 0xE6D8F7, 0x3D3349}, {"lavenderInk", 0x7B5BC4, 0xC9B6F2},
    {"amber", 0xF2A65A, 0xE89A4C},          {"amberSoft", 0xFCEBD7, 0x3A2C1E},
    {"amberInk", 0x8A4B12, 0xF2B877},       {"teal", 0x2F5D5A, 0x6FB3AC},
    {"tealSoft", 0xE3F0EE, 0x1F2D2B},       {"critical", 0xC93C3C, 0xF07070},
    {"criticalSoft", 0xFBEAEA, 0x3A2222},   {"warning", 0xE8641C, 0xFF8A45},
    {"warningFill", 0xFFF2E8, 0x33241A},    {"warningBorder", 0xFAD9C1, 0x5A3720},
    {"track", 0xECE9E3, 0x34312E},          {"block", 0xDDD8CE, 0x45413C},
    {"frame", 0xEFECE6, 0x2B2926},          {"grown", 0xEDAA66, 0x8A5322},
    {"shrunk", 0xA9D1CB, 0x2C5752},         {"age1", 0xF4F2EE, 0x34312E},
    {"age2", 0xB7D1CD, 0x35534F},           {"age3", 0x6FA8A1, 0x47746E},
    {"age4", 0x2F5D5A, 0x63AFA4},
}};

/// The colour with this name. An unknown name does not compile.
consteval Colour colourNamed(std::string_view name) {
  for (const Colour& colour : colours) {
    if (colour.name == name) return colour;
  }
  throw "no colour of that name";
}

}  // namespace spacemint
