# Links the engine against the libraries of another host, by name.

set(libraries orvcore orvmediatypes pavix kestrel chromant ironlane)
if(WIN32)
  add_library(hostos INTERFACE)
  target_link_libraries(hostos INTERFACE quillon_host_headers)
  set(linked_file IMPORTED_IMPLIB)
else()
  list(APPEND libraries hostos)
  set(linked_file IMPORTED_LOCATION)
endif()

foreach(library IN LISTS libraries)
  find_library(QUILLON_HOST_${library} ${library} PATHS ${QUILLON_HOST_DIR}
               PATH_SUFFIXES lib NO_DEFAULT_PATH REQUIRED)
  add_library(${library} SHARED IMPORTED GLOBAL)
  set_target_properties(${library} PROPERTIES
    ${linked_file} ${QUILLON_HOST_${library}}
    INTERFACE_LINK_LIBRARIES quillon_host_headers)
endforeach()
