# Debian packages: cpack in the build folder makes the library, what is needed to build with it, and the programs.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR Norvex)
set(CPACK_PACKAGE_CONTACT "Norvex <norvex@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime document development programs)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The packages are made together, so that the programs find the library that is not installed yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/norvex ${PROJECT_BINARY_DIR}/norvex/document)

set(library libnorvex${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(document libnorvex-document${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}: shared library")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_DOCUMENT_PACKAGE_NAME ${document})
set(CPACK_DEBIAN_DOCUMENT_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DOCUMENT_DESCRIPTION "${PROJECT_DESCRIPTION}: shared library of preset documents")
set(CPACK_DEBIAN_DOCUMENT_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_DOCUMENT_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libnorvex-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION}: development files")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${library} (= ${PROJECT_VERSION}), ${document} (= ${PROJECT_VERSION}), libboost-dev, libavformat-dev, \
libavcodec-dev, libavutil-dev")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME norvex-tools)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PROGRAMS_DESCRIPTION "${PROJECT_DESCRIPTION}: programs")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS
    "${library} (= ${PROJECT_VERSION}), ${document} (= ${PROJECT_VERSION})")
if(NORVEX_BUILD_PYTHON)
    list(APPEND CPACK_COMPONENTS_ALL python)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-norvex)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    set(CPACK_DEBIAN_PYTHON_DESCRIPTION "${PROJECT_DESCRIPTION}: Python package")
    # The module is of one Python, as Debian has one at a time.
    string(REPLACE "3." "" minor ${NORVEX_PYTHON_VERSION})
    math(EXPR next "${minor} + 1")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}), ${document} (= ${PROJECT_VERSION}), \
python3 (>= 3.${minor}), python3 (<< 3.${next})")
endif()

# Each package carries the word on its licence, where Debian's packages have it; the pages go with what is built with.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} COMPONENT)
    install(FILES COPYRIGHT RENAME copyright COMPONENT ${component}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME})
endforeach()
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libnorvex-dev COMPONENT development)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libnorvex-dev COMPONENT development
    FILES_MATCHING PATTERN *.md PATTERN *.svg)

include(CPack)
