// Reading image files into Image records, and handing pixel rows to OpenGL.
// Used by the texture loaders only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Textures.h"

namespace tolvar::images {

// No side of an image may exceed this, and no image may hold more pixels than kMaxPixels
// (64 MB once decoded to four bytes a pixel, a 4096 x 4096 picture or a 5120 x 3200 one):
// a file whose header claims more is refused before anything is allocated for it.
inline constexpr int kMaxSide = 16384;
inline constexpr std::int64_t kMaxPixels = std::int64_t{1} << 24;
inline constexpr std::int64_t kMaxDecodedMegabytes = kMaxPixels * 4 >> 20;
// Image files larger than this are not read at all: no file of an image within the limits
// needs more than its decoded pixels and a megabyte of headers.
inline constexpr std::size_t kMaxFileBytes = static_cast<std::size_t>(kMaxDecodedMegabytes + 1) << 20;

enum class Format { Unknown, PNG, BMP, JPEG };

// What the file's header says, read without decoding anything.
struct Header {
    Format format = Format::Unknown;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool sixteenBitGrey = false;  // a PNG with one 16-bit grey channel
};

// Reads the header of an image held in memory. False (with a reason) when the data is not an
// image the game reads (PNG, BMP or JPEG), or when its dimensions are zero or beyond the limits above.
bool probeImage(const std::uint8_t* data, std::size_t size, Header& header, std::string& reason);

// Decodes an image held in memory. With asRGB false the image keeps the depth it has in the
// file as far as the game cares: true colour becomes 24-bit RGB or 32-bit RGBA, indexed and
// grey images keep 8 bits (16 for 16-bit grey) per pixel. With asRGB true every image becomes
// 24-bit RGB or 32-bit RGBA. False (with a reason) when it cannot be decoded.
bool decodeImage(const std::uint8_t* data, std::size_t size, bool asRGB, Image& image,
                 std::string& reason);

// Reads an image file into bytes after checking its size, and its header (see probeImage). False
// (with a reason naming the limit when one is passed) when the file cannot be the image the game reads.
bool readImageBytes(const char* path, std::vector<std::uint8_t>& bytes, Header& header, std::string& reason);

// Reads and decodes an image file (see decodeImage).
bool readImageFile(const char* path, bool asRGB, Image& image, std::string& reason);

// True when the record is consistent: positive sides within the limits, rows wide enough for
// the depth, and pixel storage for every row.
bool isWellFormed(const Image& image);

// Sets the unpack state for uploading rows of bytesPerRow bytes holding pixels of
// bytesPerPixel bytes (row length from the row size, alignment 1). When the row size is not a
// whole number of pixels, the rows are copied without their padding into `packed` and that
// copy is what must be uploaded; the result points at the bytes to upload.
const std::uint8_t* prepareUnpack(const std::uint8_t* rows, int width, int height,
                                  int bytesPerRow, int bytesPerPixel,
                                  std::vector<std::uint8_t>& packed);

}  // namespace tolvar::images
