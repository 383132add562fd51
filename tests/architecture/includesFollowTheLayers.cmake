cmake_minimum_required(VERSION 3.25)

# The include root is the whole repository, so the linker alone cannot stop a layer from including a header of
# one above it. This does. A file belongs to the layer with the longest folder name that fits.
set(layers
  "core/base:core/base"
  "core/host:core/base,core/host"
  "core:core"
  "Spacemint/command:core/base,core/host,Spacemint/command"
  "Spacemint/desktop/linux:core,Spacemint/desktop"
  "Spacemint/desktop:core,Spacemint/desktop"
  "Spacemint/tools:core,Spacemint/command,Spacemint/tools"
  "Spacemint/model:core,Spacemint/command,Spacemint/tools,Spacemint/desktop,Spacemint/model"
  "ui_kit:ui_kit"
  "AppServices/consent:core/base,core/host,AppServices/consent"
  "AppServices:core/base,core/host,ui_kit,AppServices"
  "Spacemint/views:core,Spacemint/command,Spacemint/tools,Spacemint/desktop,Spacemint/model,AppServices,ui_kit,Spacemint/views"
  "Spacemint/shell:core,Spacemint/command,Spacemint/tools,Spacemint/desktop,Spacemint/model,AppServices,ui_kit,Spacemint/views,Spacemint/shell"
  "Spacemint:core,Spacemint,AppServices,ui_kit"
  "spacemintctl:core,Spacemint/command,Spacemint/tools,AppServices/consent,spacemintctl"
  "bench/interface:core,Spacemint,ui_kit,support"
  "bench:core,Spacemint/command,bench")
set(withoutQt core/base core/host core Spacemint/command Spacemint/tools AppServices/consent spacemintctl bench)
# The only place for one system's calls; everybody else includes the seam.
set(system "core/host/linux|Spacemint/desktop/linux")

function(layer_of path result)
  set(best "")
  foreach(rule IN LISTS layers)
    string(REGEX REPLACE ":.*" "" folder "${rule}")
    string(LENGTH "${folder}" length)
    string(LENGTH "${best}" longest)
    if(path MATCHES "^${folder}/" AND length GREATER longest)
      set(best "${folder}")
      string(REGEX REPLACE "^[^:]+:" "" allowed "${rule}")
    endif()
  endforeach()
  set(${result} "${best}" PARENT_SCOPE)
  set(allowed "${allowed}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE files RELATIVE ${ROOT} ${ROOT}/core/* ${ROOT}/ui_kit/* ${ROOT}/AppServices/* ${ROOT}/Spacemint/* ${ROOT}/spacemintctl/* ${ROOT}/bench/*)
foreach(file IN LISTS files)
  if(NOT file MATCHES "\\.(h|cpp)$")
    continue()
  endif()
  layer_of("${file}" layer)
  if(layer STREQUAL "")
    message(SEND_ERROR "${file} is in no layer")
    continue()
  endif()
  string(REPLACE "," "|" allowedPattern "${allowed}")
  file(STRINGS ${ROOT}/${file} includes REGEX "^#include ")
  foreach(include IN LISTS includes)
    if(include MATCHES "^#include <Q" AND layer IN_LIST withoutQt)
      message(SEND_ERROR "${file}: ${include} (this layer is plain C++)")
    elseif(include MATCHES "^#include \"(.*)\"")
      set(target "${CMAKE_MATCH_1}")
      if(NOT target MATCHES "^(${allowedPattern})/")
        message(SEND_ERROR "${file}: includes ${target}; ${layer} may include ${allowed}")
      elseif(target MATCHES "^(${system})/" AND NOT file MATCHES "^(${system})/|^Spacemint/[^/]+$")
        message(SEND_ERROR "${file}: includes ${target}, which belongs to one system")
      endif()
    endif()
  endforeach()
  file(STRINGS ${ROOT}/${file} conditions REGEX "^#.*(__linux__|__APPLE__|_WIN32|__unix__)")
  if(conditions)
    message(SEND_ERROR "${file}: ${conditions} (a system is chosen by the list of files)")
  endif()
endforeach()
