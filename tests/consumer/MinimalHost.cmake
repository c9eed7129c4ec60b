# Takes the engine alone from the installed tree, its library and its headers, builds a host against
# them, and maps frames with it. The reference host's libraries are not where the engine could find
# them.
set(alone ${WORK_DIR}/minimal-host)
file(REMOVE_RECURSE ${alone})
file(COPY
  ${INSTALLED}/${INCLUDE_DIR}/quillon/engine ${INSTALLED}/${INCLUDE_DIR}/quillon/host
  DESTINATION ${alone}/include)
if(WINDOWS)
  set(suffix .exe)
  set(library ${alone}/bin/Quillon.dll)
  file(COPY ${INSTALLED}/${BIN_DIR}/Quillon.dll DESTINATION ${alone}/bin)
  set(settings -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH=${alone})
else()
  set(library ${alone}/bin/libQuillon.so)
  file(GLOB engine ${INSTALLED}/${LIB_DIR}/libQuillon.so*)
  file(COPY ${engine} DESTINATION ${alone}/bin)
endif()
if(SANITIZE)
  list(APPEND settings -DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE})
endif()

execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/minimal-host -B ${alone}/build
    -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX} -DENGINE_HEADERS=${alone}/include
    -DENGINE_LIBRARY=${library} ${settings}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${alone}/build COMMAND_ERROR_IS_FATAL ANY)

unset(ENV{LD_LIBRARY_PATH})
execute_process(
  COMMAND ${EMULATOR} ${alone}/bin/minimal-host${suffix} ${VECTORS}
  ERROR_VARIABLE trace COMMAND_ERROR_IS_FATAL ANY)
# What the engine said of the one call that it had to refuse.
if(NOT trace MATCHES "7 \\[Quillon\\] ApplyGamutMappingSW : GenerateToneMappedFrame : Failed")
  message(FATAL_ERROR "the engine's trace did not reach the host: ${trace}")
endif()
