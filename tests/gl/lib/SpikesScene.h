// The piece model drawn as the game draws its pieces: scaled to a width in pixels, centred on
// a point, coloured through the colour material and lit by the game window's two lights.
#pragma once

#include "3DSpriteLib.h"

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
