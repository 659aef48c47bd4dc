// Playing what the engine showed: the run loop hands the game window each step when its turn
// comes (a frame, a frame of the flash held 0.1 s, a falling piece's cells, the score screen,
// an alert over the board held until the player answers it), with the sounds that go with each.
// No step waits inside a call.
#include <cstdio>
#include <set>
#include <string>

#include "desktop/TolvarAppDelegate.h"

namespace tolvar {

void TolvarAppDelegate::playShow() {
    if (!gameWindow || show_.idle()) return;
    std::vector<ShowStep> due = show_.takeDue(monotonicSeconds());
    if (due.empty()) return;
    gameWindow->makeCurrentContext();
    paintSteps(due);
}

void TolvarAppDelegate::paintSteps(const std::vector<ShowStep>& steps) {
    std::set<std::string> played;  // steps handed over at once sound each of their sounds once
    for (const ShowStep& step : steps) {
        // A preview holds for the board it was worked out on, and only while nothing plays over it
        // (the boards are compared only while one shows).
        if (previewShown() && (step.kind != ShowStep::Kind::Board || step.board.score != shownGame_.score ||
                             step.board.board != shownGame_.board))
            forgetPreview();
        for (const std::string& sound : step.sounds)
            if (played.insert(sound).second) sound_->play(sound);
        switch (step.kind) {
            case ShowStep::Kind::Board:
                step.board.into(shownGame_);
                view_->drawBoard(shownGame_);
                break;
            case ShowStep::Kind::Fall:
                view_->drawFallStep(shownGame_, step.piece, step.fromX, step.fromY, step.toX, step.toY);
                break;
            case ShowStep::Kind::Scores: view_->displayScores(step.scores, step.highlight); break;
            case ShowStep::Kind::Alert:
                // Said on standard error too, so that whoever watches the program knows it waits.
                std::fprintf(stderr, "tolvar: alert: %s [%s]\n", step.alert.message.c_str(), step.alert.button.c_str());
                drawAlertPanel();
                break;
        }
    }
}

AlertLayout TolvarAppDelegate::alertLayout() const {
    const AlertText* alert = show_.alert();
    return layoutAlert(alert ? alert->message : std::string(), alert ? alert->button : std::string(), alertTextWidth,
                       kAlertLineHeight, winWidth, winHeight);
}

void TolvarAppDelegate::drawAlertPanel() {
    if (!show_.alert() || !gameWindow) return;
    gameWindow->makeCurrentContext();
    view_->drawAlert(alertLayout());
}

void TolvarAppDelegate::answerAlert() {
    show_.answer(monotonicSeconds());
    std::fprintf(stderr, "tolvar: alert answered\n");
    // The panel goes: the board (or the score screen) under it is drawn whole again.
    gameWindow->makeCurrentContext();
    view_->setNeedsDisplay();
    view_->redrawLastFrame(shownGame_);
    playShow();
}

bool TolvarAppDelegate::gameReady() {
    if (show_.alert()) return false;
    if (!show_.idle() && gameWindow) {
        gameWindow->makeCurrentContext();
        paintSteps(show_.takeUntilAlert());
    }
    return show_.alert() == nullptr;
}

void TolvarAppDelegate::alertInput(const CurrentEvent& input) {
    const bool key = input.type == kEventTypeKeyDown &&
                     (input.characters == "\r" || input.characters == " " || input.characters == "\x1b");
    const bool click = input.type == kEventTypeMouseDown && alertLayout().button.contains(input.x, input.y);
    if (key || click) answerAlert();
}

}  // namespace tolvar
