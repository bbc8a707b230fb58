# What `cmake --install` lays down: headers, both libraries, a CMake package (targets orvsr::orvsr and
# orvsr::orvcore) and pkg-config files. The tree may be moved afterwards: nothing in it names the prefix.
include(CMakePackageConfigHelpers)

set_target_properties(orvsr PROPERTIES INSTALL_RPATH "$ORIGIN") # its neighbour liborvcore
install(TARGETS orvcore orvsr EXPORT orvsr-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT orvsr)
install(FILES ${PROJECT_SOURCE_DIR}/include/orvcore.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT orvsr)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orvsr DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT orvsr
        FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/orvsr)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orvsr-config-version.cmake COMPATIBILITY SameMinorVersion)
install(EXPORT orvsr-targets NAMESPACE orvsr:: FILE orvsr-config.cmake DESTINATION ${package_dir} COMPONENT orvsr)
install(FILES ${PROJECT_BINARY_DIR}/orvsr-config-version.cmake DESTINATION ${package_dir} COMPONENT orvsr)

file(RELATIVE_PATH ORV_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
cmake_path(APPEND ORV_PC_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR}) # an absolute directory stays as it is
cmake_path(APPEND ORV_PC_INCLUDEDIR "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
foreach(package orvcore orvsr)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${package}.pc.in ${PROJECT_BINARY_DIR}/${package}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT orvsr)
endforeach()
