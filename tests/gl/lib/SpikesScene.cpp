#include "SpikesScene.h"

#include <GL/gl.h>

#include <vector>

#include "DXFtoSprite.h"

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
