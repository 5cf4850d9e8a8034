#!/bin/sh
# usage: subproject.sh CMAKE SOURCES FOLDER
# Builds a host in FOLDER whose project contains the sources. Its own settings stay as they are: C++17, no optimisation, its
# folder for programs, no tests of ours, and nothing of ours is installed.
set -eu
cmake=$1 sources=$2 folder=$3
rm -rf "$folder"
mkdir -p "$folder/source"
ln -s "$sources" "$folder/source/lightmotion"
cat >"$folder/source/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.22)
project(surrounding LANGUAGES C CXX)
set(CMAKE_CXX_STANDARD 17)
add_subdirectory(lightmotion)
foreach(name CMAKE_BUILD_TYPE CMAKE_RUNTIME_OUTPUT_DIRECTORY CMAKE_POSITION_INDEPENDENT_CODE)
  if(${name})
    message(FATAL_ERROR "${name} is set to ${${name}}")
  endif()
endforeach()
get_directory_property(options COMPILE_OPTIONS)
if(options OR NOT CMAKE_CXX_STANDARD EQUAL 17)
  message(FATAL_ERROR "settings have changed: ${options} C++${CMAKE_CXX_STANDARD}")
endif()
add_executable(host host.cpp)
target_link_libraries(host PRIVATE lightmotion::lightmotion)
END
cat >"$folder/source/host.cpp" <<'END'
#include "plugin/entry_points.h"
#include "plugin/result.h"
static_assert(__cplusplus == 201703L);
int main() { return initialization("{}") || terminate() != 1; }
END
"$cmake" -S "$folder/source" -B "$folder/build" -G Ninja
"$cmake" --build "$folder/build" --target host
"$folder/build/host"
"$cmake" --install "$folder/build" --prefix "$folder/installed"
[ ! -e "$folder/installed" ]
