# The shared library shows what its headers declare, the templates of std and boost that went into it, and nothing of
# its own that no header shows.
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
