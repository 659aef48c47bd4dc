#include "SpikesScene.h"

#include <GL/gl.h>

#include <cstdio>
#include <vector>

#include "DXFtoSprite.h"
#include "presentation/GameView.h"

SpikesView::SpikesView() {
    if (SDL_WasInit(SDL_INIT_VIDEO) == 0 && SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        fprintf(stderr, "no video: %s\n", SDL_GetError());
        return;
    }
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 16);
    window_.reset(SDL_CreateWindow("render-spikes", 0, 0, kWidth, kHeight, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN));
    if (window_) context_.reset(SDL_GL_CreateContext(window_.get()));
    if (!context_) {
        fprintf(stderr, "no OpenGL context: %s\n", SDL_GetError());
        return;
    }
    SDL_GL_MakeCurrent(window_.get(), context_.get());
    glViewport(0, 0, kWidth, kHeight);
    glReadBuffer(GL_BACK);
    glDrawBuffer(GL_BACK);
    // The projection, lights and material of the game window, cleared to its grey.
    tolvar::setGameWindowGLState();
}

SpritePtr loadSpikes() { return readDXFResourceFileintoSprite("Spikes"); }

void drawSpikesPiece(Sprite* model, const SpikesPiece& piece) {
    if (model == nullptr) return;
    const std::vector<float> shape = model->homeVertices;
    model->vertices = shape;
    calcBoundingBox(model, 1);
    const float across = model->boxMax.x - model->boxMin.x;
    const float factor = across > 0.0f ? piece.width / across : 1.0f;
    scaleSprite(model, factor, factor, factor);
    if (piece.turnX != 0.0f || piece.turnY != 0.0f) setSpriteOrientation(model, 1, piece.turnX, piece.turnY, 0);
    setSpritePosition(model, 1, piece.x, piece.y, 0.0f);
    model->colored = 1;
    model->color[0] = piece.color[0];
    model->color[1] = piece.color[1];
    model->color[2] = piece.color[2];
    model->color[3] = 1.0f;
    drawSprites(model);
    glFlush();
    model->homeVertices = shape;
    model->vertices = shape;
}
