// The 3-D sprite library: matrix and vector math, camera moves, and sprites (models with
// vertex, normal and texture-coordinate arrays, placed, oriented, scaled, collided and drawn
// with legacy OpenGL).
//
// Ownership: a sprite owns its four arrays and its `children` and `frames` lists, which
// deleteSprite releases. The list links (`next`, `currentFrame`, `nextFrame`) do not own.
// Holders outside the library keep a SpritePtr, whose deleter is deleteSprite(sprite, 1).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

// ---- Vector and matrix math ----

enum ElementType : int {
    kElementInt8 = 1,
    kElementInt16 = 2,
    kElementInt32 = 3,
    kElementFloat = 4,
};

// A newly allocated rowsA x colsB product of two row-major matrices of the element type, or
// null when colsA != rowsB, the type is unknown, or memory runs out. Integer types wrap.
std::unique_ptr<std::uint8_t[]> CreateMatrixMultResult(const void* a, const void* b,
                                                       std::int64_t rowsA, std::int64_t colsA,
                                                       std::int64_t rowsB, std::int64_t colsB,
                                                       int type);

// Applies a 4 x 4 row-major matrix (its transpose when transpose != 0) to a 4-float vector or a
// 3-float vertex (taken as w = 1), in place. Left unchanged when no product can be made.
void vectorTransform(const float* matrix, float* vector, int transpose);
void vertexTransform(const float* matrix, float* vertex, int transpose);

float calcDistance(float x1, float y1, float z1, float x2, float y2, float z2);
void printMatrix(const float* matrix);
void printVector(const float* vector);

// Camera moves on the current OpenGL context.
void pitchDown(float amount);
void pitchUp(float amount);
void rollLeft(float amount);
void rollRight(float amount);
void forward(float amount);
void backward(float amount);
void jogLeft(float amount);
void jogRight(float amount);
void jogUp(float amount);
void jogDown(float amount);

// ---- Sprites ----

struct Vector4 {
    float x = 0.0f, y = 0.0f, z = 0.0f, w = 0.0f;
};

struct Sprite {
    Sprite* next = nullptr;          // next sprite of the list this one belongs to
    Sprite* children = nullptr;      // owned list, drawn inside this sprite's transform
    Sprite* currentFrame = nullptr;  // sequence: the frame drawn on the next draw
    Sprite* nextFrame = nullptr;     // frame: its successor in the sequence
    Sprite* frames = nullptr;        // sequence (and each frame): the first frame; owned by the sequence
    std::int32_t drawMode = 0;       // OpenGL primitive for glBegin
    std::int32_t hidden = 0;
    float spinAxis[3] = {0.0f, 0.0f, 0.0f};
    float spinStep = 0.0f;
    Vector4 velocity;
    Vector4 drift;
    Vector4 position;
    Vector4 homePosition;
    Vector4 boxMin, boxMax;
    Vector4 homeBoxMin, homeBoxMax;
    float color[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    std::int32_t drifting = 0, moving = 0, spinning = 0, isSequence = 0, colored = 0, textured = 0;
    std::uint32_t texture = 0;
    std::int32_t spriteID = 0;
    std::int32_t step = 0;
    std::int32_t reverse = 0;
    std::uint32_t vertexCount = 0;
    std::vector<float> texCoords;     // vertexCount x 3, or empty until calcTextureCoords
    std::vector<float> vertices;      // vertexCount x 3: what is drawn
    std::vector<float> homeVertices;  // vertexCount x 3: the shape as read or last scaled
    std::vector<float> normals;       // vertexCount x 3
};

void deleteSprite(Sprite* sprite, int freeRecord);

struct SpriteDeleter {
    void operator()(Sprite* sprite) const { deleteSprite(sprite, 1); }
};
using SpritePtr = std::unique_ptr<Sprite, SpriteDeleter>;

// A new zero-filled sprite.
SpritePtr newSprite();

void calcBoundingBox(Sprite* sprite, int setHome);
void calcTextureCoords(Sprite* sprite);
void scaleSprite(Sprite* sprite, float sx, float sy, float sz);
void moveSpritePosition(Sprite* sprite, int setHome, float dx, float dy, float dz);
void setSpritePosition(Sprite* sprite, int setHome, float x, float y, float z);
void setSpriteOrientation(Sprite* sprite, int setHome, float degreesX, float degreesY, float degreesZ);
int boundingBoxCollision(const Sprite* a, const Sprite* b, float* hitPoint);
int vertexInBoxCollision(const Sprite* a, const Sprite* b, float* hitPoint);
void addSpriteToList(Sprite* list, Sprite* sprite);
// Returns the list's first sprite afterwards (its successor when the first was removed).
Sprite* removeSpriteFromList(Sprite* list, Sprite* sprite);
void deleteSpriteList(Sprite* list, int freeRecords);
void drawSprites(Sprite* list);
