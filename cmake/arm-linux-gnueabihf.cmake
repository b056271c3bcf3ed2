# Builds for 32-bit ARM with Debian's cross compiler and runs the tests under QEMU. scripts/setup --ci provides both, and
# the folder with the libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Where libraries are installed")

get_filename_component(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build-arm-sysroot ABSOLUTE)
set(libraries ${sysroot}/usr/lib/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH ${sysroot})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm;-L;/usr/arm-linux-gnueabihf;-E;LD_LIBRARY_PATH=${libraries})
# Where the linker finds what libraries need in turn.
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,-rpath-link,${libraries})
