# Settings that every target of this project is built with; consumers do not inherit them.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()
# Lines and function names for a backtrace. What variables need would double the time of a build; Debug has it.
string(REPLACE "-g " "-g1 " CMAKE_CXX_FLAGS_RELWITHDEBINFO "${CMAKE_CXX_FLAGS_RELWITHDEBINFO}")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ${KZM_BUILD_TESTS})
# A program is not linked anew for a library that changed inside.
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endif()

add_compile_options(-Wall -Wextra -Wconversion -Wshadow -Wformat=2 -Wno-psabi -ffp-contract=off)
# A switch that lists enumerators lists all of them: a new one must not compile before every such place knows it.
add_compile_options(-Werror=switch)
# Nobody replaces single functions of a library here: calls within one need not go through its tables.
add_compile_options(-fno-semantic-interposition)
add_link_options(-Wl,-Bsymbolic-functions)
if(KZM_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()
if(KZM_SANITIZE)
    add_compile_options(-fsanitize=${KZM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KZM_SANITIZE})
endif()
if(KZM_BUILD_FUZZ)
    add_compile_options(-O1 -fsanitize=fuzzer-no-link)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
