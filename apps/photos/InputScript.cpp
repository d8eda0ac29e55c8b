#include "apps/photos/InputScript.h"

#include <SDL.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "tools/window-demo/DemoSupport.h"

using namespace Orvanta;

namespace OrvantaPhotos {

namespace {

constexpr int kTick = 40;

long nowMs() {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                 std::chrono::steady_clock::now().time_since_epoch())
                                 .count());
}

}  // namespace

InputScript::InputScript(Host host, std::string shotFolder)
    : mHost(std::move(host)), mShots(std::move(shotFolder)) {}

bool InputScript::load(const std::string& path) {
    std::ifstream in(path);
    if (!in) return false;
    for (std::string line; std::getline(in, line);) mLines.push_back(line);
    return true;
}

void InputScript::start() {
    mTimer = startTimer(kTick);
}

void InputScript::onTimer(int id) {
    if (id != mTimer) return;
    if (nowMs() < mWaitUntil) return;
    if (mSettling) {
        if (mHost.busy()) return;
        mSettling = false;
    }
    while (mNext < mLines.size()) {
        const std::string line = mLines[mNext++];
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos || line[start] == '#') continue;
        if (!step(line.substr(start))) {
            std::fprintf(stderr, "orvanta-photos: script line %zu not understood: %s\n", mNext, line.c_str());
            stopTimer(mTimer);
            mHost.finished(2);
        }
        return;
    }
    stopTimer(mTimer);
    mHost.finished(0);
}

bool InputScript::step(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    if (verb == "key") {
        std::string name;
        while (words >> name) key(name);
        return true;
    }
    if (verb == "type") {
        SDL_Event event{};
        event.type = SDL_TEXTINPUT;
        event.text.windowID = SDL_GetWindowID(static_cast<SDL_Window*>(mHost.window->getDisplayWindow()));
        std::string text;
        std::getline(words >> std::ws, text);
        std::strncpy(event.text.text, text.c_str(), sizeof(event.text.text) - 1);
        SDL_PushEvent(&event);
        return true;
    }
    if (verb == "click" || verb == "picture") {
        CPoint at;
        if (verb == "click") {
            if (!(words >> at.x >> at.y)) return false;
        } else {
            double fx, fy;
            if (!(words >> fx >> fy)) return false;
            at = mHost.picturePoint(fx, fy);
        }
        postMouse(SDL_MOUSEMOTION, at);
        postMouse(SDL_MOUSEBUTTONDOWN, at);
        postMouse(SDL_MOUSEBUTTONUP, at);
        return true;
    }
    if (verb == "drag" || verb == "pdrag") {
        CPoint from, to;
        if (verb == "drag") {
            if (!(words >> from.x >> from.y >> to.x >> to.y)) return false;
        } else {
            double x1, y1, x2, y2;
            if (!(words >> x1 >> y1 >> x2 >> y2)) return false;
            from = mHost.picturePoint(x1, y1);
            to = mHost.picturePoint(x2, y2);
        }
        postMouse(SDL_MOUSEMOTION, from);
        postMouse(SDL_MOUSEBUTTONDOWN, from);
        for (int i = 1; i <= 8; ++i)
            postMouse(SDL_MOUSEMOTION,
                      CPoint(from.x + (to.x - from.x) * i / 8, from.y + (to.y - from.y) * i / 8));
        postMouse(SDL_MOUSEBUTTONUP, to);
        return true;
    }
    if (verb == "wheel") {
        int notches;
        if (!(words >> notches)) return false;
        SDL_Event event{};
        event.type = SDL_MOUSEWHEEL;
        event.wheel.windowID = SDL_GetWindowID(static_cast<SDL_Window*>(mHost.window->getDisplayWindow()));
        event.wheel.y = notches;
        event.wheel.direction = SDL_MOUSEWHEEL_NORMAL;
        SDL_PushEvent(&event);
        return true;
    }
    if (verb == "wait") {
        long ms;
        if (!(words >> ms)) return false;
        mWaitUntil = nowMs() + ms;
        return true;
    }
    if (verb == "settle") {
        mSettling = true;
        return true;
    }
    if (verb == "shot" || verb == "front-shot") {
        std::string name;
        if (!(words >> name)) return false;
        const std::string path = mShots + "/" + name + ".png";
        HWND window = mHost.window;
        if (verb == "front-shot" && Platform::Window::getActiveWindow())
            window = Platform::Window::getActiveWindow();
        // The screen as it stands once everything asked of it is painted.
        window->update();
        if (!OrvantaDemo::writePng(window, path.c_str()))
            std::fprintf(stderr, "orvanta-photos: cannot write %s\n", path.c_str());
        return true;
    }
    return false;
}

void InputScript::key(const std::string& name) {
    int modifiers = 0;
    std::string rest = name;
    for (;;) {
        const std::size_t plus = rest.find('+');
        if (plus == std::string::npos || plus + 1 == rest.size()) break;
        const std::string held = rest.substr(0, plus);
        modifiers |= held == "ctrl"    ? KMOD_LCTRL
                     : held == "shift" ? KMOD_LSHIFT
                     : held == "alt"   ? KMOD_LALT
                                       : 0;
        rest = rest.substr(plus + 1);
    }
    const SDL_Keycode code = SDL_GetKeyFromName(rest.c_str());
    const Uint32 window = SDL_GetWindowID(static_cast<SDL_Window*>(mHost.window->getDisplayWindow()));
    const auto push = [&](SDL_Keycode sym, bool down, int mods) {
        SDL_Event event{};
        event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
        event.key.windowID = window;
        event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
        event.key.keysym.sym = sym;
        event.key.keysym.scancode = SDL_GetScancodeFromKey(sym);
        event.key.keysym.mod = static_cast<Uint16>(mods);
        SDL_PushEvent(&event);
    };
    const SDL_Keycode holds[] = {SDLK_LCTRL, SDLK_LSHIFT, SDLK_LALT};
    const int bits[] = {KMOD_LCTRL, KMOD_LSHIFT, KMOD_LALT};
    for (int i = 0; i < 3; ++i)
        if (modifiers & bits[i]) push(holds[i], true, modifiers);
    push(code, true, modifiers);
    push(code, false, modifiers);
    for (int i = 0; i < 3; ++i)
        if (modifiers & bits[i]) push(holds[i], false, 0);
}

void InputScript::postMouse(int type, CPoint point) {
    SDL_Event event{};
    event.type = static_cast<Uint32>(type);
    const Uint32 window = SDL_GetWindowID(static_cast<SDL_Window*>(mHost.window->getDisplayWindow()));
    if (type == SDL_MOUSEMOTION) {
        event.motion.windowID = window;
        event.motion.x = point.x;
        event.motion.y = point.y;
    } else {
        event.button.windowID = window;
        event.button.button = SDL_BUTTON_LEFT;
        event.button.state = type == SDL_MOUSEBUTTONDOWN ? SDL_PRESSED : SDL_RELEASED;
        event.button.clicks = 1;
        event.button.x = point.x;
        event.button.y = point.y;
    }
    SDL_PushEvent(&event);
}

}  // namespace OrvantaPhotos
