# Toolchain for another architecture, by Debian's cross compilers: LIGHTMOTION_PORT is arm64, armhf or s390x. Its libraries
# are in the folder that tools/port_root makes; its programs run under Debian's user-mode emulator.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LIGHTMOTION_PORT)
set(CMAKE_SYSTEM_NAME Linux)
if(LIGHTMOTION_PORT STREQUAL arm64)
  set(CMAKE_SYSTEM_PROCESSOR aarch64)
  set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
elseif(LIGHTMOTION_PORT STREQUAL armhf)
  set(CMAKE_SYSTEM_PROCESSOR arm)
  set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
  set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # notes on what GCC 7 changed
elseif(LIGHTMOTION_PORT STREQUAL s390x)
  set(CMAKE_SYSTEM_PROCESSOR s390x)
  set(CMAKE_LIBRARY_ARCHITECTURE s390x-linux-gnu)
else()
  message(FATAL_ERROR "LIGHTMOTION_PORT is `${LIGHTMOTION_PORT}`; known: arm64, armhf, s390x")
endif()

set(CMAKE_C_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-gcc)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)

set(port_root ${CMAKE_CURRENT_LIST_DIR}/../build/port_roots/${LIGHTMOTION_PORT})
set(CMAKE_FIND_ROOT_PATH ${port_root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(port_libraries ${port_root}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
set(ENV{PKG_CONFIG_LIBDIR} ${port_libraries}/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${port_root})

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR} -L /usr/${CMAKE_LIBRARY_ARCHITECTURE}
    -E LD_LIBRARY_PATH=${port_libraries})
