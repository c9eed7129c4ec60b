cmake_minimum_required(VERSION 3.25)

# cmake -DNAME=… -DSOURCE=… -DROOT=… -DPTX=FILE,… -DOUTPUT=… -P Embed.cmake
#
# Writes a C++ source with the module's texts: OpenCL C, every header it includes in place of its
# line, and PTX where there is some, the newest version first.

set_property(GLOBAL PROPERTY included "")

function(flatten path result)
  file(READ "${ROOT}/${path}" rest)
  string(REPLACE "#pragma once\n" "" rest "${rest}")
  set(text "")
  set(opening "#include \"")
  string(LENGTH "${opening}" opening_length)
  while(TRUE)
    string(FIND "${rest}" "${opening}" at)
    if(at EQUAL -1)
      break()
    endif()
    string(SUBSTRING "${rest}" 0 ${at} before)
    math(EXPR at "${at} + ${opening_length}")
    string(SUBSTRING "${rest}" ${at} -1 rest)
    string(FIND "${rest}" "\"" end)
    string(SUBSTRING "${rest}" 0 ${end} header)
    math(EXPR end "${end} + 1")
    string(SUBSTRING "${rest}" ${end} -1 rest)
    string(APPEND text "${before}")
    get_property(included GLOBAL PROPERTY included)
    if(NOT header IN_LIST included)
      set_property(GLOBAL APPEND PROPERTY included "${header}")
      flatten("${header}" headerText)
      string(APPEND text "${headerText}")
    endif()
  endwhile()
  set(${result} "${text}${rest}" PARENT_SCOPE)
endfunction()

flatten("${SOURCE}" openCl)
string(REPLACE "," ";" PTX "${PTX}")
set(versions)
foreach(file IN LISTS PTX)
  file(READ "${file}" text)
  string(REGEX MATCH "\n\\.version ([0-9.]+)" found "${text}")
  list(APPEND versions ${CMAKE_MATCH_1})
  set(ptx_${CMAKE_MATCH_1} "${text}")
endforeach()
list(REMOVE_DUPLICATES versions)
list(SORT versions COMPARE NATURAL ORDER DESCENDING)
list(LENGTH versions count)
set(ptx "")
foreach(version IN LISTS versions)
  string(APPEND ptx "R\"QUILLON(${ptx_${version}})QUILLON\",\n")
endforeach()
file(WRITE "${OUTPUT}" "#include \"kernels/KernelModules.h\"

#include <array>

namespace kernels {
namespace {
constexpr std::array<std::string_view, ${count}> kPtx = {
${ptx}};
}  // namespace
extern const KernelModule k${NAME};
const KernelModule k${NAME} = {\"${NAME}\",
R\"QUILLON(${openCl})QUILLON\",
kPtx};
}  // namespace kernels
")
