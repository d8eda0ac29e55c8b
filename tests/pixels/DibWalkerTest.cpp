// The pixel walker: views, cursor, pixel access, and the whole-view operations, whose fast roads
// are checked against the plain walk and the resampler against an independent one. How turned views
// address their pixels is checked by the editing tests, whose turns and mirrors are views copied out.

#include "orvanta/pixels/DibWalker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/editing/DibRect.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/PixelHeap.h"
#include "orvanta/pixels/StaticDib.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::makePatternDib;
using OrvantaTest::messageOf;

namespace {

// A walker that also offers the plain walk that copyFrom's fast roads must agree with.
class PlainWalker : public DibWalker {
public:
    using DibWalker::DibWalker;
    void plainCopyFrom(DibWalker* src, bool swap) { copyEachPixel(src, swap); }
};

std::string bytesOf(Dib* dib) {
    return std::string(reinterpret_cast<char*>(dib->getBits()), dib->getBitsSize());
}

// The view of a picture after a sequence of turns (90, 180, 270) and mirrors (-1 across, -2 down).
DibWalker viewOf(Dib* dib, const std::vector<int>& steps) {
    DibWalker view(dib);
    for (int step : steps) step < 0 ? view.mirror(step == -2) : view.rotate(step);
    return view;
}

// One axis of the resampler by its rule: each output takes the next `scale` 1024ths of
// the inputs in order, and is their weighted sum divided once, truncating.
std::vector<int> resampleAxis(const std::vector<int>& in, int outCount) {
    const int scale = static_cast<int>(in.size()) * 1024 / outCount;
    std::vector<int> out;
    std::size_t i = 0;
    int left = 1024;
    for (int d = 0; d < outCount; ++d) {
        long long sum = 0;
        for (int need = scale; need > 0;) {
            const int take = std::min(need, left);
            sum += static_cast<long long>(in[i]) * take;
            need -= take;
            if ((left -= take) == 0) ++i, left = 1024;
        }
        out.push_back(static_cast<int>(sum / scale));
    }
    return out;
}

// The resampler: across each row first, then down each resulting column, channel by channel.
std::vector<unsigned long> referenceResize(DibWalker& src, int dw, int dh) {
    std::vector<unsigned long> out(static_cast<std::size_t>(dw) * dh, 0);
    for (int shift : {0, 8, 16}) {
        std::vector<std::vector<int>> rows;
        for (int y = 0; y < src.height(); ++y) {
            std::vector<int> row;
            for (int x = 0; x < src.width(); ++x)
                row.push_back(static_cast<int>(src.getPixel(x, y) >> shift & 0xFF));
            rows.push_back(resampleAxis(row, dw));
        }
        for (int x = 0; x < dw; ++x) {
            std::vector<int> column;
            for (const auto& row : rows) column.push_back(row[x]);
            const std::vector<int> down = resampleAxis(column, dh);
            for (int y = 0; y < dh; ++y)
                out[static_cast<std::size_t>(y) * dw + x] |= static_cast<unsigned long>(down[y]) << shift;
        }
    }
    return out;
}

}  // namespace

TEST(DibWalkerViews, SubViewsAndTheirFailuresAndACursorThatStaysInsideAndOnItsPixelWhenTurned) {
    OwnedPtr<Dib> dib(makePatternDib(10, 7, 3));
    DibWalker whole(dib.get());
    // left trunc(2.5) = 2, top trunc(2.1) = 2, right trunc(7.6) = 7, bottom 7.
    DibWalker part(dib.get(), DibRect(0.25, 0.3, 0.76, 1.0));
    EXPECT_TRUE(part.width() == 5 && part.height() == 5 && part.getPixel() == whole.getPixel(2, 2));
    DibWalker turned(dib.get());
    turned.rotate(90);
    DibWalker inner(&turned, 1, 2, 2, 3);  // a sub-view of a turned view inherits the turn
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 2; ++x) EXPECT_EQ(inner.getPixel(x, y), turned.getPixel(x + 1, y + 2));
    BITMAPINFO info{};
    info.bmiHeader = {40, 4, -4, 1, 16, BI_RGB, 0, 0, 0, 0, 0};
    OwnedPtr<Dib> sixteen(StaticDib::create(info, PixelHeap::allocate(32)));
    unsigned char raw[16];
    const struct {
        std::function<void()> make;
        std::u16string message;
    } failures[] = {
        {[&] { DibWalker w(sixteen.get()); }, u"Cannot construct DibWalker from non-RGB Dib."},
        {[&] { DibWalker w(dib.get(), 1, 0, 10, 7); },
         u"Cannot construct DibWalker - subrect exceeds source rect."},
        {[&] { DibWalker w(&turned, 0, 0, 10, 7); },
         u"Cannot construct DibWalker - specified rect exceeds source rect."},
        {[&] { DibWalker w(raw, 2, 2, 2, 4, 2); },
         u"Cannot construct DibWalker - bytesPerPixel must be 1, 3, or 4."},
        {[&] { turned.rotate(45); }, u"Cannot rotate a DibWalker by other than 90, 180, or 270 degrees."}};
    for (const auto& f : failures) EXPECT_EQ(messageOf(f.make), f.message);
    EXPECT_EQ(turned.width(), 7) << "a bad angle changes nothing";
    DibWalker w(dib.get());
    ASSERT_TRUE(w.goTo(1, 1));
    EXPECT_TRUE(!w.goToX(10) && w.currentY() == 1) << "fails without resetting y";
    EXPECT_TRUE(w.goToX(9) && w.currentY() == 0) << "succeeds and resets y";
    w.start();
    EXPECT_FALSE(w.prev() || w.prevX() || w.prevY());
    int count = 1;
    while (w.next()) ++count;
    EXPECT_EQ(count, 70);
    DibWalker t(dib.get());
    t.goTo(1, 0);
    const unsigned long pixel = t.getPixel();
    t.rotate(90);
    EXPECT_TRUE(t.width() == 7 && t.currentX() == 6 && t.currentY() == 1 && t.getPixel() == pixel);
    t.rotate(270);
    t.rotate(180);
    EXPECT_EQ(t.getPixel(), pixel);
    t.mirror(true);
    EXPECT_TRUE(t.currentX() == 0 && t.currentY() == 0);
}

TEST(DibWalkerPixels, ColourValuesFollowColorrefAndGreySpreads) {
    OwnedPtr<Dib> dib(DibSection::create(2, 1, 4));
    std::memset(dib->getBits(), 0x77, 8);
    DibWalker w(dib.get());
    w.setPixel(RGB(0x10, 0x20, 0x30));
    EXPECT_EQ(bytesOf(dib).substr(0, 4), "\x30\x20\x10\x77") << "blue first, the fourth byte kept";
    OwnedPtr<Dib> grey(ByteDib::create(2, 1));
    DibWalker gw(grey.get());
    gw.setPixel(RGB(0x12, 0x34, 0x56));  // the low byte
    EXPECT_EQ(gw.getPixel(), 0x121212ul);
    w.copyFrom(&gw, false);
    EXPECT_EQ(w.getPixel(0, 0), 0x121212ul) << "grey spreads to all three colours";
    w.setPixel(RGB(0x11, 0x22, 0x33), 1, 0);
    gw.copyFrom(&w, false);
    EXPECT_EQ(gw.getPixel(1, 0), 0x111111ul) << "the low byte of the colour value";
    OwnedPtr<Dib> other(DibSection::create(3, 1, 3));
    DibWalker o(other.get());
    EXPECT_EQ(messageOf([&] { w.copyFrom(&o, false); }),
              u"Cannot copy dib region - source and dest size are different");
    EXPECT_EQ(messageOf([&] { gw.getPixel(2, 0); }), u"getPixel call is outside of DibWalker extents.");
}

TEST(DibWalkerWholeView, FastCopiesAndFlipsEqualThePlainWalk) {
    const std::vector<std::vector<int>> transforms = {{},   {90},     {180},     {270},   {-1},
                                                      {-2}, {90, -1}, {270, -2}, {-1, -2}};
    for (int fromChannels : {3, 4})
        for (int toChannels : {3, 4})
            for (const auto& steps : transforms)
                for (bool swap : {false, true}) {
                    // Sizes that cross the tile edges, on both sides of the copy.
                    OwnedPtr<Dib> source(makePatternDib(45, 70, fromChannels, 3));
                    OwnedPtr<Dib> sourceCopy(makePatternDib(45, 70, fromChannels, 3));
                    DibWalker view = viewOf(source, steps), viewCopy = viewOf(sourceCopy, steps);
                    OwnedPtr<Dib> fast(makePatternDib(view.width() + 3, view.height() + 2, toChannels, 9));
                    OwnedPtr<Dib> plain(makePatternDib(view.width() + 3, view.height() + 2, toChannels, 9));
                    DibWalker(fast.get(), 2, 1, view.width(), view.height()).copyFrom(&view, swap);
                    PlainWalker(plain.get(), 2, 1, view.width(), view.height())
                        .plainCopyFrom(&viewCopy, swap);
                    ASSERT_EQ(bytesOf(fast), bytesOf(plain))
                        << fromChannels << toChannels << steps.size() << swap;
                    ASSERT_EQ(bytesOf(source), bytesOf(sourceCopy)) << "a swap changes both sides alike";
                }
    OwnedPtr<Dib> a(makePatternDib(20, 10, 3)), b(makePatternDib(20, 10, 3));  // overlapping views
    DibWalker fromA(a.get(), 0, 0, 15, 10), fromB(b.get(), 0, 0, 15, 10);
    DibWalker(a.get(), 5, 0, 15, 10).copyFrom(&fromA, false);
    PlainWalker(b.get(), 5, 0, 15, 10).plainCopyFrom(&fromB, false);
    EXPECT_EQ(bytesOf(a), bytesOf(b));
    for (bool vertical : {false, true}) {
        OwnedPtr<Dib> dib(makePatternDib(7, 5, 3)), expected(DibSection::create(7, 5, 3)),
            thin(makePatternDib(1, 5, 3));
        DibWalker mirrored(dib.get());
        mirrored.mirror(vertical);
        PlainWalker(expected.get()).plainCopyFrom(&mirrored, false);
        DibWalker(dib.get()).flipInPlace(vertical);
        EXPECT_EQ(OrvantaTest::packedPixels(*dib), OrvantaTest::packedPixels(*expected)) << vertical;
        const std::string before = bytesOf(thin);
        DibWalker(thin.get()).flipInPlace(vertical);  // a width of 1 stops the vertical flip as well
        EXPECT_EQ(bytesOf(thin), before);
    }
}

TEST(DibWalkerResize, EqualsTheResamplerWrittenOutPlainly) {
    const struct {
        int sw, sh, dw, dh, fromChannels;
        std::vector<int> steps;
    } cases[] = {{100, 80, 33, 17, 3, {}}, {100, 80, 7, 80, 3, {}},   {31, 29, 64, 50, 3, {}},
                 {97, 61, 40, 41, 4, {}},  {60, 90, 13, 11, 3, {90}}, {60, 90, 17, 23, 4, {270, -1}},
                 {5, 300, 3, 7, 3, {-2}},  {300, 2, 1, 1, 3, {}},     {12, 12, 11, 13, 3, {180}}};
    for (const auto& c : cases) {
        OwnedPtr<Dib> source(makePatternDib(c.sw, c.sh, c.fromChannels, 5)),
            target(makePatternDib(c.dw, c.dh, 3, 1));
        DibWalker view = viewOf(source, c.steps), to(target.get());
        view.goTo(1, 0);
        to.resizeFrom(&view);
        EXPECT_EQ(view.currentX(), 1);
        std::vector<unsigned long> got;
        for (int y = 0; y < c.dh; ++y)
            for (int x = 0; x < c.dw; ++x) got.push_back(to.getPixel(x, y));
        EXPECT_EQ(got, referenceResize(view, c.dw, c.dh))
            << c.sw << "x" << c.sh << " -> " << c.dw << "x" << c.dh;
    }
    OwnedPtr<Dib> small(ByteDib::create(4, 4)), large(ByteDib::create(8, 8));
    std::memset(large->getBits(), 0x55, large->getBitsSize());
    DibWalker s(small.get()), l(large.get());
    DibWalker(large.get(), 0, 0, 4, 4).resizeTo(&s);  // grey views resize only at equal sizes: a copy
    EXPECT_EQ(s.getPixel(3, 3), 0x555555ul);
    EXPECT_EQ(messageOf([&] { s.resizeFrom(&l); }), u"getPixel call expecting RGB dib");
}
