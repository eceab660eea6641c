# The installed package: find_package(OrbSequence) gives the targets orbseq::module and the rest.

install(EXPORT OrbSequenceTargets
  NAMESPACE orbseq::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrbSequence)

configure_package_config_file(
  cmake/OrbSequenceConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OrbSequenceConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrbSequence)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/OrbSequenceConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)

install(FILES
  ${PROJECT_BINARY_DIR}/OrbSequenceConfig.cmake
  ${PROJECT_BINARY_DIR}/OrbSequenceConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrbSequence)
