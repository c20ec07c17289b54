# How a library, its tests, a benchmark and a fuzzer are declared. Sources are found by folder:
# LIB/MODULE/*.cpp, LIB/include/LIB/MODULE/*.h, LIB/tests/MODULE/*Test.cpp.

# kelvane_add_library(basic DEPENDS Qt5::Core ...)
function(kelvane_add_library name)
    cmake_parse_arguments(arg "" "PRECOMPILE" "DEPENDS;PRIVATE_DEPENDS" ${ARGN})
    set(target kelvane_${name})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*/*.cpp)
    list(FILTER sources EXCLUDE REGEX "/tests/")
    file(GLOB private_headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*/*.h)
    list(FILTER private_headers EXCLUDE REGEX "/(tests|include)/")
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/include/*.h)

    add_library(${target} SHARED ${sources} ${private_headers})
    add_library(Kelvane::${name} ALIAS ${target})
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${headers})
    string(TOUPPER ${name} upper)
    target_compile_definitions(${target} PRIVATE KELVANE_${upper}_BUILD)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PUBLIC ${arg_DEPENDS} PRIVATE ${arg_PRIVATE_DEPENDS})
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        EXPORT_NAME ${name}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    kelvane_compile_options(${target})
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
    if(arg_PRECOMPILE)
        target_precompile_headers(${target} PRIVATE ${arg_PRECOMPILE})
    endif()
    install(TARGETS ${target} EXPORT KelvaneTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endfunction()

# Every LIB/tests/MODULE/*Test.cpp is one program. The end of its name gives its label:
# *IntegrationTest and *SlowTest say so, all others are unit tests.
function(kelvane_add_tests name)
    file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${name}/tests/*/*Test.cpp)
    foreach(source IN LISTS tests)
        get_filename_component(test ${source} NAME_WE)
        add_executable(${test} ${source})
        if(name STREQUAL "basic" OR name STREQUAL "geos")
            target_link_libraries(${test} PRIVATE Kelvane::${name} kelvane_testing)
        else()
            target_link_libraries(${test} PRIVATE Kelvane::util kelvane_testing_gui)
        endif()
        target_include_directories(${test} PRIVATE ${CMAKE_SOURCE_DIR}/testing)
        kelvane_compile_options(${test})
        target_precompile_headers(${test} REUSE_FROM kelvane_testing_pch)
        set(label unit)
        if(test MATCHES "IntegrationTest$")
            set(label integration)
        elseif(test MATCHES "SlowTest$")
            set(label slow)
        endif()
        add_test(NAME ${test} COMMAND ${test})
        set_tests_properties(${test} PROPERTIES LABELS ${label} TIMEOUT 600
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;KELVANE_TOOL=$<TARGET_FILE:kelvane>;KELVANE_TEST_DATA=${CMAKE_SOURCE_DIR}/../shared/data;KELVANE_SOURCE_DIR=${CMAKE_SOURCE_DIR}")
    endforeach()
endfunction()
