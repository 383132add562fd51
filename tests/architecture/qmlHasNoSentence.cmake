cmake_minimum_required(VERSION 3.25)

# What a person reads or hears comes from C++, where it is translated. A literal in a QML file is the name of a symbol,
# a property, a file or a key: it has no blank and no capital at its beginning, and is bound to no property that is shown.
file(GLOB_RECURSE views ${ROOT}/ui_kit/*.qml ${ROOT}/AppServices/*.qml ${ROOT}/Spacemint/*.qml)
set(shown "(text|title|line|body|help|what|name|footnote|action|label|[a-z]+Title|[a-z]+Help|Accessible\\.(name|description))")
set(names "^.(Spacemint|[A-Za-z/:]+\\.qml|Return|Enter|Ctrl\\+[A-Z]).$")
foreach(view IN LISTS views)
  file(STRINGS ${view} lines ENCODING UTF-8 REGEX "[\"'`]|qsTr")
  foreach(line IN LISTS lines)
    # Without imports and comments, and without the code in a template.
    string(REGEX REPLACE "^import .*|(^| )//.*|\\$[{][^}]*[}]" "" code "${line}")
    string(REGEX MATCHALL "\"[^\"]*\"|'[^']*'|`[^`]*`|qsTr" literals "${code}")
    foreach(literal IN LISTS literals)
      if(literal MATCHES "[A-Za-z].* | .*[A-Za-z]|^.[A-Z]|qsTr" OR (code MATCHES "^ *${shown}: " AND literal MATCHES "[A-Za-z]"))
        if(NOT literal MATCHES "${names}")
          message(SEND_ERROR "${view}: a text that C++ should say: ${literal}")
        endif()
      endif()
    endforeach()
  endforeach()
endforeach()
