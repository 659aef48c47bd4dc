#include "desktop/ProgramKeys.h"

#include "core/Translate.h"

namespace tolvar {

ProgramCommand programCommandForKey(SDL_Keycode key, Uint16 modifiers, bool inGame, bool cursorShown) {
    const bool command = (modifiers & (KMOD_CTRL | KMOD_GUI)) != 0;
    const bool shift = (modifiers & KMOD_SHIFT) != 0;
    const bool alt = (modifiers & KMOD_ALT) != 0;
    if (command && !alt) {
        switch (key) {
            case SDLK_q: return ProgramCommand::Quit;
            case SDLK_w: return ProgramCommand::ReturnToMain;
            case SDLK_n: return ProgramCommand::NewGame;
            case SDLK_z: return shift ? ProgramCommand::Redo : ProgramCommand::Undo;
            case SDLK_y: return ProgramCommand::Redo;
            case SDLK_b: return ProgramCommand::BestScores;
            case SDLK_m: return ProgramCommand::Symbols;
            default: return ProgramCommand::None;
        }
    }
    if (command || alt) return ProgramCommand::None;
    switch (key) {
        case SDLK_F1: return ProgramCommand::Help;
        case SDLK_F2: return ProgramCommand::NewGame;
        default: break;
    }
    if (!inGame) return ProgramCommand::None;
    switch (key) {
        case SDLK_F11: return ProgramCommand::Fullscreen;
        case SDLK_h: return shift ? ProgramCommand::None : ProgramCommand::Hint;
        case SDLK_m: return shift ? ProgramCommand::None : ProgramCommand::ToggleSound;
        case SDLK_RETURN:
        case SDLK_KP_ENTER: return cursorShown ? ProgramCommand::None : ProgramCommand::ReturnToMain;
        default: return ProgramCommand::None;
    }
}

bool GameMenuState::enabled(ProgramCommand command) const {
    switch (command) {
        case ProgramCommand::NewGame: return newGame;
        case ProgramCommand::Undo: return undo;
        case ProgramCommand::Redo: return redo;
        case ProgramCommand::Hint: return hint;
        case ProgramCommand::BestScores:
        case ProgramCommand::Symbols:
        case ProgramCommand::ToggleSound: return true;
        default: return false;
    }
}

const std::array<GameMenuItem, 7>& gameMenuItems() {
    static const std::array<GameMenuItem, 7> items = {{
        {N_("New Game"), "F2", ProgramCommand::NewGame},
        {N_("Undo"), "Ctrl+Z", ProgramCommand::Undo},
        {N_("Redo"), "Ctrl+Shift+Z", ProgramCommand::Redo},
        {N_("Hint"), "H", ProgramCommand::Hint},
        {N_("Best Scores\xE2\x80\xA6"), "Ctrl+B", ProgramCommand::BestScores},
        {N_("Symbols on Pieces"), "Ctrl+M", ProgramCommand::Symbols},
        {N_("Sound"), "M", ProgramCommand::ToggleSound},
    }};
    return items;
}

const std::vector<std::pair<std::string, std::string>>& programKeysHelp() {
    static const std::vector<std::pair<std::string, std::string>> keys = {
        {N_("Arrows"), N_("Show and move the keyboard cursor")},
        {"Enter", N_("Click the cursor's cell (without a cursor: back to the main window)")},
        {"Ctrl+Z", N_("Undo")},
        {"Ctrl+Shift+Z, Ctrl+Y", N_("Redo")},
        {"H", N_("Hint: outline a move")},
        {"M", N_("Sound on and off")},
        {"Esc, F2, Ctrl+N", N_("New game")},
        {"F1", N_("Help")},
        {"F11", N_("Full screen on and off")},
        {"Ctrl+B", N_("Best scores of every game")},
        {"Ctrl+M", N_("Symbols on the pieces on and off")},
        {"Ctrl+W", N_("Back to the main window")},
        {"Ctrl+Q", N_("Quit")},
    };
    return keys;
}

}  // namespace tolvar
