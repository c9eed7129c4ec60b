# Builds the engine against the installed reference host as if it were another, and installs it: the
# engine's library is all there is.
set(engine ${WORK_DIR}/engine-alone)
file(REMOVE_RECURSE ${engine}/installed)
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${engine} -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX} -DQUILLON_HOST_DIR=${INSTALLED} -DQUILLON_SANITIZE=${SANITIZE}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${engine} COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${engine} --prefix ${engine}/installed
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

file(GLOB names RELATIVE ${engine}/installed/${LIB_DIR} ${engine}/installed/${LIB_DIR}/*.so)
if(NOT names STREQUAL "libQuillon.so" OR EXISTS ${engine}/installed/${INCLUDE_DIR}/quillon/refhost)
  message(FATAL_ERROR "not the engine alone: ${names}")
endif()
