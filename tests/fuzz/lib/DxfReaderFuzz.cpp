// Any bytes as a model file: the reader must stay inside the data and the sprite it makes must
// survive being measured, scaled, turned, placed and released.
#include <cstddef>
#include <cstdint>

#include "3DSpriteLib.h"
#include "DXFtoSprite.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    SpritePtr sprite = readDXFDataintoSprite(reinterpret_cast<const char*>(data), size, "fuzz.dxf");
    if (!sprite) return 0;
    calcBoundingBox(sprite.get(), 1);
    calcTextureCoords(sprite.get());
    scaleSprite(sprite.get(), 2.0f, 0.0f, 0.5f);
    setSpriteOrientation(sprite.get(), 0, 10.0f, 20.0f, 30.0f);
    setSpritePosition(sprite.get(), 1, 100.0f, 50.0f, 0.0f);
    moveSpritePosition(sprite.get(), 0, 1.0f, 1.0f, 1.0f);
    float hit[3] = {0.0f, 0.0f, 0.0f};
    boundingBoxCollision(sprite.get(), sprite.get(), hit);
    return 0;
}
