# Links the engine against the libraries of another host, by name.

foreach(library orvcore orvmediatypes pavix kestrel chromant ironlane hostos)
  find_library(QUILLON_HOST_${library} ${library} PATHS ${QUILLON_HOST_DIR}
               PATH_SUFFIXES lib NO_DEFAULT_PATH REQUIRED)
  add_library(${library} SHARED IMPORTED GLOBAL)
  set_target_properties(${library} PROPERTIES
    IMPORTED_LOCATION ${QUILLON_HOST_${library}}
    INTERFACE_LINK_LIBRARIES quillon_host_headers)
endforeach()
