# No static of a library is made behind those of a host or destroyed ahead of them: what is neither NORVEX_CONSTANT nor
# Lasting leaves the compiler's function without a priority, or a registration with atexit. clang makes an empty
# function beside those with a priority, of six bytes at most.
execute_process(COMMAND ${NM} -S ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols MATCHES "_ZN6Norvex")
    message(FATAL_ERROR "no names to look at")
endif()
string(REGEX MATCHALL "[^\n]* (_GLOBAL__sub_[ID]_[^0-9][^\n]*|U (__cxa_)?(thread_)?atexit[^\n]*|t atexit)" own "${symbols}")
list(FILTER own EXCLUDE REGEX " 0+[1-6] t _GLOBAL__sub_I_")
if(own)
    message(FATAL_ERROR "statics that are neither NORVEX_CONSTANT nor Lasting: ${own}")
endif()
