// The program's own keys (undo, redo, hint, help, new game, full screen, sound, the keyboard
// cursor, the best scores, symbols on the pieces, leaving the game, quitting). Keys the running
// game's rules bind are looked up before these.
#pragma once

#include <SDL.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace tolvar {

enum class ProgramCommand {
    None,
    Quit,
    ReturnToMain,
    NewGame,
    Undo,
    Redo,
    Hint,
    Help,
    WritingGames,
    About,
    Fullscreen,
    BestScores,
    Symbols,  // symbols on the pieces, on and off
    ToggleSound,
};

// The command of a key pressed in the game window (inGame) or the main window; cursorShown:
// the keyboard cursor is on the board, so Return is the game's (a click on the cursor's cell)
// instead of leaving the game. The arrows are the game's (they move the cursor).
ProgramCommand programCommandForKey(SDL_Keycode key, Uint16 modifiers, bool inGame, bool cursorShown);

// The "Game" menu, in the main window's menu bar and in the game window's right-click menu.
struct GameMenuItem {
    const char* title;  // English, shown through tr()
    const char* keys;  // as shown beside the item
    ProgramCommand command;
};
struct GameMenuState {  // what can be done now
    bool newGame = false;
    bool undo = false;
    bool redo = false;
    bool hint = false;
    bool symbols = false;  // the pieces show their colour's symbol: the item is checked
    bool soundOn = false;  // the sounds play: the item is checked
    bool enabled(ProgramCommand command) const;
    bool checked(ProgramCommand command) const {
        return (command == ProgramCommand::Symbols && symbols) || (command == ProgramCommand::ToggleSound && soundOn);
    }
};
const std::array<GameMenuItem, 7>& gameMenuItems();

// The program's keys as the help lists them: (keys, what they do), English: shown through tr().
const std::vector<std::pair<std::string, std::string>>& programKeysHelp();

}  // namespace tolvar
