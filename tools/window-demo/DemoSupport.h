#pragma once
// What the demo's windows share: running the loop until nothing is left to do, and writing a
// top-level window's pixels to a PNG (an earlier picture of the same name is replaced).

#include "orvanta/platform/Window.h"
#include "orvanta/toolkit/Container.h"

namespace OrvantaDemo {

void runUntilIdle(Orvanta::Container* root);
bool writePng(Orvanta::HWND topLevel, const char* path);

}  // namespace OrvantaDemo
