# What `cmake --install` installs. Its components become the packages: library, development files, program, GStreamer
# plug-in.
#
# Debian's linker, pkg-config and CMake search the architecture's own folder below /usr and /usr/local, so one build
# tree serves both a manual installation and the packages.
if(EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Libraries, below the prefix")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(LIGHTMOTION_MAINTAINER "lightmotion developers <developers@lightmotion.invalid>"
    CACHE STRING "Maintainer of the packages")

# The headers that declare exported names, and the headers that these include. They include each other relative to the
# source root, which becomes include/lightmotion. The API pages are made from the same list.
set(LIGHTMOTION_PUBLIC_HEADERS
  plugin/entry_points.h plugin/detector.h plugin/instance.h plugin/result.h
  config/polygon.h
  engine/kamble.h
  objects/box.h objects/component.h objects/morphology.h objects/region_names.h
  simd/cpu_level.h simd/samples.h simd/simd.h)

# ---- library and development files --------------------------------------------------------------------------
set(cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/lightmotion)
set(include_folder ${CMAKE_INSTALL_INCLUDEDIR}/lightmotion)

install(TARGETS lightmotion EXPORT lightmotion
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${include_folder})
foreach(header ${LIGHTMOTION_PUBLIC_HEADERS})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${include_folder}/${folder} COMPONENT development)
endforeach()

# Included as <lightmotion/lightmotion.h>.
install(FILES lightmotion/lightmotion.h lightmotion/lightmotion.hpp lightmotion/opencv.hpp DESTINATION ${include_folder} COMPONENT development)

install(EXPORT lightmotion NAMESPACE lightmotion:: FILE lightmotion-targets.cmake
        DESTINATION ${cmake_folder} COMPONENT development)
configure_package_config_file(packaging/lightmotion-config.cmake.in lightmotion-config.cmake
                              INSTALL_DESTINATION ${cmake_folder} NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lightmotion-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lightmotion-config.cmake ${PROJECT_BINARY_DIR}/lightmotion-config-version.cmake
        DESTINATION ${cmake_folder} COMPONENT development)

# Written at installation, when the prefix is known.
install(CODE "
  set(version ${PROJECT_VERSION})
  set(description \"${PROJECT_DESCRIPTION}\")
  set(libdir ${CMAKE_INSTALL_LIBDIR})
  set(includedir ${CMAKE_INSTALL_INCLUDEDIR})
  configure_file(${PROJECT_SOURCE_DIR}/packaging/lightmotion.pc.in ${PROJECT_BINARY_DIR}/lightmotion.pc @ONLY)"
  COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/lightmotion.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(examples ${CMAKE_INSTALL_DATADIR}/doc/liblightmotion-dev/examples)
install(DIRECTORY examples/c examples/cpp DESTINATION ${examples} COMPONENT development)
install(PROGRAMS examples/python/host.py DESTINATION ${examples}/python COMPONENT development)

# ---- program ------------------------------------------------------------------------------------------------
if(LIGHTMOTION_HOST)
  # Finds its library wherever the installation is moved to; packages leave that to the linker (packages.cmake).
  file(RELATIVE_PATH to_library /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(lightmotion_program PROPERTIES INSTALL_RPATH $ORIGIN/${to_library})
  install(TARGETS lightmotion_program RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
  set(data ${CMAKE_INSTALL_DATADIR})
  install(FILES packaging/completion/lightmotion.bash RENAME lightmotion
          DESTINATION ${data}/bash-completion/completions COMPONENT program)
  install(FILES packaging/completion/lightmotion.zsh RENAME _lightmotion
          DESTINATION ${data}/zsh/vendor-completions COMPONENT program)
  install(FILES packaging/completion/lightmotion.fish
          DESTINATION ${data}/fish/vendor_completions.d COMPONENT program)
  install(DIRECTORY host/detector/presets DESTINATION ${data}/lightmotion COMPONENT program FILES_MATCHING PATTERN "*.json")
  install(DIRECTORY docs/schema DESTINATION ${data}/lightmotion COMPONENT program)
  install(FILES examples/night.json DESTINATION ${data}/doc/lightmotion/examples COMPONENT program)
  install(PROGRAMS examples/cluster/archive.sbatch examples/cluster/parallel.sh
          DESTINATION ${data}/doc/lightmotion/examples/cluster COMPONENT program)
endif()

# ---- Python -------------------------------------------------------------------------------------------------
# Only as a package: pip knows where other installations of Python search.
if(LIGHTMOTION_PYTHON)
  set(modules lib/python3/dist-packages)
  install(TARGETS lightmotion_python LIBRARY DESTINATION ${modules}/lightmotion COMPONENT python EXCLUDE_FROM_ALL)
  install(FILES ${LIGHTMOTION_PYTHON_FILES} DESTINATION ${modules}/lightmotion COMPONENT python EXCLUDE_FROM_ALL)
  configure_file(packaging/python3/PKG-INFO.in ${PROJECT_BINARY_DIR}/python/PKG-INFO @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/python/PKG-INFO RENAME lightmotion-${PROJECT_VERSION}.egg-info
          DESTINATION ${modules} COMPONENT python EXCLUDE_FROM_ALL)
  install(PROGRAMS examples/python/boxes.py DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/python3-lightmotion/examples
          COMPONENT python EXCLUDE_FROM_ALL)
endif()

# ---- GStreamer plug-in --------------------------------------------------------------------------------------
if(LIGHTMOTION_GSTREAMER)
  install(TARGETS gstlightmotion LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/gstreamer-1.0 COMPONENT gstreamer)
endif()

# ---- texts that Debian requires compressed, and each package's changelog and copyright file --------------------
# Without a timestamp, so that the same sources give the same bytes.
function(compressed source target)
  add_custom_command(OUTPUT ${target} COMMAND gzip -9nc ${source} > ${target} DEPENDS ${source} VERBATIM)
endfunction()

set(man_page ${PROJECT_BINARY_DIR}/lightmotion.1)
configure_file(packaging/lightmotion.1.in ${man_page} @ONLY)
compressed(${man_page} ${man_page}.gz)

set(changelog ${PROJECT_BINARY_DIR}/changelog)
set(to_debian ${PROJECT_SOURCE_DIR}/packaging/debian_changelog.awk)
add_custom_command(OUTPUT ${changelog}
  COMMAND awk -v maintainer=${LIGHTMOTION_MAINTAINER} -f ${to_debian} ${PROJECT_SOURCE_DIR}/CHANGELOG.md > ${changelog}
  DEPENDS ${to_debian} CHANGELOG.md VERBATIM)
compressed(${changelog} ${changelog}.gz)
add_custom_target(lightmotion_papers ALL DEPENDS ${man_page}.gz ${changelog}.gz)

function(papers package component)
  install(FILES packaging/copyright ${changelog}.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component} ${ARGN})
endfunction()
papers(liblightmotion1 library)
papers(liblightmotion-dev development)
if(LIGHTMOTION_PYTHON)
  papers(python3-lightmotion python EXCLUDE_FROM_ALL)
endif()
if(LIGHTMOTION_GSTREAMER)
  papers(gstreamer1.0-lightmotion gstreamer)
endif()
if(LIGHTMOTION_HOST)
  papers(lightmotion program)
  install(FILES ${man_page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
endif()
