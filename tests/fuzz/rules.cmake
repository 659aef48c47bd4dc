# Rules files of any bytes: property-list parsing and the conversion into game records.
tolvar_fuzz_target(fuzz_rules
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/fuzz_rules.cpp
  LIBS tolvar_rules tolvar_core)
