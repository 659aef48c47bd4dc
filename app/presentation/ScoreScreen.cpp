// The score screen: the last score, the ranked best scores and the piece models flying behind them.
#include "presentation/GameView.h"

#include <GL/gl.h>

#include <algorithm>
#include <string>

#include "DXFtoSprite.h"
#include "presentation/ScoreText.h"

namespace tolvar {

namespace {
// The best scores the screen lists, from the first.
constexpr std::size_t kScoreRowsShown = 20;
}  // namespace

std::int32_t GameView::sysRandom() { return window_.random ? window_.random() : ownRandom_.next(); }

float GameView::randomShade() { return static_cast<float>((sysRandom() % 101) * 0.01); }

int GameView::scoreModelCount() const {
    return static_cast<int>(std::count_if(spriteList.begin(), spriteList.end(),
                                          [](const SpritePtr& s) { return s != nullptr; }));
}

void GameView::makeScoreModels() {
    if (spriteList[0] || scoreModelsMissing_) return;
    std::array<SpritePtr, 20> made;
    for (std::size_t i = 0; i < made.size(); ++i) {
        SpritePtr sprite = readDXFResourceFileintoSprite("Spikes");
        if (!sprite || sprite->vertexCount == 0) {
            std::fprintf(stderr, "Spikes.dxf: the model cannot be read; the score screen flies no models\n");
            scoreModelsMissing_ = true;
            return;
        }
        calcBoundingBox(sprite.get(), 1);
        scaleSprite(sprite.get(), 25.0f, 25.0f, 25.0f);
        sprite->spriteID = 100 + static_cast<std::int32_t>(i);
        sprite->color[3] = 1.0f;
        sprite->colored = 1;
        sprite->color[0] = randomShade();
        sprite->color[1] = randomShade();
        sprite->color[2] = randomShade();
        setSpritePosition(sprite.get(), 1, winWidth / 2, winHeight / 2, 0.0f);
        sprite->velocity.x = static_cast<float>((sysRandom() % 1000) * 0.005 + 0.4);
        sprite->velocity.y = static_cast<float>((sysRandom() % 1000) * 0.005 + 0.4);
        sprite->velocity.z = static_cast<float>((sysRandom() % 5) + 2);
        if (sysRandom() & 1) sprite->velocity.x = -sprite->velocity.x;
        if (sysRandom() & 1) sprite->velocity.y = -sprite->velocity.y;
        made[i] = std::move(sprite);
        if (i > 0) made[i - 1]->next = made[i].get();
    }
    spriteList = std::move(made);
}

void GameView::flyScoreModels() {
    if (!spriteList[0]) return;
    glEnable(GL_LIGHTING);
    drawSprites(spriteList[0].get());
    for (SpritePtr& owned : spriteList) {
        Sprite* s = owned.get();
        // The model grows by 1 % a frame as it flies out.
        for (float& v : s->vertices) v = static_cast<float>(v * 1.01);
        const float step = static_cast<float>(s->step);
        setSpritePosition(s, 0, step * s->velocity.x + s->homePosition.x, step * s->velocity.y + s->homePosition.y,
                          step * s->velocity.z + s->homePosition.z);
        if (s->position.z > 500.0f || s->step > 150) {
            // Beyond the far plane or flown long enough: start again from the centre.
            s->vertices = s->homeVertices;
            setSpritePosition(s, 1, winWidth / 2, winHeight / 2, 0.0f);
            s->velocity.x = static_cast<float>((sysRandom() % 10) - 5);
            s->velocity.y = static_cast<float>((sysRandom() % 10) - 5);
            s->velocity.z = static_cast<float>((sysRandom() % 5) + 1);
            s->color[0] = randomShade();
            s->color[1] = randomShade();
            s->color[2] = randomShade();
            s->step = 0;
        }
    }
}

void GameView::displayScores(const Value& scores, int highlight) {
    if (highlight != -1) currHighlight = highlight;
    drawScoresFrame(scores);
    if (!host_.scoresTimerRunning()) host_.startScoresTimer(scores);
}

void GameView::redrawLastFrame(const GameInfo& board) {
    shown_.forget();
    switch (lastFrame_) {
        case Frame::None: break;
        case Frame::Board: drawBoard(board); break;
        case Frame::Scores: drawScoresFrame(lastScores_); break;
    }
}

void GameView::drawScoresFrame(const Value& scores) {
    shown_.forget();
    lastFrame_ = Frame::Scores;
    if (&scores != &lastScores_) lastScores_ = scores;
    const std::size_t n = scoreEntryCount(scores);

    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    drawBackground(0.0f);

    makeScoreModels();
    flyScoreModels();

    // The tables over the models: the pieces fly behind them.
    ScoreScreenTexts texts;
    texts.lastHeading = "Last Score";
    texts.lastScore = lastScoreText(runningGame() ? runningGame()->score : 0);
    texts.bestHeading = "Best Scores";
    texts.hint = "(press 'esc' to play again)";
    for (std::size_t i = 0; i < std::min(n, kScoreRowsShown); ++i) {
        const ScoreEntry entry = scoreEntryAt(scores, i);
        const int row = static_cast<int>(i);
        texts.rows.push_back(ScoreTableRow{scoreRankText(row), rowScoreText(entry.score), scoreDateText(entry.date),
                                           row == currHighlight});
    }
    texts_.drawScoreTables(texts);

    glFlush();
    if (window_.flushBuffer) window_.flushBuffer();
    if (window_.display) window_.display();
}

void GameView::scoresTimerFired(const Value& scores) { displayScores(scores, -1); }

}  // namespace tolvar
