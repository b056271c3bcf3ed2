# What loading costs: the dictionary alone, and a library that holds nothing but what every shared library brings.
file(GLOB dictionary ${PROJECT_SOURCE_DIR}/src/dictionary/*.cpp ${PROJECT_SOURCE_DIR}/src/edm/modbus/*.cpp)
get_source_file_property(dictionary_options ${PROJECT_SOURCE_DIR}/src/dictionary/DictionaryTables.cpp
                         TARGET_DIRECTORY kzm-modbus-device-model COMPILE_OPTIONS)
set_source_files_properties(${PROJECT_SOURCE_DIR}/src/dictionary/DictionaryTables.cpp PROPERTIES
                            COMPILE_OPTIONS "${dictionary_options}")
add_library(load-dictionary SHARED ${dictionary})
add_library(load-nothing SHARED Nothing.cpp)
foreach(library load-dictionary load-nothing)
    target_include_directories(${library} PRIVATE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${library} PRIVATE kzm::platform nlohmann_json::nlohmann_json)
endforeach()
add_executable(load-cost LoadCost.cpp)
target_link_libraries(load-cost PRIVATE ${CMAKE_DL_LIBS})
add_custom_target(loading DEPENDS load-cost load-dictionary load-nothing kzm-modbus-device-model)
