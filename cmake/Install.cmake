# Installs the headers, the shared library, a pkg-config file and a CMake package, so that a host
# can build against Orvanta with either `pkg-config --cflags --libs orvanta` or `find_package(Orvanta)`.
include(CMakePackageConfigHelpers)

install(TARGETS orvanta EXPORT OrvantaTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/orvanta/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvanta
  FILES_MATCHING PATTERN "*.h")
install(EXPORT OrvantaTargets NAMESPACE Orvanta:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Orvanta)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrvantaConfig.cmake.in
  ${CMAKE_BINARY_DIR}/OrvantaConfig.cmake INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Orvanta)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/OrvantaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/OrvantaConfig.cmake ${CMAKE_BINARY_DIR}/OrvantaConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Orvanta)

# The pkg-config file finds the prefix from its own place (${pcfiledir}), and the CMake package from
# its own, so that the installed tree works wherever it is installed or moved to.
file(RELATIVE_PATH ORVANTA_PC_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" ORVANTA_PC_PREFIX "\${pcfiledir}/${ORVANTA_PC_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvanta.pc.in ${CMAKE_BINARY_DIR}/orvanta.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/orvanta.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
