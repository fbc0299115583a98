# Installs the libraries with their headers and a package for find_package(QuenloOska): targets QuenloOska::oska,
# QuenloOska::virtual, QuenloOska::native.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(quenlooska_package ${CMAKE_INSTALL_LIBDIR}/cmake/QuenloOska)
install(TARGETS quenlooska quenlooska_virtual quenlooska_native EXPORT QuenloOskaTargets FILE_SET HEADERS)
install(EXPORT QuenloOskaTargets NAMESPACE QuenloOska:: DESTINATION ${quenlooska_package})
configure_package_config_file(cmake/QuenloOskaConfig.cmake.in QuenloOskaConfig.cmake
                              INSTALL_DESTINATION ${quenlooska_package})
write_basic_package_version_file(QuenloOskaConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QuenloOskaConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/QuenloOskaConfigVersion.cmake DESTINATION ${quenlooska_package})
