#include "desktop/ShowRecorder.h"

namespace tolvar {

void ShowRecorder::drawBoard(const GameInfo& game) {
    if (game.boardWidth < 1 || game.boardHeight < 1) return;
    ShowStep step;
    step.kind = ShowStep::Kind::Board;
    step.board = BoardPicture::of(game);
    if (motionShown_) queue_.append(std::move(step));
    else skippedFrame_ = std::move(step);
}

void ShowRecorder::animatePiece(const GameInfo&, const BoardPiece& piece, std::uint32_t startX, std::uint32_t startY,
                                std::uint32_t endX, std::uint32_t endY) {
    if (!motionShown_) return;  // the next frame of the board shows the piece where it lands
    walkFall(startX, startY, endX, endY, [&](std::uint32_t fromX, std::uint32_t fromY, std::uint32_t toX, std::uint32_t toY) {
        ShowStep step;
        step.kind = ShowStep::Kind::Fall;
        step.piece = piece;
        step.fromX = fromX, step.fromY = fromY;
        step.toX = toX, step.toY = toY;
        step.holdSeconds = kFallingStepSeconds;
        queue_.append(std::move(step));
    });
}

void ShowRecorder::displayScores(const Value& scores, int highlight) {
    ShowStep step;
    step.kind = ShowStep::Kind::Scores;
    step.scores = scores;
    step.highlight = highlight;
    queue_.append(std::move(step));
    if (!host_.scoresTimerRunning()) host_.startScoresTimer(scores);
}

void ShowRecorder::pauseForFlash() {
    if (motionShown_) queue_.holdLast(kFlashFrameSeconds);
}

void ShowRecorder::playSound(const std::string& sound) {
    if (motionShown_) queue_.addSound(sound);
}

void ShowRecorder::showMotion(bool shown) {
    motionShown_ = shown;
    if (shown && skippedFrame_) {  // the board as the chain left it
        queue_.append(std::move(*skippedFrame_));
        skippedFrame_.reset();
    }
}

}  // namespace tolvar
