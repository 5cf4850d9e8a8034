# `cpack` builds three Debian packages from what install.cmake installs: the library, its development files and the program.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lightmotion)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${LIGHTMOTION_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL library development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# usage: package(COMPONENT NAME SECTION DEPENDS SUMMARY MORE): MORE is the rest of the description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # set for each package below
function(package component name section depends summary more)
  string(TOUPPER CPACK_DEBIAN_${component} prefix)
  set(${prefix}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(${prefix}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(${prefix}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(${prefix}_DESCRIPTION "${summary}\n${more}" PARENT_SCOPE)
endfunction()

set(what "lightmotion detects motion in video: an adaptive background model of every
pixel separates the foreground, which is grouped into boxes.")

package(library liblightmotion1 libs "" "motion detection for video (shared library)" "${what}

This package contains the plug-in that video-analytics hosts load.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# As dpkg-gensymbols does: the names of this architecture, without tags.
math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
file(STRINGS packaging/symbols lines)
set(symbols "")
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^ \\(arch-bits=([0-9]+)\\)" OR CMAKE_MATCH_1 EQUAL bits)
    string(REGEX REPLACE "^ \\([^)]*\\)" " " line "${line}")
    string(APPEND symbols "${line}\n")
  endif()
endforeach()
file(WRITE ${PROJECT_BINARY_DIR}/packaging/symbols "${symbols}")
# dpkg's trigger registers the library with the dynamic linker. Listing the names of missing scripts keeps CPack from
# generating scripts that do the same; it skips missing files with a warning.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/packaging/symbols ${PROJECT_SOURCE_DIR}/packaging/triggers not-wanted/postinst not-wanted/postrm)

package(development liblightmotion-dev libdevel "liblightmotion1 (= ${PROJECT_VERSION}), libjsoncpp-dev"
        "motion detection for video (development files)" "${what}

This package contains the development files for hosts: headers, CMake and
pkg-config files, and minimal hosts in C, C++ and Python.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libopencv-video-dev) # for opencv.hpp

if(LIGHTMOTION_HOST)
  list(APPEND CPACK_COMPONENTS_ALL program)
  # The library is loaded at run time, so dpkg-shlibdeps does not find this dependency.
  package(program lightmotion video "liblightmotion1 (= ${PROJECT_VERSION})"
          "motion detection for video (program)" "${what}

This package contains the program, which runs the plug-in on files, streams
and cameras and writes result lines, events, reports and annotated videos.")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
  # Loaded when a local camera is used. Its version number is that of the libavformat used for the build.
  string(REGEX REPLACE "\\..*" "" ffmpeg_number "${FFMPEG_libavformat_VERSION}")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS libavdevice${ffmpeg_number})
endif()

include(CPack)
