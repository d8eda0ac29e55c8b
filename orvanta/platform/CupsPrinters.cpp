#include "orvanta/platform/CupsPrinters.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "orvanta/platform/CupsLibrary.h"
#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform::CupsPrinters {

namespace {

// A name people read for a paper whose printer gives none of its own: the common sizes by their
// usual names, others by the middle of the PWG name ("na_index-4x6_4x6in" is "index-4x6").
std::string readableMediaName(const std::string& pwg) {
    static const struct {
        const char* name;
        const char* readable;
    } known[] = {{"letter", "US Letter"},
                 {"legal", "US Legal"},
                 {"a3", "A3"},
                 {"a4", "A4"},
                 {"a5", "A5"},
                 {"a6", "A6"},
                 {"index-4x6", "4 x 6"},
                 {"5x7", "5 x 7"},
                 {"index-5x8", "5 x 8"},
                 {"govt-letter", "8 x 10"}};
    const size_t first = pwg.find('_'),
                 second = first == std::string::npos ? first : pwg.find('_', first + 1);
    if (second == std::string::npos) return pwg;
    std::string name = pwg.substr(first + 1, second - first - 1);
    for (const auto& entry : known)
        if (name == entry.name) name = entry.readable;
    if (pwg.size() > 11 && pwg.compare(pwg.size() - 11, 11, "_borderless") == 0) name += " Borderless";
    return name;
}

}  // namespace

std::vector<std::string> destinationNames() {
    std::vector<std::string> names;
    if (!loadCups()) return names;
    cups_dest_t* dests = nullptr;
    const int count = cups().cupsGetDests2(CUPS_HTTP_DEFAULT, &dests);
    for (int i = 0; i < count; ++i)
        if (!dests[i].instance) names.emplace_back(dests[i].name);
    cups().cupsFreeDests(count, dests);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::string defaultDestination() {
    if (!loadCups()) return std::string();
    cups_dest_t* dest = cups().cupsGetNamedDest(CUPS_HTTP_DEFAULT, nullptr, nullptr);
    std::string name = dest ? dest->name : "";
    if (dest) cups().cupsFreeDests(1, dest);
    return name;
}

bool describe(const std::string& name, PrinterDescription& description) {
    if (!loadCups()) return false;
    cups_dest_t* dest = cups().cupsGetNamedDest(CUPS_HTTP_DEFAULT, name.c_str(), nullptr);
    if (!dest) return false;
    cups_dinfo_t* info = cups().cupsCopyDestInfo(CUPS_HTTP_DEFAULT, dest);
    if (!info) {
        cups().cupsFreeDests(1, dest);
        return false;
    }
    description = PrinterDescription();
    description.name = dest->name;
    if (const char* model = cups().cupsGetOption("printer-make-and-model", dest->num_options, dest->options))
        description.makeAndModel = model;
    if (const char* uri = cups().cupsGetOption("device-uri", dest->num_options, dest->options))
        description.deviceUri = uri;
    const int count = cups().cupsGetDestMediaCount(CUPS_HTTP_DEFAULT, dest, info, CUPS_MEDIA_FLAGS_DEFAULT);
    for (int i = 0; i < count; ++i) {
        cups_size_t size;
        if (!cups().cupsGetDestMediaByIndex(CUPS_HTTP_DEFAULT, dest, info, i, CUPS_MEDIA_FLAGS_DEFAULT,
                                            &size))
            continue;
        PrinterMedia media;
        media.name = size.media;
        const char* shown =
            cups().cupsLocalizeDestMedia(CUPS_HTTP_DEFAULT, dest, info, CUPS_MEDIA_FLAGS_DEFAULT, &size);
        media.displayName = shown && media.name != shown ? shown : readableMediaName(media.name);
        media.width = size.width;
        media.height = size.length;
        media.left = size.left;
        media.top = size.top;
        media.right = size.right;
        media.bottom = size.bottom;
        description.media.push_back(media);
    }
    cups_size_t defaultSize;
    if (cups().cupsGetDestMediaDefault(CUPS_HTTP_DEFAULT, dest, info, CUPS_MEDIA_FLAGS_DEFAULT, &defaultSize))
        description.defaultMedia = defaultSize.media;
    if (ipp_attribute_t* resolutions =
            cups().cupsFindDestSupported(CUPS_HTTP_DEFAULT, dest, info, "printer-resolution")) {
        for (int i = 0; i < cups().ippGetCount(resolutions); ++i) {
            int y = 0;
            ipp_res_t units = IPP_RES_PER_INCH;
            const int x = cups().ippGetResolution(resolutions, i, &y, &units);
            if (units == IPP_RES_PER_CM)
                description.resolutions.emplace_back((x * 254 + 50) / 100, (y * 254 + 50) / 100);
            else
                description.resolutions.emplace_back(x, y);
        }
    }
    cups().cupsFreeDestInfo(info);
    cups().cupsFreeDests(1, dest);
    return true;
}

int submit(const std::string& printer, const std::string& pdfPath, const std::string& title,
           const PrintOptions& options, std::string& error) {
    if (!loadCups()) {
        error = "the CUPS library is not installed";
        return 0;
    }
    cups_dest_t* dest = cups().cupsGetNamedDest(CUPS_HTTP_DEFAULT, printer.c_str(), nullptr);
    if (!dest) {
        error = "no printer named " + printer;
        return 0;
    }
    cups_dinfo_t* info = cups().cupsCopyDestInfo(CUPS_HTTP_DEFAULT, dest);
    int numOptions = 0;
    cups_option_t* cupsOptions = nullptr;
    for (const auto& [key, value] : options)
        numOptions = cups().cupsAddOption(key.c_str(), value.c_str(), numOptions, &cupsOptions);
    int job = 0;
    bool sent = false;
    const int fd = openRegularFile(pdfPath.c_str(), O_RDONLY);
    if (info && fd >= 0 &&
        cups().cupsCreateDestJob(CUPS_HTTP_DEFAULT, dest, info, &job, title.c_str(), numOptions,
                                 cupsOptions) == IPP_STATUS_OK &&
        cups().cupsStartDestDocument(CUPS_HTTP_DEFAULT, dest, info, job, title.c_str(), CUPS_FORMAT_PDF, 0,
                                     nullptr, 1) == HTTP_STATUS_CONTINUE) {
        sent = true;
        char buffer[65536];
        for (ssize_t n; sent && (n = FileSystem::current().read(fd, buffer, sizeof buffer)) != 0;)
            sent = n > 0 && cups().cupsWriteRequestData(CUPS_HTTP_DEFAULT, buffer, static_cast<size_t>(n)) ==
                                HTTP_STATUS_CONTINUE;
        // The document is finished even after a failed write, so the server lets the job go.
        const bool finished = cups().cupsFinishDestDocument(CUPS_HTTP_DEFAULT, dest, info) == IPP_STATUS_OK;
        sent = sent && finished;
    }
    if (!sent) {
        error = fd < 0 ? "cannot read the document" : cups().cupsLastErrorString();
        if (job > 0) cups().cupsCancelDestJob(CUPS_HTTP_DEFAULT, dest, job);
        job = 0;
    }
    if (fd >= 0) FileSystem::current().close(fd);
    cups().cupsFreeOptions(numOptions, cupsOptions);
    if (info) cups().cupsFreeDestInfo(info);
    cups().cupsFreeDests(1, dest);
    return job;
}

}  // namespace Orvanta::Platform::CupsPrinters
