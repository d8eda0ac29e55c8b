#include "TemplateFile.h"

#include <fstream>
#include <map>
#include <memory>
#include <sstream>

#include "orvanta/platform/Canvas.h"

using namespace Orvanta;

namespace OrvantaTool {

TemplatePrintJob* readTemplateJob(const std::string& path, const std::vector<Asset*>& photos,
                                  std::string& error) {
    std::ifstream in(path);
    if (!in) {
        error = "cannot read " + path;
        return nullptr;
    }
    OwnedPtr<PrintTemplate> design;
    std::map<CString, CString> texts;
    std::vector<CString> imageSlots;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        std::istringstream words(line);
        std::string keyword, name;
        if (!(words >> keyword) || keyword[0] == '#') continue;
        CRect rect;
        const bool isSlot = keyword == "image" || keyword == "text";
        if (keyword == "paper" && !design && words >> rect.right >> rect.bottom && rect.right > 0 &&
            rect.bottom > 0) {
            design = PrintTemplate::create(CString::fromUtf8(path), u"", rect.right, rect.bottom);
        } else if (isSlot && design && words >> name >> rect.left >> rect.top >> rect.right >> rect.bottom &&
                   !rect.isEmpty()) {
            const CString slot = CString::fromUtf8(name);
            design->addSlot(PrintTemplateSlot::create(
                slot, rect, keyword == "image" ? PrintTemplateSlot::Image : PrintTemplateSlot::Text,
                nullptr));
            std::string text;
            std::getline(words >> std::ws, text);
            if (keyword == "text") texts[slot] = CString::fromUtf8(text);
        } else {
            error = path + ":" + std::to_string(number) + ": not understood: " + line;
            return nullptr;
        }
    }
    if (!design) {
        error = path + ": no paper line";
        return nullptr;
    }
    for (const auto& [name, slot] : design->slots())
        if (slot && slot->getType() == PrintTemplateSlot::Image) imageSlots.push_back(name);
    if (imageSlots.empty()) {
        error = path + ": no image slot";
        return nullptr;
    }
    OwnedPtr<TemplatePrintJob> job = TemplatePrintJob::create(u"orvanta print");
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    for (size_t first = 0; first < photos.size(); first += imageSlots.size()) {
        OwnedPtr<PrintTemplatePage> page = PrintTemplatePage::create();
        page->setTemplate(design);
        for (size_t i = 0; i < imageSlots.size() && first + i < photos.size(); ++i)
            page->setAsset(screen.get(), imageSlots[i], photos[first + i]);
        for (const auto& [slot, text] : texts) page->setText(slot, text);
        job->addPage(page);
    }
    return job.detach();
}

}  // namespace OrvantaTool
