// The game's input: SDL events routed to the windows, the menus, an alert over the board and the
// rule engine's one door for input.
#include "desktop/TolvarAppDelegate.h"

#include <algorithm>
#include <cmath>

#include "desktop/SdlEvents.h"

namespace tolvar {

void TolvarAppDelegate::dispatch(const SDL_Event& event) {
    const Uint32 gameID = gameWindow ? gameWindow->windowID() : 0;
    const Uint32 mainID = window ? window->surface().windowID() : 0;
    const Uint32 popupID = popup_ ? popup_->surface().windowID() : 0;
    const Uint32 helpID = helpWindow_ ? helpWindow_->surface().windowID() : 0;
    const Uint32 scoresID = bestScoresWindow_ ? bestScoresWindow_->surface().windowID() : 0;

    if (event.type == SDL_QUIT) {
        terminate();
        return;
    }
    if (event.type == FileWatch::changedEventType()) {
        reloadRulesWhenChanged();
        lookAtBestScores();
        return;
    }
    if (event.type == PageOpener::endedEventType()) {
        writingGamesViewerEnded(event.user.code);
        return;
    }
    Uint32 windowID = 0;
    switch (event.type) {
        case SDL_WINDOWEVENT: windowID = event.window.windowID; break;
        case SDL_KEYDOWN:
        case SDL_KEYUP: windowID = event.key.windowID; break;
        case SDL_TEXTINPUT: windowID = event.text.windowID; break;
        case SDL_MOUSEMOTION: windowID = event.motion.windowID; break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP: windowID = event.button.windowID; break;
        case SDL_MOUSEWHEEL: windowID = event.wheel.windowID; break;
        default: return;
    }
    // Keys reach the window that holds the keyboard; without one, the window in front.
    if (windowID == 0 && (event.type == SDL_KEYDOWN || event.type == SDL_KEYUP || event.type == SDL_TEXTINPUT))
        windowID = gameWindow && gameWindow->isVisible() ? gameID : mainID;

    if (event.type == SDL_WINDOWEVENT && windowID == gameID) gameWindow->windowEvent();
    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_LEAVE && windowID == gameID) {
        pointerLeft();
        return;
    }
    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_EXPOSED && windowID == gameID) {
        // Uncovered (a menu or an alert went away): the last frame goes up again at once, also
        // when no timer will draw a new one (a stopped score screen).
        gameWindow->makeCurrentContext();
        gameWindow->redisplay();
        drawAlertPanel();
        return;
    }
    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED && windowID == gameID) {
        // A new size: bars cleared, the picture drawn whole at its new scale, over a background
        // that has the detail the new size shows.
        gameWindow->takeNewSize();
        if (const PictureFit fit = gameWindow->pictureFitInPixels(); view_->bgTextureTooSmallFor(fit.width, fit.height))
            view_->loadBGTexture(fit.width, fit.height);
        view_->redrawLastFrame(shownGame_);
        drawAlertPanel();
        return;
    }
    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_CLOSE) {
        if (windowID == gameID) returnToMain();
        else if (windowID == mainID) terminate();
        else if (windowID == popupID && popup_) closePopup();
        else if (windowID == helpID && helpWindow_) closeHelp();
        else if (windowID == scoresID && bestScoresWindow_) closeBestScores();
        return;
    }
    // The help window reads like a page: Escape or F1 closes it.
    if (windowID == helpID && helpWindow_) {
        if (event.type == SDL_KEYDOWN && (event.key.keysym.sym == SDLK_ESCAPE || event.key.keysym.sym == SDLK_F1)) {
            closeHelp();
            return;
        }
        if (helpWindow_->surface().processEvent(event)) helpFrames_ = kMainWindowFramesPerChange;
        return;
    }

    // The best scores read like a page too: Escape or Ctrl+B closes them; the other program keys
    // with Ctrl work there as in the other windows.
    if (windowID == scoresID && bestScoresWindow_) {
        if (event.type == SDL_KEYDOWN) {
            const ProgramCommand command =
                programCommandForKey(event.key.keysym.sym, event.key.keysym.mod, false, false);
            if (event.key.keysym.sym == SDLK_ESCAPE) {
                closeBestScores();
                return;
            }
            if (translateKey(event.key).kind == KeyTranslation::Kind::Command && command != ProgramCommand::None) {
                runProgramCommand(command);
                return;
            }
        }
        if (bestScoresWindow_->surface().processEvent(event)) bestScoresFrames_ = kMainWindowFramesPerChange;
        return;
    }

    // The "Actions" pop-up is a menu, not a place on the board: its clicks are not the game
    // window's events.
    if (windowID == popupID && popup_) {
        if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE) {
            closePopup();
            return;
        }
        // A click outside the open menu dismisses it (the menu holds the mouse while open).
        if (event.type == SDL_MOUSEBUTTONDOWN && !popup_->contains(event.button.x, event.button.y)) {
            closePopup();
            return;
        }
        if (popup_->surface().processEvent(event)) popupFrames_ = kMainWindowFramesPerChange;
        return;
    }

    if (windowID == mainID && window) {
        if (window->surface().processEvent(event)) mainFrames_ = kMainWindowFramesPerChange;
        if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_SHOWN)
            mainFrames_ = kMainWindowFramesPerChange;
    }

    if (windowID != gameID && windowID != mainID) return;
    // Ctrl, Alt or Super with a key is the program's, never the game's.
    if (event.type == SDL_KEYDOWN && translateKey(event.key).kind == KeyTranslation::Kind::Command) {
        const bool inGame = windowID == gameID;
        runProgramCommand(programCommandForKey(event.key.keysym.sym, event.key.keysym.mod, inGame, false));
        return;
    }
    int windowHeight = MainWindow::kHeight;
    if (windowID == gameID) SDL_GetWindowSize(gameWindow->sdlWindow(), nullptr, &windowHeight);
    std::optional<CurrentEvent> current = currentEventFromSdl(event, windowHeight);
    if (!current) return;
    // The game sees its points on the 1024 x 768 picture, wherever and however large it is shown.
    if (windowID == gameID) gameWindow->pictureFit().toPicture(current->x, current->y, current->x, current->y);
    if (windowID == gameID) followPointer(*current);

    // While the window plays what the game showed, the game takes nothing: an input cuts a flash
    // or a fall short (the board as it ends drawn at once) and then goes to the game; while an
    // alert is up, the input answers it or goes nowhere.
    if (windowID == gameID && !show_.idle()) {
        const bool input = current->type == kEventTypeMouseDown || current->type == kEventTypeMouseUp ||
                           current->type == kEventTypeKeyDown || current->type == kEventTypeRightMouseDown;
        if (!input) return;
        if (!gameReady()) {
            alertInput(*current);
            return;
        }
    }
    if (windowID == gameID) {
        // A click anywhere in the game window closes an open pop-up; the right button opens it.
        if (popup_ && popup_->isOpen() && (current->type == kEventTypeMouseDown || current->type == kEventTypeRightMouseDown))
            closePopup();
        if (current->type == kEventTypeRightMouseDown && !popup_) {
            popup_ = std::make_unique<ActionsPopup>(interfaceFont_, kInterfaceFontPixels);
            gameWindow->makeCurrentContext();
        }
        if (current->type == kEventTypeRightMouseDown && popup_) {
            int gx = 0, gy = 0;
            SDL_GetGlobalMouseState(&gx, &gy);
            popup_->openAt(gx, gy, menu_);
            popupFrames_ = kMainWindowFramesPerChange;
        }
    }
    // The hint shows until the next input.
    if (windowID == gameID && (current->type == kEventTypeKeyDown || current->type == kEventTypeMouseDown))
        clearHint();
    // The program's own keys never reach the game as its key; the arrows and Return go to the
    // keyboard cursor first.
    if (current->type == kEventTypeKeyDown && keyShortcuts(event, *current, windowID)) return;
    if (userEventTimer && engine_) engine_->takeInput(*current);
}

void TolvarAppDelegate::closePopup() {
    if (!popup_ || !popup_->isOpen()) return;
    popup_->close();
    // The keyboard goes back to the game window (no window manager hands it back by itself).
    if (gameWindow && gameWindow->isVisible()) SDL_SetWindowInputFocus(gameWindow->sdlWindow());
}

void TolvarAppDelegate::closeHelp() {
    if (!helpWindow_ || !helpWindow_->isOpen()) return;
    helpWindow_->close();
    // The keyboard goes back to the window the help was over: the game's while it shows.
    if (gameWindow && gameWindow->isVisible()) SDL_SetWindowInputFocus(gameWindow->sdlWindow());
    else if (window && window->surface().isVisible()) SDL_SetWindowInputFocus(window->surface().sdlWindow());
}

void TolvarAppDelegate::checkUserEvents() {
    if (userEventTimer && engine_) engine_->checkUserEvents();
}

}  // namespace tolvar
