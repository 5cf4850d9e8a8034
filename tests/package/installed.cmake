# Tests of the tree that `cmake --install` creates and of the packages that `cpack` creates.
if(LIGHTMOTION_SANITIZE OR NOT LIGHTMOTION_HOST OR NOT LIGHTMOTION_GSTREAMER OR NOT LIGHTMOTION_PYTHON)
  message(STATUS "Installation and packages are tested in a plain build of everything")
  return()
endif()
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# Both write what they install into the build folder.
set(installed_prefix ${CMAKE_CURRENT_BINARY_DIR}/prefix)
set(installed_packages ${CMAKE_CURRENT_BINARY_DIR}/packages)
add_test(NAME installed.by_cmake COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/afresh.sh ${installed_prefix}
         ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --prefix ${installed_prefix})
add_test(NAME packages.by_cpack COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/afresh.sh ${installed_packages}
         ${CMAKE_CPACK_COMMAND} --config ${PROJECT_BINARY_DIR}/CPackConfig.cmake -B ${installed_packages})
set_tests_properties(installed.by_cmake PROPERTIES FIXTURES_SETUP installation RESOURCE_LOCK install)
set_tests_properties(packages.by_cpack PROPERTIES FIXTURES_SETUP packages RESOURCE_LOCK install)

# usage: python_test(NAME SCRIPT FIXTURE): a script that examines the installation or the packages.
function(python_test name script fixture)
  add_test(NAME ${name} COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/${script})
  set(variables PYTHONPATH=${PROJECT_SOURCE_DIR} LIGHTMOTION_PREFIX=${installed_prefix}
      LIGHTMOTION_PACKAGES=${installed_packages} LIGHTMOTION_ARCH=${CMAKE_LIBRARY_ARCHITECTURE}
      LIGHTMOTION_VERSION=${PROJECT_VERSION})
  set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED ${fixture} ENVIRONMENT "${variables}")
endfunction()

python_test(installed.tree installed_test.py installation)
python_test(installed.options options_test.py installation)
python_test(run.script run_script_test.py installation)
python_test(examples.hosts ../examples/examples_test.py installation)
python_test(examples.interfaces ../examples/interfaces_test.py installation)
if(TARGET lightmotion_python)
  set_property(TEST examples.interfaces APPEND PROPERTY
               ENVIRONMENT LIGHTMOTION_MODULE=$<TARGET_FILE_DIR:lightmotion_python>/..)
endif()
python_test(packages.contents packages_test.py packages)

# The sources inside another project, which keeps its own settings.
add_test(NAME package.inside_another_project COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/subproject.sh ${CMAKE_COMMAND}
         ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_BINARY_DIR}/subproject)
