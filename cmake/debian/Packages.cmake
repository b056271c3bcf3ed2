# Debian packages of what is installed under /usr: `cpack` in the build folder, or scripts/package.
find_program(KZM_DPKG_ARCHITECTURE dpkg-architecture REQUIRED)
execute_process(COMMAND ${KZM_DPKG_ARCHITECTURE} -f -t ${CMAKE_LIBRARY_ARCHITECTURE} -q DEB_HOST_ARCH
                OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_PACKAGE_CONTACT "Maintainers of ${PROJECT_NAME} <maintainers@${PROJECT_NAME}.invalid>" CACHE STRING
    "Maintainer that the Debian packages name")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/Documentation.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/Triggers.cmake)

# dpkg-shlibdeps finds the libraries that binaries need, but knows only those of this machine's architecture: for another, the
# compiler's own are asked for.
if(CMAKE_CROSSCOMPILING)
    execute_process(COMMAND ${CMAKE_COMMAND} -E echo "#include <features.h>\nGLIBC __GLIBC__ __GLIBC_MINOR__"
                    COMMAND ${CMAKE_CXX_COMPILER} -E -P -x c++ - OUTPUT_VARIABLE features)
    string(REGEX REPLACE ".*GLIBC ([0-9]+) ([0-9]+).*" "\\1.\\2" libc ${features})
    string(REGEX MATCH "^[0-9]+" compiler ${CMAKE_CXX_COMPILER_VERSION})
    set(runtime "libc6 (>= ${libc}), libgcc-s1 (>= 3.5), libstdc++6 (>= ${compiler})")
    set(modbus "libmodbus5 (>= ${MODBUS_VERSION})")
else()
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
        ${PROJECT_BINARY_DIR}/gateway ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/platform)
endif()

# Puts a component into a package, with its section, description and dependencies.
macro(kzm_debian_package component name section description)
    string(TOUPPER ${component} upper)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${description}")
    set(depends ${ARGN})
    list(JOIN depends ", " CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS)
endmacro()

set(same "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(json "nlohmann-json3-dev (>= ${nlohmann_json_VERSION})" "nlohmann-json3-dev (<< ${KZM_NEXT_JSON_VERSION}~)")
set(library libkzm-modbus-device-model${KZM_ABI_VERSION})
# Another platform's run-time package is found by dpkg-shlibdeps; which one has its headers is not known here.
if(NOT KZM_PLATFORM_PACKAGE)
    set(platform libkzm-platform${KZM_ABI_VERSION})
    kzm_debian_package(platform-runtime ${platform} libs
        "Stand-in for the libraries of a gateway platform\nLog, clock, status texts, labels and data-model objects."
        ${runtime})
    kzm_debian_package(platform-development libkzm-platform-dev libdevel
        "Stand-in for a gateway platform (development files)\nHeaders, CMake package and pkg-config module."
        "${platform} ${same}" ${json})
    set(needs_platform "${platform} ${same}")
    set(needs_platform_development "libkzm-platform-dev ${same}")
endif()
kzm_debian_package(library-runtime ${library} libs
    "${PROJECT_DESCRIPTION}\nTurns cached registers into data-model objects: value, quality, date-time."
    ${needs_platform} ${runtime})
kzm_debian_package(library-development libkzm-modbus-device-model-dev libdevel
    "${PROJECT_DESCRIPTION} (development files)\nHeaders, CMake package and pkg-config module."
    "${library} ${same}" ${needs_platform_development} ${json})
if(KZM_BUILD_TOOLS)
    set(gateway libkzm-modbus-gateway${KZM_ABI_VERSION})
    kzm_debian_package(gateway-runtime ${gateway} libs
        "Gateway around the model of a Modbus field device\nReads devices and loads their profiles."
        "${library} ${same}" ${needs_platform} ${runtime} ${modbus})
    kzm_debian_package(gateway-development libkzm-modbus-gateway-dev libdevel
        "Gateway around the model of a Modbus device (development files)\nHeaders, CMake package and pkg-config module."
        "${gateway} ${same}" "libkzm-modbus-device-model-dev ${same}")
    kzm_debian_package(tools kzm-modbus utils
        "Shows what a device profile makes of a Modbus device\nThe program, the schema of profiles, and example profiles."
        "${gateway} ${same}" "${library} ${same}" ${needs_platform} ${runtime})
endif()
include(CPack)
