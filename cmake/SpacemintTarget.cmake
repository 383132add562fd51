# spacemint_library(NAME MAY_USE a b … LINKS x y … QT Core … SOURCES … HEADERS …)
#
# Adds a library. This file defines the layers (SPACEMINT_LAYERS): a target links only the layers in MAY_USE,
# and configuring fails if a layer uses a layer above it. LINKS are external libraries that only the
# sources use; QT are Qt modules, which the headers may use too.

set(SPACEMINT_LAYERS
  "SpacemintBase:"
  "SpacemintHost:SpacemintBase"
  "SpacemintCore:SpacemintBase,SpacemintHost"
  "SpacemintCommand:SpacemintBase,SpacemintHost"
  "SpacemintDesktop:SpacemintBase,SpacemintHost,SpacemintCore"
  "SpacemintDesktopLinux:SpacemintBase,SpacemintHost,SpacemintCore,SpacemintDesktop"
  "SpacemintTools:SpacemintBase,SpacemintHost,SpacemintCore,SpacemintCommand"
  "SpacemintModel:SpacemintBase,SpacemintHost,SpacemintCore,SpacemintTools,SpacemintDesktop"
  "ui_kit:"
  "AppServicesConsent:SpacemintBase,SpacemintHost"
  "AppServices:SpacemintBase,SpacemintHost,AppServicesConsent,ui_kit"
  "SpacemintViews:SpacemintBase,SpacemintHost,SpacemintCore,SpacemintTools,SpacemintDesktop,SpacemintModel,AppServicesConsent,AppServices,ui_kit"
  "SpacemintShell:SpacemintBase,SpacemintHost,SpacemintCore,SpacemintTools,SpacemintDesktop,SpacemintModel,AppServicesConsent,AppServices,SpacemintViews,ui_kit"
  "spacemintctl:SpacemintCore,SpacemintCommand,SpacemintTools,AppServicesConsent")
set(SPACEMINT_PLAIN "^(SpacemintBase|SpacemintHost|SpacemintCore|SpacemintCommand|SpacemintTools|AppServicesConsent|spacemintctl)$")

function(spacemint_check_layer name)
  foreach(rule IN LISTS SPACEMINT_LAYERS)
    string(REGEX MATCH "^([^:]+):(.*)$" _ "${rule}")
    if(CMAKE_MATCH_1 STREQUAL name)
      string(REPLACE "," ";" allowed "${CMAKE_MATCH_2}")
      foreach(dep IN LISTS ARGN)
        if(dep MATCHES "^(Spacemint|spacemint|ui_kit|AppServices)" AND NOT dep IN_LIST allowed)
          message(FATAL_ERROR "${name} may not depend on ${dep}; allowed: ${allowed}")
        endif()
        if(dep MATCHES "^Qt6::" AND name MATCHES ${SPACEMINT_PLAIN})
          message(FATAL_ERROR "${name} is plain C++ and may not depend on ${dep}")
        endif()
      endforeach()
      return()
    endif()
  endforeach()
  message(FATAL_ERROR "${name} has no line in SPACEMINT_LAYERS")
endfunction()

function(spacemint_library name)
  cmake_parse_arguments(ARG "" "" "MAY_USE;LINKS;QT;SOURCES;HEADERS" ${ARGN})
  list(TRANSFORM ARG_QT PREPEND Qt6::)
  spacemint_check_layer(${name} ${ARG_MAY_USE} ${ARG_LINKS} ${ARG_QT})
  add_library(${name} STATIC)
  target_sources(${name} PRIVATE ${ARG_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS})
  target_link_libraries(${name} PUBLIC ${ARG_MAY_USE} ${ARG_QT} PRIVATE ${ARG_LINKS} spacemint_options spacemint_warnings)
  target_compile_features(${name} PUBLIC cxx_std_23)
  if(ARG_QT)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
  endif()
endfunction()

# spacemint_qml_library(NAME URI Spacemint.X IMPORTS Spacemint.Y … QML_FILES … and all of spacemint_library)
#
# Adds a library that is also a QML module. Its QML files are in the folder of the calling CMakeLists.txt. A
# program that uses the module also links NAMEplugin.
function(spacemint_qml_library name)
  cmake_parse_arguments(ARG "" "URI" "IMPORTS;QML_FILES;RESOURCES;MAY_USE;LINKS;QT;SOURCES;HEADERS" ${ARGN})
  list(TRANSFORM ARG_QT PREPEND Qt6::)
  spacemint_check_layer(${name} ${ARG_MAY_USE} ${ARG_LINKS} ${ARG_QT})
  string(REPLACE "." "/" folder ${ARG_URI})
  set(CMAKE_AUTOMOC ON)  # finds QML types in the headers
  qt_add_qml_module(${name} STATIC
    URI ${ARG_URI}
    VERSION 1.0
    RESOURCE_PREFIX /qt/qml
    OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/${folder}
    IMPORTS ${ARG_IMPORTS}
    IMPORT_PATH ${CMAKE_BINARY_DIR}/qml
    QML_FILES ${ARG_QML_FILES}
    RESOURCES ${ARG_RESOURCES}
    SOURCES ${ARG_SOURCES} ${ARG_HEADERS})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_MAY_USE} ${ARG_QT} PRIVATE ${ARG_LINKS} spacemint_options)
  target_compile_features(${name} PUBLIC cxx_std_23)
  target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
  # Set the warnings only for our sources: Qt's generated code in the same target would not pass them.
  get_target_property(warnings spacemint_warnings INTERFACE_COMPILE_OPTIONS)
  set_source_files_properties(${ARG_SOURCES} PROPERTIES COMPILE_OPTIONS "${warnings}")
endfunction()
