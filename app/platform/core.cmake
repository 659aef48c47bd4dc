add_library(tolvar_platform_core STATIC
  ${CMAKE_CURRENT_LIST_DIR}/PropertyList.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PlistFile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PlistText.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PlistLayout.cpp
  ${CMAKE_CURRENT_LIST_DIR}/DataFolder.cpp
  ${CMAKE_CURRENT_LIST_DIR}/AtomicFile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/BestScoresFile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/FolderLock.cpp
  ${CMAKE_CURRENT_LIST_DIR}/SavedGamesFile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Utf8.cpp
  ${CMAKE_CURRENT_LIST_DIR}/DocumentPages.cpp
)
target_include_directories(tolvar_platform_core PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(tolvar_platform_core PRIVATE PkgConfig::PLIST PUBLIC tolvar_regular_file)

# --help and --version for every program, the version being the project's.
add_library(tolvar_command_line STATIC ${CMAKE_CURRENT_LIST_DIR}/CommandLine.cpp)
target_include_directories(tolvar_command_line PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(tolvar_command_line PRIVATE TOLVAR_VERSION="${PROJECT_VERSION}")
