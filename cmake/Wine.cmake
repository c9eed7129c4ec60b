# Runs programs for Windows by Wine, in an installation of its own in the build folder. That is made
# with everything else: programs that start together would all try to make it.
find_program(QUILLON_WINE NAMES wine wine64 REQUIRED DOC "Runs programs for Windows")
find_program(QUILLON_WINESERVER wineserver REQUIRED DOC "Serves the programs that Wine runs")

set(prefix ${PROJECT_BINARY_DIR}/wine)
# No offers to install Mono and Gecko, no entries in the desktop's menus.
set(wine_environment
  WINEDEBUG=-all WINEPREFIX=${prefix} "WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=")
set(CMAKE_CROSSCOMPILING_EMULATOR
  ${CMAKE_COMMAND} -E env ${wine_environment} ${QUILLON_WINE})

add_custom_command(OUTPUT ${prefix}/made
  COMMAND ${CMAKE_COMMAND} -E env ${wine_environment} ${QUILLON_WINE} wineboot --init
  COMMAND ${CMAKE_COMMAND} -E env ${wine_environment} ${QUILLON_WINESERVER} --wait
  COMMAND ${CMAKE_COMMAND} -E touch ${prefix}/made
  COMMENT "Making Wine's installation"
  VERBATIM)
add_custom_target(quillon_wine ALL DEPENDS ${prefix}/made)

list(JOIN wine_environment " " wine_environment_list)
configure_file(${CMAKE_CURRENT_LIST_DIR}/WineServer.cmake.in
  ${PROJECT_BINARY_DIR}/WineServer.cmake @ONLY)
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${PROJECT_BINARY_DIR}/WineServer.cmake)
