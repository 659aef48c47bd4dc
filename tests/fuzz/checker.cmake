# Rules files of any bytes through the rules checker.
tolvar_fuzz_target(fuzz_checker
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/fuzz_checker.cpp
  LIBS tolvar_checker)
