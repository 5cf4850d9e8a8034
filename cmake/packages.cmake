# `cpack` builds Debian packages from what install.cmake installs: the library, its development files, the program and
# the Python and GStreamer packages.
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
  package(program lightmotion video "liblightmotion1 (= ${PROJECT_VERSION})"
          "motion detection for video (program)" "${what}

This package contains the program, which runs the detector on files, streams
and cameras and writes result lines, events, reports and annotated videos.")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
  set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/without_rpath.cmake)
  # Loaded when a local camera is used. Its version number is that of the libavformat used for the build.
  string(REGEX REPLACE "\\..*" "" ffmpeg_number "${FFMPEG_libavformat_VERSION}")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS libavdevice${ffmpeg_number})
endif()

if(LIGHTMOTION_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
  package(python python3-lightmotion python "liblightmotion1 (= ${PROJECT_VERSION}), python3 (>= 3.11~)"
          "motion detection for video (Python 3)" "${what}

This package contains the Python module.")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-numpy)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-av, python3-opencv")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
  # As Debian's own tools write them: compiled modules belong to no package and have to go with it.
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/python3/postinst
                                                ${PROJECT_SOURCE_DIR}/packaging/python3/prerm)
endif()

if(LIGHTMOTION_GSTREAMER)
  list(APPEND CPACK_COMPONENTS_ALL gstreamer)
  package(gstreamer gstreamer1.0-lightmotion video "liblightmotion1 (= ${PROJECT_VERSION})"
          "motion detection for video (GStreamer plug-in)" "${what}

This package contains the GStreamer element lightmotion, which attaches the
boxes to frames and posts messages.")
  set(CPACK_DEBIAN_GSTREAMER_PACKAGE_SHLIBDEPS ON)
endif()

# Where dpkg-shlibdeps finds the library, which no installed package has.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

include(CPack)
