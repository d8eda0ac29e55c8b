#pragma once
// SettingsKey: one key of the user's settings, the form a registry key under HKEY_CURRENT_USER
// takes here: named values of the registry's kinds in a key file under the user's configuration
// folder (docs/formats/preferences.md).
//
// Contract:
//  - The key path's parts are separated by backslashes. A leading "Software" is dropped (the
//    configuration folder holds nothing else); the other parts are folders under $XDG_CONFIG_HOME
//    (~/.config by default), which hold the file. A key path with no part left has no file: it
//    holds nothing, and writes to it fail.
//  - A value has the type and data the registry gives: REG_SZ, UTF-16 text and its terminator (text
//    cut at a zero inside, which a reader would stop at anyway); REG_DWORD, 4 bytes little-endian;
//    REG_BINARY, the bytes as given. A value of any other form in the file is of type REG_NONE, with
//    no data. Names compare without regard to case, as the registry's do, and a value set under
//    another case keeps the name it was first stored under. The empty name is never stored.
//  - query reads the file as it is now, so that other processes' writes show; the parsed file is
//    kept while the file stays the same one (inode, size, change time). set writes a new version of
//    the file through ReplacementFile, whose lock is held from the read of the current file to the
//    rename: writers in several processes each add to what the last one left, and a kill, a crash or
//    a full disk at any moment leaves the previous file whole. Missing folders are made private.
//  - A file that does not parse is damaged: it is renamed aside (preferences.conf.damaged, replacing
//    an earlier one) under the lock, and the key holds nothing until the next write starts a new
//    file. A file that cannot be read (no right to) holds nothing and is left where it is.
//  - One object may be used from several threads. Failures of set record the reason as the last
//    error. All file calls pass through Platform::FileSystem.

#include <sys/stat.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

typedef struct _GKeyFile GKeyFile;

namespace Orvanta {

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;

}  // namespace Orvanta

namespace Orvanta::Platform {

class SettingsKey {
public:
    struct Value {
        DWORD type = REG_NONE;
        std::vector<unsigned char> data;

        // A REG_SZ value holding text; and the text of such data, up to a zero inside it.
        static Value ofText(const CString& text);
        CString text() const;
    };

    explicit SettingsKey(const CString& keyPath);
    ~SettingsKey();
    SettingsKey(const SettingsKey&) = delete;
    SettingsKey& operator=(const SettingsKey&) = delete;

    std::optional<Value> query(const CString& name);
    bool set(const CString& name, const Value& value);

    // The file of the key; empty for a key path with no part.
    const std::string& file() const { return mFile; }

private:
    struct KeyFileDeleter {
        void operator()(GKeyFile* file) const;
    };
    using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

    GKeyFile* currentLocked();
    KeyFile readForRewrite();
    bool makeFolders();

    std::string mFile;
    std::mutex mLock;
    KeyFile mParsed;
    struct stat mParsedInfo {};
};

}  // namespace Orvanta::Platform
