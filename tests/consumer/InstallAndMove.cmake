# Installs what is built, then moves the tree to another place.
file(REMOVE_RECURSE ${WORK_DIR}/unmoved ${INSTALLED})
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/unmoved
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${WORK_DIR}/unmoved ${INSTALLED})
