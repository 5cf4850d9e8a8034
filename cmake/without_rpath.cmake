# In packages the dynamic linker knows where the library is. Run by CPack on what it has installed.
file(GLOB programs ${CPACK_TEMPORARY_DIRECTORY}/*/usr/bin/lightmotion)
foreach(program IN LISTS programs)
  file(RPATH_REMOVE FILE ${program})
endforeach()
