# How everything of the project is compiled. Nothing of this reaches a project that uses the library.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND PROJECT_IS_TOP_LEVEL)
    # Without this it caches nothing that uses a precompiled header.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
endif()

add_library(norvex_options INTERFACE)
target_compile_options(norvex_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    # A product and a sum fused into one rounding would break ties between distances differently from machine to machine.
    -ffp-contract=off
    # No host replaces a function of the library, so that its own may be inlined.
    -fno-semantic-interposition
    # What a thrown exception says of its file stays the same wherever it was built.
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(NORVEX_WERROR)
    target_compile_options(norvex_options INTERFACE -Werror)
endif()
if(NORVEX_SANITIZE)
    target_compile_options(norvex_options INTERFACE -fsanitize=${NORVEX_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(norvex_options INTERFACE -fsanitize=${NORVEX_SANITIZE})
endif()

# Compiles what nearly every source includes once for a target: Boost and the standard library, and `headers`. None of
# the project's own, so that a change of one builds no more than it reaches.
function(norvex_precompile target)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <map> <optional> <string> <utility> <variant> <vector>
        <boost/exception/exception.hpp> <boost/exception/get_error_info.hpp> <boost/exception/info.hpp>
        <boost/rational.hpp> <boost/smart_ptr/intrusive_ptr.hpp> <boost/throw_exception.hpp> ${ARGN})
    # What ccache needs to know a precompiled header by its contents.
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess> $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
endfunction()
