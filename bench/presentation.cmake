# Drawing a full frame of each built-in game (needs a display: run under Xvfb), and the program
# that draws the pictures of the boards and the score screen for the documentation.
if(TARGET tolvar_presentation_testkit)
  add_library(tolvar_presentation_boards STATIC ${CMAKE_CURRENT_LIST_DIR}/presentation/BuiltinBoards.cpp)
  target_link_libraries(tolvar_presentation_boards PUBLIC tolvar_presentation_testkit)

  add_executable(bench_presentation ${CMAKE_CURRENT_LIST_DIR}/presentation/DrawBoardBench.cpp)
  target_link_libraries(bench_presentation PRIVATE tolvar_presentation_boards tolvar_bench_main)

  add_executable(presentation-pictures ${CMAKE_CURRENT_LIST_DIR}/presentation/BoardPictures.cpp)
  target_link_libraries(presentation-pictures PRIVATE tolvar_presentation_boards tolvar_command_line)
endif()
