# Builds GoogleTest from the sources that Debian's package `googletest` installs: there is no package
# of its libraries for other systems.
set(QUILLON_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "Folder of GoogleTest's sources")
if(NOT EXISTS ${QUILLON_GOOGLETEST_DIR}/CMakeLists.txt)
  message(FATAL_ERROR "There are no sources of GoogleTest in ${QUILLON_GOOGLETEST_DIR}; "
    "the Debian package googletest has them")
endif()
set(INSTALL_GTEST OFF CACHE INTERNAL "")
add_subdirectory(${QUILLON_GOOGLETEST_DIR} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
