#include "orvanta/platform/JpegTransform.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "orvanta/platform/JpegErrorJump.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/PixelBlocks.h"

namespace Orvanta::Platform {

namespace {

// The bytes handed to the writer at a time.
constexpr std::size_t kOutputChunk = 256 * 1024;

// A whole-image array of DCT blocks that the decoder asks for, kept by the turn instead of by
// libjpeg's memory manager: all of them lie in one block of huge pages, so that the tens of
// megabytes of a photograph's coefficients cost a few dozen page faults, not tens of thousands.
struct SourceArray {
    JDIMENSION blocksPerRow = 0;
    JDIMENSION rows = 0;
    std::vector<JBLOCKROW> rowStarts;
};

// A component of the turned picture, made a group of block rows at a time as the encoder asks for
// them: the turned picture is never held whole.
struct TurnedArray {
    int component = 0;
    JDIMENSION blocksWide = 0;  // the target's blocks in a row, past which the array holds zeros
    JDIMENSION blocksHigh = 0;  // the target's block rows, past which the array holds zeros
    JDIMENSION blocksPerRow = 0;
    JDIMENSION rowsAtOnce = 0;
    std::vector<JCOEF> coefficients;
    std::vector<JBLOCKROW> rowStarts;
};

// The state of one turn lives on the heap, so that nothing the long jump returns to sits in a
// register that libjpeg's frames may have changed.
struct Turn {
    ~Turn() { PixelBlocks::release(coefficients); }

    JpegErrorJump errors;
    jpeg_decompress_struct source;
    jpeg_compress_struct target;
    bool targetMade = false;
    int angle = 0;
    SourceArray sourceArrays[MAX_COMPONENTS];
    int sourceArrayCount = 0;
    unsigned char* coefficients = nullptr;
    void (*libjpegRealize)(j_common_ptr) = nullptr;
    jvirt_barray_ptr (*libjpegRequest)(j_common_ptr, int, boolean, JDIMENSION, JDIMENSION,
                                       JDIMENSION) = nullptr;
    JBLOCKARRAY (*libjpegSourceAccess)
    (j_common_ptr, jvirt_barray_ptr, JDIMENSION, JDIMENSION, boolean) = nullptr;
    JBLOCKARRAY (*libjpegTargetAccess)
    (j_common_ptr, jvirt_barray_ptr, JDIMENSION, JDIMENSION, boolean) = nullptr;
    TurnedArray turned[MAX_COMPONENTS];
    jvirt_barray_ptr turnedHandles[MAX_COMPONENTS] = {};
    // The new file, handed to the writer a chunk at a time.
    jpeg_destination_mgr destination;
    std::vector<unsigned char> chunk;
    const JpegWriter* write = nullptr;
    int failure = kErrorDamagedData;
};

Turn* turnOf(j_common_ptr common) {
    return static_cast<Turn*>(common->client_data);
}

[[noreturn]] void fail(Turn* t, int failure) {
    t->failure = failure;
    std::longjmp(t->errors.jump, 1);
}

// --- The source's coefficients --------------------------------------------------------------------

SourceArray* sourceArrayOf(Turn* t, jvirt_barray_ptr handle) {
    for (int i = 0; i < t->sourceArrayCount; ++i)
        if (handle == reinterpret_cast<jvirt_barray_ptr>(&t->sourceArrays[i])) return &t->sourceArrays[i];
    return nullptr;
}

jvirt_barray_ptr requestSourceArray(j_common_ptr common, int pool, boolean preZero, JDIMENSION blocksPerRow,
                                    JDIMENSION rows, JDIMENSION maxAccess) {
    Turn* t = turnOf(common);
    if (t->sourceArrayCount == MAX_COMPONENTS)
        return t->libjpegRequest(common, pool, preZero, blocksPerRow, rows, maxAccess);
    // Zeroed, as the decoder asks: the blocks of a scan that never comes read as zero.
    SourceArray& a = t->sourceArrays[t->sourceArrayCount++];
    a.blocksPerRow = blocksPerRow;
    a.rows = rows;
    return reinterpret_cast<jvirt_barray_ptr>(&a);
}

void realizeSourceArrays(j_common_ptr common) {
    Turn* t = turnOf(common);
    t->libjpegRealize(common);
    if (t->coefficients) return;
    std::size_t total = 0;
    for (int i = 0; i < t->sourceArrayCount; ++i)
        total += static_cast<std::size_t>(t->sourceArrays[i].blocksPerRow) * t->sourceArrays[i].rows;
    t->coefficients = PixelBlocks::allocate(total * sizeof(JBLOCK));
    if (!t->coefficients) fail(t, ENOMEM);
    auto* next = reinterpret_cast<JBLOCKROW>(t->coefficients);
    for (int i = 0; i < t->sourceArrayCount; ++i) {
        SourceArray& a = t->sourceArrays[i];
        a.rowStarts.resize(a.rows);
        for (JDIMENSION row = 0; row < a.rows; ++row, next += a.blocksPerRow) a.rowStarts[row] = next;
    }
}

JBLOCKARRAY accessSourceArray(j_common_ptr common, jvirt_barray_ptr handle, JDIMENSION firstRow,
                              JDIMENSION rows, boolean writable) {
    Turn* t = turnOf(common);
    SourceArray* a = sourceArrayOf(t, handle);
    if (!a) return t->libjpegSourceAccess(common, handle, firstRow, rows, writable);
    if (firstRow + rows > a->rows || a->rowStarts.empty()) fail(t, kErrorDamagedData);
    return a->rowStarts.data() + firstRow;
}

// The decoder keeps its coefficients in the turn's arrays.
void keepCoefficients(Turn* t) {
    jpeg_memory_mgr* mem = t->source.mem;
    t->source.client_data = t;
    t->libjpegRequest = mem->request_virt_barray;
    t->libjpegRealize = mem->realize_virt_arrays;
    t->libjpegSourceAccess = mem->access_virt_barray;
    mem->request_virt_barray = requestSourceArray;
    mem->realize_virt_arrays = realizeSourceArrays;
    mem->access_virt_barray = accessSourceArray;
}

// --- The turn ---------------------------------------------------------------------------------------

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

// One block turned. Coefficients are in natural order, row (vertical frequency) by row: a mirror
// negates the odd frequencies across it, a quarter turn also exchanges rows and columns.
template <int kAngle>
void turnBlock(const JCOEF* in, JCOEF* out) {
    for (int v = 0; v < DCTSIZE; ++v) {
        for (int u = 0; u < DCTSIZE; ++u) {
            if (kAngle == 90)
                out[v * DCTSIZE + u] = static_cast<JCOEF>(u % 2 ? -in[u * DCTSIZE + v] : in[u * DCTSIZE + v]);
            else if (kAngle == 270)
                out[v * DCTSIZE + u] = static_cast<JCOEF>(v % 2 ? -in[u * DCTSIZE + v] : in[u * DCTSIZE + v]);
            else
                out[v * DCTSIZE + u] =
                    static_cast<JCOEF>((u + v) % 2 ? -in[v * DCTSIZE + u] : in[v * DCTSIZE + u]);
        }
    }
}

// The turned blocks of one target block row: each comes from the source block that lands there. The
// source sides the turn moves are whole groups, so the target's block counts along them are exact.
template <int kAngle>
void turnRow(const SourceArray& from, const TurnedArray& a, JDIMENSION y, JBLOCKROW row) {
    const JDIMENSION wide = a.blocksWide, high = a.blocksHigh;
    for (JDIMENSION x = 0; x < wide; ++x) {
        const JDIMENSION fromX = kAngle == 90 ? y : kAngle == 270 ? high - 1 - y : wide - 1 - x;
        const JDIMENSION fromY = kAngle == 90 ? wide - 1 - x : kAngle == 270 ? x : high - 1 - y;
        turnBlock<kAngle>(from.rowStarts[fromY][fromX], row[x]);
    }
}

TurnedArray* turnedArrayOf(Turn* t, jvirt_barray_ptr handle) {
    for (int ci = 0; ci < t->target.num_components; ++ci)
        if (handle == t->turnedHandles[ci]) return &t->turned[ci];
    return nullptr;
}

// The encoder's reads of the turned picture: the rows asked for, turned from the source now.
JBLOCKARRAY accessTurned(j_common_ptr common, jvirt_barray_ptr handle, JDIMENSION firstRow, JDIMENSION rows,
                         boolean writable) {
    Turn* t = turnOf(common);
    TurnedArray* a = turnedArrayOf(t, handle);
    if (!a) return t->libjpegTargetAccess(common, handle, firstRow, rows, writable);
    if (writable || rows > a->rowsAtOnce) fail(t, kErrorDamagedData);
    const SourceArray& from = t->sourceArrays[a->component];
    for (JDIMENSION i = 0; i < rows; ++i) {
        const JDIMENSION y = firstRow + i;
        JBLOCKROW row = a->rowStarts[i];
        if (y >= a->blocksHigh) {
            std::memset(row, 0, sizeof(JBLOCK) * a->blocksPerRow);
            continue;
        }
        switch (t->angle) {
            case 90:
                turnRow<90>(from, *a, y, row);
                break;
            case 270:
                turnRow<270>(from, *a, y, row);
                break;
            default:
                turnRow<180>(from, *a, y, row);
                break;
        }
    }
    return a->rowStarts.data();
}

// The target's frame: the source's tables and components, with sides, sampling and quantisation
// tables exchanged for a quarter turn (the coefficients they scale are exchanged too).
void setUpTarget(Turn* t, JDIMENSION width, JDIMENSION height) {
    jpeg_compress_struct& d = t->target;
    jpeg_copy_critical_parameters(&t->source, &d);
    d.image_width = quarterTurn(t->angle) ? height : width;
    d.image_height = quarterTurn(t->angle) ? width : height;
    if (!quarterTurn(t->angle)) return;
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

// The arrays the encoder reads the turned picture from, a group of block rows at a time. Each holds
// whole block groups (the blocks past the target's sides read as zero) and maps to the source
// component it turns.
void prepareTurned(Turn* t, jvirt_barray_ptr* source) {
    int maxH = 1, maxV = 1;
    for (int ci = 0; ci < t->target.num_components; ++ci) {
        maxH = std::max(maxH, t->target.comp_info[ci].h_samp_factor);
        maxV = std::max(maxV, t->target.comp_info[ci].v_samp_factor);
    }
    for (int ci = 0; ci < t->target.num_components; ++ci) {
        const jpeg_component_info& c = t->target.comp_info[ci];
        TurnedArray& a = t->turned[ci];
        const SourceArray* from = sourceArrayOf(t, source[ci]);
        if (!from) fail(t, kErrorDamagedData);
        a.component = static_cast<int>(from - t->sourceArrays);
        a.blocksWide = (t->target.image_width * c.h_samp_factor + maxH * DCTSIZE - 1) / (maxH * DCTSIZE);
        a.blocksHigh = (t->target.image_height * c.v_samp_factor + maxV * DCTSIZE - 1) / (maxV * DCTSIZE);
        // Every source block the turn reads must be in the source's array.
        const JDIMENSION across = quarterTurn(t->angle) ? a.blocksHigh : a.blocksWide;
        const JDIMENSION down = quarterTurn(t->angle) ? a.blocksWide : a.blocksHigh;
        if (across > from->blocksPerRow || down > from->rows || from->rowStarts.size() < from->rows)
            fail(t, kErrorDamagedData);
        a.blocksPerRow = (a.blocksWide + c.h_samp_factor - 1) / c.h_samp_factor * c.h_samp_factor;
        a.rowsAtOnce = static_cast<JDIMENSION>(c.v_samp_factor);
        const std::size_t rowCoefficients = static_cast<std::size_t>(a.blocksPerRow) * DCTSIZE2;
        a.coefficients.assign(rowCoefficients * a.rowsAtOnce, 0);
        a.rowStarts.resize(a.rowsAtOnce);
        for (JDIMENSION row = 0; row < a.rowsAtOnce; ++row)
            a.rowStarts[row] = reinterpret_cast<JBLOCKROW>(a.coefficients.data() + row * rowCoefficients);
        t->turnedHandles[ci] = reinterpret_cast<jvirt_barray_ptr>(&a);
    }
    t->libjpegTargetAccess = t->target.mem->access_virt_barray;
    t->target.mem->access_virt_barray = accessTurned;
}

// --- The new file -----------------------------------------------------------------------------------

void handOut(Turn* t, std::size_t bytes) {
    if (bytes > 0 && !(*t->write)(t->chunk.data(), bytes)) fail(t, getLastError());
}

void writeInto(Turn* t) {
    t->chunk.resize(kOutputChunk);
    t->destination.init_destination = [](j_compress_ptr c) {
        Turn* t = turnOf(reinterpret_cast<j_common_ptr>(c));
        c->dest->next_output_byte = t->chunk.data();
        c->dest->free_in_buffer = t->chunk.size();
    };
    t->destination.empty_output_buffer = [](j_compress_ptr c) -> boolean {
        Turn* t = turnOf(reinterpret_cast<j_common_ptr>(c));
        handOut(t, t->chunk.size());
        c->dest->next_output_byte = t->chunk.data();
        c->dest->free_in_buffer = t->chunk.size();
        return TRUE;
    };
    t->destination.term_destination = [](j_compress_ptr c) {
        Turn* t = turnOf(reinterpret_cast<j_common_ptr>(c));
        handOut(t, t->chunk.size() - c->dest->free_in_buffer);
    };
    t->target.dest = &t->destination;
}

// A file that begins with its EXIF segment, as a camera writes it, must go on beginning with it:
// the encoder's own JFIF segment would come first.
void keepExifFirst(Turn* t) {
    const jpeg_saved_marker_ptr first = t->source.marker_list;
    if (first && first->marker == JPEG_APP0 + 1 && first->data_length >= 6 &&
        std::memcmp(first->data, "Exif\0", 6) == 0)
        t->target.write_JFIF_header = FALSE;
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

bool rotateJpeg(const unsigned char* data, std::size_t size, int angle, const JpegWriter& write) {
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
    t->angle = angle;
    t->write = &write;
    t->source.err = t->errors.install();
    t->target.err = &t->errors.manager;
    if (setjmp(t->errors.jump)) {
        if (t->targetMade) jpeg_destroy_compress(&t->target);
        jpeg_destroy_decompress(&t->source);
        setLastError(t->failure);
        return false;
    }
    jpeg_create_decompress(&t->source);
    keepCoefficients(t);
    t->errors.watchScans(&t->source);
    jpeg_mem_src(&t->source, data, static_cast<unsigned long>(size));
    jpeg_save_markers(&t->source, JPEG_COM, 0xFFFF);
    for (int app = 0; app < 16; ++app) jpeg_save_markers(&t->source, JPEG_APP0 + app, 0xFFFF);
    jpeg_read_header(&t->source, TRUE);
    JDIMENSION width, height;
    keptSize(t->source, angle, &width, &height);
    if (width == 0 || height == 0) fail(t, kErrorLosesPixels);
    jvirt_barray_ptr* source = jpeg_read_coefficients(&t->source);
    if (t->errors.cutShort) fail(t, kErrorDamagedData);

    jpeg_create_compress(&t->target);
    t->targetMade = true;
    t->target.client_data = t;
    writeInto(t);
    setUpTarget(t, width, height);
    keepExifFirst(t);
    prepareTurned(t, source);
    jpeg_write_coefficients(&t->target, t->turnedHandles);
    copySegments(t);
    jpeg_finish_compress(&t->target);
    jpeg_destroy_compress(&t->target);
    jpeg_destroy_decompress(&t->source);
    return true;
}

bool rotateJpeg(const unsigned char* data, std::size_t size, int angle, std::vector<unsigned char>* out) {
    out->clear();
    const JpegWriter append = [out](const unsigned char* bytes, std::size_t count) {
        try {
            out->insert(out->end(), bytes, bytes + count);
        } catch (const std::bad_alloc&) {
            setLastError(ENOMEM);
            return false;
        }
        return true;
    };
    if (rotateJpeg(data, size, angle, append)) return true;
    out->clear();
    return false;
}

}  // namespace Orvanta::Platform
