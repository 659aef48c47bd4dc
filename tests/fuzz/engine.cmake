# Random bytes as the player's best-score file, through the end-of-game best-score check.
tolvar_fuzz_target(fuzz_best_scores
  SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/engine/BestScoresFuzz.cpp
  LIBS tolvar_engine)

# Random bytes as a saved game, continued with the built-in games' rules.
tolvar_fuzz_target(fuzz_saved_game
  SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/engine/SavedGameFuzz.cpp
  LIBS tolvar_engine)
