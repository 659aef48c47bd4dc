// Any bytes handed to the image reader: it must refuse or decode, never crash, and a decoded
// image must be a consistent record.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "ImageFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (bool asRGB : {false, true}) {
        Image image;
        std::string reason;
        if (tolvar::images::decodeImage(data, size, asRGB, image, reason)) {
            if (!tolvar::images::isWellFormed(image)) std::abort();
            if (asRGB && image.bitsPerPixel != (image.hasAlpha ? 32 : 24)) std::abort();
        } else if (reason.empty()) {
            std::abort();
        }
    }
    return 0;
}
