# What Debian wants beside the files that `cmake --install` lays down; CPack runs this before it makes the packages.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
string(TIMESTAMP year %Y UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(usr ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
    set(documents ${usr}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright.in ${documents}/copyright @ONLY)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${documents}/changelog.Debian @ONLY)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md ${documents}/changelog COPYONLY)
    file(GLOB manuals ${usr}/share/man/man1/*.1)
    execute_process(COMMAND gzip -9nf ${documents}/changelog.Debian ${documents}/changelog ${manuals}
                    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
