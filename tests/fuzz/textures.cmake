# Image files of any bytes: header checks and decoding into image records.
tolvar_fuzz_target(fuzz_image_files
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/fuzz_image_files.cpp
  LIBS tolvar_textures)
