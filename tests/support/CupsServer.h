#pragma once
// CupsServer: a private CUPS server for the printing tests: its own folder, socket and
// configuration, two printers (Office, the default, and Photo) of the test printer description,
// each saving its jobs as files, started and stopped by its process id. The test program's client
// side is pointed at its socket once, before any test asks CUPS anything.

#include <sys/types.h>
#include <string>

namespace OrvantaTest {

class CupsServer {
public:
    // The folder of the socket the whole test program's CUPS calls go to (set at program start).
    static const std::string& folder();
    static bool available();

    CupsServer();
    ~CupsServer();
    bool isRunning() const { return mPid > 0; }
    // Stops the server (SIGTERM, then waits for it).
    void stop();
    // Where the jobs of a printer land.
    std::string outputFolder() const { return folder() + "/out"; }
    // Waits (up to 30 s) until job id's document is saved, and gives its path; empty on time-out.
    std::string waitForJob(int id) const;
    // The server's log, for a failure's message.
    std::string log() const;

private:
    pid_t mPid = -1;
};

}  // namespace OrvantaTest
