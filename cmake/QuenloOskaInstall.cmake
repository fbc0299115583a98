# Installs the libraries with their headers and a package for find_package(QuenloOska): targets QuenloOska::oska,
# QuenloOska::virtual, QuenloOska::native and, where it was built and the host has Qt, QuenloOska::qt.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(quenlooska_package ${CMAKE_INSTALL_LIBDIR}/cmake/QuenloOska)
install(TARGETS quenlooska quenlooska_virtual quenlooska_native EXPORT QuenloOskaTargets FILE_SET HEADERS)
install(EXPORT QuenloOskaTargets NAMESPACE QuenloOska:: DESTINATION ${quenlooska_package})
if(TARGET quenlooska_qt)  # apart, because a host without Qt takes the others as well
  install(TARGETS quenlooska_qt EXPORT QuenloOskaQtTargets FILE_SET HEADERS)
  install(EXPORT QuenloOskaQtTargets NAMESPACE QuenloOska:: DESTINATION ${quenlooska_package})
endif()
configure_package_config_file(cmake/QuenloOskaConfig.cmake.in QuenloOskaConfig.cmake
                              INSTALL_DESTINATION ${quenlooska_package})
write_basic_package_version_file(QuenloOskaConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QuenloOskaConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/QuenloOskaConfigVersion.cmake DESTINATION ${quenlooska_package})
