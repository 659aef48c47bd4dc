// The 3-D sprite library: matrix and vector math, camera moves, and the sprite record's
// operations (boxes, placing, orienting, collisions, lists, drawing).
#include "3DSpriteLib.h"

#include <GL/gl.h>

#include <cmath>
#include <cstdio>
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <unordered_set>

// ---- Vector and matrix math ----

namespace {

template <typename T>
T loadElement(const void* base, std::int64_t index) {
    T value;
    std::memcpy(&value, static_cast<const std::uint8_t*>(base) + index * std::int64_t(sizeof(T)),
                sizeof(T));
    return value;
}

template <typename T>
void storeElement(std::uint8_t* base, std::int64_t index, T value) {
    std::memcpy(base + index * std::int64_t(sizeof(T)), &value, sizeof(T));
}

// Integer products wrap in the element's own width: the arithmetic is done unsigned (where
// overflow is defined) and the bits are read back as the signed element.
template <typename T, typename U>
void multiplyWrapping(const void* a, const void* b, std::uint8_t* out, std::int64_t rowsA,
                      std::int64_t colsA, std::int64_t colsB) {
    for (std::int64_t i = 0; i < rowsA; ++i) {
        for (std::int64_t j = 0; j < colsB; ++j) {
            U acc = 0;
            for (std::int64_t k = 0; k < colsA; ++k) {
                const U x = static_cast<U>(loadElement<T>(a, i * colsA + k));
                const U y = static_cast<U>(loadElement<T>(b, k * colsB + j));
                acc = static_cast<U>(acc + static_cast<U>(x * y));
            }
            storeElement<T>(out, i * colsB + j, static_cast<T>(acc));
        }
    }
}

void multiplyFloat(const void* a, const void* b, std::uint8_t* out, std::int64_t rowsA,
                   std::int64_t colsA, std::int64_t colsB) {
    for (std::int64_t i = 0; i < rowsA; ++i) {
        for (std::int64_t j = 0; j < colsB; ++j) {
            float acc = 0.0f;
            for (std::int64_t k = 0; k < colsA; ++k) {
                const float product = loadElement<float>(a, i * colsA + k) *
                                      loadElement<float>(b, k * colsB + j);
                acc = acc + product;
            }
            storeElement<float>(out, i * colsB + j, acc);
        }
    }
}

}  // namespace

std::unique_ptr<std::uint8_t[]> CreateMatrixMultResult(const void* a, const void* b,
                                                       std::int64_t rowsA, std::int64_t colsA,
                                                       std::int64_t rowsB, std::int64_t colsB,
                                                       int type) {
    if (colsA != rowsB) return nullptr;
    std::int64_t elementSize = 0;
    switch (type) {
        case kElementInt8: elementSize = 1; break;
        case kElementInt16: elementSize = 2; break;
        case kElementInt32: elementSize = 4; break;
        case kElementFloat: elementSize = 4; break;
        default: return nullptr;
    }
    if (rowsA < 0 || colsA < 0 || colsB < 0) return nullptr;
    if ((rowsA > 0 || colsA > 0) && a == nullptr) return nullptr;
    if ((colsA > 0 || colsB > 0) && b == nullptr) return nullptr;
    // Sizes whose byte count does not fit are treated like running out of memory.
    const std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 8;
    if (colsB != 0 && rowsA > limit / colsB) return nullptr;
    const std::int64_t count = rowsA * colsB;
    if (count > limit / elementSize) return nullptr;
    const std::int64_t bytes = count * elementSize;
    if (static_cast<std::uint64_t>(bytes) > std::numeric_limits<std::size_t>::max()) return nullptr;

    std::unique_ptr<std::uint8_t[]> result(new (std::nothrow)
                                               std::uint8_t[static_cast<std::size_t>(bytes) + 1]());
    if (!result) return nullptr;
    switch (type) {
        case kElementInt8:
            multiplyWrapping<std::int8_t, std::uint8_t>(a, b, result.get(), rowsA, colsA, colsB);
            break;
        case kElementInt16:
            multiplyWrapping<std::int16_t, std::uint16_t>(a, b, result.get(), rowsA, colsA, colsB);
            break;
        case kElementInt32:
            multiplyWrapping<std::int32_t, std::uint32_t>(a, b, result.get(), rowsA, colsA, colsB);
            break;
        default:
            multiplyFloat(a, b, result.get(), rowsA, colsA, colsB);
            break;
    }
    return result;
}

namespace {

// The matrix to apply: the array as it stands, or its transpose (an array read back from
// OpenGL, transposed, is the OpenGL matrix itself).
void chooseMatrix(const float* matrix, int transpose, float out[16]) {
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) out[r * 4 + c] = transpose ? matrix[c * 4 + r] : matrix[r * 4 + c];
}

}  // namespace

void vectorTransform(const float* matrix, float* vector, int transpose) {
    if (matrix == nullptr || vector == nullptr) return;
    float m[16];
    chooseMatrix(matrix, transpose, m);
    auto product = CreateMatrixMultResult(m, vector, 4, 4, 4, 1, kElementFloat);
    if (!product) return;
    std::memcpy(vector, product.get(), 4 * sizeof(float));
}

void vertexTransform(const float* matrix, float* vertex, int transpose) {
    if (matrix == nullptr || vertex == nullptr) return;
    float m[16];
    chooseMatrix(matrix, transpose, m);
    const float column[4] = {vertex[0], vertex[1], vertex[2], 1.0f};
    auto product = CreateMatrixMultResult(m, column, 4, 4, 4, 1, kElementFloat);
    if (!product) return;
    std::memcpy(vertex, product.get(), 3 * sizeof(float));
}

float calcDistance(float x1, float y1, float z1, float x2, float y2, float z2) {
    const float dx = x2 - x1, dy = y2 - y1, dz = z2 - z1;
    return sqrtf(dx * dx + dy * dy + dz * dz);
}

void printMatrix(const float* matrix) {
    if (matrix == nullptr) return;
    for (int i = 0; i < 16; ++i) {
        printf("%f ", static_cast<double>(matrix[i]));
        if (i % 4 == 3) printf("\n");
    }
}

void printVector(const float* vector) {
    if (vector == nullptr) return;
    for (int i = 0; i < 4; ++i) printf("%f ", static_cast<double>(vector[i]));
    printf("\n");
}

// ---- Camera moves ----

namespace {

// The axis or offset as the projection matrix carries it.
void throughProjection(float v[4]) {
    glMatrixMode(GL_PROJECTION);
    float projection[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    vectorTransform(projection, v, 0);
}

void turn(float amount, float x, float y, float z) {
    float axis[4] = {x, y, z, 0.0f};
    throughProjection(axis);
    glRotatef(amount, axis[0], axis[1], axis[2]);
}

void shift(float x, float y, float z) {
    float offset[4] = {x, y, z, 0.0f};
    throughProjection(offset);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(-offset[0], -offset[1], -offset[2]);
}

}  // namespace

void pitchDown(float amount) { turn(amount, 1.0f, 0.0f, 0.0f); }
void pitchUp(float amount) { turn(amount, -1.0f, 0.0f, 0.0f); }
void rollLeft(float amount) { turn(amount, 0.0f, 0.0f, 1.0f); }
void rollRight(float amount) { turn(amount, 0.0f, 0.0f, -1.0f); }
void forward(float amount) { shift(0.0f, 0.0f, amount); }
void backward(float amount) { shift(0.0f, 0.0f, -amount); }
void jogLeft(float amount) { shift(-amount, 0.0f, 0.0f); }
void jogRight(float amount) { shift(amount, 0.0f, 0.0f); }
void jogUp(float amount) { shift(0.0f, amount, 0.0f); }
void jogDown(float amount) { shift(0.0f, -amount, 0.0f); }

// ---- Sprites ----

SpritePtr newSprite() { return SpritePtr(new (std::nothrow) Sprite()); }

namespace {

// Vertices actually held: never more than the arrays can back, whatever vertexCount says.
std::size_t heldVertices(const Sprite* sprite) {
    return std::min<std::size_t>(sprite->vertexCount, sprite->vertices.size() / 3);
}

}  // namespace

void calcBoundingBox(Sprite* sprite, int setHome) {
    if (sprite == nullptr) return;
    float minV[3] = {10000000.0f, 10000000.0f, 10000000.0f};
    float maxV[3] = {-10000000.0f, -10000000.0f, -10000000.0f};
    const std::size_t n = heldVertices(sprite);
    for (std::size_t i = 0; i < n; ++i) {
        for (int a = 0; a < 3; ++a) {
            const float v = sprite->vertices[i * 3 + a];
            if (v < minV[a]) minV[a] = v;
            if (v > maxV[a]) maxV[a] = v;
        }
    }
    sprite->boxMin = {minV[0], minV[1], minV[2], 1.0f};
    sprite->boxMax = {maxV[0], maxV[1], maxV[2], 1.0f};
    if (setHome) {
        sprite->position.x = static_cast<float>(double(minV[0]) + (double(maxV[0]) - double(minV[0])) / 2.0);
        sprite->position.y = static_cast<float>(double(minV[1]) + (double(maxV[1]) - double(minV[1])) / 2.0);
        sprite->position.z = static_cast<float>(double(minV[2]) + (double(maxV[2]) - double(minV[2])) / 2.0);
        sprite->homeBoxMin = sprite->boxMin;
        sprite->homeBoxMax = sprite->boxMax;
    }
}

void calcTextureCoords(Sprite* sprite) {
    if (sprite == nullptr) return;
    const std::size_t n = std::min<std::size_t>(sprite->vertexCount, sprite->homeVertices.size() / 3);
    if (sprite->texCoords.size() < std::size_t(sprite->vertexCount) * 3) {
        try {
            sprite->texCoords.assign(std::size_t(sprite->vertexCount) * 3, 0.0f);
        } catch (const std::bad_alloc&) {
            return;
        }
    }
    const float lo[3] = {sprite->homeBoxMin.x, sprite->homeBoxMin.y, sprite->homeBoxMin.z};
    const float hi[3] = {sprite->homeBoxMax.x, sprite->homeBoxMax.y, sprite->homeBoxMax.z};
    for (std::size_t i = 0; i < n; ++i) {
        for (int a = 0; a < 3; ++a) {
            const float e = hi[a] - lo[a];
            const float d = sprite->homeVertices[i * 3 + a] - lo[a];
            sprite->texCoords[i * 3 + a] = e != 0.0f ? std::fabs(d / e) : std::fabs(d);
        }
    }
}

void scaleSprite(Sprite* sprite, float sx, float sy, float sz) {
    if (sprite == nullptr) return;
    const float factors[3] = {sx, sy, sz};
    const std::size_t n = heldVertices(sprite);
    for (std::size_t i = 0; i < n; ++i)
        for (int a = 0; a < 3; ++a)
            if (factors[a] != 0.0f) sprite->vertices[i * 3 + a] *= factors[a];
    sprite->homeVertices = sprite->vertices;
    calcBoundingBox(sprite, 1);
}

namespace {

// The drawing code moves vertices between frames without touching the box, so a move first
// decides whether the box is stale. The decision is a chain of equality tests, each comparing
// the running answer (0 or 1) with the next box value; only a final 0 refreshes the box.
void refreshBoxBeforeMove(Sprite* sprite) {
    int c = sprite->boxMin.x == sprite->boxMin.y ? 1 : 0;
    c = static_cast<float>(c) == sprite->boxMin.z ? 1 : 0;
    c = static_cast<float>(c) == sprite->boxMax.x ? 1 : 0;
    c = static_cast<float>(c) == sprite->boxMax.y ? 1 : 0;
    c = static_cast<float>(c) == sprite->boxMax.z ? 1 : 0;
    if (c == 0) calcBoundingBox(sprite, 0);
}

}  // namespace

void moveSpritePosition(Sprite* sprite, int setHome, float dx, float dy, float dz) {
    if (sprite == nullptr) return;
    refreshBoxBeforeMove(sprite);
    const std::size_t n = heldVertices(sprite);
    for (std::size_t i = 0; i < n; ++i) {
        sprite->vertices[i * 3 + 0] += dx;
        sprite->vertices[i * 3 + 1] += dy;
        sprite->vertices[i * 3 + 2] += dz;
    }
    sprite->position.x += dx;
    sprite->position.y += dy;
    sprite->position.z += dz;
    sprite->position.w = 1.0f;
    if (setHome) sprite->homePosition = sprite->position;
    calcBoundingBox(sprite, setHome);
}

void setSpritePosition(Sprite* sprite, int setHome, float x, float y, float z) {
    if (sprite == nullptr) return;
    refreshBoxBeforeMove(sprite);
    const double cx = double(sprite->boxMin.x) + (double(sprite->boxMax.x) - double(sprite->boxMin.x)) / 2.0;
    const double cy = double(sprite->boxMin.y) + (double(sprite->boxMax.y) - double(sprite->boxMin.y)) / 2.0;
    const double cz = double(sprite->boxMin.z) + (double(sprite->boxMax.z) - double(sprite->boxMin.z)) / 2.0;
    const double dx = double(x) - cx, dy = double(y) - cy, dz = double(z) - cz;
    const std::size_t n = heldVertices(sprite);
    for (std::size_t i = 0; i < n; ++i) {
        sprite->vertices[i * 3 + 0] = static_cast<float>(sprite->vertices[i * 3 + 0] + dx);
        sprite->vertices[i * 3 + 1] = static_cast<float>(sprite->vertices[i * 3 + 1] + dy);
        sprite->vertices[i * 3 + 2] = static_cast<float>(sprite->vertices[i * 3 + 2] + dz);
    }
    sprite->position = {x, y, z, 1.0f};
    if (setHome) sprite->homePosition = sprite->position;
    calcBoundingBox(sprite, setHome);
}

void setSpriteOrientation(Sprite* sprite, int setHome, float degreesX, float degreesY, float degreesZ) {
    if (sprite == nullptr) return;
    // Degrees to radians with the game's own single-precision constant.
    const float toRadians = 0.017453315f;
    const float angles[3] = {degreesX, degreesY, degreesZ};
    const std::size_t n = heldVertices(sprite);
    for (int axis = 0; axis < 3; ++axis) {
        if (angles[axis] == 0.0f) continue;
        const float radians = angles[axis] * toRadians;
        const float c = cosf(radians), s = sinf(radians);
        float r[9];
        if (axis == 0) {
            const float m[9] = {1, 0, 0, 0, c, -s, 0, s, c};
            std::memcpy(r, m, sizeof r);
        } else if (axis == 1) {
            const float m[9] = {c, 0, s, 0, 1, 0, -s, 0, c};
            std::memcpy(r, m, sizeof r);
        } else {
            const float m[9] = {c, -s, 0, s, c, 0, 0, 0, 1};
            std::memcpy(r, m, sizeof r);
        }
        auto product = CreateMatrixMultResult(sprite->vertices.data(), r, std::int64_t(n), 3, 3, 3,
                                              kElementFloat);
        if (!product) continue;
        std::memcpy(sprite->vertices.data(), product.get(), n * 3 * sizeof(float));
    }
    calcBoundingBox(sprite, setHome);
}

int boundingBoxCollision(const Sprite* a, const Sprite* b, float* hitPoint) {
    if (a == nullptr || b == nullptr) return 0;
    const float aMin[3] = {a->boxMin.x, a->boxMin.y, a->boxMin.z};
    const float aMax[3] = {a->boxMax.x, a->boxMax.y, a->boxMax.z};
    const float bMin[3] = {b->boxMin.x, b->boxMin.y, b->boxMin.z};
    const float bMax[3] = {b->boxMax.x, b->boxMax.y, b->boxMax.z};
    int axesHit = 0;
    for (int axis = 0; axis < 3; ++axis) {
        bool hit = false;
        if (aMin[axis] >= bMin[axis] && aMin[axis] <= bMax[axis]) {
            hit = true;
            if (hitPoint) hitPoint[axis] = aMin[axis];
        }
        if (aMax[axis] >= bMin[axis] && aMax[axis] <= bMax[axis]) {
            hit = true;
            if (hitPoint) hitPoint[axis] = aMax[axis];
        }
        if (hit) ++axesHit;
    }
    return axesHit == 3 ? 1 : 0;
}

namespace {

// The per-step animation of a sprite, as drawn: drift, then velocity, then spin.
void applyAnimation(const Sprite* sprite) {
    const float step = static_cast<float>(sprite->step);
    if (sprite->drifting) glTranslatef(sprite->drift.x * step, sprite->drift.y * step, sprite->drift.z * step);
    if (sprite->moving)
        glTranslatef(sprite->velocity.x * step, sprite->velocity.y * step, sprite->velocity.z * step);
    if (sprite->spinning)
        glRotatef(sprite->spinStep * step, sprite->spinAxis[0], sprite->spinAxis[1], sprite->spinAxis[2]);
}

}  // namespace

int vertexInBoxCollision(const Sprite* a, const Sprite* b, float* hitPoint) {
    if (!boundingBoxCollision(a, b, hitPoint)) return 0;
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    applyAnimation(a);
    float modelView[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView);
    int found = 0;
    const std::size_t n = heldVertices(a);
    for (std::size_t i = 0; i < n && !found; ++i) {
        float v[3] = {a->vertices[i * 3], a->vertices[i * 3 + 1], a->vertices[i * 3 + 2]};
        vertexTransform(modelView, v, 1);
        if (v[0] >= b->boxMin.x && v[0] <= b->boxMax.x && v[1] >= b->boxMin.y && v[1] <= b->boxMax.y &&
            v[2] >= b->boxMin.z && v[2] <= b->boxMax.z) {
            if (hitPoint) std::memcpy(hitPoint, v, sizeof v);
            found = 1;
        }
    }
    glPopMatrix();
    return found;
}

// ---- Lists ----

void addSpriteToList(Sprite* list, Sprite* sprite) {
    if (list == nullptr || sprite == nullptr || sprite == list) return;
    sprite->next = list->next;
    list->next = sprite;
}

Sprite* removeSpriteFromList(Sprite* list, Sprite* sprite) {
    if (list == nullptr || sprite == nullptr) return list;
    if (list == sprite) return sprite->next;
    for (Sprite* s = list; s->next != nullptr; s = s->next) {
        if (s->next == sprite) {
            s->next = sprite->next;
            break;
        }
    }
    return list;
}

void deleteSpriteList(Sprite* list, int freeRecords) {
    while (list != nullptr) {
        Sprite* following = list->next;
        deleteSprite(list, freeRecords);
        list = following;
    }
}

namespace {

// A frame carries the sequence's flag and first frame too; it is told from the sequence by
// being one of the frames itself.
bool isOneOfItsFrames(const Sprite* sprite) {
    std::unordered_set<const Sprite*> seen;
    for (const Sprite* frame = sprite->frames; frame != nullptr && seen.insert(frame).second;
         frame = frame->nextFrame)
        if (frame == sprite) return true;
    return false;
}

}  // namespace

void deleteSprite(Sprite* sprite, int freeRecord) {
    if (sprite == nullptr) return;
    if (sprite->frames != nullptr && !isOneOfItsFrames(sprite)) {
        // The frames belong to the sequence: each is deleted once, walking nextFrame. A frame's
        // own isSequence and frames lead back into this sequence and are not followed.
        Sprite* first = sprite->frames;
        sprite->frames = nullptr;
        sprite->currentFrame = nullptr;
        sprite->isSequence = 0;
        std::unordered_set<Sprite*> seen;
        for (Sprite* frame = first; frame != nullptr && seen.insert(frame).second;) {
            Sprite* following = frame->nextFrame;
            frame->isSequence = 0;
            frame->frames = nullptr;
            frame->currentFrame = nullptr;
            frame->nextFrame = nullptr;
            frame->next = nullptr;
            deleteSprite(frame, 1);
            frame = following;
        }
    } else if (sprite->frames == nullptr) {
        sprite->isSequence = 0;
        sprite->currentFrame = nullptr;
    }
    if (sprite->children != nullptr) {
        // Children are owned: their records go with them even when this record is kept.
        Sprite* children = sprite->children;
        sprite->children = nullptr;
        deleteSpriteList(children, 1);
    }
    std::vector<float>().swap(sprite->texCoords);
    std::vector<float>().swap(sprite->homeVertices);
    std::vector<float>().swap(sprite->vertices);
    std::vector<float>().swap(sprite->normals);
    if (freeRecord) delete sprite;
}

// ---- Drawing ----

namespace {

// A point as the OpenGL model-view matrix (read back column-major) places it.
Vector4 placed(const float modelView[16], const Vector4& point) {
    float v[4] = {point.x, point.y, point.z, point.w};
    vectorTransform(modelView, v, 1);
    return {v[0], v[1], v[2], v[3]};
}

}  // namespace

void drawSprites(Sprite* list) {
    glMatrixMode(GL_MODELVIEW);
    static const float specular[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    for (Sprite* listed = list; listed != nullptr; listed = listed->next) {
        Sprite* sequence = nullptr;
        Sprite* sprite = listed;
        if (listed->isSequence) {
            // A sequence without a frame to show has nothing to draw.
            if (listed->currentFrame == nullptr) continue;
            sequence = listed;
            sprite = listed->currentFrame;
        }
        glPushMatrix();
        glLightfv(GL_LIGHT0, GL_SPECULAR, specular);
        glEnable(GL_LIGHT0);
        glEnable(GL_LIGHTING);

        applyAnimation(sprite);

        if (sprite->textured) {
            glEnable(GL_TEXTURE_2D);
            glBindTexture(GL_TEXTURE_2D, sprite->texture);
        } else {
            glDisable(GL_TEXTURE_2D);
        }

        if (!sprite->hidden) {
            const std::size_t n = heldVertices(sprite);
            const bool withNormals = sprite->normals.size() >= n * 3;
            const bool withTexture = sprite->textured && sprite->texCoords.size() >= n * 3;
            glBegin(static_cast<GLenum>(sprite->drawMode));
            if (sprite->colored) glColor4fv(sprite->color);
            for (std::size_t i = 0; i < n; ++i) {
                if (withTexture) glTexCoord3fv(&sprite->texCoords[i * 3]);
                if (withNormals) glNormal3fv(&sprite->normals[i * 3]);
                glVertex3fv(&sprite->vertices[i * 3]);
            }
            glEnd();
        }

        if (sprite->children != nullptr && sprite->children != listed) drawSprites(sprite->children);

        if (sprite->moving || sprite->spinning || sprite->drifting) {
            // Read back where the animation has taken the home position and box.
            float modelView[16];
            glGetFloatv(GL_MODELVIEW_MATRIX, modelView);
            sprite->position = placed(modelView, sprite->homePosition);
            sprite->boxMin = placed(modelView, sprite->homeBoxMin);
            sprite->boxMax = placed(modelView, sprite->homeBoxMax);
        }

        sprite->step += sprite->reverse ? -1 : 1;

        if (sequence != nullptr && sprite->isSequence) {
            std::unordered_set<Sprite*> seen;
            for (Sprite* frame = sprite->frames; frame != nullptr && seen.insert(frame).second;
                 frame = frame->nextFrame)
                frame->step = sprite->step;
            sequence->currentFrame = sprite->nextFrame != nullptr ? sprite->nextFrame : sprite->frames;
        }

        glPopMatrix();
        glDisable(GL_TEXTURE_2D);
    }
}
