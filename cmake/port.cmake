# Toolchain for another of Debian's architectures, LIGHTMOTION_PORT, by Debian's cross compiler for it. Its libraries are
# those of tools/port_root, and its programs run under emulation by tools/port_run.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LIGHTMOTION_PORT)
foreach(name GNU_CPU MULTIARCH)
  execute_process(COMMAND dpkg-architecture -A${LIGHTMOTION_PORT} -qDEB_TARGET_${name} OUTPUT_VARIABLE ${name}
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endforeach()
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${GNU_CPU})
set(CMAKE_LIBRARY_ARCHITECTURE ${MULTIARCH})
set(CMAKE_C_COMPILER ${MULTIARCH}-gcc)
set(CMAKE_CXX_COMPILER ${MULTIARCH}-g++)
if(GNU_CPU STREQUAL arm)
  set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # notes on what GCC 7 changed
endif()

set(port_root ${CMAKE_CURRENT_LIST_DIR}/../build/port_roots/${LIGHTMOTION_PORT})
set(CMAKE_FIND_ROOT_PATH ${port_root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(ENV{PKG_CONFIG_LIBDIR} ${port_root}/usr/lib/${MULTIARCH}/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${port_root})

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/port_run ${LIGHTMOTION_PORT})
