# The 3-D sprite library with the model reader and the file helpers.
add_library(tolvar3d STATIC
  ${CMAKE_CURRENT_LIST_DIR}/3DSpriteLib.cpp
  ${CMAKE_CURRENT_LIST_DIR}/DXFtoSprite.cpp
  ${CMAKE_CURRENT_LIST_DIR}/FileIO.cpp)
target_include_directories(tolvar3d PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(tolvar3d PUBLIC PkgConfig::GL tolvar_regular_file)
