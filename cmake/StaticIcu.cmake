# ICU as archives, for a static program. Debian's archive of ICU's data has 31 MB; the program needs the locales'
# numbers and words for times, the plural rules and the time zones. Without the cut, everything works too.
set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
find_package(ICU 72 REQUIRED COMPONENTS uc i18n data)
set(CMAKE_FIND_LIBRARY_SUFFIXES .so .a)
find_program(ICUPKG icupkg PATHS /usr/sbin REQUIRED)

# Numbers need curr/*, although the program shows no currency.
set(unused brkitr/* coll/* lang/* rbnf/* region/* translit/* unit/* zone/* *.cnv *.cfu *.spp unames.icu)
string(JOIN "\n" unused ${unused})
string(REGEX MATCH "^[0-9]+" icu_major ${ICU_VERSION})
set(icu icudt${icu_major})
set(folder ${CMAKE_BINARY_DIR}/icu)
file(WRITE ${folder}/unused.txt "${unused}\n")
# ICU looks the data up by the name of its symbol, and in it by the name of the package: icudt72l.
file(WRITE ${folder}/data.S ".section .rodata\n.globl ${icu}_dat\n.balign 16\n${icu}_dat:\n.incbin \"${folder}/${icu}l.dat\"\n.section .note.GNU-stack,\"\"\n")
add_custom_command(OUTPUT ${folder}/${icu}l.dat
  COMMAND ${CMAKE_AR} x ${ICU_DATA_LIBRARY}
  COMMAND ${CMAKE_OBJCOPY} -O binary -j .rodata ${icu}l_dat.o ${icu}l.dat
  COMMAND ${ICUPKG} -r unused.txt ${icu}l.dat
  WORKING_DIRECTORY ${folder}
  DEPENDS ${folder}/unused.txt)
enable_language(ASM)
set_source_files_properties(${folder}/data.S PROPERTIES OBJECT_DEPENDS ${folder}/${icu}l.dat)
add_library(icu_data STATIC ${folder}/data.S ${folder}/${icu}l.dat)
target_link_libraries(ICU::uc INTERFACE icu_data)
target_link_libraries(ICU::i18n INTERFACE ICU::uc)
