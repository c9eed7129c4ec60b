# Builds the engine against the installed reference host as if it were another, and installs it: the
# engine's library is all there is.
set(engine ${WORK_DIR}/engine-alone)
if(TOOLCHAIN)
  set(toolchain -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH=${INSTALLED})
endif()
file(REMOVE_RECURSE ${engine}/installed)
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${engine} -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX} ${toolchain} -DQUILLON_HOST_DIR=${INSTALLED} -DQUILLON_SANITIZE=${SANITIZE}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${engine} COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${engine} --prefix ${engine}/installed
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

if(WINDOWS)
  set(library ${BIN_DIR}/Quillon.dll)
  set(pattern ${BIN_DIR}/*.dll)
else()
  set(library ${LIB_DIR}/libQuillon.so)
  set(pattern ${LIB_DIR}/*.so)
endif()
file(GLOB names RELATIVE ${engine}/installed ${engine}/installed/${pattern})
if(NOT names STREQUAL library OR EXISTS ${engine}/installed/${INCLUDE_DIR}/quillon/refhost)
  message(FATAL_ERROR "not the engine alone: ${names}")
endif()
