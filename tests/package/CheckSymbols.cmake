# The shared library shows what its headers declare, and nothing of its own or of others that no header shows.
execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE mangled COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCH " _Z(GV)?(T.)?Z?N?K?(St|5boost|9__gnu_cxx)[^\n]*" others "${mangled}")
if(others)
    message(FATAL_ERROR "exported, though it is the instance of another's template: ${others}")
endif()
execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
foreach(entry_point "CreateDataHelper\\(" "CreateDataHelperAuto\\(" "GetAvailableDataHelpers\\("
        "Norvex::Conf::ConstraintRange::Create\\(" "Norvex::Proc::FindEncoder\\(" "typeinfo for Norvex::Conf::HelperException")
    if(NOT symbols MATCHES "${entry_point}")
        message(FATAL_ERROR "not exported: ${entry_point}")
    endif()
endforeach()
foreach(own "Norvex::Conf::AddRule" "Norvex::Conf::Tree\\(" "Norvex::Conf::GetCatalogue" "Norvex::Conf::FindLayoutRow"
        "\\(anonymous namespace\\)")
    if(symbols MATCHES "${own}")
        message(FATAL_ERROR "exported, but no header shows it: ${own}")
    endif()
endforeach()
