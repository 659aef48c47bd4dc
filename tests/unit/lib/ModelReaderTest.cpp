// The model reader: faces and their normals, bad values, broken files, the resource lookup and
// the game's own "Spikes" model.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "DXFtoSprite.h"
#include "FileIO.h"

namespace {

// One 3DFACE on layer 0 with its twelve group codes, and a whole file around some faces.
std::string face(const std::vector<std::string>& values) {
    std::string text = "  0\n3DFACE\n  8\n0\n";
    for (int i = 0; i < 12; ++i) text += " " + std::to_string(10 * (i % 3 + 1) + i / 3) + "\n" + values[i] + "\n";
    return text;
}
std::string model(const std::string& faces) { return "  0\nSECTION\n  2\nENTITIES\n" + faces + "  0\nENDSEC\n  0\nEOF\n"; }

const std::vector<std::string> kTriangle = {"0.0", "0.0", "0.0", "1.0", "0.0", "0.0", "0.0", "1.0", "0.0", "0.0", "1.0", "0.0"};

struct Read {
    SpritePtr sprite;
    std::string out;
    // The normal of every vertex of a face, which must be the same for all four.
    std::vector<float> normal(int face) const {
        const float* n = &sprite->normals[face * 12];
        for (int k = 3; k < 12; ++k) EXPECT_EQ(n[k], n[k % 3]) << "face " << face;
        return {n[0], n[1], n[2]};
    }
};

// Reads text as a model file named "m", or the file at path when text is null.
Read read(const std::string* text, const char* path = "m") {
    testing::internal::CaptureStdout();
    Read r;
    r.sprite = text ? readDXFDataintoSprite(text->data(), text->size(), path) : readDXFintoSprite(path);
    fflush(stdout);
    r.out = testing::internal::GetCapturedStdout();
    return r;
}
Read read(const std::string& text) { return read(&text); }

using V = std::vector<float>;

}  // namespace

TEST(ReaderModels, FacesNormalsAndTheMessage) {
    const std::vector<std::string> doubled = {"0.0", "0.0", "0.0", "2.0", "0.0", "0.0", "0.0", "2.0", "0.0", "0.0", "2.0", "0.0"};
    const std::vector<std::string> slanted = {"0.0", "0.0", "0.0", "1.0", "1.0", "0.0", "0.0", "1.0", "1.0", "0.0", "1.0", "1.0"};
    const Read r = read(model(face(kTriangle) + face(doubled) + face(slanted)));
    ASSERT_TRUE(r.sprite);
    EXPECT_EQ(r.out, "New sprite m has 12 vertices.\n");
    EXPECT_EQ(r.sprite->vertexCount, 12u);
    EXPECT_EQ(r.sprite->homeVertices, r.sprite->vertices);
    EXPECT_EQ(V(&r.sprite->vertices[12], &r.sprite->vertices[24]), (V{0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 2, 0}));
    EXPECT_EQ(r.normal(0), (V{0, 0, 1}));
    EXPECT_EQ(r.normal(1), (V{0, 0, 4}));  // not normalised
    EXPECT_EQ(r.normal(2), (V{1, -1, 1}));

    // A Glass layer and a 0 inside the face are passed over; polylines give no geometry.
    std::string layered = face(kTriangle);
    layered.replace(layered.find("  8\n0\n"), 6, "  8\nGlass\n  0\n 62\n0\n");
    const Read l = read(model(layered + "  0\nPOLYLINE\n  8\nGlass\n  0\nVERTEX\n 10\n1.0\n  0\nSEQEND\n"));
    EXPECT_EQ(l.out, "New sprite m has 4 vertices.\n");
    EXPECT_EQ(l.normal(0), (V{0, 0, 1}));
}

TEST(ReaderModels, BadValuesEndTheFaceWithTheirMessage) {
    std::vector<std::string> integer = kTriangle;
    integer[2] = "0";  // z of corner 0 without a decimal point
    const Read r = read(model(face(integer) + face(kTriangle)));
    EXPECT_EQ(r.out, "Expected float value at 30.  Got \n0 instead.\nNew sprite m has 8 vertices.\n");
    EXPECT_EQ(r.sprite->vertices[3], 0.0f);  // corner 1 never read
    EXPECT_EQ(r.normal(0), (V{0, 0, 0}));
    EXPECT_EQ(r.normal(1), (V{0, 0, 1}));  // the next face is read normally

    for (int i = 0; i < 12; ++i) {
        std::vector<std::string> values = kTriangle;
        values[i] = "x";
        const std::string code = std::to_string(10 * (i % 3 + 1) + i / 3);
        EXPECT_EQ(read(model(face(values))).out.find("Expected float value at " + code + ".  Got \nx instead.\n"), 0u);
    }

    std::string crlf;
    for (char c : model(face(kTriangle))) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(read(crlf).out, "Expected float value at 10.  Got \r instead.\nNew sprite m has 4 vertices.\n");
}

TEST(ReaderBrokenFiles, MissingEmptyCutShortAndLongLines) {
    const Read missing = read(nullptr, "/nonexistent/tolvar/model.dxf");
    EXPECT_FALSE(missing.sprite);
    EXPECT_EQ(missing.out, "No file exists at /nonexistent/tolvar/model.dxf\n");
    EXPECT_FALSE(read(nullptr, testing::TempDir().c_str()).sprite);
    EXPECT_EQ(read("").sprite->vertexCount, 0u);

    // No EOF, and a face that stops after two values: reading ends with the data.
    const Read cut = read("  0\n3DFACE\n 10\n1.5\n 20\n2.5");
    EXPECT_EQ(V(&cut.sprite->vertices[0], &cut.sprite->vertices[3]), (V{1.5f, 2.5f, 0}));
    EXPECT_TRUE(read("3DFACE\n 10").sprite);
    // An EOF swallowed inside a face: faces after it are not counted and have no room.
    EXPECT_EQ(read("3DFACE\n 10\nEOF\n3DFACE\n 33\n1.0\n3DFACE\n 10\n7.0\n 33\n1.0\n").sprite->vertexCount, 4u);

    // A value line of 70 characters: its first 63 are the value, the rest the next line.
    std::string longValue = face(kTriangle);
    longValue.replace(longValue.find(" 11\n1.0"), 7, " 11\n3." + std::string(66, '0'));
    const Read l = read(model(longValue));
    EXPECT_EQ(l.normal(0), (V{0, 0, 3}));
}

TEST(Resources, LookupBesideTheProgramAndTheShippedModel) {
    char path[4096], missing[4096] = "stale";
    testing::internal::CaptureStdout();
    getResourcePath("Spikes", "dxf", path);
    getResourcePath("NoSuchModel", "dxf", missing);
    EXPECT_FALSE(readDXFResourceFileintoSprite("NoSuchModel"));
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string("resource: ") + path + "\nresource: \nresource: \nNo file exists at \n");
    EXPECT_EQ(std::string(path), resourceFolder() + "/Spikes.dxf");
    EXPECT_STREQ(missing, "");

    // The piece model: a closed ball of triangles round the origin, every normal pointing out.
    const Read spikes = read(nullptr, path);
    ASSERT_TRUE(spikes.sprite);
    EXPECT_EQ(spikes.out.find("Expected"), std::string::npos) << spikes.out;
    const std::uint32_t faces = spikes.sprite->vertexCount / 4;
    EXPECT_GE(faces, 100u);
    calcBoundingBox(spikes.sprite.get(), 1);
    EXPECT_LT(std::fabs(spikes.sprite->position.x) + std::fabs(spikes.sprite->position.y) + std::fabs(spikes.sprite->position.z), 1e-3f);
    for (std::uint32_t k = 0; k < faces; ++k) {
        const float* v = &spikes.sprite->vertices[k * 12];
        const float* n = &spikes.sprite->normals[k * 12];
        EXPECT_TRUE(v[6] == v[9] && v[7] == v[10] && v[8] == v[11]) << "face " << k << " is a triangle";
        EXPECT_GT(n[0] * (v[0] + v[3] + v[6]) + n[1] * (v[1] + v[4] + v[7]) + n[2] * (v[2] + v[5] + v[8]), 0.0f) << "face " << k;
    }
}
