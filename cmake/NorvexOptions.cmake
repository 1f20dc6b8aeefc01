# How everything of the project is compiled. Nothing of this reaches a project that uses the library.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND PROJECT_IS_TOP_LEVEL)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
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
