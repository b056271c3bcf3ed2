# Makes kzm::<EXPORT_NAME> of a library: what users of the installed package have, and no more. Its include folder holds links
# to the public headers alone, so that who builds against it here cannot include another. `base`: what the headers' paths
# are relative to. Further arguments: what the headers need.
function(kzm_add_public_target library base)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/public)
    file(REMOVE_RECURSE ${folder})
    get_target_property(headers ${library} HEADER_SET)
    foreach(header IN LISTS headers)
        cmake_path(ABSOLUTE_PATH header)
        cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${base} OUTPUT_VARIABLE name)
        cmake_path(GET name PARENT_PATH room)
        file(MAKE_DIRECTORY ${folder}/${room})
        file(CREATE_LINK ${header} ${folder}/${name} SYMBOLIC)
    endforeach()

    add_library(${library}-public INTERFACE)
    target_include_directories(${library}-public INTERFACE ${folder})
    target_compile_features(${library}-public INTERFACE cxx_std_20)
    target_link_libraries(${library}-public INTERFACE $<LINK_ONLY:${library}> ${ARGN})
    get_target_property(name ${library} EXPORT_NAME)
    add_library(kzm::${name} ALIAS ${library}-public)
endfunction()
