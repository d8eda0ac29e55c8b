// orvanta batch-convert: converts a folder of pictures on background tasks while the main thread
// runs the message loop, draws the progress and answers Ctrl-C.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "Commands.h"
#include "ConversionTask.h"
#include "ProgressBar.h"
#include "TaskRunner.h"
#include "orvanta/codecs/Codec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/platform/LastError.h"

namespace OrvantaTool {

using namespace Orvanta;
namespace fs = std::filesystem;

namespace {

struct Options {
    fs::path source;
    fs::path destination;
    int maxWidth = -1;
    int maxHeight = -1;
    ImageQuality quality = ImageQualityNormal;
    std::string extension;  // of the converted files; empty keeps each source's
    int jobs = 0;           // 0: one per core
};

bool parseSize(const std::string& text, int* width, int* height) {
    char* end = nullptr;
    const long w = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || (*end != 'x' && *end != 'X')) return false;
    const char* rest = end + 1;
    const long h = std::strtol(rest, &end, 10);
    if (end == rest || *end || w < 1 || h < 1 || w > 65535 || h > 65535) return false;
    *width = static_cast<int>(w);
    *height = static_cast<int>(h);
    return true;
}

bool parseOptions(const Arguments& arguments, Options* options) {
    std::vector<std::string> places;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (a == "--max" && hasValue) {
            if (!parseSize(arguments[++i], &options->maxWidth, &options->maxHeight)) return false;
        } else if (a == "--quality" && hasValue) {
            const std::string& q = arguments[++i];
            if (q == "normal")
                options->quality = ImageQualityNormal;
            else if (q == "draft")
                options->quality = ImageQualityDraft;
            else if (q == "high")
                options->quality = ImageQualityHigh;
            else
                return false;
        } else if (a == "--to" && hasValue) {
            options->extension = "." + arguments[++i];
        } else if (a == "--jobs" && hasValue) {
            options->jobs = std::atoi(arguments[++i].c_str());
            if (options->jobs < 1 || options->jobs > 256) return false;
        } else if (!a.empty() && a[0] == '-') {
            return false;
        } else {
            places.push_back(a);
        }
    }
    if (places.size() != 2) return false;
    options->source = places[0];
    options->destination = places[1];
    return true;
}

bool isPicture(const fs::path& path) {
    Codec* codec = CodecManager::getCodec(CString::fromUtf8(path.string()));
    return codec && codec->getCodecType() == CodecTypeImage;
}

// The pictures directly in the source folder, by name, each with its destination.
bool planBatch(const Options& options, Batch* batch) {
    std::error_code error;
    std::vector<fs::path> sources;
    for (const auto& entry : fs::directory_iterator(options.source, error))
        if (entry.is_regular_file(error) && isPicture(entry.path())) sources.push_back(entry.path());
    if (error) {
        std::fprintf(stderr, "orvanta batch-convert: cannot read %s\n", options.source.c_str());
        return false;
    }
    std::sort(sources.begin(), sources.end());
    for (const auto& source : sources) {
        const std::string extension =
            options.extension.empty() ? source.extension().string() : options.extension;
        const std::string stem = source.stem().string();
        const fs::path destination = options.destination / (stem + extension);
        batch->files.push_back({CString::fromUtf8(source.string()), CString::fromUtf8(destination.string())});
    }
    if (!options.extension.empty() && !batch->files.empty() &&
        !isPicture(options.destination / ("x" + options.extension))) {
        std::fprintf(stderr, "orvanta batch-convert: no codec writes %s files\n", options.extension.c_str());
        return false;
    }
    batch->queue.reset(batch->files.size());
    batch->maxWidth = options.maxWidth;
    batch->maxHeight = options.maxHeight;
    batch->quality = options.quality;
    return true;
}

bool prepareDestination(const Options& options) {
    std::error_code error;
    fs::create_directories(options.destination, error);
    if (error || !fs::is_directory(options.destination)) {
        std::fprintf(stderr, "orvanta batch-convert: cannot make %s\n", options.destination.c_str());
        return false;
    }
    if (fs::equivalent(options.source, options.destination, error)) {
        std::fprintf(stderr, "orvanta batch-convert: the destination must not be the source folder\n");
        return false;
    }
    return true;
}

// Receives the tasks' reports on the main thread.
class ProgressListener : public EventListener {
public:
    ProgressListener(const Batch& batch, ProgressBar& bar) : mBatch(batch), mBar(bar) {}

    void onEvent(Event* event) override {
        auto* report = static_cast<FileConverted*>(event);
        ++finished;
        if (report->converted)
            ++converted;
        else
            mBar.message("orvanta batch-convert: cannot convert " +
                         mBatch.files[report->index].source.toUtf8() +
                         (report->error ? ": " + Platform::describeError(report->error) : std::string()));
        mBar.update(finished);
    }

    int finished = 0;
    int converted = 0;

private:
    const Batch& mBatch;
    ProgressBar& mBar;
};

}  // namespace

int runBatchConvert(const Arguments& arguments) {
    Options options;
    if (!parseOptions(arguments, &options)) {
        std::fprintf(stderr,
                     "usage: orvanta batch-convert SRC_DIR DST_DIR [--max WxH] [--quality normal|draft|high]"
                     " [--to EXT] [--jobs N]\n");
        return 2;
    }
    orvantaIUInit();
    Batch batch;
    if (!planBatch(options, &batch) || !prepareDestination(options)) {
        orvantaIUDeInit();
        return 1;
    }
    const int total = static_cast<int>(batch.files.size());
    const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    const int taskCount = std::min(options.jobs > 0 ? options.jobs : cores, std::max(total, 1));

    const auto start = std::chrono::steady_clock::now();
    bool interrupted = false;
    ProgressBar bar(stderr, total);
    ProgressListener listener(batch, bar);
    {
        // Blocks the signals before the task threads start, so that only its watcher takes them.
        TaskRunner runner;
        std::vector<std::unique_ptr<ConversionTask>> tasks;
        std::vector<Task*> running;
        for (int i = 0; i < taskCount; ++i) {
            tasks.push_back(std::make_unique<ConversionTask>(batch, &listener));
            running.push_back(tasks.back().get());
        }
        for (auto& task : tasks) task->beginTask();
        // The files in progress are finished; no other is begun.
        interrupted = runner.waitFor(running, [&] { batch.queue.stop(); });
    }
    bar.finish();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (interrupted)
        std::printf("batch-convert: interrupted; %d of %d files converted\n", listener.converted, total);
    else
        std::printf("batch-convert: %d of %d files converted in %.2f s (%.1f files/s)\n", listener.converted,
                    total, seconds, seconds > 0 ? listener.converted / seconds : 0.0);
    orvantaIUDeInit();
    if (interrupted) return 130;
    return listener.converted == total ? 0 : 1;
}

}  // namespace OrvantaTool
