#pragma once
// FilePath: where paths are taken apart, built and made valid. Every name the library invents or
// takes from a user passes through validPath.
//
// Contract: a path splits into a drive (always empty on Linux), a directory (up to and including the
// last "/"), a name, and an extension (from the last "." of what follows the directory, dot
// included). The library's own rules for names hold on top of the file system's: a path is at most
// 260 characters (UTF-16 code units), and the characters of kIllegalFilenameCharacters become "_" in
// names and extensions. Functions that build paths answer the empty string when they cannot. Unique
// names are checked, not reserved: two callers can be handed the same name. Nothing here throws.

#include "orvanta/platform/CString.h"

class FilePath {
public:
    static constexpr char16_t kIllegalFilenameCharacters[] = u"\\/:*?\"<>|";
    // The longest path the library makes or accepts.
    static constexpr std::size_t kMaxPath = 260;

    // Name and extension: "/a/b.txt" -> "b.txt".
    static Orvanta::CString getFileName(const Orvanta::CString& path);
    // Name alone: "/a/b.txt" -> "b".
    static Orvanta::CString getFileTitle(const Orvanta::CString& path);
    // The directory without its last character, so without a trailing separator: "/a/b.txt" -> "/a",
    // "/b.txt" -> "". withDrive adds the drive part, which Linux has not.
    static Orvanta::CString getFolder(const Orvanta::CString& path, bool withDrive = true);
    static Orvanta::CString getDrive(const Orvanta::CString& path);
    // The extension without its dot; "a.tar.gz" -> "gz", "a." -> "".
    static Orvanta::CString getExtension(const Orvanta::CString& path);

    // folder + name made valid; empty if folder and name come to 260 characters or more.
    static Orvanta::CString makePath(const Orvanta::CString& folder, const Orvanta::CString& name,
                                     bool unique);
    // The same, with extension for a name that has none.
    static Orvanta::CString makePath(const Orvanta::CString& folder, const Orvanta::CString& name,
                                     bool unique, const char16_t* extension);
    // A new name in the same folder; the old extension stays unless newName brings its own.
    static Orvanta::CString setName(const Orvanta::CString& path, const Orvanta::CString& newName,
                                    bool unique);
    // Makes a proposed path acceptable: the extension given where the path has none (or only "."),
    // illegal characters replaced, and with unique a name no file has yet: "photo.jpg",
    // "photo-2.jpg", "photo-3.jpg"... Empty for an empty path or one longer than 260 characters.
    // A name is free only when nothing of that name is there, a dangling link included (a folder
    // does not count); empty as soon as a lookup fails for any reason but absence.
    static Orvanta::CString validPath(const Orvanta::CString& path, bool unique, const char16_t* extension);
    // A name for a temporary file in $TMPDIR (or /tmp) beginning with prefix ("###" if null). The
    // file is made to claim a unique name and deleted again: only the name is handed out.
    static Orvanta::CString getTempFilePath(const char16_t* prefix = nullptr);
    // Whether a file is there. A folder counts only with allowFolder. An error other than "not
    // found", "not ready" or "unreachable" counts as there: a file that cannot be read may well exist.
    static bool exists(const Orvanta::CString& path, bool allowFolder);
    // Makes the folders of a path. The last element is a file name and is not made, so a folder is
    // passed with a trailing separator. False if the folder above it could not be made.
    static bool createFolder(const Orvanta::CString& path);
};
