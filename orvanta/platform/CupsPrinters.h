#pragma once
// CupsPrinters: the system's printers as CUPS knows them, and sending a finished PDF document to
// one of them.
//
// Contract: destinations are the local CUPS server's (CUPS_SERVER and lpoptions apply), instances
// skipped. A printer that cannot be asked answers false from describe(); with libcups missing there
// are no printers. Sizes and margins are in hundredths of a millimetre, as CUPS gives them; a paper
// whose four margins are 0 is borderless. submit() sends the file as one job and answers the job's
// id once the server has taken the whole document, or 0 with the server's reason in `error`.
// Every call makes its own connection, so any thread may call.

#include <string>
#include <utility>
#include <vector>

#include "orvanta/platform/CSize.h"

namespace Orvanta::Platform {

struct PrinterMedia {
    std::string name;         // the PWG name ("na_letter_8.5x11in")
    std::string displayName;  // as the server's language calls it ("US Letter")
    int width = 0, height = 0;
    int left = 0, top = 0, right = 0, bottom = 0;
    bool isBorderless() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
};

struct PrinterDescription {
    std::string name;
    std::string makeAndModel;
    std::string deviceUri;
    std::vector<PrinterMedia> media;
    std::string defaultMedia;
    std::vector<CSize> resolutions;
};

using PrintOptions = std::vector<std::pair<std::string, std::string>>;

namespace CupsPrinters {

std::vector<std::string> destinationNames();
// The default destination's name, or empty when there is none.
std::string defaultDestination();
bool describe(const std::string& name, PrinterDescription& description);
int submit(const std::string& printer, const std::string& pdfPath, const std::string& title,
           const PrintOptions& options, std::string& error);

}  // namespace CupsPrinters

}  // namespace Orvanta::Platform
