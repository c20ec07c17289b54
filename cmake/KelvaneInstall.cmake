# find_package(Kelvane) for an installed copy, and the test that one works.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kelvane)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KelvaneConfig.cmake.in
    ${CMAKE_BINARY_DIR}/KelvaneConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KelvaneConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KelvaneConfig.cmake ${CMAKE_BINARY_DIR}/KelvaneConfigVersion.cmake
    DESTINATION ${package_dir})
install(EXPORT KelvaneTargets NAMESPACE Kelvane:: DESTINATION ${package_dir})
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
# Pure Python, the same for every architecture; with the prefix /usr where Debian's python3 looks.
set(KELVANE_INSTALL_PYTHONDIR lib/python3/dist-packages CACHE PATH "Where the Python package goes")
install(DIRECTORY ${CMAKE_SOURCE_DIR}/python/kelvane DESTINATION ${KELVANE_INSTALL_PYTHONDIR}
    FILES_MATCHING PATTERN "*.py" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)

if(KELVANE_BUILD_TESTS)
    # Installs into a staging prefix and builds the examples against it, as a user's project would.
    # A sanitized library needs a sanitized program, so there the other tests must do.
    if(KELVANE_BUILD_EXAMPLES AND NOT KELVANE_SANITIZE)
        add_test(NAME InstalledPackage
            COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-install.sh ${CMAKE_BINARY_DIR})
        set_tests_properties(InstalledPackage PROPERTIES LABELS "slow;house" TIMEOUT 600
            ENVIRONMENT "${KELVANE_TEST_ENVIRONMENT}")
        add_test(NAME ExportedSymbols
            COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-exports.sh
                $<TARGET_FILE:kelvane_basic> $<TARGET_FILE:kelvane_geos> $<TARGET_FILE:kelvane_util>)
        set_tests_properties(ExportedSymbols PROPERTIES LABELS "unit;house")
    endif()
    add_test(NAME Layers COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-layers.py)
    add_test(NAME LayersSelfTest COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-layers.py --self-test)
    set_tests_properties(Layers LayersSelfTest PROPERTIES LABELS "unit;house")
endif()
