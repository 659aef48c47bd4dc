#include "SpikesScene.h"

#include <GL/gl.h>

#include <cstdio>
#include <vector>

#include "DXFtoSprite.h"

namespace {

// The game window's lights and material: two directional lights, colour material, normalised
// normals, back faces culled, depth tested.
void gameLights() {
    const GLfloat ambient[4] = {0.15f, 0.15f, 0.15f, 1.0f};
    const GLfloat diffuse[4] = {0.75f, 0.75f, 0.75f, 1.0f};
    const GLfloat light0[4] = {SpikesView::kWidth / 4.0f, SpikesView::kHeight / 4.0f, 100.0f, 0.0f};
    const GLfloat light1[4] = {SpikesView::kWidth / 2.0f, SpikesView::kHeight / 2.0f, 70.0f, 0.0f};
    const GLfloat white[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    glLightfv(GL_LIGHT0, GL_AMBIENT, ambient);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT0, GL_POSITION, light0);
    glLightfv(GL_LIGHT1, GL_AMBIENT, ambient);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT1, GL_POSITION, light1);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, white);
    glMaterialf(GL_FRONT, GL_SHININESS, 128.0f);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHT1);
    glEnable(GL_LIGHTING);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_NORMALIZE);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
}

}  // namespace

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
    // One unit a pixel, origin at the lower left, near plane at z = -500 and far at z = 500.
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kWidth, 0, kHeight, 500.0, -500.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gameLights();
    glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
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
