#include "presentation/PieceSymbols.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "engine/BoardSetup.h"

namespace tolvar {

namespace {

// How large a symbol is against its cell, and how wide its white edge (at least a pixel and a half).
constexpr float kSymbolShare = 0.3f;  // half the symbol's width, against the cell's smaller side
constexpr float kEdgeShare = 0.05f;
constexpr float kLeastEdgePixels = 1.5f;
constexpr int kRoundSteps = 28;  // the sides of a circle

struct Point {
    float x, y;
};
// A piece of a symbol in a box from -1 to 1: a fan round its first point, or a strip of triangles.
struct Part {
    GLenum mode;
    std::vector<Point> points;
};
using Symbol = std::vector<Part>;

Point turned(Point p, float radians) {
    const float c = std::cos(radians), s = std::sin(radians);
    return {p.x * c - p.y * s, p.x * s + p.y * c};
}

// A fan round the centre through the corners, closed.
Part fan(const std::vector<Point>& corners) {
    Part part{GL_TRIANGLE_FAN, {{0.0f, 0.0f}}};
    part.points.insert(part.points.end(), corners.begin(), corners.end());
    part.points.push_back(corners.front());
    return part;
}

// count corners on a circle of radius r, alternating with a second radius (a star) when given.
std::vector<Point> around(int count, float r, float inner = 0.0f) {
    std::vector<Point> corners;
    for (int i = 0; i < count; ++i) {
        const float a = std::numbers::pi_v<float> / 2 + 2 * std::numbers::pi_v<float> * static_cast<float>(i) / count;
        const float radius = inner > 0.0f && i % 2 == 1 ? inner : r;
        corners.push_back({radius * std::cos(a), radius * std::sin(a)});
    }
    return corners;
}

Part bar(float halfLength, float halfWidth, float radians) {
    std::vector<Point> corners = {{-halfLength, -halfWidth}, {halfLength, -halfWidth}, {halfLength, halfWidth},
                                  {-halfLength, halfWidth}};
    for (Point& p : corners) p = turned(p, radians);
    return fan(corners);
}

Part ring(float outer, float inner) {
    Part part{GL_TRIANGLE_STRIP, {}};
    for (int i = 0; i <= kRoundSteps; ++i) {
        const float a = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / kRoundSteps;
        part.points.push_back({outer * std::cos(a), outer * std::sin(a)});
        part.points.push_back({inner * std::cos(a), inner * std::sin(a)});
    }
    return part;
}

const std::array<Symbol, kDrawnColorCount>& symbols() {
    constexpr float quarter = std::numbers::pi_v<float> / 4;
    static const std::array<Symbol, kDrawnColorCount> all = {{
        {fan(around(kRoundSteps, 0.8f))},                                      // circle
        {bar(0.95f, 0.22f, quarter), bar(0.95f, 0.22f, -quarter)},             // cross
        {fan({{0.0f, 0.9f}, {-0.9f, -0.7f}, {0.9f, -0.7f}})},                  // triangle
        {fan({{-0.72f, -0.72f}, {0.72f, -0.72f}, {0.72f, 0.72f}, {-0.72f, 0.72f}})},  // square
        {fan({{0.0f, -0.95f}, {0.7f, 0.0f}, {0.0f, 0.95f}, {-0.7f, 0.0f}})},  // diamond
        {fan(around(10, 0.98f, 0.42f))},                                       // star
        {bar(0.9f, 0.22f, 0.0f), bar(0.9f, 0.22f, 2 * quarter)},               // plus
        {ring(0.85f, 0.5f)},                                                   // ring
        {bar(0.9f, 0.25f, 0.0f)},                                              // bar
        {fan(around(kRoundSteps, 0.36f))},                                     // dot
    }};
    return all;
}

void drawSymbol(const Symbol& symbol, float cx, float cy, float size) {
    for (const Part& part : symbol) {
        glBegin(part.mode);
        for (const Point& p : part.points) glVertex2f(cx + p.x * size, cy + p.y * size);
        glEnd();
    }
}

}  // namespace

void drawColourSymbol(std::uint8_t colorIndex, float X, float Y, float W, float H) {
    if (colorIndex < 1 || colorIndex > kDrawnColorCount) return;
    const Symbol& symbol = symbols()[colorIndex - 1u];
    const float side = std::min(W, H);
    const float size = kSymbolShare * side;
    const float edge = std::max(kLeastEdgePixels, kEdgeShare * side);
    const float cx = X + W / 2, cy = Y + H / 2;
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    // Flat over the piece, whatever the model's depth, lights and faces left behind.
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
    // The white edge: the symbol drawn round its place, then the black symbol inside it.
    glColor3f(1.0f, 1.0f, 1.0f);
    for (const float dx : {-edge, 0.0f, edge})
        for (const float dy : {-edge, 0.0f, edge})
            if (dx != 0.0f || dy != 0.0f) drawSymbol(symbol, cx + dx, cy + dy, size);
    glColor3f(0.0f, 0.0f, 0.0f);
    drawSymbol(symbol, cx, cy, size);
    glPopAttrib();
}

}  // namespace tolvar
