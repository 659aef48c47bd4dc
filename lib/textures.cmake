# Textures from image files, named images and strings; text and textured rectangles.
add_library(tolvar_textures STATIC
  ${CMAKE_CURRENT_LIST_DIR}/FileIOTexture.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ImageFile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TextPixels.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Textures.cpp
  ${CMAKE_CURRENT_LIST_DIR}/glUtils.cpp)
target_include_directories(tolvar_textures PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(tolvar_textures PUBLIC tolvar3d PkgConfig::GL PkgConfig::SDL2
  PkgConfig::SDL2_IMAGE PkgConfig::SDL2_TTF PkgConfig::FONTCONFIG)
