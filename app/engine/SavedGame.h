// A running game kept as a property list, to be continued in another run of the program: the
// game's title, a fingerprint of its rules, the board's number, its snapshot (board with
// selection, score, multiplier, variables, pending events, random sequence, last gesture,
// lifecycle flags) and its undo history (see SavedHistory.h). Reading and writing the file is
// the shell's; this only converts.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "engine/GameSnapshot.h"
#include "engine/MoveHistory.h"
#include "core/PropertyList.h"

namespace tolvar {

// A fingerprint of a game's rules dictionary: equal rules give equal fingerprints, and any
// change to them (a key, a value, their order) gives another.
std::string rulesFingerprint(const Value& rules);

// What a saved game holds of the play.
struct SavedPlay {
    GameSnapshot snapshot;
    std::uint32_t boardNumber = 0;  // 0 for a game saved before boards had numbers
    // Writing: the moves to keep (nothing for none). Reading: the moves read, and why the file's
    // history could not be read when it could not (the game goes on without undo then).
    const MoveHistory* history = nullptr;
    SavedMoves moves;
    std::string historyProblem;
};

// The saved game of game, whose rules have that fingerprint.
Value savedGameValue(const GameInfo& game, const SavedPlay& play, const std::string& fingerprint);

// The title of the game a saved game belongs to; empty when it names none.
std::string savedGameTitle(const Value& saved);
// The number of its board; 0 when it has none (or none a board can have).
std::uint32_t savedGameBoardNumber(const Value& saved);

// What a saved game holds, checked against the game's records (built from rules with that
// fingerprint); or why it cannot be continued, as a sentence for the player. A game saved
// without a history (as earlier versions saved) is read with none.
std::variant<SavedPlay, std::string> readSavedGame(const Value& saved, const GameInfo& game,
                                                   const std::string& fingerprint);

// A snapshot's entries in a dictionary, and back. A saved game's own board is a list of cells
// of nine numbers each; the boards of its history are packed into bytes, ten times smaller.
enum class BoardForm { Cells, Packed };
void addSnapshotEntries(Dictionary& d, const GameInfo& game, const GameSnapshot& snapshot, BoardForm form);
// The snapshot, or what about it no game of these records holds (a phrase, no full stop).
std::variant<GameSnapshot, std::string> snapshotFromEntries(const Dictionary& d, const GameInfo& game,
                                                            BoardForm form);

}  // namespace tolvar
