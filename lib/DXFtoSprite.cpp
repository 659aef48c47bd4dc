// The model reader: walks a DXF text file line by line and turns the four corners of every
// 3DFACE into one quad of a new sprite, with the face's normal on all four of its vertices.
#include "DXFtoSprite.h"

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>

#include "FileIO.h"

namespace {

constexpr int kLineLength = 63;  // characters kept of one line, the leading line end included

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

// atof, without the out-of-range conversion to float.
float toFloat(const char* line) {
    const double value = std::strtod(line, nullptr);
    if (std::isnan(value)) return static_cast<float>(value);
    if (value > FLT_MAX) return HUGE_VALF;
    if (value < -FLT_MAX) return -HUGE_VALF;
    return static_cast<float>(value);
}

// atoi, without the overflow.
int toInt(const char* line) {
    errno = 0;
    const long value = std::strtol(line, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

// The coordinate that a face's group code names: corner 0 to 3 and axis 0 to 2, or false.
bool groupCodeCoordinate(int code, int* corner, int* axis) {
    if (code >= 10 && code <= 13) *axis = 0;
    else if (code >= 20 && code <= 23) *axis = 1;
    else if (code >= 30 && code <= 33) *axis = 2;
    else return false;
    *corner = code % 10;
    return true;
}

}  // namespace

int textContains(const char* text, const char* word) {
    if (text == nullptr || word == nullptr || word[0] == '\0') return 0;
    return std::strstr(text, word) != nullptr ? 1 : 0;
}

int getTokenValue(const char* line, float* floatOut, int* intOut) {
    if (line == nullptr) return kTokenOther;
    if (textContains(line, "SECTION")) return kTokenSection;
    if (textContains(line, "ENTITIES")) return kTokenEntities;
    if (textContains(line, "3DFACE")) return kToken3DFace;
    if (textContains(line, "POLYLINE")) return kTokenPolyLine;
    if (textContains(line, "Glass")) return kTokenGlass;
    if (textContains(line, "VERTEX")) return kTokenVertex;
    if (textContains(line, "SEQEND")) return kTokenSeqEnd;
    if (textContains(line, "ENDSEC")) return kTokenEndSec;
    if (textContains(line, "EOF")) return kTokenEOF;
    if (textContains(line, ".")) {
        if (floatOut) *floatOut = toFloat(line);
        return kTokenFloat;
    }
    if (std::strpbrk(line, "0123456789") != nullptr) {
        if (intOut) *intOut = toInt(line);
        return kTokenInt;
    }
    return kTokenOther;
}

void getLine(std::uint64_t* position, char* line, const char* data, std::uint64_t size) {
    line[0] = '\0';
    if (position == nullptr || data == nullptr) return;
    int copied = 0;
    while (*position < size) {
        line[copied++] = data[*position];
        line[copied] = '\0';
        ++*position;
        if (copied >= kLineLength || *position >= size || isLineEnd(data[*position])) break;
    }
}

std::uint64_t getVertexCount(const char* data, std::uint64_t size) {
    std::uint64_t count = 0;
    std::uint64_t position = 0;
    char line[kLineLength + 1];
    float f = 0.0f;
    int n = 0;
    while (position < size) {
        getLine(&position, line, data, size);
        const int token = getTokenValue(line, &f, &n);
        if (token == kTokenEOF) break;
        if (token == kToken3DFace) count += 4;
    }
    return count;
}

void process3DFace(Sprite* sprite, std::uint64_t* vertexIndex, std::uint64_t* position,
                   const char* data, std::uint64_t size) {
    if (sprite == nullptr || vertexIndex == nullptr || position == nullptr) return;
    const std::uint64_t first = *vertexIndex;
    // A face beyond the arrays (one found after the counted part of the file) is read and
    // passed over.
    const bool fits = first + 4 <= sprite->vertexCount && sprite->vertices.size() >= (first + 4) * 3 &&
                      sprite->normals.size() >= (first + 4) * 3;
    char line[kLineLength + 1];
    bool ended = false;
    while (!ended && *position < size) {
        float f = 0.0f;
        int code = 0;
        getLine(position, line, data, size);
        if (getTokenValue(line, &f, &code) != kTokenInt) continue;
        int corner = 0, axis = 0;
        if (!groupCodeCoordinate(code, &corner, &axis)) continue;
        getLine(position, line, data, size);
        float value = 0.0f;
        int ignored = 0;
        if (getTokenValue(line, &value, &ignored) == kTokenFloat) {
            if (fits) sprite->vertices[(first + corner) * 3 + axis] = value;
            if (code == 33) ended = true;
        } else {
            printf("Expected float value at %d.  Got %s instead.\n", code, line);
            ended = true;
        }
    }
    if (!fits) return;
    const float* c0 = &sprite->vertices[first * 3];
    const float* c1 = c0 + 3;
    const float* c2 = c0 + 6;
    const float e1[3] = {c1[0] - c0[0], c1[1] - c0[1], c1[2] - c0[2]};
    const float e2[3] = {c2[0] - c0[0], c2[1] - c0[1], c2[2] - c0[2]};
    const float normal[3] = {e1[1] * e2[2] - e1[2] * e2[1], e1[2] * e2[0] - e1[0] * e2[2],
                             e1[0] * e2[1] - e1[1] * e2[0]};
    for (int k = 0; k < 4; ++k)
        for (int a = 0; a < 3; ++a) sprite->normals[(first + k) * 3 + a] = normal[a];
    *vertexIndex = first + 4;
}

void processPolyLine(Sprite*, std::uint64_t*, std::uint64_t*, const char*, std::uint64_t) {
    // Polylines carry no geometry for the game: their lines are passed over by the caller.
}

SpritePtr readDXFintoSprite(const char* path) {
    std::error_code ec;
    const std::uintmax_t bytes = path != nullptr ? std::filesystem::file_size(path, ec) : 0;
    if (path != nullptr && !ec && bytes > kMaxModelFileMegabytes << 20) {
        fprintf(stderr, "%s: the model file is too large (%ju bytes; the limit is %llu MB)\n", path, bytes,
                static_cast<unsigned long long>(kMaxModelFileMegabytes));
        return nullptr;
    }
    const FileData file = getFileData(path);
    if (!file.ok) return nullptr;
    return readDXFDataintoSprite(file.bytes.data(), file.bytes.size(), path);
}

SpritePtr readDXFDataintoSprite(const char* data, std::uint64_t size, const char* path) {
    if (data == nullptr) size = 0;
    if (path == nullptr) path = "";
    const std::uint64_t count = getVertexCount(data, size);
    if (count > kMaxModelVertices) {
        fprintf(stderr, "%s: the model has too many faces (%llu vertices; the limit is %llu)\n", path,
                static_cast<unsigned long long>(count), static_cast<unsigned long long>(kMaxModelVertices));
        return nullptr;
    }
    SpritePtr sprite = newSprite();
    if (!sprite) return nullptr;
    try {
        sprite->vertices.assign(count * 3, 0.0f);
        sprite->homeVertices.assign(count * 3, 0.0f);
        sprite->normals.assign(count * 3, 0.0f);
    } catch (const std::bad_alloc&) {
        fprintf(stderr, "%s: not enough memory for a model of %llu vertices\n", path,
                static_cast<unsigned long long>(count));
        return nullptr;
    }
    sprite->drawMode = 7;  // GL_QUADS: four corners a face
    sprite->vertexCount = static_cast<std::uint32_t>(count);

    std::uint64_t vertexIndex = 0;
    std::uint64_t position = 0;
    char line[kLineLength + 1];
    while (position < size) {
        float f = 0.0f;
        int n = 0;
        getLine(&position, line, data, size);
        const int token = getTokenValue(line, &f, &n);
        if (token == kTokenEOF) break;
        if (token == kToken3DFace) process3DFace(sprite.get(), &vertexIndex, &position, data, size);
        else if (token == kTokenPolyLine) processPolyLine(sprite.get(), &vertexIndex, &position, data, size);
    }
    sprite->homeVertices = sprite->vertices;
    printf("New sprite %s has %u vertices.\n", path, sprite->vertexCount);
    return sprite;
}

SpritePtr readDXFResourceFileintoSprite(const char* name) {
    char path[4096];
    getResourcePath(name, "dxf", path);
    return readDXFintoSprite(path);
}
