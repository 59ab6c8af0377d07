// Utils: path and text helpers shared by every panel.
//
// Free functions without state.  They turn what the user typed into a
// canonical absolute path, compare paths, strip the current directory off a
// path, and tell shell patterns from plain names.  Paths go in and come out
// as std::string; no function modifies its argument.  The Motif helpers live
// in util/XmUtils.h so that this part stays free of X.
#ifndef TAMBLIN_UTIL_UTILS_H
#define TAMBLIN_UTIL_UTILS_H

#include <cstddef>
#include <string>
#include <string_view>

/// The absolute canonical form of path: "" is the current directory, a
/// leading "~" or "$NAME" is expanded (mypathexpandtilde), anything relative
/// is taken from the current directory; then dcanon.  Symbolic links are
/// followed only where a ".." comes after them.
std::string normalize(const std::string& path);

/// Canonicalises the absolute path: no "." or ".." components, no doubled
/// or trailing slashes (the root stays "/").  A ".." behind a symbolic link
/// applies to where the link leads, so "/l/.." with /l -> /p/q gives "/p".
/// Other links stay as they are.  The first `start` characters are taken as
/// already canonical (start 0 canonicalises everything).  A link loop ends:
/// after a bounded number of substitutions ".." is applied to the text.
/// REQUIRES: path begins with "/" (otherwise the program aborts: a caller
/// handing a relative path in is a programming error).
std::string dcanon(const std::string& path, std::size_t start = 0);

/// True when both paths name the same file: equal texts, or both exist
/// (following links) and have the same inode number.  Device numbers are
/// deliberately not compared.
bool samePath(const std::string& path1, const std::string& path2);

/// path relative to the current directory when it lies under it (first as
/// "PWD" names it, then as getcwd does), else path unchanged.
std::string trimCurrent(const std::string& path);

/// The length of text's longest head of at most limit bytes that does not
/// end inside a UTF-8 character: where a value too long to draw is cut.
std::size_t utf8Prefix(std::string_view text, std::size_t limit);

/// True when s holds any of "*?[]~$"; false for null or "".
bool isShellPattern(const char* s);
bool isShellPattern(const std::string& s);

/// The last component without trailing slashes: "a/b/" -> "b"; "/" and ""
/// give "".
std::string mypathbasename(const std::string& path);

/// Everything before the last separator (a run of slashes followed by a
/// further component): "a//b/" -> "a", "a/b/c" -> "a/b".  Without a
/// separator "/" for an absolute path and "." otherwise.  "/usr" gives ""
/// (not "/"): callers depend on that.
std::string mypathdirname(const std::string& path);

/// Expands a leading "~" ("HOME") or "~user" (the password database; an
/// unknown user returns path unchanged), then a leading "$NAME" up to the
/// first "/" when that variable is set.  Only one "$NAME" is expanded.
std::string mypathexpandtilde(const std::string& path);

/// Prints "Malloc failed" on standard error and exits with status -1.
/// The program installs it with std::set_new_handler.
[[noreturn]] void outOfMemory();

/// "'%s' is not a regular file.\nTry again." with path when path exists
/// (links followed) and is not a regular file: a save must not replace a
/// directory, a device or a pipe.  "" otherwise, also when path is missing.
std::string notRegularFileMessage(const std::string& path);

#endif
