// The undo history a saved game keeps, so that Undo and Redo go on after Continue as before the
// quit. Under kHistoryKey, "Done" lists the moves done, oldest first, and "Undone" those undone,
// the next to redo last; each move is the game before it (a snapshot, its board packed) and its
// "Inputs". A history can hold far more than a file should: only the moves nearest the game as it
// stands whose text fits within kHistoryBytesSaved are kept (one to undo and one to redo in turn);
// the oldest go.
#pragma once

#include <cstddef>
#include <string>
#include <variant>

#include "engine/MoveHistory.h"
#include "core/PropertyList.h"

namespace tolvar {

inline constexpr const char* kHistoryKey = "History";
// About 1,000 moves on an 8 x 8 board (4.2 KB each), 220 on 24 x 24; one at least, whatever the board.
inline constexpr std::size_t kHistoryBytesSaved = 4 * 1024 * 1024;

Value historyValue(const GameInfo& game, const MoveHistory& history);

// The moves of a saved history, checked against the game's records; or what about them no game
// of these records holds (a phrase, no full stop).
std::variant<SavedMoves, std::string> historyFrom(const Value& history, const GameInfo& game);

}  // namespace tolvar
