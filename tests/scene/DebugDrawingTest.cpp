// Lines and points, which share how they keep and upload their vertices.
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "NodeDrawingTest.h"
#include "gl/ConfigGL.h"
#include "gl/Program.h"
#include "scene/DrawLines.h"
#include "scene/DrawPoints.h"
#include "support/AllocationCounter.h"
#include "support/GLCallRecorder.h"
#include "support/PictureCompare.h"

namespace zv::test {
namespace {

constexpr int kWidth = 20, kHeight = 14;
constexpr Size16 kTarget{kWidth, kHeight};
constexpr Color4B kOrange{255, 128, 0, 255}, kGlass{0, 40, 255, 128};

using DebugDrawing = NodeDrawingTest;
using DebugDrawingPicture = NodeDrawingTest;

/// The clip coordinates of a place in pixels, from the top left corner; whole numbers are pixel centres.
Vec2f at(float x, float y) {
    return {(2 * x + 1) / kWidth - 1, 1 - (2 * y + 1) / kHeight};
}

/// What lies over the poison where a colour covers it.
Pixel mixed(const Color4B& color, double alpha) {
    const auto mix = [&](double front, double back) {
        return static_cast<std::uint8_t>(std::lround(front * alpha + back * (1 - alpha)));
    };
    return {mix(color.r, kPoison[0]), mix(color.g, kPoison[1]), mix(color.b, kPoison[2]),
            mix(255 * alpha, kPoison[3])};
}

TEST_F(DebugDrawingPicture, LinesKeepToTheirPlacesColoursWidthsAndBlending) {
    // GL leaves out the last pixel of a segment; only the end of an open polygon is missing by that. A wide
    // segment is drawn beside itself, so that corners stay open.
    const std::vector<std::string> thin = {
        "", "  ooooooo  gggg", "  o     o     g", "  o     o     g", "  o     o", "  ooooooo"};
    const std::vector<std::string> wide = {"  oooooo   ggg",   "  oooooooo ggggg", " ooooooooo ggggg",
                                           " ooo   ooo   ggg", " ooooooooo",       " oooooooo",
                                           "   oooooo"};
    bindTarget(kTarget);
    DrawLines* lines = DrawLines::create(7);
    // A little beside the pixels' centres, so that rounding does not decide which of them are covered.
    const Vec2f rectangle[] = {at(2.1F, 1.1F), at(8.1F, 1.1F), at(8.1F, 5.1F), at(2.1F, 5.1F)};
    const Vec2f angle[] = {at(11.1F, 1.1F), at(14.1F, 1.1F), at(14.1F, 4.1F)};
    lines->addPoly(rectangle, 4, true, kOrange);
    lines->addPoly(angle, 3, false, kGlass);
    GLfloat limits[2] = {};
    glGetFloatv(GL_ALIASED_LINE_WIDTH_RANGE, limits);
    for (const auto& [width, blended] : {std::pair(0, false), std::pair(1, true), std::pair(3, false)}) {
        lines->setLineWidth(static_cast<unsigned short>(width));
        lines->setBlendFunc(blended ? BlendFunc::ALPHA_NON_PREMULTIPLIED : BlendFunc::DISABLE);
        const auto& rows = width == 3 && limits[1] >= 3 ? wide : thin;
        const Picture expected = Picture::make(kWidth, kHeight, [&, blend = blended](int x, int y) {
            const auto row = static_cast<std::size_t>(y), column = static_cast<std::size_t>(x);
            const char mark = row < rows.size() && column < rows[row].size() ? rows[row][column] : ' ';
            const Color4B& c = mark == 'o' ? kOrange : kGlass;
            return mark == ' ' ? kPoison : blend ? mixed(c, c.a / 255.0) : Pixel{c.r, c.g, c.b, c.a};
        });
        expectNear(draw(lines), expected, blended ? 1 : 0, 0.1, "lines-" + std::to_string(width));
    }
}

TEST_F(DebugDrawingPicture, PointsAreDiscsOfTheirSizesAndColours) {
    bindTarget(kTarget);
    DrawPoints* points = DrawPoints::create();
    struct Disc {
        float x, y, size;
        Color4B color;
    };
    // The second lies between four pixels, the last is drawn as a point of one pixel.
    const Disc discs[] = {
        {5, 6, 9, kOrange}, {13.5F, 3.5F, 4, kGlass}, {16, 10, 1, kOrange}, {12, 11, -3, kOrange}};
    for (const Disc& disc : discs) {
        const Vec2f place = at(disc.x, disc.y);
        points->addPoints(&place, 1, disc.size, disc.color);
    }
    points->setBlendFunc(BlendFunc::ALPHA_NON_PREMULTIPLIED);
    const Picture expected = Picture::make(kWidth, kHeight, [&](double x, double y) {
        for (const Disc& disc : discs) {
            const double covered = std::max(disc.size, 1.0F) / 2.0 + 0.5 - std::hypot(x - disc.x, y - disc.y);
            if (covered > 0) {
                return mixed(disc.color, disc.color.a / 255.0 * std::min(covered, 1.0));
            }
        }
        return kPoison;
    });
    expectNear(draw(points), expected, 2, 0.1, "points");  // alpha and the blend each round to a step

    points->clear();
    points->setProgram(Program::create(
        "attribute vec4 a_position; attribute vec2 a_texcoord0; varying vec2 v;\n"
        "void main() { gl_Position = a_position; gl_PointSize = 10.0; v = a_texcoord0; }\n",
        "varying vec2 v;\nvoid main() { gl_FragColor = vec4(v.x / 51.0, v.y, 0.0, 1.0); }\n"));
    const Vec2f place = at(9.5F, 6.5F);
    points->addPoints(&place, 1, 10, kOrange);
    EXPECT_EQ(draw(points).cropped(5, 2, 10, 10), Picture(10, 10, {50, 0, 0, 255}))
        << "the size reaches the shader with a zero beside it";
}

TEST_F(DebugDrawing, PolygonsGiveTwoVerticesASegment) {
    bindTarget(kTarget);
    const std::vector<Vec2f> corners(4);
    GLCallRecorder calls;
    // Corners, whether closed, vertices; without any nothing is drawn.
    for (const auto& [count, closed, vertices] : std::vector<std::tuple<std::size_t, bool, long long>>{
             {4, false, 6}, {4, true, 8}, {2, true, 4}, {1, true, 2}, {1, false, 0}, {0, true, 0}}) {
        DrawLines* lines = DrawLines::create(1);
        lines->addPoly(corners.data(), count, closed, kOrange);
        calls.clear();
        draw(lines);
        const auto drawn = vertices > 0 ? std::vector{vertices} : std::vector<long long>();
        EXPECT_EQ(calls.argumentsOf("glDrawArrays", 2), drawn) << count << closed;
    }
}

/// Two vertices more.
void addTwo(DrawLines& lines) {
    const Vec2f ends[] = {at(1, 1), at(9, 9)};
    lines.addPoly(ends, 2, false, kOrange);
}
void addTwo(DrawPoints& points) {
    const Vec2f places[] = {at(1, 1), at(9, 9)};
    points.addPoints(places, 2, 3, kOrange);
}

class DebugDrawingCounts : public NodeDrawingTest {
protected:
    /// Uploaded bytes, drawn vertices, objects made and things put on the heap by one draw.
    using Costs = std::array<long long, 4>;
    /// For a drawing that takes so many bytes a vertex.
    template <class Drawing>
    void expectCosts(Drawing* drawing, long long bytes) {
        bindTarget(kTarget);
        drawing->retain();
        const long long objects = ConfigGL::getInstance()->supportVAO() ? 2 : 1;
        GLCallRecorder calls;
        const auto sum = [&](const char* name, std::size_t argument) {
            const std::vector<long long> each = calls.argumentsOf(name, argument);
            return std::accumulate(each.begin(), each.end(), 0LL);
        };
        const auto next = [&] {
            calls.clear();
            const AllocationCounter memory;
            drawing->onDrawSelf(Mat4::ZERO);  // no matrix is applied
            const auto allocated = static_cast<long long>(memory.allocations());
            return Costs{sum("glBufferData", 1), sum("glDrawArrays", 2),
                         static_cast<long long>(calls.countObjectCalls()), allocated};
        };
        const Costs nothing{}, same{0, 2, 0, 0};

        EXPECT_EQ(next(), nothing);
        addTwo(*drawing);
        Costs first = next();
        first[3] = 0;  // the first draw may take memory
        EXPECT_EQ(first, (Costs{2 * bytes, 2, objects, 0}));
        EXPECT_EQ(next(), same);
        addTwo(*drawing);
        EXPECT_EQ(next(), (Costs{4 * bytes, 4, 0, 0})) << "the whole array";
        drawing->clear();
        EXPECT_EQ(next(), nothing);
        addTwo(*drawing);
        EXPECT_EQ(next(), (Costs{2 * bytes, 2, 0, 0}));

        // A copy draws what it was copied from with objects of its own, and takes none with it.
        const Picture shown = draw(drawing);
        EXPECT_NE(shown, Picture(kWidth, kHeight, kPoison));
        {
            Drawing copy(*drawing);
            copy.retain();
            EXPECT_EQ(draw(&copy), shown);
        }
        EXPECT_EQ(draw(drawing), shown);
        GLfloat width = 0;
        glGetFloatv(GL_LINE_WIDTH, &width);
        EXPECT_EQ(width, 1.0F) << "put back";
        EXPECT_FALSE(glIsEnabled(GL_PROGRAM_POINT_SIZE)) << "put back";

        // The last holder may let go after the engine has gone.
        unbindTarget();
        drainPool();
        engine.reset();
        calls.clear();
        drawing->release();
        EXPECT_EQ(calls.count("glDeleteBuffers") + calls.count("glDeleteVertexArrays"),
                  static_cast<std::size_t>(objects));
    }
};

TEST_F(DebugDrawingCounts, ChangedLinesAreUploadedOnceAndObjectsLiveAsLongAsTheDrawing) {
    expectCosts(DrawLines::create(5), 12);
}

TEST_F(DebugDrawingCounts, ChangedPointsAreUploadedOnceAndObjectsLiveAsLongAsTheDrawing) {
    expectCosts(DrawPoints::create(), 20);
}

}  // namespace
}  // namespace zv::test
