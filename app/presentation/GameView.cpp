#include "presentation/GameView.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <SDL.h>
#include <SDL_image.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "DXFtoSprite.h"
#include "FileIO.h"
#include "ImageFile.h"
#include "engine/BoardLayout.h"
#include "TextPixels.h"
#include "presentation/DrawingHelpers.h"
#include "presentation/ShownBoard.h"

namespace tolvar {

namespace {

// The colour of the frame round the board.
constexpr GLfloat kBorderColor[3] = {0.5f, 0.25f, 0.0f};

constexpr GLfloat kAmbient[4] = {0.15f, 0.15f, 0.15f, 1.0f};
constexpr GLfloat kDiffuse[4] = {0.75f, 0.75f, 0.75f, 1.0f};
constexpr GLfloat kMaterialDiffuse[4] = {1.0f, 1.0f, 1.0f, 1.0f};

struct SurfaceDeleter {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceDeleter>;

}  // namespace


GameView::GameView(Host& host, Window window) : host_(host), window_(std::move(window)) {
    texts_.setDisplayScale(window_.displayScale);
}

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

void GameView::loadBGTexture(int pixelsWide, int pixelsHigh) {
    const std::string folder = resourceFolder();
    loadBGTextureFromFile(folder.empty() ? std::string("resources/Nebula.png") : folder + "/Nebula.png", pixelsWide,
                          pixelsHigh);
}

bool GameView::bgTextureTooSmallFor(int pixelsWide, int pixelsHigh) const {
    return bgTexture_ != 0 && !(uploadSize(bgImageSize_.width, bgImageSize_.height, pixelsWide, pixelsHigh) ==
                                uploadSize(bgSize_.width, bgSize_.height, pixelsWide, pixelsHigh));
}

void GameView::loadBGTextureFromFile(const std::string& path, int pixelsWide, int pixelsHigh) {
    if (bgTexture_ != 0) {
        const GLuint old = bgTexture_;
        glDeleteTextures(1, &old);
    }
    bgTexture_ = 0;
    bgSize_ = bgImageSize_ = TextureSize{};
    // The header is checked against the image limits before anything is decoded.
    std::vector<std::uint8_t> bytes;
    tolvar::images::Header header;
    std::string reason;
    if (!tolvar::images::readImageBytes(path.c_str(), bytes, header, reason)) {
        std::fprintf(stderr, "%s: cannot read the background image (%s); the background stays black\n",
                     path.c_str(), reason.c_str());
        return;
    }
    SurfacePtr image(IMG_Load_RW(SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size())), 1));
    bytes = {};
    if (!image) {
        std::fprintf(stderr, "%s: cannot read the background image (%s); the background stays black\n",
                     path.c_str(), IMG_GetError());
        return;
    }
    // At the window's size: a texture larger than the picture shows would only cost memory. Bytes
    // in R, G, B (and A) order at the image's size go up as they are; anything else is converted
    // to RGBA first (which the stretch needs too).
    const TextureSize size = uploadSize(image->w, image->h, pixelsWide, pixelsHigh);
    const Uint32 layout = image->format->format;
    const bool scaled = size.width != image->w || size.height != image->h;
    const bool direct = !scaled && (layout == SDL_PIXELFORMAT_RGB24 || layout == SDL_PIXELFORMAT_RGBA32);
    SurfacePtr converted(direct || layout == SDL_PIXELFORMAT_RGBA32
                             ? nullptr
                             : SDL_ConvertSurfaceFormat(image.get(), SDL_PIXELFORMAT_RGBA32, 0));
    SDL_Surface* rgba = direct || layout == SDL_PIXELFORMAT_RGBA32 ? image.get() : converted.get();
    SurfacePtr stretched(scaled && rgba ? SDL_CreateRGBSurfaceWithFormat(0, size.width, size.height, 32,
                                                                        SDL_PIXELFORMAT_RGBA32)
                                        : nullptr);
    if (stretched && SDL_SoftStretchLinear(rgba, nullptr, stretched.get(), nullptr) != 0) stretched.reset();
    SDL_Surface* pixels = scaled ? stretched.get() : rgba;
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
    bgSize_ = size;
    bgImageSize_ = TextureSize{image->w, image->h};
}

void GameView::drawBackground(float z) {
    if (bgTexture_ == 0) {  // no picture: a black window
        glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        return;
    }
    glEnable(GL_TEXTURE_RECTANGLE_ARB);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, bgTexture_);
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.0f);
    glVertex3f(0.0f, 0.0f, z);
    const auto texelsWide = static_cast<float>(bgSize_.width), texelsHigh = static_cast<float>(bgSize_.height);
    glTexCoord2f(texelsWide, 0.0f);
    glVertex3f(winWidth, 0.0f, z);
    glTexCoord2f(texelsWide, texelsHigh);
    glVertex3f(winWidth, winHeight, z);
    glTexCoord2f(0.0f, texelsHigh);
    glVertex3f(0.0f, winHeight, z);
    glEnd();
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
}

void GameView::showMotion(bool shown) {
    const bool framesSkipped = shown && !motionShown_;
    motionShown_ = shown;
    if (const GameInfo* game = runningGame(); framesSkipped && game) drawBoard(*game);  // the board as the chain left it
}

void GameView::drawBoard(const GameInfo& game) {
    if (!motionShown_ || game.boardWidth < 1 || game.boardHeight < 1) return;
    const BoardLayout L = computeBoardLayout(game);
    FrameLook frame;
    frame.boardWidth = game.boardWidth, frame.boardHeight = game.boardHeight;
    frame.score = game.score, frame.gameName = game.gameName, frame.background = bgTexture_;
    frame.border[0] = kBorderColor[0], frame.border[1] = kBorderColor[1], frame.border[2] = kBorderColor[2];
    const float outline[3] = {game.selectColor.red, game.selectColor.green, game.selectColor.blue};
    // A selected model turns a little on every frame; a model that cannot be read draws nothing.
    const bool modelShown = pieceSprites[1] != nullptr || !pieceModelMissing_;
    const auto turning = [&](const BoardPiece& piece) { return piece.selected && piece.shapeIndex == 1 && modelShown; };
    lastFrame_ = Frame::Board;
    const BoardMarks marks = window_.marks ? window_.marks() : BoardMarks{};
    const auto indexOf = [&](const BoardCell& c) { return c.column * game.boardHeight + c.row; };
    if (marks.cursor) frame.marked.push_back(indexOf(*marks.cursor));
    for (const BoardCell& c : marks.hint) frame.marked.push_back(indexOf(c));
    std::vector<std::uint32_t> lit;
    for (const BoardCell& c : marks.lit)
        if (c.column < game.boardWidth && c.row < game.boardHeight) lit.push_back(indexOf(c));
    const std::optional<PixelRect> labelWas = labelShown_;
    const std::string textWas = label_.text();
    placeLabel(L, marks);

    if (const auto changed = shown_.changedCells(game, frame, outline, lit, turning)) {
        std::vector<PixelRect> patches;
        for (const std::uint32_t index : *changed)
            patches.push_back(pieceReach(L, index / game.boardHeight, index % game.boardHeight));
        // A line that came, went, moved or changed: where it was and where it is now.
        if (labelShown_ != labelWas || label_.text() != textWas) {
            if (labelWas) patches.push_back(*labelWas);
            if (labelShown_) patches.push_back(*labelShown_);
        }
        // The picture may be scaled into the window: a patch's pixels are the picture's, the
        // scissor's the window's; the picture's own clip is put back afterwards.
        GLint view[4] = {0, 0, static_cast<GLint>(winWidth), static_cast<GLint>(winHeight)};
        glGetIntegerv(GL_VIEWPORT, view);
        const double sx = view[2] / static_cast<double>(winWidth), sy = view[3] / static_cast<double>(winHeight);
        glPushAttrib(GL_SCISSOR_BIT);
        for (const PixelRect& patch : patches) {
            const int x0 = view[0] + static_cast<int>(std::floor(patch.x0 * sx));
            const int y0 = view[1] + static_cast<int>(std::floor(patch.y0 * sy));
            const int x1 = view[0] + static_cast<int>(std::ceil(patch.x1 * sx));
            const int y1 = view[1] + static_cast<int>(std::ceil(patch.y1 * sy));
            glEnable(GL_SCISSOR_TEST);
            glScissor(x0, y0, x1 - x0, y1 - y0);
            drawBoardPicture(game, L, &patch, marks);
        }
        glPopAttrib();
        if (!patches.empty()) {
            glFlush();
            if (window_.flushBuffer) window_.flushBuffer();
        }
    } else {
        drawBoardPicture(game, L, nullptr, marks);
        glFlush();
        if (window_.flushBuffer) window_.flushBuffer();
    }
    shown_.remember(game, frame, outline, lit);
    rotValue += 3;
}

namespace {
// The space between a label and its cell, and between a label and the window's edges.
constexpr float kLabelGap = 6.0f;
}  // namespace

void GameView::placeLabel(const BoardLayout& L, const BoardMarks& marks) {
    label_.setText(marks.label ? marks.label->text : std::string());
    const float w = label_.width(), h = label_.height();
    if (w <= 0.0f || h <= 0.0f) {
        labelShown_.reset();
        return;
    }
    float x = (winWidth - w) / 2, y = (winHeight - h) / 2;
    if (const std::optional<BoardCell>& by = marks.label->by) {
        const float X = static_cast<float>(by->column) * L.w + L.left, Y = static_cast<float>(by->row) * L.h + L.m;
        x = X + L.pw / 2 - w / 2;
        y = Y + L.ph + kLabelGap;
        if (y + h > winHeight - kLabelGap) y = Y - kLabelGap - h;
    }
    labelX_ = std::max(kLabelGap, std::min(x, winWidth - kLabelGap - w));
    labelY_ = std::max(kLabelGap, std::min(y, winHeight - kLabelGap - h));
    labelShown_ = PixelRect{static_cast<int>(std::floor(labelX_)) - 1, static_cast<int>(std::floor(labelY_)) - 1,
                            static_cast<int>(std::ceil(labelX_ + w)) + 1, static_cast<int>(std::ceil(labelY_ + h)) + 1};
}

void GameView::setNeedsDisplay() { shown_.forget(); }

void GameView::setNeedsDisplayInCell(std::uint32_t x, std::uint32_t y) { shown_.forgetCell(x, y); }

void GameView::drawBoardPicture(const GameInfo& game, const BoardLayout& L, const PixelRect* patch,
                                const BoardMarks& marks) {
    glClearDepth(200.0);
    glClear(GL_DEPTH_BUFFER_BIT);
    // The background's depth bounds the models, whatever the score screen left switched off.
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);

    drawBackground(200.0f);

    // The frame: 6 pixels outside the board at left, right and top, 3 below it.
    glColor3fv(kBorderColor);
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
                      L.ph, game.selectColor);
        }
    }

    glDisable(GL_LIGHTING);
    drawMarks(L, marks);
    // The texts last, over anything that reaches beside the board.
    texts_.drawBoardTexts(L, game.gameName, window_.boardNumber ? window_.boardNumber() : 0, game.score, patch);
    if (labelShown_ && (!patch || patch->intersects(*labelShown_))) label_.draw(labelX_, labelY_);
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
    if (!marks.cursor && marks.hint.empty() && marks.lit.empty()) return;
    const GLboolean depth = glIsEnabled(GL_DEPTH_TEST);
    glDisable(GL_DEPTH_TEST);
    // The lit cells washed over, under the outlines.
    if (!marks.lit.empty()) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glColor4fv(kLitColor);
        for (const BoardCell& c : marks.lit) {
            const float X = static_cast<float>(c.column) * L.w + L.left, Y = static_cast<float>(c.row) * L.h + L.m;
            glRectf(X, Y, X + L.pw, Y + L.ph);
        }
        glDisable(GL_BLEND);
    }
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

float alertTextWidth(const std::string& text) {
    return static_cast<float>(text::measureText(text, kBoardFontFamily, kAlertTextPixels).width);
}

void GameView::pauseForFlash() {}  // the window's run loop holds the frames it plays

void GameView::drawAlert(const AlertLayout& a) {
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_LINE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
    const auto box = [](const PanelRect& r, const float* fill, const float* edge) {
        glColor3fv(fill);
        glRectf(r.x0, r.y0, r.x1, r.y1);
        glColor3fv(edge);
        glLineWidth(2.0f);
        glBegin(GL_LINE_LOOP);
        glVertex2f(r.x0, r.y0);
        glVertex2f(r.x1, r.y0);
        glVertex2f(r.x1, r.y1);
        glVertex2f(r.x0, r.y1);
        glEnd();
    };
    box(a.panel, kAlertPanelColor, kAlertEdgeColor);
    box(a.button, kAlertButtonColor, kAlertEdgeColor);
    glPopAttrib();
    // The text as sharp as the window shows the picture: drawn at its pixels, a texel a pixel.
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    const float pixelsPerUnit = viewport[2] > 0 ? static_cast<float>(viewport[2]) / winWidth : 1.0f;
    const int pixels = static_cast<int>(std::lround(kAlertTextPixels * pixelsPerUnit));
    const float colour[4] = {kAlertTextColor[0], kAlertTextColor[1], kAlertTextColor[2], 1.0f};
    alertLines_.resize(a.lines.size() + 1);
    const auto drawLine = [&](TextLabel& label, const std::string& text, float x, float baseline) {
        label.set(text, kBoardFontFamily, pixels);
        const float below = static_cast<float>(label.height() - label.ascent()) / pixelsPerUnit;
        label.draw(x, baseline - below, 1.0f / pixelsPerUnit, colour);
    };
    float baseline = a.firstBaseline;
    for (std::size_t i = 0; i < a.lines.size(); ++i, baseline -= a.lineHeight)
        drawLine(alertLines_[i], a.lines[i], a.textX, baseline);
    drawLine(alertLines_.back(), a.label, a.labelX, a.labelBaseline);
    glFlush();
    if (window_.flushBuffer) window_.flushBuffer();
    shown_.forget();  // the next frame of the board covers the panel whole
}

}  // namespace tolvar
