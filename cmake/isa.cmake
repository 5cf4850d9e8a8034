# The pixel kernels: each source is compiled for one instruction-set level, assigned only here. Everything else is
# compiled for baseline x86-64 (which includes SSE2).
set(LIGHTMOTION_SSSE3_SOURCES simd/ssse3.cpp)
set(LIGHTMOTION_SSE41_SOURCES simd/sse41.cpp)
set(LIGHTMOTION_AVX2_SOURCES simd/avx2.cpp compact/avx2.cpp)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
  list(APPEND LIGHTMOTION_SSE41_SOURCES compact/sse41.cpp)
  set(LIGHTMOTION_SSE2_SOURCES simd/sse2.cpp compact/sse2.cpp)
  set_source_files_properties(${LIGHTMOTION_SSSE3_SOURCES} PROPERTIES COMPILE_OPTIONS -mssse3)
  set_source_files_properties(${LIGHTMOTION_SSE41_SOURCES} PROPERTIES COMPILE_OPTIONS -msse4.1)
  set_source_files_properties(${LIGHTMOTION_AVX2_SOURCES} PROPERTIES COMPILE_OPTIONS -mavx2)
else()
  # Other architectures have no levels: everything is compiled for their baseline, the compact engine's kernels once.
  set(LIGHTMOTION_SSE2_SOURCES simd/sse2.cpp)
endif()
# Vectors of 32 bytes are passed between inlined functions only.
set_property(SOURCE compact/sse2.cpp compact/sse41.cpp compact/avx2.cpp APPEND PROPERTY COMPILE_OPTIONS -Wno-psabi)
set(LIGHTMOTION_SIMD_SOURCES
    simd/cpu_level.cpp simd/dispatch.cpp simd/reference.cpp ${LIGHTMOTION_SSE2_SOURCES} ${LIGHTMOTION_SSSE3_SOURCES}
    ${LIGHTMOTION_SSE41_SOURCES} ${LIGHTMOTION_AVX2_SOURCES})
