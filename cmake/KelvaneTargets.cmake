# How a library, its tests, a benchmark and a fuzzer are declared. Sources are found by folder:
# LIB/MODULE/*.cpp, LIB/include/LIB/MODULE/*.h, LIB/tests/MODULE/*Test.cpp.

# Before 1.0 every minor version may change the binary interface, so it is part of the soname.
set(KELVANE_SOVERSION ${PROJECT_VERSION_MAJOR})
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(KELVANE_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
endif()

# The environment of every test. Sanitizers stop at the first fault; the leaks that are known and not
# ours are listed in testing/lsan.supp.
set(KELVANE_TEST_ENVIRONMENT QT_QPA_PLATFORM=offscreen)
if(KELVANE_SANITIZE)
    list(APPEND KELVANE_TEST_ENVIRONMENT
        ASAN_OPTIONS=strict_string_checks=1:detect_stack_use_after_return=1
        LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_SOURCE_DIR}/testing/lsan.supp:print_suppressions=0
        UBSAN_OPTIONS=print_stacktrace=1)
endif()

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
        SOVERSION ${KELVANE_SOVERSION}
        INSTALL_RPATH $ORIGIN)
    kelvane_compile_options(${target})
    if(NOT KELVANE_SANITIZE) # whose symbols are in the program
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
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
            # PROJ is a judge of our conversions.
            target_link_libraries(${test} PRIVATE Kelvane::util kelvane_testing_gui PkgConfig::proj)
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
            ENVIRONMENT "${KELVANE_TEST_ENVIRONMENT};KELVANE_TOOL=$<TARGET_FILE:kelvane>;KELVANE_TEST_DATA=${CMAKE_SOURCE_DIR}/../shared/data;KELVANE_SOURCE_DIR=${CMAKE_SOURCE_DIR};KELVANE_PYTHON=${KELVANE_PYTHON}")
    endforeach()
endfunction()

# The Python of the system, whose packages scripts/install-deps.sh installs; any other is second choice.
find_program(KELVANE_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(KELVANE_PYTHON NAMES python3)

# One test that runs Python with the package: kelvane_add_python_test(NAME unit COMMAND program...). It is
# skipped, not failed, where it prints that a package "is not installed".
function(kelvane_add_python_test name label)
    cmake_parse_arguments(arg "" "WORKING_DIRECTORY" "COMMAND" ${ARGN})
    if(NOT KELVANE_PYTHON)
        message(STATUS "No test ${name}: python3 is not installed")
        return()
    endif()
    if(NOT arg_WORKING_DIRECTORY)
        set(arg_WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
    endif()
    add_test(NAME ${name} COMMAND ${arg_COMMAND} WORKING_DIRECTORY ${arg_WORKING_DIRECTORY})
    set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 600
        SKIP_REGULAR_EXPRESSION "is not installed"
        ENVIRONMENT "${KELVANE_TEST_ENVIRONMENT};PYTHONPATH=${CMAKE_SOURCE_DIR}/python;PYTHONDONTWRITEBYTECODE=1")
endfunction()

# Every python/tests/test_NAME.py is one test, of the label that the end of its name gives.
function(kelvane_add_python_tests)
    set(folder ${CMAKE_SOURCE_DIR}/python/tests)
    file(GLOB tests CONFIGURE_DEPENDS ${folder}/test_*.py)
    foreach(source IN LISTS tests)
        get_filename_component(test ${source} NAME_WE)
        set(label unit)
        if(test MATCHES "_integration$")
            set(label integration)
        endif()
        kelvane_add_python_test(python_${test} ${label} COMMAND
            ${KELVANE_PYTHON} -W error -m unittest discover -v -s ${folder} -p ${test}.py)
    endforeach()
endfunction()

# Every MODULE/*Bench.cpp of the current folder is one benchmark program, in the target `benchmarks`. It
# links the arguments and the library of its module; a module of util and basic both is util's.
function(kelvane_add_benchmarks)
    add_custom_target(benchmarks)
    add_dependencies(benchmarks kelvane) # some run it
    file(GLOB sources CONFIGURE_DEPENDS */*Bench.cpp)
    foreach(source IN LISTS sources)
        get_filename_component(bench ${source} NAME_WE)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(GET folder FILENAME module)
        set(library basic)
        if(IS_DIRECTORY ${CMAKE_SOURCE_DIR}/util/include/util/${module})
            set(library util)
        endif()
        add_executable(${bench} ${source})
        target_link_libraries(${bench} PRIVATE Kelvane::${library} ${ARGN})
        target_compile_definitions(${bench} PRIVATE
            KELVANE_PYTHON="${KELVANE_PYTHON}" KELVANE_PYTHON_PACKAGES="${CMAKE_SOURCE_DIR}/python"
            KELVANE_TOOL="$<TARGET_FILE:kelvane>")
        kelvane_compile_options(${bench})
        set_target_properties(${bench} PROPERTIES
            RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
        add_dependencies(benchmarks ${bench})
    endforeach()
endfunction()

# Every NAMEFuzzer.cpp is one libFuzzer program, its seeds are in corpus/NAME; the target `fuzzers` builds
# them all.
function(kelvane_add_fuzzers)
    add_custom_target(fuzzers)
    file(GLOB sources CONFIGURE_DEPENDS *Fuzzer.cpp)
    foreach(source IN LISTS sources)
        get_filename_component(fuzzer ${source} NAME_WE)
        add_executable(${fuzzer} ${source})
        target_link_libraries(${fuzzer} PRIVATE Kelvane::util)
        kelvane_compile_options(${fuzzer})
        target_compile_options(${fuzzer} PRIVATE -fsanitize=fuzzer)
        target_link_options(${fuzzer} PRIVATE -fsanitize=fuzzer)
        set_target_properties(${fuzzer} PROPERTIES
            RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
        add_dependencies(fuzzers ${fuzzer})
    endforeach()
endfunction()
