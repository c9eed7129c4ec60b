cmake_minimum_required(VERSION 3.25)

# cmake -DNAME=… -DSOURCE=… -DROOT=… -DPTX=… -DOUTPUT=… -P Embed.cmake
#
# Writes a C++ source with the module's texts: OpenCL C, every header it includes in place of its
# line, and PTX where there is some.

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
set(ptx "")
if(PTX)
  file(READ "${PTX}" ptx)
endif()
file(WRITE "${OUTPUT}" "#include \"kernels/KernelModules.h\"

namespace kernels {
extern const KernelModule k${NAME};
const KernelModule k${NAME} = {\"${NAME}\",
R\"QUILLON(${openCl})QUILLON\",
R\"QUILLON(${ptx})QUILLON\"};
}  // namespace kernels
")
