# The desktop application: the windows, the main window, the run loop and alerts.
add_library(tolvar_shell_platform STATIC
  ${CMAKE_CURRENT_LIST_DIR}/platform/RunLoop.cpp
  ${CMAKE_CURRENT_LIST_DIR}/platform/SdlEvents.cpp
  ${CMAKE_CURRENT_LIST_DIR}/platform/PictureFit.cpp
  ${CMAKE_CURRENT_LIST_DIR}/platform/ProgramKeys.cpp
  ${CMAKE_CURRENT_LIST_DIR}/platform/FontLookup.cpp
  ${CMAKE_CURRENT_LIST_DIR}/platform/PageOpener.cpp
)
find_package(Threads REQUIRED)
target_include_directories(tolvar_shell_platform PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(tolvar_shell_platform PUBLIC tolvar_engine PkgConfig::SDL2 PkgConfig::FONTCONFIG Threads::Threads)

add_executable(tolvar
  ${CMAKE_CURRENT_LIST_DIR}/main.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TolvarAppDelegate.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TolvarInput.cpp
  ${CMAKE_CURRENT_LIST_DIR}/MyWindow.cpp
  ${CMAKE_CURRENT_LIST_DIR}/MainWindow.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RulesWatch.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ImGuiSurface.cpp
  ${CMAKE_CURRENT_LIST_DIR}/HelpWindow.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TextPage.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ProgramCommands.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ContinueCommands.cpp
)
# The About page's version is the project's own.
target_compile_definitions(tolvar PRIVATE TOLVAR_VERSION="${PROJECT_VERSION}")
# A program run from the build tree finds the documentation pages in the source tree; an installed
# one finds them in ../share/doc/tolvar beside itself.
target_compile_definitions(tolvar PRIVATE TOLVAR_BUILD_PROGRAM_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
  TOLVAR_SOURCE_DOCS_DIR="${PROJECT_SOURCE_DIR}/docs")
target_include_directories(tolvar PRIVATE ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(tolvar PRIVATE tolvar_shell_platform tolvar_presentation tolvar_checker tolvar_engine
  tolvar_rules tolvar_platform_core tolvar_command_line tolvar_textures tolvar3d
  PkgConfig::SDL2 PkgConfig::GL PkgConfig::GLUT PkgConfig::IMGUI PkgConfig::FONTCONFIG)
