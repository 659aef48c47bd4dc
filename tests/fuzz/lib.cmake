# Arbitrary bytes through the model reader, and the read model through the sprite operations.
# The library is built a second time with coverage for the fuzzer, so it can steer by the
# reader's own branches.
set(_tolvar_lib_dir ${CMAKE_CURRENT_LIST_DIR}/../../lib)
add_library(tolvar3d_fuzzing STATIC
  ${_tolvar_lib_dir}/3DSpriteLib.cpp
  ${_tolvar_lib_dir}/DXFtoSprite.cpp
  ${_tolvar_lib_dir}/FileIO.cpp)
target_include_directories(tolvar3d_fuzzing PUBLIC ${_tolvar_lib_dir})
target_compile_options(tolvar3d_fuzzing PRIVATE -fsanitize=fuzzer-no-link)
target_link_libraries(tolvar3d_fuzzing PUBLIC PkgConfig::GL tolvar_regular_file)

tolvar_fuzz_target(fuzz_dxf_reader
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/lib/DxfReaderFuzz.cpp
  LIBS tolvar3d_fuzzing)
