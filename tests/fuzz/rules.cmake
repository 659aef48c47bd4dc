# Rules files of any bytes: property-list parsing, the conversion into game records and the rules checker.
tolvar_fuzz_target(fuzz_rules
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/fuzz_rules.cpp
  LIBS tolvar_checker tolvar_rules tolvar_core)
