# In packages the dynamic linker knows where the library is. Run by CPack on what it has installed.
file(GLOB_RECURSE programs ${CPACK_TEMPORARY_DIRECTORY}/*/bin/lightmotion)
foreach(program IN LISTS programs)
  file(RPATH_REMOVE FILE ${program})
endforeach()
