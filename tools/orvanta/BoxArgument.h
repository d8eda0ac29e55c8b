#pragma once
// "WxH" arguments of the host's commands: a box of positive sides.

#include <cstdlib>
#include <string>

namespace OrvantaTool {

inline bool parseBox(const std::string& text, int& width, int& height) {
    const std::size_t x = text.find('x');
    if (x == std::string::npos || x == 0 || x + 1 == text.size()) return false;
    char* end = nullptr;
    const long w = std::strtol(text.c_str(), &end, 10);
    if (end != text.c_str() + x) return false;
    const long h = std::strtol(text.c_str() + x + 1, &end, 10);
    if (*end != '\0' || w <= 0 || h <= 0 || w > 1000000 || h > 1000000) return false;
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    return true;
}

}  // namespace OrvantaTool
