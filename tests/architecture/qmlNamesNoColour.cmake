cmake_minimum_required(VERSION 3.25)

# Colours have their names in ui_kit/Colours.h; a view that spells one breaks the other appearance.
file(GLOB_RECURSE views ${ROOT}/ui_kit/*.qml ${ROOT}/AppServices/*.qml ${ROOT}/Spacemint/*.qml)
foreach(view IN LISTS views)
  file(STRINGS ${view} lines REGEX "\"#[0-9a-fA-F]+\"|[cC]olor: *\"|Qt\\.(rgba|hsla|hsva|darker|lighter|tint)\\(")
  foreach(line IN LISTS lines)
    # Nothing is the same in both appearances, and Theme itself makes colours of numbers.
    if(NOT line MATCHES "\"transparent\"" AND NOT view MATCHES "/ui_kit/Theme\\.qml$")
      message(SEND_ERROR "${view}: ${line}")
    endif()
  endforeach()
endforeach()
