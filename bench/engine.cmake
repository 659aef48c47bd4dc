# The rule engine's costs: the completion test, line resolution, falling pieces, the region
# count, the preview of a move, a whole game played from a script, and loading and saving big files.
add_executable(bench_engine ${CMAKE_CURRENT_SOURCE_DIR}/engine/EngineBench.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/engine/FilesBench.cpp)
target_link_libraries(bench_engine PRIVATE tolvar_engine tolvar_bench_main)
target_compile_definitions(bench_engine PRIVATE
  TOLVAR_SCENARIO_DIR="${PROJECT_SOURCE_DIR}/tests/unit/engine/sim")
