#include "orvanta/platform/MountTable.h"

#include <charconv>

#include "orvanta/platform/KernelFile.h"

namespace Orvanta::Platform {

namespace {

// The fields of one line, split at spaces; the optional fields end at a lone "-".
std::vector<std::string_view> split(std::string_view line) {
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    while (start < line.size()) {
        std::size_t end = line.find(' ', start);
        if (end == std::string_view::npos) end = line.size();
        if (end > start) fields.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return fields;
}

bool parseNumber(std::string_view text, unsigned* value) {
    if (text.empty()) return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
    return error == std::errc() && end == text.data() + text.size();
}

bool parseLine(std::string_view line, MountEntry* entry) {
    // id parent MAJOR:MINOR root mount-point options [optional...] - fstype source super-options
    const std::vector<std::string_view> fields = split(line);
    if (fields.size() < 9) return false;
    const std::string_view device = fields[2];
    const std::size_t colon = device.find(':');
    if (colon == std::string_view::npos || !parseNumber(device.substr(0, colon), &entry->major) ||
        !parseNumber(device.substr(colon + 1), &entry->minor))
        return false;
    std::size_t separator = 6;
    while (separator < fields.size() && fields[separator] != "-") ++separator;
    if (separator + 2 >= fields.size()) return false;
    entry->root = MountTable::unescape(fields[3]);
    entry->mountPoint = MountTable::unescape(fields[4]);
    entry->fsType = MountTable::unescape(fields[separator + 1]);
    entry->source = MountTable::unescape(fields[separator + 2]);
    return true;
}

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

}  // namespace

std::string MountTable::unescape(std::string_view field) {
    std::string text;
    text.reserve(field.size());
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && isOctal(field[i + 1]) && isOctal(field[i + 2]) &&
            isOctal(field[i + 3])) {
            const int value = (field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0');
            if (value < 256) {
                text += static_cast<char>(value);
                i += 3;
                continue;
            }
        }
        text += field[i];
    }
    return text;
}

std::vector<MountEntry> MountTable::parse(std::string_view text) {
    std::vector<MountEntry> entries;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        MountEntry entry;
        if (parseLine(text.substr(start, end - start), &entry)) entries.push_back(std::move(entry));
        start = end + 1;
    }
    return entries;
}

bool MountTable::read(const std::string& procRoot, std::vector<MountEntry>* entries) {
    std::string text;
    if (!KernelFile::read(procRoot + "/self/mountinfo", &text)) return false;
    *entries = parse(text);
    return true;
}

}  // namespace Orvanta::Platform
