#include "orvanta/platform/JpegTransform.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "orvanta/platform/JpegErrorJump.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta::Platform {

namespace {

// The state of one turn lives on the heap, so that nothing the long jump returns to sits in a
// register that libjpeg's frames may have changed.
struct Turn {
    JpegErrorJump errors;
    jpeg_decompress_struct source;
    jpeg_compress_struct target;
    bool targetMade = false;
    jvirt_barray_ptr turned[MAX_COMPONENTS] = {};
    // The new file, grown as the encoder fills it.
    jpeg_destination_mgr destination;
    std::vector<unsigned char>* file = nullptr;
    int failure = kErrorDamagedData;
};

void writeInto(Turn* t, std::vector<unsigned char>* file) {
    t->file = file;
    t->target.client_data = t;
    t->destination.init_destination = [](j_compress_ptr c) {
        auto* t = static_cast<Turn*>(c->client_data);
        t->file->resize(1 << 16);
        c->dest->next_output_byte = t->file->data();
        c->dest->free_in_buffer = t->file->size();
    };
    t->destination.empty_output_buffer = [](j_compress_ptr c) -> boolean {
        auto* t = static_cast<Turn*>(c->client_data);
        const std::size_t used = t->file->size();
        bool grown = true;
        try {
            t->file->resize(used * 2);
        } catch (const std::bad_alloc&) {
            grown = false;
        }
        // Jumped out of only once the exception is over.
        if (!grown) {
            t->failure = ENOMEM;
            std::longjmp(t->errors.jump, 1);
        }
        c->dest->next_output_byte = t->file->data() + used;
        c->dest->free_in_buffer = t->file->size() - used;
        return TRUE;
    };
    t->destination.term_destination = [](j_compress_ptr c) {
        auto* t = static_cast<Turn*>(c->client_data);
        t->file->resize(t->file->size() - c->dest->free_in_buffer);
    };
    t->target.dest = &t->destination;
}

bool quarterTurn(int angle) {
    return angle != 180;
}

// The side lengths in pixels of the source that the turn keeps: the edge it would have to move into
// the picture's first block group is trimmed to whole groups. Zero when nothing would be left.
void keptSize(const jpeg_decompress_struct& source, int angle, JDIMENSION* width, JDIMENSION* height) {
    // A one-component scan is coded block by block, whatever sampling its header names.
    const bool single = source.num_components == 1;
    const JDIMENSION groupWidth = DCTSIZE * (single ? 1 : source.max_h_samp_factor);
    const JDIMENSION groupHeight = DCTSIZE * (single ? 1 : source.max_v_samp_factor);
    *width = source.image_width;
    *height = source.image_height;
    if (angle != 90) *width -= *width % groupWidth;
    if (angle != 270) *height -= *height % groupHeight;
}

// Asks for the turned picture's block arrays, before the source's are made, so that libjpeg sets
// up both at once. Sides and sampling are the target's: exchanged for a quarter turn.
void requestTurned(Turn* t, int angle, JDIMENSION width, JDIMENSION height) {
    jpeg_decompress_struct& s = t->source;
    const int maxH = quarterTurn(angle) ? s.max_v_samp_factor : s.max_h_samp_factor;
    const int maxV = quarterTurn(angle) ? s.max_h_samp_factor : s.max_v_samp_factor;
    const JDIMENSION targetWidth = quarterTurn(angle) ? height : width;
    const JDIMENSION targetHeight = quarterTurn(angle) ? width : height;
    for (int ci = 0; ci < s.num_components; ++ci) {
        const jpeg_component_info& c = s.comp_info[ci];
        const int h = quarterTurn(angle) ? c.v_samp_factor : c.h_samp_factor;
        const int v = quarterTurn(angle) ? c.h_samp_factor : c.v_samp_factor;
        const JDIMENSION blocksWide = (targetWidth * h + maxH * DCTSIZE - 1) / (maxH * DCTSIZE);
        const JDIMENSION blocksHigh = (targetHeight * v + maxV * DCTSIZE - 1) / (maxV * DCTSIZE);
        // Zeroed: the rows past the picture's last block row are read by the encoder, never written.
        t->turned[ci] = s.mem->request_virt_barray(reinterpret_cast<j_common_ptr>(&s), JPOOL_IMAGE, TRUE,
                                                   (blocksWide + h - 1) / h * h, (blocksHigh + v - 1) / v * v,
                                                   static_cast<JDIMENSION>(v));
    }
}

// One block turned. Coefficients are in natural order, row (vertical frequency) by row: a mirror
// negates the odd frequencies across it, a quarter turn also exchanges rows and columns.
void turnBlock(const JCOEF* in, JCOEF* out, int angle) {
    for (int v = 0; v < DCTSIZE; ++v) {
        for (int u = 0; u < DCTSIZE; ++u) {
            switch (angle) {
                case 90:
                    out[v * DCTSIZE + u] =
                        static_cast<JCOEF>(u % 2 ? -in[u * DCTSIZE + v] : in[u * DCTSIZE + v]);
                    break;
                case 270:
                    out[v * DCTSIZE + u] =
                        static_cast<JCOEF>(v % 2 ? -in[u * DCTSIZE + v] : in[u * DCTSIZE + v]);
                    break;
                default:
                    out[v * DCTSIZE + u] =
                        static_cast<JCOEF>((u + v) % 2 ? -in[v * DCTSIZE + u] : in[v * DCTSIZE + u]);
                    break;
            }
        }
    }
}

// Fills the target's blocks from the source's. The target's arrays hold whole block groups; the
// blocks past its sides are made up by the encoder.
void turnBlocks(Turn* t, jvirt_barray_ptr* source, int angle) {
    jpeg_decompress_struct& s = t->source;
    auto* common = reinterpret_cast<j_common_ptr>(&s);
    // The encoder finds the largest sampling factors only once it starts.
    int maxH = 1, maxV = 1;
    for (int ci = 0; ci < t->target.num_components; ++ci) {
        maxH = std::max(maxH, t->target.comp_info[ci].h_samp_factor);
        maxV = std::max(maxV, t->target.comp_info[ci].v_samp_factor);
    }
    for (int ci = 0; ci < t->target.num_components; ++ci) {
        const jpeg_component_info& c = t->target.comp_info[ci];
        const JDIMENSION wide =
            (t->target.image_width * c.h_samp_factor + maxH * DCTSIZE - 1) / (maxH * DCTSIZE);
        const JDIMENSION high =
            (t->target.image_height * c.v_samp_factor + maxV * DCTSIZE - 1) / (maxV * DCTSIZE);
        for (JDIMENSION y = 0; y < high; ++y) {
            JBLOCKROW row = s.mem->access_virt_barray(common, t->turned[ci], y, 1, TRUE)[0];
            for (JDIMENSION x = 0; x < wide; ++x) {
                // The source block that lands here. The source sides the turn moves are whole
                // groups, so the target's block counts along them are exact.
                JDIMENSION fromX, fromY;
                switch (angle) {
                    case 90:
                        fromX = y;
                        fromY = wide - 1 - x;
                        break;
                    case 270:
                        fromX = high - 1 - y;
                        fromY = x;
                        break;
                    default:
                        fromX = wide - 1 - x;
                        fromY = high - 1 - y;
                        break;
                }
                const JBLOCKROW from = s.mem->access_virt_barray(common, source[ci], fromY, 1, FALSE)[0];
                turnBlock(from[fromX], row[x], angle);
            }
        }
    }
}

// The target's frame: the source's tables and components, with sides, sampling and quantisation
// tables exchanged for a quarter turn (the coefficients they scale are exchanged too).
void setUpTarget(Turn* t, int angle, JDIMENSION width, JDIMENSION height) {
    jpeg_compress_struct& d = t->target;
    jpeg_copy_critical_parameters(&t->source, &d);
    d.image_width = quarterTurn(angle) ? height : width;
    d.image_height = quarterTurn(angle) ? width : height;
    if (!quarterTurn(angle)) return;
    for (int ci = 0; ci < d.num_components; ++ci) {
        jpeg_component_info& c = d.comp_info[ci];
        const int h = c.h_samp_factor;
        c.h_samp_factor = c.v_samp_factor;
        c.v_samp_factor = h;
    }
    for (JQUANT_TBL* table : d.quant_tbl_ptrs) {
        if (!table) continue;
        for (int v = 0; v < DCTSIZE; ++v)
            for (int u = v + 1; u < DCTSIZE; ++u) {
                const UINT16 q = table->quantval[v * DCTSIZE + u];
                table->quantval[v * DCTSIZE + u] = table->quantval[u * DCTSIZE + v];
                table->quantval[u * DCTSIZE + v] = q;
            }
    }
}

// The segments the source carried, after those the encoder wrote itself: a JFIF or Adobe segment
// would otherwise come twice.
void copySegments(Turn* t) {
    for (jpeg_saved_marker_ptr m = t->source.marker_list; m; m = m->next) {
        const bool jfif =
            m->marker == JPEG_APP0 && m->data_length >= 5 && std::memcmp(m->data, "JFIF", 5) == 0;
        const bool adobe =
            m->marker == JPEG_APP0 + 14 && m->data_length >= 5 && std::memcmp(m->data, "Adobe", 5) == 0;
        if ((jfif && t->target.write_JFIF_header) || (adobe && t->target.write_Adobe_marker)) continue;
        jpeg_write_marker(&t->target, m->marker, m->data, m->data_length);
    }
}

}  // namespace

bool rotateJpeg(const unsigned char* data, std::size_t size, int angle, std::vector<unsigned char>* out) {
    if (!data || size == 0 || (angle != 90 && angle != 180 && angle != 270)) {
        setLastError(kErrorDamagedData);
        return false;
    }
    std::unique_ptr<Turn> job(new (std::nothrow) Turn());
    if (!job) {
        setLastError(ENOMEM);
        return false;
    }
    Turn* const t = job.get();
    t->source.err = t->errors.install();
    t->target.err = &t->errors.manager;
    if (setjmp(t->errors.jump)) {
        if (t->targetMade) jpeg_destroy_compress(&t->target);
        jpeg_destroy_decompress(&t->source);
        out->clear();
        setLastError(t->failure);
        return false;
    }
    jpeg_create_decompress(&t->source);
    t->errors.watchScans(&t->source);
    jpeg_mem_src(&t->source, data, static_cast<unsigned long>(size));
    jpeg_save_markers(&t->source, JPEG_COM, 0xFFFF);
    for (int app = 0; app < 16; ++app) jpeg_save_markers(&t->source, JPEG_APP0 + app, 0xFFFF);
    jpeg_read_header(&t->source, TRUE);
    JDIMENSION width, height;
    keptSize(t->source, angle, &width, &height);
    if (width == 0 || height == 0) {
        t->failure = kErrorLosesPixels;
        std::longjmp(t->errors.jump, 1);
    }
    requestTurned(t, angle, width, height);
    jvirt_barray_ptr* source = jpeg_read_coefficients(&t->source);
    if (t->errors.cutShort) std::longjmp(t->errors.jump, 1);

    jpeg_create_compress(&t->target);
    t->targetMade = true;
    writeInto(t, out);
    setUpTarget(t, angle, width, height);
    turnBlocks(t, source, angle);
    jpeg_write_coefficients(&t->target, t->turned);
    copySegments(t);
    jpeg_finish_compress(&t->target);
    jpeg_destroy_compress(&t->target);
    jpeg_destroy_decompress(&t->source);
    return true;
}

}  // namespace Orvanta::Platform
