# What is installed: the engine, the reference host, the mapper and the command line, with the CMake
# package `Quillon` and the pkg-config files `quillon` and `quillon-mapper`. With another host, the
# engine alone. The tree may be moved as a whole.

include(CMakePackageConfigHelpers)

set(QUILLON_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)
set(QUILLON_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/quillon)
set(libraries Quillon)
set(QUILLON_PC_LIBS -lQuillon)

if(NOT QUILLON_HOST_DIR)
  foreach(library kestrel ironlane pavix chromant orvmediatypes orvcore hostos)
    list(APPEND libraries ${library})
    get_target_property(type ${library} TYPE)
    if(type STREQUAL SHARED_LIBRARY)
      string(APPEND QUILLON_PC_LIBS " -l${library}")
    endif()
    string(SUBSTRING ${library} 0 1 initial)
    string(TOUPPER ${initial} initial)
    string(SUBSTRING ${library} 1 -1 rest)
    set_target_properties(${library} PROPERTIES EXPORT_NAME Host${initial}${rest})
  endforeach()

  # What a program needs to be a host: make frames, find devices, name colour spaces, hear
  # the trace.
  foreach(header
      ResultCodes.h
      ironlane/Devices.h
      ironlane/GPUDevice.h
      ironlane/RowTransfer.h
      kestrel/PixelFormats.h
      kestrel/SystemFrame.h
      orvcore/NullPtrException.h
      orvcore/RecycledMemory.h
      orvcore/RecyclerStatistics.h
      orvcore/TraceSettings.h
      orvmediatypes/H273.h
      orvmediatypes/PeakLuminance.h)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES refhost/${header} DESTINATION ${QUILLON_HEADER_DIR}/refhost/${folder})
  endforeach()
endif()

if(TARGET quillonmapper)
  list(APPEND libraries quillonmapper)
  foreach(header Colors Device Frames LightHistogram Mapping Picture Plan Result)
    install(FILES mapper/${header}.h DESTINATION ${QUILLON_HEADER_DIR}/mapper)
  endforeach()
endif()

set_target_properties(quillon_host_headers PROPERTIES EXPORT_NAME HostHeaders)
set_target_properties(${libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS quillon_host_headers ${libraries} EXPORT QuillonTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

install(FILES engine/Quillon.h DESTINATION ${QUILLON_HEADER_DIR}/engine)
install(DIRECTORY host/ DESTINATION ${QUILLON_HEADER_DIR}/host FILES_MATCHING PATTERN "*.h")

if(TARGET quillon)
  file(RELATIVE_PATH from_bin_to_lib
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(quillon PROPERTIES INSTALL_RPATH
    "$ORIGIN/${from_bin_to_lib};$ORIGIN/${from_bin_to_lib}/quillon")
  install(TARGETS quillon RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

  get_property(modules GLOBAL PROPERTY QUILLON_MODULES)
  set_target_properties(${modules} PROPERTIES INSTALL_RPATH "$ORIGIN/..;$ORIGIN")
  install(TARGETS ${modules} quillon_signals LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/quillon)
endif()

# CMake package.
install(EXPORT QuillonTargets NAMESPACE Quillon:: DESTINATION ${QUILLON_CMAKE_DIR})
configure_package_config_file(cmake/QuillonConfig.cmake.in
  ${PROJECT_BINARY_DIR}/cmake/QuillonConfig.cmake
  INSTALL_DESTINATION ${QUILLON_CMAKE_DIR})
# Before 1.0 a new minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/cmake/QuillonConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/cmake/QuillonConfig.cmake
  ${PROJECT_BINARY_DIR}/cmake/QuillonConfigVersion.cmake
  DESTINATION ${QUILLON_CMAKE_DIR})

# pkg-config file: it finds the tree from where it lies itself.
file(RELATIVE_PATH QUILLON_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" QUILLON_PC_PREFIX ${QUILLON_PC_PREFIX})
set(pkg_config_files quillon)
if(TARGET quillonmapper)
  list(APPEND pkg_config_files quillon-mapper)
endif()
foreach(file IN LISTS pkg_config_files)
  configure_file(cmake/${file}.pc.in ${PROJECT_BINARY_DIR}/cmake/${file}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/cmake/${file}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
