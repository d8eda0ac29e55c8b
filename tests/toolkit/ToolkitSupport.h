#pragma once
// Controls for the toolkit tests: a windowless box that records the messages it is given, and a
// windowed control that records its keys and characters.

#include <vector>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Display.h"
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
    std::vector<std::u16string> compositions;  // the input method's text at each announcement

    Orvanta::LRESULT windowProc(Orvanta::HWND window, Orvanta::UINT message, Orvanta::WPARAM wParam,
                                Orvanta::LPARAM lParam) override {
        if (message == Orvanta::WM_IME_COMPOSITION)
            compositions.push_back(Orvanta::Platform::Display::instance().getComposition().str());
        return WindowedControl::windowProc(window, message, wParam, lParam);
    }

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

}  // namespace OrvantaTest
