// Idb: the installation database, one record per installed file.
//
// One record is the class idb (lower case): that is the format's own name
// for a record, kept beside the database class that holds them.
//
// Text format, one record a line (fixed by the files in the field):
//
//   type mode owner group dstpath srcpath tag [attr ...]
//
// type is one letter (f d l b c p s), mode four or more octal digits
// ("%04o"), the other fields are blank-free words and the attributes are
// separated by blanks outside quotes.  Lines starting with '#' and empty
// lines are skipped when reading and not written back.  Example:
//
//   l 0777 root sys usr/lib/x lib/x tool.sw.base symval(x.1)
//
// Conventions of this class:
// - Failures are returned, never shown: functions that can fail return an
//   Outcome, ok on success, else the message for the message log (and the
//   system error number where there is one).
// - Numbering is deliberately mixed: operator[], the setters, deleteItem and
//   write take a ZERO-based index; addAttribute, deleteAttributes, remove and
//   parseAttributes take a ONE-based item number (item n is index n-1).
// - Record pointers stay valid until the next call that adds, removes or
//   reorders records (readLine, readText, add, addRecord, append, open, remove,
//   removeItems, sort, save, operator=, clear).  Views of field values stay
//   valid, even after the field is set anew, until open(), clear() or
//   operator= on this Idb or its end, and as long as a copy made with
//   operator= still holds them.  Every view is NUL-terminated: view.data() is a C string.
// - Values are stored as given (up to a NUL); the caller keeps fields
//   non-empty and free of blanks and newlines (else they would not read
//   back as the same record).
#ifndef TAMBLIN_IDB_IDB_H
#define TAMBLIN_IDB_IDB_H

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "idb/TextArena.h"
#include "util/Outcome.h"

/// The type letter of a file: s d b c p l, anything else f.
char type(const struct stat& st);

/// One record of an Idb (idb is the format's name for a record).  Read-only
/// here: edits go through the Idb that holds it, which owns the storage of
/// its strings.
class idb {
 public:
  char type() const { return _type; }
  /// Permission bits including set-id and sticky bits, at most 0xFFFF.
  std::uint32_t mode() const { return _mode; }
  std::string_view owner() const { return _owner; }
  std::string_view group() const { return _group; }
  /// Relative destination path (no leading '/').
  std::string_view dstpath() const { return _dstpath; }
  /// Source path, relative to the source root.
  std::string_view srcpath() const { return _srcpath; }
  std::string_view tag() const { return _tag; }
  int nattrs() const { return _nattrs; }
  /// Attribute i (0 <= i < nattrs()), exactly as written in the file.
  std::string_view attr(int i) const { return _attrs[i]; }
  std::vector<std::string> attrs() const;

 private:
  friend class Idb;
  const char* _owner = "";
  const char* _group = "";
  const char* _dstpath = "";
  const char* _srcpath = "";
  const char* _tag = "";
  const char** _attrs = nullptr;  // _nattrs used, _attrRoom allocated
  std::int32_t _nattrs = 0;
  std::uint32_t _attrRoom = 0;
  // Length of the line this record was read from when that line is exactly
  // what the writer would produce (its fields still lie in it, cut apart by
  // NULs); 0 once the record is edited or when it was read otherwise.
  std::uint32_t _lineLength = 0;
  std::uint16_t _mode = 0;
  char _type = 'f';
};

class Idb {
 public:
  Idb();
  virtual ~Idb();
  /// Deep copy for undo: records and attributes are copied, the strings
  /// themselves are shared (they are never changed in place).  The name is
  /// copied too; the source root is not.
  Idb(const Idb& other);
  Idb& operator=(const Idb& other);

  // ---- Access
  int count() const { return static_cast<int>(_records.size()); }
  /// The record at zero-based i, or null when i < 0 or i >= count().
  const idb* operator[](int i) const;
  const std::vector<idb>& records() const { return _records; }
  /// The first record whose destination path is dstpath, or null (also for
  /// a null dstpath).  Hashed:
  /// a lookup costs O(1) after an O(n) index build, which happens again only
  /// after records are removed or reordered.
  const idb* find(std::string_view dstpath) const;
  const idb* find(const char* dstpath) const;
  /// Zero-based index of find(dstpath), or -1.
  int findIndex(std::string_view dstpath) const;
  const std::string& name() const { return _name; }
  const std::string& sourceRoot() const { return _sourceRoot; }
  void setName(std::string_view name) { _name = name; }
  void setSourceRoot(std::string_view root) { _sourceRoot = root; }

  // ---- Files
  /// Replaces the contents with the records of file; the name becomes file.
  /// "Couldn't open idb '%s' (%s)." leaves everything unchanged;
  /// "Couldn't read idb '%s' (%s on line %d)." keeps the records read
  /// before the bad line; %s is a readLine() message.  A file that cannot be
  /// opened or read gives the system error number as code().
  Outcome open(const std::string& file);
  /// Adds the records of file behind the present ones; the name stays.
  /// "Couldn't open idb '%s'.\n" (sic, newline included) when the file
  /// cannot be opened; read failures as for open().
  Outcome append(const std::string& file);
  /// Sorts the records (sort()) and writes them to file, or to name() when
  /// file is empty, replacing the file atomically (AtomicFile).  Fails as
  /// AtomicFile does: code() AtomicFile::kNotRegular for a target that is not
  /// a regular file, else the system error number (ENOENT when there is no
  /// name at all), message AtomicFile::describe(code()); on failure the file
  /// on disk, name() and the order of the records are unchanged.  A nameless
  /// database takes file as its name.
  Outcome save(const std::string& file = std::string());
  /// Parses text in the file format (as open() does, "x" standing for the
  /// file name in messages), adding its records behind the present ones.
  Outcome readText(std::string_view text, const std::string& fileName = "x");

  // ---- Lines and records
  /// Parses one line (a trailing newline is allowed) into a new record.
  /// Comments and empty lines add nothing.  The message names the missing
  /// field ("Expected owner in field 3"), or is "Unexpected NUL byte" or
  /// "Unexpected newline" (a line holds no other newline); a record whose
  /// line fails is not added.
  Outcome readLine(std::string_view line);
  /// Record i formatted as one line without newline, into buf; buf is left
  /// alone when i is out of range.
  void write(std::string& buf, unsigned i) const;
  std::string line(int i) const;
  /// Appends a record describing the existing file path (lstat, links not
  /// followed).  dstpath and srcpath are path relative to root.  Returns
  /// false, printing "%s does not exist.\n" on standard error, when path
  /// cannot be stat'ed.
  bool add(const std::string& path, std::string_view tag, std::string_view root);
  /// path relative to root, as add() records it: root and the "/" after it
  /// cut off ("" for root itself).  path must lie under root.
  static std::string relativePath(std::string_view path, std::string_view root);
  /// Why a value cannot be one of the blank-separated fields of a line
  /// ("holds a blank", "holds a tab", "holds a newline", "is empty"), or
  /// null when it can.  Tabs are refused as well: other readers of idb
  /// files split at them.
  static const char* unstorable(std::string_view field);
  /// Why record i (zero-based) would not read back as the same record once
  /// written ("the source path holds a blank", "the attributes do not read
  /// back the same") as a failed Outcome, or ok when it would.
  Outcome storageProblem(int i) const;
  /// Appends a record with the given fields; returns its zero-based index.
  int addRecord(char type, std::uint32_t mode, std::string_view owner, std::string_view group,
                std::string_view dstpath, std::string_view srcpath, std::string_view tag,
                const std::vector<std::string>& attrs = {});
  /// Deletes item (one-based); later records move down one place.
  void remove(unsigned item);
  /// Deletes several items (one-based, any order, duplicates ignored) in one
  /// pass: the cheap way to remove many records.
  void removeItems(std::vector<unsigned> items);
  /// Empties record i (zero-based) in place: strings "", no attributes;
  /// type and mode stay.
  void deleteItem(int i);
  void clear();
  /// Sorts by destination path in byte order; records with equal
  /// destination paths keep their relative order.
  void sort();
  /// Prints "%s (%d items):\n" and every line on standard output.
  void print() const;

  // ---- Field edits (zero-based index; out of range does nothing)
  void setType(int i, char type);
  void setMode(int i, std::uint32_t mode);
  void setOwner(int i, std::string_view owner);
  void setGroup(int i, std::string_view group);
  void setDstpath(int i, std::string_view dstpath);
  void setSrcpath(int i, std::string_view srcpath);
  void setTag(int i, std::string_view tag);

  // ---- Attributes (one-based item; out of range does nothing)
  /// Appends a copy of attr to the item's attributes.
  void addAttribute(unsigned item, std::string_view attr);
  /// Splits text at blanks outside quotes ('...' or "...") and not escaped
  /// by a backslash, and appends each piece exactly as written.
  void parseAttributes(unsigned item, std::string_view text);
  /// Removes the user's attributes of the item and keeps the derived ones
  /// (those containing "symval(" or "dev("), in their order, at the front.
  void deleteAttributes(unsigned item);

  /// Bytes held for strings, including values replaced since the last
  /// open() or clear() (for benchmarks).
  std::size_t storageBytes() const { return _arena.bytes(); }

 private:
  Outcome parseLine(char* begin, char* end, bool newline);
  Outcome readBuffer(char* text, std::size_t size, const std::string& file);
  Outcome parseLines(char* text, char* end, const char* nul, int firstLine, int& badLine);
  void reserveRecords(std::size_t more);
  Outcome load(const std::string& file, const char* openFormat, bool withReason, bool replace);
  void splitAttributes(char* text, std::vector<const char*>& out, bool* tight = nullptr) const;
  void setAttributes(idb& rec, const char* const* attrs, std::size_t n, bool keepOld);
  static void appendLine(std::string& out, const idb& r);
  void formatLines(std::string& out, std::size_t from, std::size_t to) const;
  /// sort(), handing over the permutation applied (record j is now the one
  /// that was at (*order)[j]) when there were two or more records.
  void sort(std::vector<std::uint32_t>* order);
  /// Record j becomes the one at order[j], in place.
  void permute(const std::vector<std::uint32_t>& order);
  /// Record i for a change, or null when out of range.  Every edit of a
  /// record goes through here, so its cached line is dropped exactly once.
  idb* edit(int i);
  void indexChanged() { _indexValid = false; }
  void indexAdded(int i);

  std::string _name;
  std::vector<idb> _records;
  std::string _sourceRoot;
  TextArena _arena;
  std::vector<const char*> _scratch;  // attributes of the line being read

  // dstpath -> index of its first record; rebuilt lazily after removals,
  // sorting or edits that could change which record comes first.
  mutable std::unordered_map<std::string_view, int> _index;
  mutable bool _indexValid = false;
  mutable bool _indexUnique = true;  // no two records share a dstpath
};

#endif
