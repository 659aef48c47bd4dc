#include "presentation/GameView.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/freeglut.h>
#include <SDL.h>
#include <SDL_image.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "DXFtoSprite.h"
#include "FileIO.h"
#include "engine/BoardLayout.h"
#include "engine/RandomSequence.h"
#include "engine/SelectColor.h"
#include "presentation/DrawingGlobals.h"
#include "presentation/ScoreText.h"
#include "presentation/ShownBoard.h"

namespace tolvar {

namespace {

// The background image is 1920 x 1200 texels stretched over the window.
constexpr float kBackgroundTexelsWide = 1920.0f;
constexpr float kBackgroundTexelsHigh = 1200.0f;

// How long a frame of the removal flash and a step of a falling piece stay on the screen.
constexpr double kFlashFrameSeconds = 0.1;
constexpr double kFallingStepSeconds = 0.001;

constexpr GLfloat kAmbient[4] = {0.15f, 0.15f, 0.15f, 1.0f};
constexpr GLfloat kDiffuse[4] = {0.75f, 0.75f, 0.75f, 1.0f};
constexpr GLfloat kMaterialDiffuse[4] = {1.0f, 1.0f, 1.0f, 1.0f};

struct SurfaceDeleter {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceDeleter>;

// Text in the 18-point Helvetica bitmap font, from the raster position (x, y).
void drawText(float x, float y, const std::string& text) {
    glRasterPos2f(x, y);
    for (char c : text) glutBitmapCharacter(GLUT_BITMAP_HELVETICA_18, static_cast<unsigned char>(c));
}

// Halves and thirds of the figures: in double precision from the float values, passed as floats.
float half(float v) { return static_cast<float>(static_cast<double>(v) / 2.0); }
float third(float v) { return static_cast<float>(static_cast<double>(v) / 3.0); }

std::int32_t sysRandom() { return gameRandom().next(); }

// 0.00 to 1.00 in steps of 0.01.
float randomShade() { return static_cast<float>((sysRandom() % 101) * 0.01); }

}  // namespace

GameView::GameView(Host& host, Window window) : host_(host), window_(std::move(window)) {}

GameView::~GameView() = default;

void setGameWindowGLState() {
    // One unit per pixel, origin at the lower left; z = -500 on the near plane, 500 on the far.
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0.0, winWidth, 0.0, winHeight, 500.0, -500.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();

    glActiveTexture(GL_TEXTURE0);
    glEnable(GL_TEXTURE_RECTANGLE_ARB);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, GL_LINEAR);

    glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glFlush();

    const GLfloat light0Position[4] = {winWidth / 4, winHeight / 4, 100.0f, 0.0f};
    const GLfloat light1Position[4] = {winWidth / 2, winHeight / 2, 70.0f, 0.0f};
    glLightfv(GL_LIGHT0, GL_AMBIENT, kAmbient);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, kDiffuse);
    glLightfv(GL_LIGHT0, GL_POSITION, light0Position);
    glLightfv(GL_LIGHT1, GL_AMBIENT, kAmbient);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, kDiffuse);
    glLightfv(GL_LIGHT1, GL_POSITION, light1Position);

    glMaterialfv(GL_FRONT, GL_DIFFUSE, kMaterialDiffuse);
    glMaterialf(GL_FRONT, GL_SHININESS, 128.0f);

    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHT1);
    glEnable(GL_LIGHTING);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, kAmbient);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_NORMALIZE);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
}

void GameView::initWindowState() {
    shown_.forget();
    setGameWindowGLState();
    if (window_.flushBuffer) window_.flushBuffer();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
}

void GameView::loadBGTexture() {
    const std::string folder = resourceFolder();
    loadBGTextureFromFile(folder.empty() ? std::string("resources/Nebula.png") : folder + "/Nebula.png");
}

void GameView::loadBGTextureFromFile(const std::string& path) {
    bgTexture_ = 0;
    SurfacePtr image(IMG_Load(path.c_str()));
    if (!image) {
        std::fprintf(stderr, "%s: cannot read the background image (%s); the background stays black\n",
                     path.c_str(), IMG_GetError());
        return;
    }
    // Bytes in R, G, B (and A) order go up as they are; any other layout is converted first, so
    // the decoded image is not copied once more on its way to the texture.
    const Uint32 layout = image->format->format;
    const bool direct = layout == SDL_PIXELFORMAT_RGB24 || layout == SDL_PIXELFORMAT_RGBA32;
    SurfacePtr converted(direct ? nullptr : SDL_ConvertSurfaceFormat(image.get(), SDL_PIXELFORMAT_RGBA32, 0));
    SDL_Surface* pixels = direct ? image.get() : converted.get();
    if (!pixels || pixels->w <= 0 || pixels->h <= 0) {
        std::fprintf(stderr, "%s: cannot convert the background image to RGBA (%s); the background stays black\n",
                     path.c_str(), SDL_GetError());
        return;
    }
    if (SDL_MUSTLOCK(pixels) && SDL_LockSurface(pixels) != 0) {
        std::fprintf(stderr, "%s: cannot read the background image's pixels (%s); the background stays black\n",
                     path.c_str(), SDL_GetError());
        return;
    }
    const int bytesPerPixel = pixels->format->BytesPerPixel;

    GLuint name = 0;
    glGenTextures(1, &name);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, pixels->pitch / bytesPerPixel);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    // The image's first row becomes texture row 0, which the frame puts at the window's bottom.
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, pixels->w, pixels->h, 0, bytesPerPixel == 3 ? GL_RGB : GL_RGBA,
                 GL_UNSIGNED_BYTE, pixels->pixels);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    if (SDL_MUSTLOCK(pixels)) SDL_UnlockSurface(pixels);
    bgTexture_ = name;
}

void GameView::drawBackground(float z) {
    glEnable(GL_TEXTURE_RECTANGLE_ARB);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, bgTexture_);
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.0f);
    glVertex3f(0.0f, 0.0f, z);
    glTexCoord2f(kBackgroundTexelsWide, 0.0f);
    glVertex3f(winWidth, 0.0f, z);
    glTexCoord2f(kBackgroundTexelsWide, kBackgroundTexelsHigh);
    glVertex3f(winWidth, winHeight, z);
    glTexCoord2f(0.0f, kBackgroundTexelsHigh);
    glVertex3f(0.0f, winHeight, z);
    glEnd();
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
}

void GameView::drawBoard() {
    if (!gameInfo || gameInfo->boardWidth < 1 || gameInfo->boardHeight < 1) return;
    const GameInfo& game = *gameInfo;
    const BoardLayout L = computeBoardLayout(game);
    FrameLook frame;
    frame.boardWidth = game.boardWidth, frame.boardHeight = game.boardHeight;
    frame.score = game.score, frame.gameName = game.gameName, frame.background = bgTexture_;
    frame.border[0] = gBorderColor.red, frame.border[1] = gBorderColor.green, frame.border[2] = gBorderColor.blue;
    const float outline[3] = {gSelectColor.red, gSelectColor.green, gSelectColor.blue};
    // A selected model turns a little on every frame; a model that cannot be read draws nothing.
    const bool modelShown = pieceSprites[1] != nullptr || !pieceModelMissing_;
    const auto turning = [&](const BoardPiece& piece) { return piece.selected && piece.shapeIndex == 1 && modelShown; };
    lastFrame_ = Frame::Board;
    const BoardMarks marks = window_.marks ? window_.marks() : BoardMarks{};
    const auto indexOf = [&](const BoardCell& c) { return c.column * game.boardHeight + c.row; };
    if (marks.cursor) frame.marked.push_back(indexOf(*marks.cursor));
    for (const BoardCell& c : marks.hint) frame.marked.push_back(indexOf(c));

    if (const auto changed = shown_.changedCells(game, frame, outline, turning)) {
        // The picture may be scaled into the window: a patch's pixels are the picture's, the
        // scissor's the window's; the picture's own clip is put back afterwards.
        GLint view[4] = {0, 0, static_cast<GLint>(winWidth), static_cast<GLint>(winHeight)};
        glGetIntegerv(GL_VIEWPORT, view);
        const double sx = view[2] / static_cast<double>(winWidth), sy = view[3] / static_cast<double>(winHeight);
        glPushAttrib(GL_SCISSOR_BIT);
        for (const std::uint32_t index : *changed) {
            const PixelRect patch = pieceReach(L, index / game.boardHeight, index % game.boardHeight);
            const int x0 = view[0] + static_cast<int>(std::floor(patch.x0 * sx));
            const int y0 = view[1] + static_cast<int>(std::floor(patch.y0 * sy));
            const int x1 = view[0] + static_cast<int>(std::ceil(patch.x1 * sx));
            const int y1 = view[1] + static_cast<int>(std::ceil(patch.y1 * sy));
            glEnable(GL_SCISSOR_TEST);
            glScissor(x0, y0, x1 - x0, y1 - y0);
            drawBoardPicture(L, &patch, marks);
        }
        glPopAttrib();
        if (!changed->empty()) {
            glFlush();
            if (window_.flushBuffer) window_.flushBuffer();
        }
    } else {
        drawBoardPicture(L, nullptr, marks);
        glFlush();
        if (window_.flushBuffer) window_.flushBuffer();
    }
    shown_.remember(game, frame, outline);
    rotValue += 3;
}

void GameView::setNeedsDisplay() { shown_.forget(); }

void GameView::setNeedsDisplayInCell(std::uint32_t x, std::uint32_t y) { shown_.forgetCell(x, y); }

void GameView::drawBoardPicture(const BoardLayout& L, const PixelRect* patch, const BoardMarks& marks) {
    const GameInfo& game = *gameInfo;
    glClearDepth(200.0);
    glClear(GL_DEPTH_BUFFER_BIT);
    // The background's depth bounds the models, whatever the score screen left switched off.
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);

    if (bgTexture_ != 0) {
        drawBackground(200.0f);
    } else {
        glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    // The frame: 6 pixels outside the board at left, right and top, 3 below it.
    glColor3f(gBorderColor.red, gBorderColor.green, gBorderColor.blue);
    glLineWidth(3.0f);
    glBegin(GL_LINE_STRIP);
    glVertex2f(L.left - 6, L.m - 3);
    glVertex2f(L.left - 6, winHeight - L.m + 6);
    glVertex2f(winWidth - L.left + 6, winHeight - L.m + 6);
    glVertex2f(winWidth - L.left + 6, L.m - 3);
    glVertex2f(L.left - 6, L.m - 3);
    glEnd();

    glEnable(GL_LIGHTING);
    const std::size_t cells = static_cast<std::size_t>(game.boardWidth) * game.boardHeight;
    for (std::uint32_t x = 0; x < game.boardWidth; ++x) {
        for (std::uint32_t y = 0; y < game.boardHeight; ++y) {
            const std::size_t index = static_cast<std::size_t>(x) * game.boardHeight + y;
            if (index >= cells || index >= game.board.size()) continue;
            const BoardPiece& piece = game.board[index];
            if (piece.pieceID == 0) continue;
            // A patch needs only the pieces that reach into it, drawn as the whole frame draws them.
            if (patch && !patch->intersects(pieceReach(L, x, y))) continue;
            drawPiece(&piece, static_cast<float>(x) * L.w + L.left, static_cast<float>(y) * L.h + L.m, L.pw,
                      L.ph);
        }
    }

    glDisable(GL_LIGHTING);
    drawMarks(L, marks);
    glColor4f(0.5f, 0.0f, 0.5f, 1.0f);
    drawText(winWidth - L.left + 10, winHeight - L.m - 9, boardScoreText(game.score));
    drawText(2.0f, winHeight - L.m - 9, boardGameNameText(game.gameName));
}

namespace {
void outline(float x0, float y0, float x1, float y1) {
    glBegin(GL_LINE_LOOP);
    glVertex2f(x0, y0);
    glVertex2f(x1, y0);
    glVertex2f(x1, y1);
    glVertex2f(x0, y1);
    glEnd();
}
}  // namespace

void GameView::drawMarks(const BoardLayout& L, const BoardMarks& marks) {
    if (!marks.cursor && marks.hint.empty()) return;
    const GLboolean depth = glIsEnabled(GL_DEPTH_TEST);
    glDisable(GL_DEPTH_TEST);
    glLineWidth(3.0f);
    // The hint round its cells, where a selection's outline would be.
    glColor3fv(kHintColor);
    for (const BoardCell& c : marks.hint) {
        const float X = static_cast<float>(c.column) * L.w + L.left, Y = static_cast<float>(c.row) * L.h + L.m;
        outline(X - 1, Y - 1, X + L.pw + 1, Y + L.ph + 1);
    }
    // The cursor inside its cell, so it shows beside a selection or a hint too.
    if (marks.cursor) {
        glColor3fv(kCursorColor);
        const float X = static_cast<float>(marks.cursor->column) * L.w + L.left;
        const float Y = static_cast<float>(marks.cursor->row) * L.h + L.m;
        outline(X + 4, Y + 4, X + L.pw - 4, Y + L.ph - 4);
    }
    glLineWidth(1.0f);
    if (depth) glEnable(GL_DEPTH_TEST);
}

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

void GameView::drawPiece(const BoardPiece* piece, float X, float Y, float width, float height) {
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

    if (piece->selected) {
        // The outline shows the select colour itself, unlit, whatever normal the model left behind.
        glDisable(GL_LIGHTING);
        glLineWidth(2.0f);
        glColor3f(gSelectColor.red, gSelectColor.green, gSelectColor.blue);
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

void GameView::drawIndividualPiece(const BoardPiece* piece) {
    if (!piece || !gameInfo || gameInfo->boardWidth < 1 || gameInfo->boardHeight < 1) return;
    const BoardLayout L = computeBoardLayout(*gameInfo);
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
            glTexCoord2f(static_cast<float>((xs[i] / winWidth) * static_cast<double>(kBackgroundTexelsWide)),
                         static_cast<float>((ys[i] / winHeight) * static_cast<double>(kBackgroundTexelsHigh)));
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
    }

    glDisable(GL_LIGHTING);
    glFlush();
    if (window_.flushBuffer) window_.flushBuffer();
    shown_.forgetCell(piece->x, piece->y);
}

void GameView::animatePiece(const BoardPiece& piece, std::uint32_t startX, std::uint32_t startY,
                            std::uint32_t endX, std::uint32_t endY) {
    BoardPiece moving = piece;
    moving.x = startX;
    moving.y = startY;
    // Each coordinate steps toward its end and then stays, so the walk always ends, even for an
    // end point off the straight line of the steps.
    auto toward = [](std::uint32_t from, std::uint32_t to) {
        return from < to ? from + 1 : (from > to ? from - 1 : from);
    };
    do {
        moving.red = moving.green = moving.blue = 0.0f;
        drawIndividualPiece(&moving);
        moving.x = toward(moving.x, endX);
        moving.y = toward(moving.y, endY);
        moving.red = piece.red;
        moving.green = piece.green;
        moving.blue = piece.blue;
        drawIndividualPiece(&moving);
        if (window_.hold) window_.hold(kFallingStepSeconds);
    } while (moving.x != endX || moving.y != endY);
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

void GameView::pauseForFlash() {
    if (window_.hold) window_.hold(kFlashFrameSeconds);
}

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

void GameView::redrawLastFrame() {
    shown_.forget();
    switch (lastFrame_) {
        case Frame::None: break;
        case Frame::Board: drawBoard(); break;
        case Frame::Scores: drawScoresFrame(lastScores_); break;
    }
}

void GameView::drawScoresFrame(const Value& scores) {
    shown_.forget();
    lastFrame_ = Frame::Scores;
    if (&scores != &lastScores_) lastScores_ = scores;
    std::size_t n = scoreEntryCount(scores);

    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    if (bgTexture_ != 0) {
        drawBackground(0.0f);
    } else {
        glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    makeScoreModels();
    flyScoreModels();

    if (n > 20) n = 20;
    glDisable(GL_LIGHTING);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    drawText(10.0f, winHeight - 30, "Last Score:");
    glColor4f(0.5f, 0.0f, 0.5f, 1.0f);
    drawText(20.0f, winHeight - 70, lastScoreText(gameInfo ? gameInfo->score : 0));
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    drawText(winWidth / 2 - 120, winHeight - 30, "Best Scores:");

    for (std::size_t i = 0; i < n; ++i) {
        const ScoreEntry entry = scoreEntryAt(scores, i);
        const int row = static_cast<int>(i);
        if (row == currHighlight)
            glColor4f(0.75f, 0.0f, 0.75f, 1.0f);
        else
            glColor4f(0.5f, 0.0f, 0.5f, 1.0f);
        drawText(winWidth / 2 - 120, winHeight - static_cast<float>((row + 2) * 20) - 30,
                 scoreRowText(row, entry.score, scoreDateText(entry.date)));
    }

    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    drawText(winWidth / 2 - 120, winHeight - static_cast<float>((static_cast<int>(n) + 3) * 20) - 30,
             "(press 'esc' to play again)");

    glFlush();
    if (window_.flushBuffer) window_.flushBuffer();
    if (window_.display) window_.display();
}

void GameView::scoresTimerFired(const Value& scores) { displayScores(scores, -1); }

}  // namespace tolvar
