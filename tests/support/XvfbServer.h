#pragma once
// XvfbServer: a private X server for end-to-end tests: Xvfb on a free display number (never the
// machine's own display), started and stopped by its process id, with xdotool for input and a
// screenshot of the whole screen read back as pixels (xwd, converted by ImageMagick).
//
// available() tells whether Xvfb, xdotool, xwd and convert are installed; tests skip otherwise.

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace OrvantaTest {

class XvfbServer {
public:
    XvfbServer(int width = 640, int height = 480);
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    static bool available();

    bool isRunning() const { return mPid > 0; }
    // ":N", what DISPLAY is set to for clients of this server.
    std::string display() const { return ":" + std::to_string(mNumber); }
    // Runs a shell command as a client of this server; its exit status.
    int run(const std::string& command) const;
    // The screen as 0x00RRGGBB pixels, row by row.
    bool screenshot(std::vector<std::uint32_t>& pixels, int& width, int& height) const;
    void stop();

private:
    bool start(int number);

    int mWidth;
    int mHeight;
    int mNumber = -1;
    pid_t mPid = -1;
};

}  // namespace OrvantaTest
