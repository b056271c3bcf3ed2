# CPack has a package with a library call ldconfig in scripts of its own; Debian wants a trigger instead.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(content ${CPACK_TOPLEVEL_DIRECTORY}/content)
    file(REMOVE_RECURSE ${content})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${content} COMMAND_ERROR_IS_FATAL ANY)
    if(EXISTS ${content}/DEBIAN/postinst)
        file(REMOVE ${content}/DEBIAN/postinst ${content}/DEBIAN/postrm)
        file(WRITE ${content}/DEBIAN/triggers "activate-noawait ldconfig\n")
        execute_process(COMMAND dpkg-deb --root-owner-group --build ${content} ${package} OUTPUT_QUIET
                        COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
