// The pieces: the figures of each shape, the spiky model, one piece redrawn alone in its cell, and a
// piece falling from cell to cell.
#include "presentation/GameView.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <cstdio>
#include <memory>

#include "DXFtoSprite.h"
#include "engine/BoardLayout.h"
#include "presentation/DrawingHelpers.h"
#include "presentation/PieceSymbols.h"
#include "presentation/ShowQueue.h"
#include "presentation/ShownBoard.h"

namespace tolvar {

using drawing::half;
using drawing::third;

Sprite* GameView::pieceSprite(float W) {
    if (pieceSprites[1]) return pieceSprites[1].get();
    if (pieceModelMissing_) return nullptr;
    SpritePtr sprite = readDXFResourceFileintoSprite("Spikes");
    if (!sprite || sprite->vertexCount == 0) {
        std::fprintf(stderr, "Spikes.dxf: the piece model cannot be read; shape-1 pieces are not drawn\n");
        pieceModelMissing_ = true;
        return nullptr;
    }
    calcBoundingBox(sprite.get(), 1);
    const float extent = sprite->boxMax.x - sprite->boxMin.x;
    // A model without width cannot be sized to the cell; it keeps its own size.
    const float s = extent > 0.0f ? (W - 4) / extent : 1.0f;
    scaleSprite(sprite.get(), s, s, s);
    sprite->spriteID = 1;
    sprite->color[3] = 1.0f;
    sprite->colored = 1;
    pieceSprites[1] = std::move(sprite);
    return pieceSprites[1].get();
}

void GameView::drawFigure(const BoardPiece& piece, float X, float Y, float W, float H) {
    const float xm = X + half(W);
    const float x1 = X + third(W);
    const float x2 = X + third(2 * W);
    const float y1 = Y + third(H);
    const float y2 = Y + third(2 * H);

    // Flat figures face the viewer, whatever normal the last model left behind.
    glNormal3f(0.0f, 0.0f, 1.0f);
    // Filled figures are wound counter-clockwise on the screen, so back-face culling keeps them.
    switch (piece.shapeIndex) {
        case 2:
            glBegin(GL_TRIANGLES);
            glVertex2f(X, Y);
            glVertex2f(X + W, Y);
            glVertex2f(xm, Y + H);
            glEnd();
            break;
        case 3:
            glBegin(GL_LINE_STRIP);
            glVertex2f(X, Y);
            glVertex2f(X + W, Y);
            glVertex2f(X + W, Y + H);
            glVertex2f(X, Y + H);
            glVertex2f(X, Y);
            glEnd();
            break;
        case 4:
            glBegin(GL_LINE_STRIP);
            glVertex2f(X, Y);
            glVertex2f(X + W, Y);
            glVertex2f(xm, Y + H);
            glVertex2f(X, Y);
            glEnd();
            break;
        case 5:
        case 6:
            glBegin(piece.shapeIndex == 5 ? GL_POLYGON : GL_LINE_STRIP);
            glVertex2f(X, y1);
            glVertex2f(xm, Y);
            glVertex2f(X + W, y1);
            glVertex2f(X + W, y2);
            glVertex2f(xm, Y + H);
            glVertex2f(X, y2);
            glVertex2f(X, y1);
            glEnd();
            break;
        case 7:
        case 8:
            glBegin(piece.shapeIndex == 7 ? GL_POLYGON : GL_LINE_STRIP);
            glVertex2f(X, y1);
            glVertex2f(x1, Y);
            glVertex2f(x2, Y);
            glVertex2f(X + W, y1);
            glVertex2f(X + W, y2);
            glVertex2f(x2, Y + H);
            glVertex2f(x1, Y + H);
            glVertex2f(X, y2);
            glVertex2f(X, y1);
            glEnd();
            break;
        case 9:
            glBegin(GL_QUADS);
            glVertex2f(X, y1);
            glVertex2f(X + W, y1);
            glVertex2f(X + W, y2);
            glVertex2f(X, y2);
            glVertex2f(x1, Y);
            glVertex2f(x2, Y);
            glVertex2f(x2, Y + H);
            glVertex2f(x1, Y + H);
            glEnd();
            break;
        case 10:
            glBegin(GL_LINE_STRIP);
            glVertex2f(X, y1);
            glVertex2f(X + W, y1);
            glVertex2f(X + W, y2);
            glVertex2f(X, y2);
            glVertex2f(X, y1);
            glEnd();
            glBegin(GL_LINE_STRIP);
            glVertex2f(x1, Y);
            glVertex2f(x1, Y + H);
            glVertex2f(x2, Y + H);
            glVertex2f(x2, Y);
            glVertex2f(x1, Y);
            glEnd();
            break;
        default:
            // Shape 0 and numbers above 10 have no figure; shape 1 is the model, drawn by the caller.
            break;
    }
}

void GameView::drawPiece(const BoardPiece* piece, float X, float Y, float width, float height,
                         const SelectColor& outline) {
    if (!piece) return;
    const float W = width;
    const float H = height;
    glColor3f(piece->red, piece->green, piece->blue);
    glLineWidth(1.0f);
    glEnable(GL_DEPTH_TEST);

    if (piece->shapeIndex == 1) {
        if (Sprite* sprite = pieceSprite(W)) {
            sprite->color[0] = piece->red;
            sprite->color[1] = piece->green;
            sprite->color[2] = piece->blue;
            if (piece->selected) {
                // Spins 3 degrees a frame about the vertical axis, tilted by the mouse's offset.
                double mx = 0.0, my = 0.0;
                if (window_.mouseLocation) window_.mouseLocation(mx, my);
                const float dx = static_cast<float>(static_cast<double>(X) - mx);
                const float dy = static_cast<float>(static_cast<double>(Y) - my);
                setSpriteOrientation(sprite, 0, 0.0f, static_cast<float>(rotValue % 360) + dx, dy);
            }
            setSpritePosition(sprite, 0, static_cast<float>(X + W / 2.0), static_cast<float>(Y + W / 2.0), 0.0f);
            sprite->next = nullptr;
            drawSprites(sprite);
            sprite->vertices = sprite->homeVertices;
        }
    } else {
        drawFigure(*piece, X, Y, W, H);
    }
    if (symbolsShown_) drawColourSymbol(piece->colorIndex, X, Y, W, H);

    if (piece->selected) {
        // The outline shows the select colour itself, unlit, whatever normal the model left behind.
        glDisable(GL_LIGHTING);
        glLineWidth(2.0f);
        glColor3f(outline.red, outline.green, outline.blue);
        glBegin(GL_LINE_STRIP);
        glVertex2f(X - 1, Y - 1);
        glVertex2f(X + W + 1, Y - 1);
        glVertex2f(X + W + 1, Y + H + 1);
        glVertex2f(X - 1, Y + H + 1);
        glVertex2f(X - 1, Y - 1);
        glEnd();
        glLineWidth(1.0f);
        glEnable(GL_LIGHTING);
    }
}

void GameView::drawIndividualPiece(const GameInfo& game, const BoardPiece* piece) {
    if (!piece || game.boardWidth < 1 || game.boardHeight < 1) return;
    const BoardLayout L = computeBoardLayout(game);
    const float X = static_cast<float>(piece->x) * L.w + L.left;
    const float Y = static_cast<float>(piece->y) * L.h + L.m;
    const float W = L.pw;
    const float H = L.ph;

    glClearDepth(200.0);
    glClear(GL_DEPTH_BUFFER_BIT);
    glDisable(GL_LIGHTING);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);

    if (bgTexture_ != 0) {
        // The patch of the background that a full frame shows under the cell and its outline.
        const float xs[4] = {X - 1, X + W + 1, X + W + 1, X - 1};
        const float ys[4] = {Y - 1, Y - 1, Y + H + 1, Y + H + 1};
        glEnable(GL_TEXTURE_RECTANGLE_ARB);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, bgTexture_);
        glBegin(GL_QUADS);
        for (int i = 0; i < 4; ++i) {
            glTexCoord2f(static_cast<float>((xs[i] / winWidth) * static_cast<double>(bgSize_.width)),
                         static_cast<float>((ys[i] / winHeight) * static_cast<double>(bgSize_.height)));
            glVertex2f(xs[i], ys[i]);
        }
        glEnd();
        glDisable(GL_TEXTURE_RECTANGLE_ARB);
    }

    glColor3f(piece->red, piece->green, piece->blue);
    glLineWidth(1.0f);
    glEnable(GL_DEPTH_TEST);

    // A black piece only erases its cell.
    if (!(piece->red == 0.0f && piece->green == 0.0f && piece->blue == 0.0f)) {
        glEnable(GL_LIGHTING);
        if (piece->shapeIndex == 1) {
            if (Sprite* sprite = pieceSprite(W)) {
                sprite->color[0] = piece->red;
                sprite->color[1] = piece->green;
                sprite->color[2] = piece->blue;
                setSpritePosition(sprite, 0, static_cast<float>(X + W / 2.0), static_cast<float>(Y + W / 2.0),
                                  0.0f);
                sprite->spinning = 0;
                sprite->next = nullptr;
                drawSprites(sprite);
                sprite->vertices = sprite->homeVertices;
            }
        } else {
            drawFigure(*piece, X, Y, W, H);
        }
        if (symbolsShown_) drawColourSymbol(piece->colorIndex, X, Y, W, H);
    }

    glDisable(GL_LIGHTING);
    glFlush();
    if (window_.flushBuffer) window_.flushBuffer();
    shown_.forgetCell(piece->x, piece->y);
}

void GameView::animatePiece(const GameInfo& game, const BoardPiece& piece, std::uint32_t startX, std::uint32_t startY,
                            std::uint32_t endX, std::uint32_t endY) {
    if (!motionShown_) return;  // the next frame of the board shows the piece where it lands
    walkFall(startX, startY, endX, endY, [&](std::uint32_t fromX, std::uint32_t fromY, std::uint32_t toX, std::uint32_t toY) {
        drawFallStep(game, piece, fromX, fromY, toX, toY);
    });
}

void GameView::drawFallStep(const GameInfo& game, const BoardPiece& piece, std::uint32_t fromX, std::uint32_t fromY,
                            std::uint32_t toX, std::uint32_t toY) {
    BoardPiece moving = piece;
    moving.x = fromX;
    moving.y = fromY;
    moving.red = moving.green = moving.blue = 0.0f;
    drawIndividualPiece(game, &moving);
    moving = piece;
    moving.x = toX;
    moving.y = toY;
    drawIndividualPiece(game, &moving);
}

void GameView::showSymbols(bool shown) {
    symbolsShown_ = shown;
    setNeedsDisplay();
}

void GameView::clearPieceSprites(int forget) {
    if (forget) {
        for (SpritePtr& slot : pieceSprites)
            if (slot) forgottenSprites_.push_back(std::move(slot));
    }
    for (std::size_t i = 0; i < pieceSprites.size(); ++i) {
        if (pieceSprites[i]) {
            std::printf("Deleting sprite %d\n", static_cast<int>(i));
            pieceSprites[i].reset();
        }
    }
    pieceModelMissing_ = false;
}

}  // namespace tolvar
