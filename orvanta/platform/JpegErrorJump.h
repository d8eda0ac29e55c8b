#pragma once
// JpegErrorJump: the error manager every libjpeg call of the library runs under. An error jumps
// back to the setjmp of the calling function; no message is ever printed.
//
// Contract: install() sets up a libjpeg error manager whose error_exit long-jumps to `jump` and
// whose messages go nowhere. A decompressor also gets a progress monitor that stops a file with an
// absurd number of scans (a few hundred bytes can otherwise keep a progressive decoder busy for
// minutes). cutShort turns true when the data ran out before the decoder was done (libjpeg then
// goes on as if the picture ended there). Functions that call setjmp on it keep objects with
// destructors out of the jumped-over frames.

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>
// after jpeglib.h, which it needs
#include <jerror.h>

namespace Orvanta::Platform {

struct JpegErrorJump {
    jpeg_error_mgr manager;
    jpeg_progress_mgr progress;
    std::jmp_buf jump;
    bool cutShort = false;

    // More scans than any real progressive file has; the limit libjpeg-turbo's own tools use.
    static constexpr int kMaxScans = 500;

    jpeg_error_mgr* install() {
        jpeg_std_error(&manager);
        manager.error_exit = [](j_common_ptr info) {
            std::longjmp(reinterpret_cast<JpegErrorJump*>(info->err)->jump, 1);
        };
        manager.output_message = [](j_common_ptr) {};
        manager.emit_message = [](j_common_ptr info, int level) {
            if (level >= 0) return;
            ++info->err->num_warnings;
            if (info->err->msg_code == JWRN_JPEG_EOF)
                reinterpret_cast<JpegErrorJump*>(info->err)->cutShort = true;
        };
        return &manager;
    }

    // After jpeg_create_decompress: watch the scan count.
    void watchScans(j_decompress_ptr info) {
        progress.progress_monitor = [](j_common_ptr common) {
            auto* decompress = reinterpret_cast<j_decompress_ptr>(common);
            if (common->is_decompressor && decompress->input_scan_number > kMaxScans)
                std::longjmp(reinterpret_cast<JpegErrorJump*>(common->err)->jump, 1);
        };
        info->progress = &progress;
    }
};

}  // namespace Orvanta::Platform
