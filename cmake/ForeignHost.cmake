# Links the engine against the libraries of another host, by name. What is written for the
# reference host is not built then.

foreach(library orvcore orvmediatypes pavix kestrel chromant)
  find_library(QUILLON_HOST_${library} ${library} PATHS ${QUILLON_HOST_DIR}
               PATH_SUFFIXES lib NO_DEFAULT_PATH REQUIRED)
  add_library(${library} SHARED IMPORTED GLOBAL)
  set_target_properties(${library} PROPERTIES
    IMPORTED_LOCATION ${QUILLON_HOST_${library}}
    INTERFACE_LINK_LIBRARIES quillon_host_headers)
endforeach()

message(STATUS "Host from ${QUILLON_HOST_DIR}: command line, tests and benchmarks are not built")
set(QUILLON_BUILD_TOOLS OFF)
set(QUILLON_BUILD_TESTS OFF)
set(QUILLON_BUILD_BENCH OFF)
