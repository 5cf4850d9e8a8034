# The pixel kernels: one source per instruction-set level. This is the one place that gives a source its level;
# everything else is compiled for the base of x86-64 (which includes SSE2).
set(LIGHTMOTION_SIMD_SOURCES
    simd/cpu_level.cpp simd/dispatch.cpp simd/reference.cpp simd/sse2.cpp simd/ssse3.cpp simd/sse41.cpp
    simd/avx2.cpp simd/model_reference.cpp simd/model_avx2.cpp simd/mask_reference.cpp simd/mask_avx2.cpp)
set_source_files_properties(simd/ssse3.cpp PROPERTIES COMPILE_OPTIONS -mssse3)
set_source_files_properties(simd/sse41.cpp PROPERTIES COMPILE_OPTIONS -msse4.1)
set_source_files_properties(simd/avx2.cpp simd/model_avx2.cpp simd/mask_avx2.cpp PROPERTIES COMPILE_OPTIONS -mavx2)
