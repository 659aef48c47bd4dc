# The rule engine's costs: the completion test, line resolution, falling pieces, the region
# count, and a whole game played from a script.
add_executable(bench_engine ${CMAKE_CURRENT_SOURCE_DIR}/engine/EngineBench.cpp)
target_link_libraries(bench_engine PRIVATE tolvar_engine benchmark::benchmark)
target_compile_definitions(bench_engine PRIVATE
  TOLVAR_SCENARIO_DIR="${PROJECT_SOURCE_DIR}/tests/unit/engine/sim")
