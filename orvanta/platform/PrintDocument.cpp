#include "orvanta/platform/PrintDocument.h"

#include <cairo.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <vector>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform {

std::unique_ptr<PrintDocument> PrintDocument::create(const std::string& folder) {
    const char* temporary = std::getenv("TMPDIR");
    const std::string where = !folder.empty() ? folder : temporary && *temporary ? temporary : "/tmp";
    std::string pattern = where + "/.orvanta-print-XXXXXX.pdf";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = FileSystem::current().makeTemporary(name.data(), 4);
    if (fd < 0) return nullptr;
    std::unique_ptr<PrintDocument> document(new PrintDocument());
    document->mPath = name.data();
    document->mFd = fd;
    PrintDocument* self = document.get();
    document->mCanvas = Canvas::createPdf(
        [self](const unsigned char* data, unsigned int length) {
            while (length > 0 && !self->mWriteFailed) {
                const ssize_t n = FileSystem::current().write(self->mFd, data, length);
                if (n <= 0)
                    self->mWriteFailed = true;
                else
                    data += n, length -= static_cast<unsigned int>(n);
            }
            return !self->mWriteFailed;
        },
        612, 792);
    if (!document->mCanvas) return nullptr;
    return document;
}

PrintDocument::~PrintDocument() {
    mCanvas.reset();
    if (mFd >= 0) FileSystem::current().close(mFd);
    if (!mKept && !mPath.empty()) FileSystem::current().unlink(mPath.c_str());
}

Canvas* PrintDocument::startPage(const DeviceCaps& caps) {
    if (mInPage) endPage();
    mCanvas->setDeviceCaps(caps);
    mInPage = true;
    return mCanvas.get();
}

void PrintDocument::endPage() {
    if (!mInPage) return;
    mCanvas->showPage();
    mInPage = false;
    ++mPages;
}

bool PrintDocument::finish() {
    if (mInPage) endPage();
    mCanvas->finish();
    const bool whole = !mWriteFailed && cairo_surface_status(mCanvas->getSurface()) == 0 &&
                       FileSystem::current().sync(mFd) == 0;
    FileSystem::current().close(mFd);
    mFd = -1;
    return whole;
}

bool PrintDocument::keepAs(const std::string& target) {
    if (mFd >= 0) return false;
    // The temporary file was made for the owner alone; a kept document is a file like any other.
    const mode_t mask = umask(0);
    umask(mask);
    const int fd = openRegularFile(mPath.c_str(), O_RDONLY);
    if (fd >= 0) {
        FileSystem::current().changeMode(fd, 0666 & ~mask);
        FileSystem::current().close(fd);
    }
    if (FileSystem::current().rename(mPath.c_str(), target.c_str()) != 0) return false;
    mKept = true;
    return true;
}

}  // namespace Orvanta::Platform
