# Two interface targets that all our own targets link privately: spacemint_options (language, sanitizers,
# hardening) and spacemint_warnings. Third-party code links neither.

add_library(spacemint_options INTERFACE)
target_compile_features(spacemint_options INTERFACE cxx_std_23)
set(CMAKE_CXX_EXTENSIONS OFF)
target_compile_definitions(spacemint_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

set(SPACEMINT_SANITIZE "" CACHE STRING "Comma-separated sanitizers, e.g. address,undefined or thread")
if(SPACEMINT_SANITIZE)
  target_compile_options(spacemint_options INTERFACE
    -fsanitize=${SPACEMINT_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(spacemint_options INTERFACE -fsanitize=${SPACEMINT_SANITIZE})
endif()

# Hardening: makes memory errors in a shipped program harder to exploit. Off with sanitizers, which check more
# and do not work together with these options.
include(CheckPIESupported)
check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT SPACEMINT_SANITIZE)
  include(CheckCXXCompilerFlag)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "HAS${flag}" has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
      target_compile_options(spacemint_options INTERFACE $<$<CONFIG:Release>:${flag}>)
    endif()
  endforeach()
  target_compile_options(spacemint_options INTERFACE $<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>)
  target_link_options(spacemint_options INTERFACE $<$<CONFIG:Release>:LINKER:-z,relro,-z,now>)
  # With link-time optimization the linker makes copy relocations of the libraries' data in the program. Qt's
  # libraries keep using their own data, so the program would crash at start.
  check_cxx_compiler_flag(-mno-direct-extern-access HAS_NO_DIRECT_EXTERN_ACCESS)
  if(HAS_NO_DIRECT_EXTERN_ACCESS)
    target_link_options(spacemint_options INTERFACE $<$<CONFIG:Release>:-mno-direct-extern-access>)
  endif()
endif()

option(SPACEMINT_WARNINGS_AS_ERRORS "Stop at the first warning" OFF)
add_library(spacemint_warnings INTERFACE)
target_compile_options(spacemint_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wno-missing-field-initializers  # designated initialisers leave fields out on purpose
  -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi
  -Wcast-align -Wcast-qual -Wformat=2 -Wdouble-promotion
  -Wimplicit-fallthrough -Wswitch-enum -Wundef
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local;-Wduplicated-cond;-Wduplicated-branches;-Wlogical-op>
  # Clang reports deprecated functions that libstdc++'s own stable_sort uses.
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety;-Wno-deprecated-declarations>
  $<$<BOOL:${SPACEMINT_WARNINGS_AS_ERRORS}>:-Werror>)

# Use ccache and mold for faster rebuilds if they are installed.
find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(CMAKE_CXX_COMPILE_OPTIONS_IPO -flto=auto -fno-fat-lto-objects)  # uses all processors
  if(CMAKE_INTERPROCEDURAL_OPTIMIZATION)
    add_link_options(-flto=auto)
  endif()
endif()
find_program(MOLD mold)
if(MOLD AND NOT CMAKE_INTERPROCEDURAL_OPTIMIZATION)
  add_link_options(-fuse-ld=mold)
endif()

option(SPACEMINT_CLANG_TIDY "Run clang-tidy with every compile" OFF)
if(SPACEMINT_CLANG_TIDY)
  # clang-tidy 14 cannot parse std::expected with libstdc++ 12; 19 can.
  find_program(CLANG_TIDY NAMES clang-tidy-19 REQUIRED)
  set(CMAKE_CXX_CLANG_TIDY "${CLANG_TIDY};--extra-arg=-Wno-unknown-warning-option")
endif()
