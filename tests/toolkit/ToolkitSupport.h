#pragma once
// Controls for the toolkit tests: a windowless box that records the messages it is given, a
// windowed control that records its keys and characters, and bitmap strips made in code; placing a
// control in a container.

#include <cstring>
#include <string>
#include <vector>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/ResourceModule.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Container.h"
#include "orvanta/toolkit/WindowedControl.h"

namespace OrvantaTest {

struct Received {
    Orvanta::UINT message;
    Orvanta::CPoint point;
};

// A filled box with a border: windowless, of its own size.
class Box : public Orvanta::Control {
public:
    static Box* create(Orvanta::COLORREF fill, const Orvanta::CRect& rect) {
        Box* box = new Box();
        box->setBkColor(fill);
        box->setMinSize(rect.width(), rect.height());
        box->setRect(rect);
        box->setBorderWidth(1, Orvanta::Style::kBorders);
        box->setBorderColor(Orvanta::RGB(0, 0, 0), Orvanta::Style::kBorders);
        return box;
    }
    std::vector<Received> received;

    Orvanta::LRESULT handleMessage(Orvanta::UINT message, Orvanta::WPARAM wParam, Orvanta::LPARAM lParam,
                                   bool* handled) override {
        received.push_back(
            {message, Orvanta::CPoint(Orvanta::GET_X_LPARAM(lParam), Orvanta::GET_Y_LPARAM(lParam))});
        return Control::handleMessage(message, wParam, lParam, handled);
    }
    int count(Orvanta::UINT message) const {
        int n = 0;
        for (const Received& r : received) n += r.message == message;
        return n;
    }
};

// A windowed control that takes the focus and keeps what it was typed.
class TextSink : public Orvanta::WindowedControl {
public:
    static TextSink* create() { return new TextSink(); }
    std::u16string typed;
    std::vector<int> keys;

protected:
    TextSink() {
        setTabStop(true);
        setMinSize(20, 20);
    }
    bool onChar(char16_t c) override {
        typed += c;
        return true;
    }
    bool onKeyDown(int virtualKey, Orvanta::LPARAM) override {
        keys.push_back(virtualKey);
        return true;
    }
};

struct CommandLog : public Orvanta::CommandListener {
    std::vector<std::pair<Orvanta::Control*, int>> commands;
    void onCommand(Orvanta::Control* source, int command) override { commands.push_back({source, command}); }
};

// Gives a control its rectangle and adds it to a container, as a tab stop when asked.
template <class T>
T* place(Orvanta::Container* parent, T* control, const Orvanta::CRect& rect, bool tabStop = false) {
    control->setRect(rect);
    parent->add(control, tabStop);
    return control;
}

inline void setMargins(Orvanta::Control* control, const Orvanta::CRect& m) {
    const int sides[] = {m.left, m.top, m.right, m.bottom};
    for (int i = 0; i < 4; ++i) control->setMargin(sides[i], 1 << i);
}

// A strip of frames side by side, each a flat colour inside a border of the mask colour `border`
// pixels wide, as a packed 24-bit DIB with its rows bottom-up.
inline std::string stripDib(const std::vector<Orvanta::COLORREF>& colours, Orvanta::CSize frame,
                            Orvanta::COLORREF mask, int border) {
    const int width = frame.cx * static_cast<int>(colours.size());
    const int stride = (width * 3 + 3) & ~3;
    Orvanta::BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = frame.cy;
    header.biPlanes = 1;
    header.biBitCount = 24;
    std::string dib(reinterpret_cast<const char*>(&header), sizeof header);
    dib.resize(sizeof header + static_cast<std::size_t>(stride) * frame.cy, '\0');
    for (int y = 0; y < frame.cy; ++y)
        for (int x = 0; x < width; ++x) {
            const int fx = x % frame.cx;
            const bool edge = fx < border || fx >= frame.cx - border || y < border || y >= frame.cy - border;
            const Orvanta::COLORREF c = edge ? mask : colours[x / frame.cx];
            char* p = &dib[sizeof header + static_cast<std::size_t>(frame.cy - 1 - y) * stride + x * 3];
            p[0] = static_cast<char>(Orvanta::GetBValue(c));
            p[1] = static_cast<char>(Orvanta::GetGValue(c));
            p[2] = static_cast<char>(Orvanta::GetRValue(c));
        }
    return dib;
}

// A resource module holding strips made in code, for Resource(id, &strips).
struct Strips : public Orvanta::Platform::ResourceModule {
    void add(int id, const std::vector<Orvanta::COLORREF>& colours, Orvanta::CSize frame,
             Orvanta::COLORREF mask, int border) {
        const std::string dib = stripDib(colours, frame, mask, border);
        addBitmap(id, dib.data(), dib.size());
    }
};

// How many pixels of the picture have exactly this colour.
inline int countColour(const std::vector<std::uint32_t>& pixels, Orvanta::COLORREF colour) {
    const std::uint32_t rgb =
        (Orvanta::GetRValue(colour) << 16) | (Orvanta::GetGValue(colour) << 8) | Orvanta::GetBValue(colour);
    int n = 0;
    for (std::uint32_t p : pixels) n += p == rgb;
    return n;
}

}  // namespace OrvantaTest
