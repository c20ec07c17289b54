# Compiler options for our own targets. Qt's headers come in as system headers, so the strict
# warnings speak of our code only.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${CCACHE_PROGRAM})
endif()

function(kelvane_compile_options target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
        -fno-math-errno -ffp-contract=off)
    if(CCACHE_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -fpch-preprocess)
    endif()
    if(KELVANE_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_DEPRECATED_WARNINGS QT_NO_URL_CAST_FROM_STRING)
    if(KELVANE_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${KELVANE_SANITIZE}
            -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${KELVANE_SANITIZE})
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU") # sees uninitialised values that are the sanitizers' own
            target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
        endif()
    endif()
    if(KELVANE_BUILD_FUZZERS) # the fuzzer is led by what the libraries cover
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
endfunction()
