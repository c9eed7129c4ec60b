# Compiles a consumer, in the folder PROGRAM, together with every installed header by what pkg-config
# says of PACKAGE, and runs it.
set(ENV{PKG_CONFIG_PATH} ${INSTALLED}/${LIB_DIR}/pkgconfig)
execute_process(
  COMMAND ${PKG_CONFIG} --cflags --libs ${PACKAGE}
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
set(program ${WORK_DIR}/pkgconfig-${PROGRAM})
if(WINDOWS)
  # Programs look for libraries beside them.
  set(program ${INSTALLED}/${BIN_DIR}/pkgconfig-${PROGRAM}.exe)
  set(flags -static -Wl,-Bdynamic ${flags} -Wl,-Bstatic)
endif()
if(SANITIZE)
  list(APPEND flags -fsanitize=${SANITIZE})
endif()

file(GLOB_RECURSE headers RELATIVE ${INSTALLED}/${INCLUDE_DIR}/quillon
  ${INSTALLED}/${INCLUDE_DIR}/quillon/*.h)
if(NOT headers)
  message(FATAL_ERROR "no headers are installed")
endif()
list(TRANSFORM headers REPLACE "(.+)" "#include \"\\1\"\n")
list(JOIN headers "" text)
file(WRITE ${WORK_DIR}/all_headers_${PROGRAM}.cpp "${text}")

execute_process(
  COMMAND ${CXX} -std=c++20 -Wall -Wextra -Wpedantic -Werror
    ${CONSUMERS}/${PROGRAM}/main.cpp ${WORK_DIR}/all_headers_${PROGRAM}.cpp ${flags} -o ${program}
  COMMAND_ERROR_IS_FATAL ANY)
set(ENV{LD_LIBRARY_PATH} ${INSTALLED}/${LIB_DIR})
execute_process(COMMAND ${EMULATOR} ${program} COMMAND_ERROR_IS_FATAL ANY)
