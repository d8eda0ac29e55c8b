#include "orvanta/platform/SettingsKey.h"

#include <fcntl.h>
#include <glib.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/ReplacementFile.h"
#include "orvanta/platform/RewriteLock.h"
#include "orvanta/platform/SettingsFormat.h"

namespace Orvanta::Platform {

namespace Format = SettingsFormat;

namespace {

struct GFree {
    void operator()(void* block) const { g_free(block); }
};
using GText = std::unique_ptr<char, GFree>;

constexpr char kHex[] = "0123456789abcdef";
constexpr char kEscapeHex[] = "0123456789ABCDEF";

std::string configurationHome() {
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    if (configured && configured[0] == '/') return configured;
    const char* home = std::getenv("HOME");
    if (home && home[0] == '/') return std::string(home) + "/.config";
    const passwd* user = getpwuid(geteuid());
    return user && user->pw_dir ? std::string(user->pw_dir) + "/.config" : std::string();
}

void escapeByte(std::string& out, unsigned char c) {
    out += '%';
    out += kEscapeHex[c >> 4];
    out += kEscapeHex[c & 15];
}

// A part of the key path as a folder name: no "/" inside, never "." or "..".
std::string folderName(const std::string& part) {
    if (part == "." || part == "..") return std::string(part.size(), '_');
    std::string out;
    for (unsigned char c : part) {
        if (c == '/' || c == '%')
            escapeByte(out, c);
        else
            out += static_cast<char>(c);
    }
    return out;
}

std::string fileOf(const CString& keyPath) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at <= keyPath.length();) {
        std::size_t end = keyPath.find(u'\\', at);
        if (end == CString::npos) end = keyPath.length();
        if (end > at) parts.push_back(keyPath.mid(at, end - at).toUtf8());
        at = end + 1;
    }
    if (!parts.empty() && CString::fromUtf8(parts[0]).lowered() == CString(Format::kSoftwarePart).lowered())
        parts.erase(parts.begin());
    const std::string home = configurationHome();
    if (parts.empty() || home.empty()) return {};
    std::string file = home;
    for (const std::string& part : parts) file.append("/").append(folderName(part));
    return file.append("/").append(Format::kFileName);
}

// A value's name as a key of the file: the bytes a key cannot hold, or cannot begin or end with,
// as %XX; and the first of "Encoding", a key GLib reads as the file's encoding.
std::string keyOf(const CString& name) {
    const std::string text = name.toUtf8();
    const bool reserved = text == "Encoding";
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool edge = i == 0 || i + 1 == text.size();
        if (c < 0x20 || c == 0x7F || c == '%' || c == '=' || c == '[' || c == ']' || (edge && c == ' ') ||
            (i == 0 && (c == '#' || reserved)))
            escapeByte(out, c);
        else
            out += static_cast<char>(c);
    }
    return out;
}

int hexDigit(char c) {
    const char* at = c ? std::strchr(kHex, std::tolower(static_cast<unsigned char>(c))) : nullptr;
    return at ? static_cast<int>(at - kHex) : -1;
}

// Pairs of hexadecimal digits as bytes; false for anything else.
bool hexBytes(const char* text, std::vector<unsigned char>* out) {
    for (; *text; text += 2) {
        const int high = hexDigit(text[0]), low = high < 0 ? -1 : hexDigit(text[1]);
        if (low < 0) return false;
        out->push_back(static_cast<unsigned char>(high * 16 + low));
    }
    return true;
}

CString nameOf(const char* key) {
    std::string text;
    for (const char* at = key; *at; ++at) {
        const int high = at[0] == '%' ? hexDigit(at[1]) : -1, low = high < 0 ? -1 : hexDigit(at[2]);
        if (low < 0) {
            text += *at;
        } else {
            text += static_cast<char>(high * 16 + low);
            at += 2;
        }
    }
    return CString::fromUtf8(text);
}

bool startsWith(const char* text, const char* tag) {
    return std::strncmp(text, tag, std::strlen(tag)) == 0;
}

SettingsKey::Value decode(const char* text) {
    SettingsKey::Value value;
    std::vector<unsigned char> bytes;
    if (startsWith(text, Format::kStringTag)) {
        value = SettingsKey::Value::ofText(CString::fromUtf8(text + std::strlen(Format::kStringTag)));
    } else if (startsWith(text, Format::kNumberTag)) {
        const char* digits = text + std::strlen(Format::kNumberTag);
        if (std::strlen(digits) == 8 && hexBytes(digits, &bytes)) {
            value.type = REG_DWORD;
            value.data.assign(bytes.rbegin(), bytes.rend());
        }
    } else if (startsWith(text, Format::kBinaryTag) &&
               hexBytes(text + std::strlen(Format::kBinaryTag), &bytes)) {
        value.type = REG_BINARY;
        value.data = std::move(bytes);
    }
    return value;
}

std::string encode(const SettingsKey::Value& value) {
    if (value.type == REG_SZ) return Format::kStringTag + value.text().toUtf8();
    std::vector<unsigned char> bytes = value.data;
    if (value.type == REG_DWORD) {
        bytes.resize(4);
        std::reverse(bytes.begin(), bytes.end());  // most significant digit first
    }
    std::string out = value.type == REG_DWORD ? Format::kNumberTag : Format::kBinaryTag;
    for (unsigned char c : bytes) {
        out += kHex[c >> 4];
        out += kHex[c & 15];
    }
    return out;
}

// The key under which name is stored: the one that matches it without regard to case, else its own.
std::string storedKey(GKeyFile* file, const CString& name) {
    const std::string own = keyOf(name);
    if (!file || g_key_file_has_key(file, Format::kGroup, own.c_str(), nullptr)) return own;
    gchar** keys = g_key_file_get_keys(file, Format::kGroup, nullptr, nullptr);
    std::string found = own;
    const CString wanted = name.lowered();
    for (gchar** key = keys; key && *key; ++key) {
        if (nameOf(*key).lowered() == wanted) {
            found = *key;
            break;
        }
    }
    g_strfreev(keys);
    return found;
}

GKeyFile* parse(const FileContents& contents) {
    GKeyFile* file = g_key_file_new();
    const char* text = reinterpret_cast<const char*>(contents.data());
    if (g_key_file_load_from_data(file, text ? text : "", static_cast<gsize>(contents.size()),
                                  G_KEY_FILE_KEEP_COMMENTS, nullptr))
        return file;
    g_key_file_free(file);
    return nullptr;
}

bool sameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_ctim.tv_sec == b.st_ctim.tv_sec && a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

// Under the file's lock, so that a file a writer has just put in place is not taken for the damaged one.
void keepAside(const std::string& path) {
    RewriteLock lock;
    FileContents again;
    if (!lock.acquire(path) || lock.handle() < 0 || !again.open(path)) return;
    if (GKeyFile* file = parse(again)) {
        g_key_file_free(file);
        return;
    }
    FileSystem::current().rename(path.c_str(), (path + Format::kDamagedSuffix).c_str());
}

}  // namespace

SettingsKey::Value SettingsKey::Value::ofText(const CString& text) {
    Value value{REG_SZ, {}};
    for (std::size_t i = 0; i <= text.length(); ++i) {
        value.data.push_back(static_cast<unsigned char>(text.c_str()[i]));
        value.data.push_back(static_cast<unsigned char>(text.c_str()[i] >> 8));
    }
    return value;
}

CString SettingsKey::Value::text() const {
    std::u16string units;
    for (std::size_t i = 0; i + 1 < data.size(); i += 2) {
        const auto unit = static_cast<char16_t>(data[i] | (data[i + 1] << 8));
        if (unit == 0) break;
        units += unit;
    }
    return CString(std::move(units));
}

void SettingsKey::KeyFileDeleter::operator()(GKeyFile* file) const {
    g_key_file_free(file);
}

SettingsKey::SettingsKey(const CString& keyPath) : mFile(fileOf(keyPath)) {}

SettingsKey::~SettingsKey() = default;

GKeyFile* SettingsKey::currentLocked() {
    struct stat info;
    if (mFile.empty() || FileSystem::current().stat(mFile.c_str(), &info) != 0) {
        mParsed.reset();
        return nullptr;
    }
    if (mParsed && sameFile(info, mParsedInfo)) return mParsed.get();
    mParsed.reset();
    FileContents contents;
    if (!contents.open(mFile)) return nullptr;
    mParsed.reset(parse(contents));
    if (!mParsed) {
        keepAside(mFile);
        return nullptr;
    }
    mParsedInfo = info;
    return mParsed.get();
}

std::optional<SettingsKey::Value> SettingsKey::query(const CString& name) {
    std::lock_guard<std::mutex> guard(mLock);
    GKeyFile* file = currentLocked();
    if (!file || name.isEmpty()) return std::nullopt;
    GText text(g_key_file_get_string(file, Format::kGroup, storedKey(file, name).c_str(), nullptr));
    if (!text) return std::nullopt;
    return decode(text.get());
}

// The file as it stands under the writer's lock; a damaged one is moved aside and a new one begun.
SettingsKey::KeyFile SettingsKey::readForRewrite() {
    FileContents contents;
    if (contents.open(mFile)) {
        if (GKeyFile* file = parse(contents)) return KeyFile(file);
        FileSystem::current().rename(mFile.c_str(), (mFile + Format::kDamagedSuffix).c_str());
    }
    return KeyFile(g_key_file_new());
}

bool SettingsKey::makeFolders() {
    const std::size_t slash = mFile.rfind('/');
    if (slash == std::string::npos || slash == 0) return true;
    if (FileSystem::current().makeDirectories(mFile.substr(0, slash), 0700) != 0) return failWithErrno();
    return true;
}

bool SettingsKey::set(const CString& name, const Value& value) {
    std::lock_guard<std::mutex> guard(mLock);
    if (mFile.empty() || name.isEmpty()) {
        setLastError(mFile.empty() ? ENOENT : EINVAL);
        return false;
    }
    if (!makeFolders()) return false;
    // The file exists before its lock is taken: the lock of a file that is not there yet holds
    // nothing, and two first writers would each start from nothing.
    FileSystem& fs = FileSystem::current();
    const int created = fs.open(mFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (created < 0) return failWithErrno();
    fs.close(created);
    ReplacementFile replacement(mFile);
    if (!replacement.open()) return false;
    KeyFile file = readForRewrite();
    g_key_file_set_string(file.get(), Format::kGroup, storedKey(file.get(), name).c_str(),
                          encode(value).c_str());
    gsize size = 0;
    GText data(g_key_file_to_data(file.get(), &size, nullptr));
    return replacement.write(data.get(), size) && replacement.commit();
}

}  // namespace Orvanta::Platform
