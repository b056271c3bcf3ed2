# What `cmake --install` lays down, by components that are packages of their own. The platform's stand-in is separate from
# the library, so that another platform can take its place.
include(CMakePackageConfigHelpers)
set(KZM_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake)
file(RELATIVE_PATH KZM_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
# Before 1.0 a minor version may change the binary interface, so that it has a SONAME of its own.
set(KZM_ABI_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(KZM_ABI_COMPATIBILITY SameMinorVersion)

# Installs a library with its headers as the CMake package and pkg-config module of its name; the components are
# <name>-runtime and <name>-development. Further arguments: the packages that it is built on. All need the very JSON library
# of this build: its types are in their interfaces, and its version is in the names of its types.
function(kzm_install_library library name description)
    set_target_properties(${library} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${KZM_ABI_VERSION})
    set(development COMPONENT ${name}-development)
    install(TARGETS ${library} EXPORT ${library}-targets
            LIBRARY COMPONENT ${name}-runtime NAMELINK_${development}
            FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${library} ${development})
    install(EXPORT ${library}-targets NAMESPACE kzm:: DESTINATION ${KZM_PACKAGE_DIR}/${library} ${development})

    set(find_dependencies)
    foreach(package IN LISTS ARGN)
        string(APPEND find_dependencies "find_dependency(${package} HINTS \"\${CMAKE_CURRENT_LIST_DIR}/..\")\n")
    endforeach()
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/package-config.cmake.in ${library}-config.cmake
                                  INSTALL_DESTINATION ${KZM_PACKAGE_DIR}/${library})
    write_basic_package_version_file(${library}-config-version.cmake COMPATIBILITY ${KZM_ABI_COMPATIBILITY})
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}-config.cmake
                  ${CMAKE_CURRENT_BINARY_DIR}/${library}-config-version.cmake
            DESTINATION ${KZM_PACKAGE_DIR}/${library} ${development})

    list(JOIN ARGN " " requires)
    string(PREPEND requires "nlohmann_json = ${nlohmann_json_VERSION} ")
    configure_file(${PROJECT_SOURCE_DIR}/cmake/package.pc.in ${library}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
            ${development})
endfunction()

# The program with its manual page, completion, documents and data.
function(kzm_install_program)
    find_program(KZM_LOWDOWN lowdown REQUIRED)
    set(scripts ${PROJECT_SOURCE_DIR}/cmake)
    add_custom_command(OUTPUT kzm-modbus.1
        COMMAND ${scripts}/manual-page ${KZM_LOWDOWN} ${PROJECT_VERSION} > kzm-modbus.1
        DEPENDS ${scripts}/manual-page ${scripts}/manual-page.sed docs/kzm-modbus.md)
    add_custom_target(manual-page ALL DEPENDS kzm-modbus.1)

    set(data ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME})
    install(TARGETS kzm-modbus COMPONENT tools)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kzm-modbus.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(FILES tools/kzm-modbus/completion.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
            RENAME kzm-modbus COMPONENT tools)
    # Where the profiles' "$schema" finds it.
    foreach(kind IN ITEMS profile capture)
        install(FILES gateway/${kind}/${kind}.schema.json DESTINATION ${data}/gateway/${kind} COMPONENT tools)
    endforeach()
    install(FILES docs/kzm-modbus.md docs/profile.md docs/troubleshooting.md docs/diagnosis.md
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kzm-modbus COMPONENT tools)
    install(DIRECTORY profiles DESTINATION ${data} COMPONENT tools PATTERN *.expected.json EXCLUDE)
endfunction()

if(TARGET kzm-platform)
    kzm_install_library(kzm-platform platform
        "Stand-in for the gateway platform's libraries: log, clock, status texts, object")
endif()
if(TARGET kzm-modbus-device-model)
    kzm_install_library(kzm-modbus-device-model library "${PROJECT_DESCRIPTION}" ${KZM_PLATFORM_DEPENDENCY})
endif()
if(KZM_BUILD_TOOLS)
    kzm_install_library(kzm-modbus-gateway gateway "What a gateway adds to the run-time model of a Modbus field device" ${KZM_LIBRARY_DEPENDENCY})
    kzm_install_program()
endif()
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    include(cmake/debian/Packages.cmake)
endif()
