// The DXF model reader: the four corners of each 3DFACE become one quad of a new sprite.
#pragma once

#include <cstdint>

#include "3DSpriteLib.h"

enum TokenType : int {
    kTokenSection = 0,
    kTokenEntities = 1,
    kToken3DFace = 2,
    kTokenPolyLine = 3,
    kTokenFloat = 4,
    kTokenInt = 5,
    kTokenGlass = 6,
    kTokenVertex = 7,
    kTokenSeqEnd = 8,
    kTokenEndSec = 9,
    kTokenEOF = 10,
    kTokenOther = 11,
};

// A model file larger than this is not read, and a model of more vertices than this is not
// built (four a face): the game's own models hold a few hundred, a detailed one some thousands.
inline constexpr std::uint64_t kMaxModelFileMegabytes = 16;
inline constexpr std::uint64_t kMaxModelVertices = std::uint64_t{1} << 20;

// The model of the bundle resource name (type "dxf"); none when it cannot be read.
SpritePtr readDXFResourceFileintoSprite(const char* name);
// The model in the file at path; none when the file is missing, unreadable or past the limits.
SpritePtr readDXFintoSprite(const char* path);

// The model in data of size bytes already in memory, named name in the reader's messages;
// readDXFintoSprite is getFileData followed by this.
SpritePtr readDXFDataintoSprite(const char* data, std::uint64_t size, const char* name);

// The reader's steps, over data of size bytes (the data is not zero-terminated).
std::uint64_t getVertexCount(const char* data, std::uint64_t size);
void process3DFace(Sprite* sprite, std::uint64_t* vertexIndex, std::uint64_t* position,
                   const char* data, std::uint64_t size);
void processPolyLine(Sprite* sprite, std::uint64_t* vertexIndex, std::uint64_t* position,
                     const char* data, std::uint64_t size);
int getTokenValue(const char* line, float* floatOut, int* intOut);
// Reads one line (at most 63 bytes, the leading line-end character included) into line, which
// holds 64 bytes. Never reads at or past size.
void getLine(std::uint64_t* position, char* line, const char* data, std::uint64_t size);
int textContains(const char* text, const char* word);
