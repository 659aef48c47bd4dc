// The piece model drawn as the game draws its pieces: in a hidden 1024 x 768 window with a legacy
// OpenGL context and the game's orthographic projection, lit by the game window's two lights,
// scaled to a width in pixels, centred on a point and coloured through the colour material.
#pragma once

#include <SDL.h>

#include <memory>

#include "3DSpriteLib.h"

class SpikesView {
public:
    static constexpr int kWidth = 1024;
    static constexpr int kHeight = 768;

    // Opens the window (under Xvfb when there is no display); ok() tells whether it worked.
    SpikesView();
    bool ok() const { return context_ != nullptr; }

private:
    std::unique_ptr<SDL_Window, decltype(&SDL_DestroyWindow)> window_{nullptr, &SDL_DestroyWindow};
    std::unique_ptr<void, decltype(&SDL_GL_DeleteContext)> context_{nullptr, &SDL_GL_DeleteContext};
};

struct SpikesPiece {
    float x, y;     // centre in window pixels
    float width;    // width of the drawn model in pixels
    float color[3];
    float turnX = 0.0f, turnY = 0.0f;  // degrees, for a view from another side
};

// Draws one piece with the model (whose homeVertices hold the shape as read) and puts the
// shape back afterwards, as the piece drawing does.
void drawSpikesPiece(Sprite* model, const SpikesPiece& piece);

// The model as shipped, read through the resource lookup; none when it is missing.
SpritePtr loadSpikes();
