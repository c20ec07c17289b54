# find_package(Kelvane) for an installed copy.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kelvane)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KelvaneConfig.cmake.in
    ${CMAKE_BINARY_DIR}/KelvaneConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KelvaneConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KelvaneConfig.cmake ${CMAKE_BINARY_DIR}/KelvaneConfigVersion.cmake
    DESTINATION ${package_dir})
install(EXPORT KelvaneTargets NAMESPACE Kelvane:: DESTINATION ${package_dir})
