// orvanta: the command-line host of the Orvanta library.

#include <cstdio>
#include <cstring>

#include "Commands.h"
#include "orvanta/codecs/OrvantaIU.h"

namespace OrvantaTool {

const std::vector<Command>& commands() {
    static const std::vector<Command> table = {
        {"info", "info FILE...        what each picture is: type, size, quality",
         "usage: orvanta info FILE...\n"
         "\n"
         "Prints one tab-separated line per file:\n"
         "  PATH  TYPE  WIDTH  HEIGHT  QUALITY   TYPE is jpeg, tiff or bmp; QUALITY normal, draft or high\n"
         "  PATH  unsupported                    no codec knows the file's extension\n"
         "  PATH  unreadable                     the codec could not read the file's header\n"
         "Exit status 1 if any file was not read, else 0.\n",
         runInfo},
        {"edit", "edit SRC DST OP...  edits a picture: rotate, mirror, crop, downsize, tones, fixes, undo",
         "usage: orvanta edit [--undo-limit=N] SRC DST OP...\n"
         "\n"
         "Reads SRC, applies each OP in order through the picture's undo history, and writes the\n"
         "result to DST in the format of DST's extension. Operations:\n"
         "  rotate=90|180|270     turn clockwise\n"
         "  mirror=h|v            reverse each row (h) or the order of the rows (v)\n"
         "  crop=L,T,R,B          keep the part between these fractions of the picture (0..1)\n"
         "  downsize=WxH[:M]      fit into W x H; M 0 the exact resampler (default), 1 the platform\n"
         "                        stretch where it works, 2 the platform stretch. A downsize cannot be\n"
         "                        undone: the history starts again after it\n"
         "  colorize=R,G,B        map mid-grey to these levels (each inside 0..1)\n"
         "  bw[=R,G,B]            black and white (levels 0.5,0.5,0.5 by default)\n"
         "  sepia[=R,G,B]         sepia (levels 0.65,0.5,0.35 by default)\n"
         "  picfix                automatic picture fix: lift dark pictures, stretch the contrast\n"
         "  redeye=X,Y[,R]        remove a red eye clicked at fractions X,Y of the picture, searching\n"
         "                        R pixels around it (default a twelfth of the shorter side)\n"
         "  undo                  take back the last edit (it can be redone)\n"
         "  redo                  do again the last edit taken back\n"
         "--undo-limit=N keeps at most N undo records (0: no limit); older edits are retired.\n"
         "When DST is SRC itself, the edits go through the file's own picture history: turns alone are\n"
         "done in the file without re-encoding when no edge blocks would be lost (every segment kept),\n"
         "anything else is encoded anew at high quality keeping the metadata; then the EXIF thumbnail is\n"
         "made anew. The file is replaced only once its new version is complete.\n"
         "Prints: DST  WIDTH  HEIGHT  undo N  redo N  retired N\n"
         "Exit status 0 on success, 1 if a file could not be read or written, 2 on bad arguments.\n",
         runEdit},
        {"batch-convert", "batch-convert SRC_DIR DST_DIR [--max WxH] [--quality Q] [--to EXT] [--jobs N]",
         "usage: orvanta batch-convert SRC_DIR DST_DIR [--max WxH] [--quality normal|draft|high] [--to EXT] "
         "[--jobs N]\n"
         "\n"
         "Converts every picture directly in SRC_DIR into DST_DIR (made if missing), under the same name.\n"
         "  --max WxH      shrink pictures larger than W by H to fit in that box, keeping their shape\n"
         "  --quality Q    how much the written files may lose (default normal)\n"
         "  --to EXT       write this type instead of each source's own (jpg, tif, bmp)\n"
         "  --jobs N       conversions at once, each on its own thread (default: one per core)\n"
         "A progress bar with the time left is drawn on a terminal. Ctrl-C stops after the files in\n"
         "progress: those and every file finished before stay, nothing is left half-written.\n"
         "Prints how many files were converted. Exit status 0 if all were, 1 if any was not, 2 for bad\n"
         "arguments, 130 when interrupted.\n",
         runBatchConvert},
        {"db", "db stats|dump|add FILE ...  what a catalogue holds; adds pictures to one",
         "usage: orvanta db stats FILE\n"
         "       orvanta db dump FILE\n"
         "       orvanta db add FILE PICTURE...\n"
         "FILE is a record store (\"###OrvantaDB###\") file: a catalogue or a thumbnail store.\n"
         "stats prints one tab-separated line per figure: the header (block size, block count, format\n"
         "  version), records, whether an info record is there, blocks in records and free, payload bytes,\n"
         "  how many records are property lists, and each ordering (\"##OrvantaDBI###\") file beside it\n"
         "  (a file in the same folder whose name starts with FILE's name).\n"
         "dump prints every record in file order: its id, size and first block, and for a property list\n"
         "  one line per property: name, type (string, int, datetime, id, bytes), value.\n"
         "add makes FILE a catalogue if it does not exist, and stores one property list per picture or\n"
         "  video (.mpg, .mpeg, .mov, .qt, .avi, .mp4, .m4v, .mts, .m2ts, .3gp, .mkv, .webm, .wmv):\n"
         "  filename, folder, timestamp (the earlier of the file's\n"
         "  creation and write times, local, a time before 1980-01-02 not counting), filesize, writetime\n"
         "  (UTC), and a picture's width and height. A PICTURE that is a folder adds every picture and\n"
         "  video directly in it.\n"
         "  It prints PICTURE and the new record's id, or PICTURE and \"unreadable\".\n"
         "The file is opened as the library opens it (read-write, exclusively): an interrupted change is\n"
         "completed or undone first, from the journal beside it (FILE-journal). A journal written for\n"
         "another file or an earlier state of this one is renamed aside (FILE-journal.XXXXXX) and not\n"
         "used. A file in the journal's place that cannot be opened for writing or is no journal keeps\n"
         "FILE closed, and the error says so. Exit status 1 if the file does not open, 2 for bad\n"
         "arguments.\n",
         runDb},
        {"convert", "convert SRC DST     shrinks and converts a picture (JPEG, TIFF, BMP)",
         "usage: orvanta convert SRC DST [--max WxH] [--quality normal|draft|high]\n"
         "Writes SRC to DST in the format of DST's extension. With --max the picture is fitted into\n"
         "W x H (a JPEG is decoded straight at a half, a quarter or an eighth where the box allows).\n"
         "The same format at a size that fits is copied byte for byte. A JPEG written from a JPEG keeps\n"
         "its EXIF, XMP, IPTC and comment segments. --quality (JPEG output): normal 85, draft 65, high 85\n"
         "with finer colour; normal by default.\n"
         "Prints: DST  FLAGS  NAMES, where FLAGS is 1 (copied) or the sum of 4 (format changed),\n"
         "8 (made smaller) and 16 (quality differs from the source's), NAMES the same in words.\n"
         "Exit status 0 on success, 1 if the conversion failed, 2 on bad arguments.\n",
         runConvert},
        {"rotate", "rotate FILE ANGLE   turns a JPEG file in place without re-encoding it",
         "usage: orvanta rotate FILE 90|180|270\n"
         "Turns the JPEG picture clockwise in the file itself, without decoding it: nothing of the\n"
         "picture is lost, except the partial blocks along an edge whose side is not a whole number of\n"
         "blocks (usually 8 or 16 pixels), which are dropped. Every metadata segment is kept as it is,\n"
         "except that the EXIF thumbnail is made anew from the turned picture, and so are the file's\n"
         "dates. The file is replaced only once its new version is complete.\n"
         "Prints: FILE  WIDTH  HEIGHT [edge blocks dropped]\n"
         "Exit status 0 on success, 1 if the file could not be turned, 2 on bad arguments.\n",
         runRotate},
        {"thumb", "thumb SRC DST       a small picture of a photograph or a video",
         "usage: orvanta thumb SRC DST [--box WxH] [--no-embedded]\n"
         "Writes a picture of SRC fitted into the box (160x160 by default) to DST, in the format of\n"
         "DST's extension. The thumbnail a camera stored in the EXIF block is used when there is one,\n"
         "unless --no-embedded is given; otherwise the picture is decoded reduced and resampled. A video\n"
         "(.mpg, .mpeg, .mov, .qt, .avi, .mp4, .m4v, .mts, .m2ts, .3gp, .mkv, .webm, .wmv) is not opened:\n"
         "its thumbnail is a picture of a film frame.\n"
         "Prints: DST  WIDTH  HEIGHT  embedded|decoded|stock\n"
         "Exit status 0 on success, 1 if a file could not be read or written, 2 on bad arguments.\n",
         runThumb},
        {"catalog", "catalog import|list|thumb|check|stats  the user's catalogue of photographs and videos",
         "usage: orvanta catalog import [--catalog FILE] [--jobs N] [--no-embedded] [--verbose] FOLDER...\n"
         "       orvanta catalog list [--catalog FILE] [--sort timestamp|filename|folder|size] [--filter "
         "TEXT]\n"
         "                            [--json]\n"
         "       orvanta catalog thumb [--catalog FILE] ID|PATH OUT\n"
         "       orvanta catalog check [--catalog FILE] [--prune]\n"
         "       orvanta catalog stats [--catalog FILE]\n"
         "\n"
         "Every subcommand works on the catalogue FILE, or without --catalog on the user's own:\n"
         "$XDG_DATA_HOME/orvanta/catalog.db (~/.local/share/orvanta/catalog.db). A catalogue is open in one\n"
         "program at a time; another that tries is refused, and the error says so.\n"
         "import walks each FOLDER (files given are taken as they are), following links, and adds every\n"
         "  picture and video to the catalogue: added  ID  PATH, a line as each is stored. A file "
         "catalogued\n"
         "  before is skipped when its size and time are as recorded; a changed one is brought up to date\n"
         "  (updated  ID  PATH) and its thumbnail made again. What cannot be added is told: skipped  PATH\n"
         "  REASON (unreadable pictures, folders that cannot be read, hidden files and other kinds of file\n"
         "  only with --verbose). Then the thumbnails (160 x 160) missing from the catalogue's store,\n"
         "  FILE-thumbnails, are made on one task per core (--jobs N) with a progress bar, from a camera's\n"
         "  embedded thumbnail where there is one (--no-embedded decodes the pictures). Ctrl-C stops after\n"
         "  the files in hand: everything reported is kept, and the next import does the rest. A damaged\n"
         "  thumbnail store is set aside (FILE-thumbnails-damaged) and made anew.\n"
         "thumb writes the stored thumbnail of the asset ID, or of the catalogued file PATH, to OUT in the\n"
         "  format of OUT's extension, making it first when the store has none (or an outdated one):\n"
         "  OUT  WIDTH  HEIGHT  stored|made.\n"
         "list prints one asset a line, ID  TIMESTAMP  PATH separated by tabs: the id, the date it is\n"
         "  shown under as ISO 8601 local time (empty when it has none), and the file's path. --sort\n"
         "  orders by the date (the default), the file name, the folder or the file size, each then by\n"
         "  folder and file name; --filter keeps the assets whose path holds TEXT in any case; --json\n"
         "  prints an array of objects with id, path, timestamp, type (photo or video), width and height\n"
         "  (null where unknown) instead.\n"
         "check lists the assets whose file is no longer at its path (deleted, moved, renamed, or on a\n"
         "  drive not mounted): missing  ID  PATH, then a count. It changes nothing unless --prune is\n"
         "  given, which removes those assets from the catalogue (never a file).\n"
         "stats prints one tab-separated line per figure: assets, photos, videos, other files, the bytes\n"
         "  of their files, the earliest and latest dates, the catalogue's format version, size and free\n"
         "  blocks.\n"
         "Exit status 0 on success, 1 if the catalogue does not open (or is missing, except for import),\n"
         "a FOLDER cannot be read or an asset not stored, 2 for bad arguments, 130 when interrupted.\n",
         runCatalog},
        {"wallpaper", "wallpaper PHOTO     makes a photograph the desktop's wallpaper",
         "usage: orvanta wallpaper PHOTO [--fill|--fit] [--screen WxH]\n"
         "Makes PHOTO the desktop's wallpaper. The picture is scaled to the screen: whole inside it\n"
         "(--fit, the default) or covering it (--fill; the desktop clips what overflows), at the\n"
         "picture's own shape, and written as $XDG_DATA_HOME/orvanta/wallpaper.bmp (XDG_DATA_HOME is\n"
         "~/.local/share by default), replaced whole. The desktop is then told to show that file centred,\n"
         "through GNOME's settings (org.gnome.desktop.background: picture-uri, picture-uri-dark and\n"
         "picture-options). The screen's size is the display's; --screen gives it instead.\n"
         "Prints: BMP  WIDTH  HEIGHT\n"
         "Exit status 0 on success, 1 if the picture could not be read or the file written, 2 on bad\n"
         "arguments, 3 when the desktop does not take its wallpaper from GNOME's settings (another\n"
         "desktop, no settings schema, or GLib keeping settings only in memory): nothing is written.\n",
         runWallpaper},
        {"print", "print PHOTO...      prints photographs, one a page or in a grid, or into a PDF file",
         "usage: orvanta print [--printer NAME] [--paper NAME] [--layout COLSxROWS | --template FILE]\n"
         "                     [--copies N] [--max-dpi N] [--to-pdf FILE] PHOTO...\n"
         "Prints the photographs through the print system (CUPS), on the default printer or NAME.\n"
         "  --paper NAME        a paper of the printer by its name (see orvanta printers)\n"
         "  --layout CxR        C columns by R rows of captioned pictures on each page (a contact\n"
         "                      sheet); 1x1, the default, is one picture a page, turned to suit it\n"
         "  --template FILE     pages of a print template instead of a grid: FILE has the lines\n"
         "                        paper WIDTH HEIGHT\n"
         "                        image NAME LEFT TOP RIGHT BOTTOM\n"
         "                        text NAME LEFT TOP RIGHT BOTTOM TEXT...\n"
         "                      in thousandths of an inch from the paper's corner (# starts a comment);\n"
         "                      the photos fill the image slots in name order, page after page, each\n"
         "                      filling its slot, centred\n"
         "  --copies N          each picture N times, the copies side by side\n"
         "  --max-dpi N         photos finer than N dots per inch on the page are reduced to it (default\n"
         "                      300 on a printer; with --to-pdf photos are kept as they are)\n"
         "  --to-pdf FILE       writes the pages into FILE instead of printing them (Letter, 300 dpi,\n"
         "                      no margins; --paper A4 or \"4 x 6\" also)\n"
         "A JPEG that is not changed on its way goes into the document as its own bytes. A progress bar\n"
         "is drawn on a terminal. Ctrl-C stops after the page in progress: nothing is printed and no\n"
         "file is left.\n"
         "Prints: FILE  N pages  SECONDS, or PRINTER  job ID  N pages  SECONDS.\n"
         "Exit status 0 when the print system took the job (or FILE was written), 1 when it did not or a\n"
         "photo cannot be read, 2 for bad arguments, 130 when interrupted.\n",
         runPrint},
        {"printers", "printers            the printers, with their papers, margins and resolutions",
         "usage: orvanta printers\n"
         "One line per printer (NAME, \"default\" for the default one, its model), then one line per\n"
         "paper (its name, size, the margins left, top, right and bottom in dots at the printer's\n"
         "first resolution, and whether it is borderless) and per resolution.\n",
         runPrinters},
        {"devices", "devices [--scanners] the cameras, scanners and drives photos can be imported from",
         "usage: orvanta devices [--scanners]\n"
         "One source a line, KIND  ID  NAME separated by tabs: the cameras libgphoto2 finds connected\n"
         "(KIND camera, ID MODEL@PORT), with --scanners the scanners of SANE (scanner, ID\n"
         "VENDOR|MODEL|DEVICE), then the removable and optical drives mounted with a medium in them\n"
         "(removable or optical, ID the drive's mount point). A scanner driver that crashes is said on\n"
         "standard error and the other sources are still listed. Exit status 0, 2 for bad arguments.\n",
         runDevices},
        {"import", "import ID [--to FOLDER] [--delete-after-copy] [--catalog FILE]  copies a device's photos",
         "usage: orvanta import ID [--to FOLDER] [--delete-after-copy] [--catalog FILE]\n"
         "                     [--scan-option NAME=VALUE]...\n"
         "Copies every photo and video of a source into FOLDER (default: \"acquired photos\" in the\n"
         "user's pictures) and adds the copies to the catalogue FILE (default: the user's own). ID is\n"
         "one of orvanta devices, or a camera given as libgphoto2's MODEL@PORT, for example\n"
         "\"Directory Browse@disk:/media/card\", or any folder taken as a card. A scanner's pictures\n"
         "are scanned with its SANE options NAME=VALUE. A file of the same name in FOLDER is never\n"
         "overwritten: that photo is skipped. Copies keep the times of their sources. With\n"
         "--delete-after-copy a source on a card or camera is deleted once its copy was read back and\n"
         "found equal. A progress bar is drawn on a terminal; the last line is\n"
         "copied N, skipped N, failed N.\n"
         "Exit status 0 when all were copied or skipped, 1 when some failed or the source stopped\n"
         "answering, 2 for bad arguments, 130 when interrupted.\n",
         runImport},
    };
    return table;
}

}  // namespace OrvantaTool

namespace {

void printOverview(FILE* out) {
    std::fprintf(out, "usage: orvanta COMMAND [ARGUMENTS]\n\nCommands:\n");
    for (const auto& command : OrvantaTool::commands()) std::fprintf(out, "  orvanta %s\n", command.synopsis);
    std::fprintf(out,
                 "\n`orvanta help COMMAND` or `orvanta COMMAND --help` describes one command;\n"
                 "`orvanta --version` prints the library's version.\n");
}

const OrvantaTool::Command* findCommand(const char* name) {
    for (const auto& command : OrvantaTool::commands())
        if (std::strcmp(command.name, name) == 0) return &command;
    return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
        printOverview(argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    if (!std::strcmp(argv[1], "--version")) {
        const int version = GetOrvantaVersion();
        std::printf("orvanta %d.%d.%d\n", version >> 16, (version >> 8) & 0xff, version & 0xff);
        return 0;
    }
    if (!std::strcmp(argv[1], "help")) {
        const OrvantaTool::Command* command = argc > 2 ? findCommand(argv[2]) : nullptr;
        if (!command) {
            printOverview(stdout);
            return argc > 2 ? 2 : 0;
        }
        std::fputs(command->help, stdout);
        return 0;
    }
    const OrvantaTool::Command* command = findCommand(argv[1]);
    if (!command) {
        std::fprintf(stderr, "orvanta: unknown command '%s'\n", argv[1]);
        printOverview(stderr);
        return 2;
    }
    OrvantaTool::Arguments arguments(argv + 2, argv + argc);
    for (const auto& argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            std::fputs(command->help, stdout);
            return 0;
        }
    }
    return command->run(arguments);
}
