# What `cmake --install` lays down. The platform's stand-in is a package of its own, so that another can take its place.
include(CMakePackageConfigHelpers)
set(KZM_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake)
file(RELATIVE_PATH KZM_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)

# Installs a library with its headers as the CMake package and pkg-config module of its name.
function(kzm_install_library library)
    install(TARGETS ${library} EXPORT ${library}-targets
            FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${library})
    install(EXPORT ${library}-targets NAMESPACE kzm:: DESTINATION ${KZM_PACKAGE_DIR}/${library})

    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/${library}-config.cmake.in ${library}-config.cmake
                                  INSTALL_DESTINATION ${KZM_PACKAGE_DIR}/${library})
    write_basic_package_version_file(${library}-config-version.cmake COMPATIBILITY SameMinorVersion)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}-config.cmake
                  ${CMAKE_CURRENT_BINARY_DIR}/${library}-config-version.cmake
            DESTINATION ${KZM_PACKAGE_DIR}/${library})

    configure_file(${PROJECT_SOURCE_DIR}/cmake/${library}.pc.in ${library}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

if(KZM_PLATFORM_PACKAGE)
    set(KZM_PLATFORM_DEPENDENCY ${KZM_PLATFORM_PACKAGE})
else()
    set(KZM_PLATFORM_DEPENDENCY kzm-platform)
    kzm_install_library(kzm-platform)
endif()
kzm_install_library(kzm-modbus-device-model)

if(KZM_BUILD_TOOLS)
    set(data ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME})
    install(TARGETS kzm-modbus)
    install(FILES gateway/profile.schema.json DESTINATION ${data})
    install(DIRECTORY profiles DESTINATION ${data} PATTERN *.expected.json EXCLUDE)
endif()
