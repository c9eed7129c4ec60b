# Tests that cannot be on a system are left out by name, and the configuration's output says so.
#
# quillon_leave_out(<reason> [FOLDERS <folder>...] [SOURCES <file>...]
#                   [PROGRAMS <target>...] [TESTS <suite.test>...])
# Folders and files are named from this one.
function(quillon_leave_out reason)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "FOLDERS;SOURCES;PROGRAMS;TESTS")
  foreach(name IN LISTS arg_FOLDERS arg_SOURCES)
    if(NOT EXISTS ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${name})
      message(FATAL_ERROR "there are no tests ${name} to leave out")
    endif()
    quillon_left_out("tests/${name}" ${reason})
  endforeach()
  foreach(name IN LISTS arg_PROGRAMS)
    quillon_left_out(${name} ${reason})
  endforeach()
  foreach(name IN LISTS arg_TESTS)
    quillon_left_out("test ${name}" ${reason})
    if(NOT QUILLON_TEST_FILTER)
      set(QUILLON_TEST_FILTER -${name})
    else()
      string(APPEND QUILLON_TEST_FILTER :${name})
    endif()
  endforeach()
  set(QUILLON_TEST_FILTER ${QUILLON_TEST_FILTER} PARENT_SCOPE)
  set(QUILLON_LEFT_OUT_TESTS ${QUILLON_LEFT_OUT_TESTS} ${arg_FOLDERS} ${arg_SOURCES}
    ${arg_PROGRAMS} PARENT_SCOPE)
endfunction()

# Removes what is left out from a list of this folder's files.
function(quillon_remove_left_out list)
  set(kept)
  foreach(file IN LISTS ${list})
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR
      BASE_DIRECTORY ${PROJECT_SOURCE_DIR}/tests OUTPUT_VARIABLE folder)
    if(NOT ${folder}/${file} IN_LIST QUILLON_LEFT_OUT_TESTS)
      list(APPEND kept ${file})
    endif()
  endforeach()
  set(${list} ${kept} PARENT_SCOPE)
endfunction()

# add_subdirectory, for a folder that is not left out.
function(quillon_add_test_folder name)
  cmake_path(SET folder NORMALIZE ${CMAKE_CURRENT_SOURCE_DIR}/${name})
  cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${PROJECT_SOURCE_DIR}/tests)
  if(NOT folder IN_LIST QUILLON_LEFT_OUT_TESTS)
    add_subdirectory(${name})
  endif()
endfunction()
