# Flags that every target of this project is built with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
if(WIN32)
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
  set(CMAKE_SHARED_MODULE_PREFIX "")
  # A library that exports all of its own exports nothing of the compiler's libraries within it.
  add_link_options(LINKER:--exclude-libs,ALL)
endif()

# The second of the last two says to the sources that the first is there; a macro of the compiler's
# own does not.
add_compile_options(-Wall -Wextra -Wpedantic -ffp-contract=off -DQUILLON_CONTRACTION_OFF)
if(QUILLON_WERROR)
  add_compile_options(-Werror)
endif()

if(QUILLON_SANITIZE)
  add_compile_options(-fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUILLON_SANITIZE})
endif()

# Rows of pixels are built once for each instruction set. Vectors are passed between functions of one
# file only, so that how they are passed (psABI) is nobody's concern. For Windows GCC does not align
# the stack to a vector, and yet spills vectors by moves that want them aligned
# (https://gcc.gnu.org/PR54412). Debian's is mended; with any other the assembler makes them moves
# that take every address.
set(QUILLON_BASELINE_ROWS -Wno-psabi)
set(QUILLON_AVX2_ROWS -Wno-psabi -mavx2)
set(QUILLON_AVX512_ROWS -Wno-psabi
  -mavx512f -mavx512bw -mavx512dq -mavx512vl -mprefer-vector-width=512)
if(MINGW)
  list(APPEND QUILLON_AVX2_ROWS -Wa,-muse-unaligned-vector-move)
  list(APPEND QUILLON_AVX512_ROWS -Wa,-muse-unaligned-vector-move)
endif()
