// The game's input: SDL events routed to the windows, the menus and the rule engine, and the windows
// answered while a tick holds a frame of the flash or of a falling piece.
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

    if (event.type == SDL_QUIT) {
        terminate();
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

    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_EXPOSED && windowID == gameID) {
        // Uncovered (a menu or an alert went away): the last frame goes up again at once, also
        // when no timer will draw a new one (a stopped score screen).
        gameWindow->makeCurrentContext();
        gameWindow->redisplay();
        return;
    }
    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED && windowID == gameID) {
        // A new size: bars cleared, the picture drawn whole at its new scale.
        gameWindow->takeNewSize();
        view_->redrawLastFrame();
        return;
    }
    if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_CLOSE) {
        if (windowID == gameID) returnToMain();
        else if (windowID == mainID) terminate();
        else if (windowID == popupID && popup_) closePopup();
        else if (windowID == helpID && helpWindow_) helpWindow_->close();
        return;
    }
    // The help window reads like a page: Escape or F1 closes it.
    if (windowID == helpID && helpWindow_) {
        if (event.type == SDL_KEYDOWN && (event.key.keysym.sym == SDLK_ESCAPE || event.key.keysym.sym == SDLK_F1)) {
            helpWindow_->close();
            return;
        }
        if (helpWindow_->surface().processEvent(event)) helpFrames_ = kMainWindowFramesPerChange;
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
        if (event.type == SDL_MOUSEBUTTONDOWN &&
            (event.button.x < 0 || event.button.y < 0 || event.button.x >= ActionsPopup::kWidth ||
             event.button.y >= ActionsPopup::kHeight)) {
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
            popup_->openAt(gx, gy);
            popupFrames_ = kMainWindowFramesPerChange;
        }
    }
    // The hint shows until the next input.
    if (windowID == gameID && (current->type == kEventTypeKeyDown || current->type == kEventTypeMouseDown))
        clearHint();
    // The program's own keys never reach the game as its key; the arrows and Return go to the
    // keyboard cursor first.
    if (current->type == kEventTypeKeyDown && keyShortcuts(event, *current, windowID)) return;
    currentEvent_ = *current;
    checkUserEvents();
}

void TolvarAppDelegate::closePopup() {
    if (!popup_ || !popup_->isOpen()) return;
    popup_->close();
    // The keyboard goes back to the game window (no window manager hands it back by itself).
    if (gameWindow && gameWindow->isVisible()) SDL_SetWindowInputFocus(gameWindow->sdlWindow());
}

void TolvarAppDelegate::checkUserEvents() {
    if (userEventTimer && engine_) engine_->checkUserEvents();
}

// ---------------------------------------------------------------- answering the windows during a tick

namespace {
constexpr double kAnswerIntervalDuringTick = 0.02;
}

bool TolvarAppDelegate::quitRequested() {
    const double now = monotonicSeconds();
    if (!quit_ && now - lastAnswerDuringTick_ >= kAnswerIntervalDuringTick) {
        lastAnswerDuringTick_ = now;
        answerWindowsDuringTick(0);
        giveBackHeldEvents();
    }
    return quit_;
}

void TolvarAppDelegate::holdFrame(double seconds) {
    const double until = monotonicSeconds() + seconds;
    // The events that wait for the tick stay out of the queue for the whole hold, so the wait
    // below sleeps until something new comes rather than finding them again at once.
    for (double left = seconds; !quit_ && left > 0.0; left = until - monotonicSeconds())
        answerWindowsDuringTick(static_cast<int>(std::ceil(left * 1000.0)));
    giveBackHeldEvents();
}

void TolvarAppDelegate::answerWindowsDuringTick(int timeoutMs) {
    SDL_Event event;
    while (!quit_ && SDL_PollEvent(&event))
        if (!answersDuringTick(event)) heldEvents_.push_back(event);
    if (!quit_ && timeoutMs > 0 && SDL_WaitEventTimeout(&event, timeoutMs))
        if (!answersDuringTick(event)) heldEvents_.push_back(event);
}

void TolvarAppDelegate::giveBackHeldEvents() {
    // Whatever came meanwhile is taken too, so the held events go back in the order they came.
    SDL_Event event;
    while (!quit_ && SDL_PollEvent(&event))
        if (!answersDuringTick(event)) heldEvents_.push_back(event);
    if (!heldEvents_.empty()) {
        SDL_PeepEvents(heldEvents_.data(), static_cast<int>(heldEvents_.size()), SDL_ADDEVENT, SDL_FIRSTEVENT,
                       SDL_LASTEVENT);
        heldEvents_.clear();
    }
}

bool TolvarAppDelegate::answersDuringTick(const SDL_Event& event) {
    const bool quitKey = event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_q &&
                         (event.key.keysym.mod & (KMOD_CTRL | KMOD_GUI)) != 0;
    const bool window = event.type == SDL_WINDOWEVENT && (event.window.event == SDL_WINDOWEVENT_EXPOSED ||
                                                          event.window.event == SDL_WINDOWEVENT_CLOSE);
    if (quitKey) terminate();
    else if (event.type == SDL_QUIT || window) dispatch(event);
    return quitKey || event.type == SDL_QUIT || window;
}

}  // namespace tolvar
