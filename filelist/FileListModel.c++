#include "filelist/FileListModel.h"

#include <sys/stat.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <climits>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <utility>

#include "build/DistDirCheck.h"
#include "filelist/AddFilesPartner.h"
#include "filelist/AttrsPartner.h"
#include "filelist/BuildPartner.h"
#include "filelist/FileListDisplay.h"
#include "filelist/FileNamePrompt.h"
#include "filelist/LineMatcher.h"
#include "filelist/PermsPartner.h"
#include "filelist/SourceProbe.h"
#include "filelist/SpecGraphPartner.h"
#include "filelist/TagsPartner.h"
#include "idb/Idb.h"
#include "idb/StringSet.h"
#include "util/AtomicFile.h"
#include "util/BusyIndicator.h"
#include "util/BusyScope.h"
#include "util/Format.h"
#include "util/Reporter.h"
#include "util/Utils.h"

const char* const FileListModel::kSelectAllExpression = ".*";
const char* const FileListModel::kSelectNoneExpression = "^$";

namespace {
// Below this many lines a selection is quick enough on one thread.
constexpr int kParallelLines = 20000;
}  // namespace

namespace {

// A typed field value as the panels deblank it, tabs and newlines
// included: idb fields are separated by blanks, and a value holding one
// would not read back.
std::string deblanked(const std::string& text) {
  std::string out;
  for (char c : text)
    if (c != ' ' && c != '\t' && c != '\n') out += c;
  return out;
}

// text with tabs and newlines written as \t and \n, so that a name holding
// them stays on one line of the message log.
std::string visibleText(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\n') out += "\\n";
    else if (c == '\t') out += "\\t";
    else out += c;
  }
  return out;
}

bool isDirectory(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Something is there (a file of any kind, a dangling link included) but it is
// not a regular file, so reading or writing it as an idb makes no sense.
bool existsButNotRegular(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && st.st_mode != 0 && !S_ISREG(st.st_mode);
}

// "p begins with r": the first r.size() characters are equal, and the
// character after them, taken from next (which need not be p), ends the
// string or is a "/".  Out-of-range next counts as a mismatch.
bool beginsWith(std::string_view p, std::string_view r, std::string_view next) {
  if (p.compare(0, r.size(), r) != 0) return false;
  if (r.size() > next.size()) return false;
  return r.size() == next.size() || next[r.size()] == '/';
}

// realpath into a buffer, so that on failure the part at which resolution
// stopped can be shown.  Returns 0 or the system error number.
int resolve(const std::string& path, std::string* resolved, std::string* stoppedAt) {
  char buf[PATH_MAX + 1] = {0};
  if (::realpath(path.c_str(), buf)) {
    *resolved = buf;
    return 0;
  }
  const int error = errno;
  if (stoppedAt) *stoppedAt = buf;
  return error;
}

}  // namespace

FileListModel::FileListModel(Reporter& reporter)
    : _reporter(reporter),
      _idb(std::make_unique<Idb>()),
      _backup(std::make_unique<Idb>()),
      _sourceRoot(normalize("")) {
  _idb->setSourceRoot(_sourceRoot);
  _backup->setSourceRoot(_sourceRoot);
}

FileListModel::~FileListModel() = default;

std::string FileListModel::join(const std::string& root, const std::string& relative) const {
  std::string out = root == "/" ? std::string() : root;
  out += '/';
  out += relative;
  return out;
}

// ---- roots -------------------------------------------------------------------

std::vector<int> FileListModel::unfoundItems(const std::string& root) const {
  // In slices, so that the window redraws between them on a large idb.
  constexpr int kSlice = 50000;
  const SourceProbe probe(root);
  std::vector<std::string_view> paths;
  std::vector<int> missing;
  for (int first = 0; first < _idb->count(); first += kSlice) {
    const int end = std::min(_idb->count(), first + kSlice);
    paths.clear();
    for (int i = first; i < end; i++) paths.push_back((*_idb)[i]->srcpath());
    const std::vector<char> found = probe.exists(paths);
    for (size_t i = 0; i < found.size(); i++)
      if (!found[i]) missing.push_back(first + static_cast<int>(i) + 1);
    if (_busy) _busy->stillBusy();
  }
  return missing;
}

int FileListModel::cantPrependRoot(const std::string& root, bool report) {
  std::vector<int> missing = unfoundItems(root);
  const int count = static_cast<int>(missing.size());
  if (report) {
    std::vector<char> flags(_idb->count(), 0);
    for (int item : missing) flags[item - 1] = 1;
    selectOnly(flags);
    if (count > 0) reportNotFound(count, _idb->count(), root, count == _idb->count());
  }
  return count;
}

void FileListModel::reportNotFound(int count, int total, const std::string& root, bool noneFound) {
  if (noneFound)
    _reporter.error(format("No files found under Source Root %s.", root.c_str()));
  else
    _reporter.error(format("%d (of %d entries) not found under Source Root %s.", count, total,
                           root.c_str()));
}

int FileListModel::cantStripRoot(const std::string& root, bool report) {
  if (root == "/") return 0;
  if (cantPrependRoot(_sourceRoot, report) > 0) return _idb->count();

  std::string resolvedRoot;
  if (int error = resolve(root, &resolvedRoot, nullptr)) {
    _reporter.logMessage(
        format("Unable to resolve links for %s: %s", root.c_str(), std::strerror(error)));
    resolvedRoot = root;
  }
  std::vector<char> flags(_idb->count(), 0);
  int count = 0;
  for (int i = 0; i < _idb->count(); i++) {
    const std::string full = join(_sourceRoot, std::string((*_idb)[i]->srcpath()));
    std::string resolved, stoppedAt;
    if (int error = resolve(full, &resolved, &stoppedAt)) {
      _reporter.logMessage(
          format("Unable to resolve links for %s: %s", full.c_str(), std::strerror(error)));
      // The second field shows the path being resolved: more use to the
      // reader than the null the resolution leaves there.
      _reporter.logMessage(format("   (at '%s' in '%s')", stoppedAt.c_str(), full.c_str()));
      resolved = full;
    }
    // The order and the odd choice of the character after the prefix in the
    // second test are how roots have always been compared; changing them
    // would change which moves are accepted.
    bool under = beginsWith(resolved, resolvedRoot, resolved) ||
                 beginsWith(full, resolvedRoot, resolved) ||
                 beginsWith(resolved, root, resolved) || beginsWith(full, root, full);
    if (!under) {
      count++;
      flags[i] = 1;
    }
  }
  if (report) {
    selectOnly(flags);
    if (count > 0) reportNotFound(count, _idb->count(), root, false);
  }
  return count;
}

int FileListModel::totalUnfound() {
  int count = cantPrependRoot(_sourceRoot, false);
  if (count > 0) cantPrependRoot(_sourceRoot, true);
  return count;
}

std::optional<std::string> FileListModel::setSourceRoot(const std::string& typed) {
  const std::string root = normalize(typed);
  if (!isDirectory(root)) {
    _reporter.error(format("Source Root '%s' is not a directory.", typed.c_str()));
    return std::nullopt;
  }
  BusyScope busy(_busy);
  const int notFound = cantPrependRoot(root, false);
  if (notFound > 0) {
    const int outside = cantStripRoot(root, false);
    if (outside > 0) {
      // Neither keeping the paths nor keeping the files fits every record:
      // show the reading that fails for fewer of them (the missing files on
      // a tie).
      if (notFound > outside)
        cantStripRoot(root, true);
      else
        cantPrependRoot(root, true);
      return std::nullopt;
    }
    {
      Edit edit(*this);
      rewriteSourcePaths(root);
    }
    _modified = true;
  }
  deselectAll();
  _sourceRoot = root;
  _idb->setSourceRoot(root);
  updateSourceRootFields();
  return root;
}

// Every file lies under newRoot: make each source path relative to it.  A
// file installed where it lies in the tree keeps doing so.
void FileListModel::rewriteSourcePaths(const std::string& newRoot) {
  std::string resolvedRoot;
  bool rootResolved = false;
  for (int i = 0; i < _idb->count(); i++) {
    const ::idb* rec = (*_idb)[i];
    const std::string oldSrc(rec->srcpath());
    const std::string full = join(_sourceRoot, oldSrc);
    std::string rel;
    if (newRoot == "/") {
      rel = full.substr(1);
    } else if (beginsWith(full, newRoot, full)) {
      rel = full.substr(std::min(full.size(), newRoot.size() + 1));
    } else {
      // The file lies under the new root only through a symbolic link in
      // the old path: cut the resolved path instead of counting characters
      // of the unresolved one.
      if (!rootResolved) rootResolved = resolve(newRoot, &resolvedRoot, nullptr) == 0;
      std::string resolved;
      if (rootResolved && resolve(full, &resolved, nullptr) == 0 &&
          beginsWith(resolved, resolvedRoot, resolved))
        rel = resolved.substr(std::min(resolved.size(), resolvedRoot.size() + 1));
      else
        rel = full.substr(std::min(full.size(), newRoot.size() + 1));
    }
    if (rec->dstpath() == oldSrc) _idb->setDstpath(i, rel);
    _idb->setSrcpath(i, rel);
  }
}

std::optional<std::string> FileListModel::setDestRoot(const std::string& typed) {
  const std::string root = normalize(typed);
  if (_destRoot && *_destRoot == root) return *_destRoot;
  if (!isDirectory(root)) {
    _reporter.error(format("Destination Root '%s' is not a directory.", typed.c_str()));
    return std::nullopt;
  }
  _destRoot = root;
  if (_permsPanel) _permsPanel->setDestRoot(root);
  if (_buildPanel) _buildPanel->setDestRoot(root);
  return root;
}

void FileListModel::initSourceRoot() {
  const char* value = std::getenv("SBASE");
  if (!value) return;
  const std::string root = normalize(value);
  if (isDirectory(root)) {
    setSourceRoot(root);
  } else {
    _reporter.logMessage(format("SBASE (%s) is not a directory.", root.c_str()));
    _reporter.showMessages();
  }
}

void FileListModel::initDestRoot() {
  const char* value = std::getenv("RBASE");
  if (!value) return;
  const std::string root = normalize(value);
  if (isDirectory(root)) {
    setDestRoot(root);
  } else {
    _reporter.logMessage(format("RBASE (%s) is not a directory.", root.c_str()));
    _reporter.showMessages();
  }
}

void FileListModel::updateSourceRootFields() {
  if (_addPanel) _addPanel->newSourceRootDirectory(_sourceRoot);
  if (_permsPanel) _permsPanel->setSourceRoot(_sourceRoot);
  if (_buildPanel) _buildPanel->setSourceRoot(_sourceRoot);
}

std::unique_ptr<StringSet> FileListModel::srcpathsInDir(const std::string& dir) const {
  auto names = std::make_unique<StringSet>("Source Paths In Directory");
  // The directory relative to the source root.  A directory outside the root
  // loses as many characters all the same; the browser never asks for one.
  size_t n = _sourceRoot.size();
  if (dir.compare(0, n, _sourceRoot) == 0 && dir.size() > n && _sourceRoot != "/") n++;
  const std::string rel = dir.substr(std::min(n, dir.size()));

  for (int i = 0; i < _idb->count(); i++) {
    const ::idb* rec = (*_idb)[i];
    const std::string src(rec->srcpath());
    std::string name;
    if (!rel.empty()) {
      std::string srcDir = mypathdirname(src);
      if (srcDir.empty()) srcDir = "/";
      name = srcDir == rel ? mypathbasename(src) : srcDir;
    } else if (src.find('/') == std::string::npos) {
      name = src;
    } else {
      continue;
    }
    if (rec->type() == 'l') {
      names->add(name);
      name += '/';
    } else if (rec->type() == 'd') {
      name += '/';
    }
    names->add(name);
  }
  return names;
}

// ---- files ---------------------------------------------------------------------

Outcome FileListModel::refuseNotRegular(const std::string& file) {
  Outcome refused = Outcome::error(format("'%s' is not a regular file.\nTry again.", file.c_str()));
  _reporter.warning(refused.message());
  return refused;
}

Outcome FileListModel::open(const std::string& file) {
  if (existsButNotRegular(file)) {
    return refuseNotRegular(file);
  }
  BusyScope busy(_busy);
  // The undo copy goes first: whatever happens, it ends up a copy of the idb.
  _backup = std::make_unique<Idb>();
  // A large idb takes well over its file's size in memory, and two of them
  // side by side (the one shown and the one coming in) would not fit.  Once
  // a pass over the file has shown that every line reads, the idb shown is
  // dropped before the new one is read.  A file that fails is read beside
  // the old idb, so its message names the line and the idb stays as it was.
  if (_idb->count() > 0 && fileReadsCleanly(file)) _idb->clear();
  auto fresh = std::make_unique<Idb>();
  fresh->setSourceRoot(_sourceRoot);
  Outcome status;
  whileRedrawing([&] { status = fresh->open(file); }, false);
  if (!status.ok()) {
    fresh.reset();
    // The idb is still the old one unless the file changed under us between
    // the check and the read; the list then shows what is left.
    if (_idb->count() == 0) refresh();
    _reporter.logMessage(status.message());
    _reporter.showMessages();
    backup();
    return status;
  }
  _idb = std::move(fresh);
  backup();
  _modified = false;
  refresh();
  refreshPartners();
  setIdbFileName(file);
  _reporter.logMessage(format("Opened idb '%s'.", file.c_str()));
  return Outcome::success();
}

void FileListModel::whileRedrawing(const std::function<void()>& work, bool hideLines) {
  if (!_busy) {
    work();
    return;
  }
  // The work runs on a helper thread while this one, between waits, lets
  // the window draw what was covered and uncovered meanwhile.  Drawing must
  // not read what the work changes: with hideLines the list's lines read as
  // empty until it ends (it is drawn again then anyway).
  std::mutex mutex;
  std::condition_variable finished;
  bool done = false;
  _linesHidden = hideLines;
  std::thread helper;
  try {
    helper = std::thread([&] {
      work();
      std::lock_guard<std::mutex> lock(mutex);
      done = true;
      finished.notify_one();
    });
  } catch (const std::system_error&) {
    _linesHidden = false;
    work();
    return;
  }
  std::unique_lock<std::mutex> lock(mutex);
  bool drew = false;
  while (!finished.wait_for(lock, std::chrono::milliseconds(30), [&] { return done; })) {
    lock.unlock();
    _busy->stillBusy();
    drew = true;
    lock.lock();
  }
  lock.unlock();
  helper.join();
  _linesHidden = false;
  // Rows drawn empty meanwhile show their text again.
  if (drew && hideLines && _display) _display->selectionChanged();
}

bool FileListModel::fileReadsCleanly(const std::string& file) const {
  std::FILE* f = std::fopen(file.c_str(), "r");
  if (!f) return false;
  // Slices of whole lines go through a scratch database that is emptied
  // after each, so the check holds one slice at a time and uses the reader
  // itself to judge every line.
  constexpr std::size_t kSlice = 1 << 20;
  std::string text;
  Idb scratch;
  bool clean = true;
  for (bool atEnd = false; clean && !atEnd;) {
    const std::size_t kept = text.size();
    text.resize(kept + kSlice);
    const std::size_t got = std::fread(&text[kept], 1, kSlice, f);
    text.resize(kept + got);
    atEnd = got < kSlice;
    std::size_t cut = text.size();
    if (!atEnd) {
      const void* nl = memrchr(text.data(), '\n', text.size());
      cut = nl ? static_cast<std::size_t>(static_cast<const char*>(nl) - text.data()) + 1 : 0;
    }
    if (cut) {
      clean = scratch.readText(std::string_view(text.data(), cut), file).ok();
      scratch.clear();
      text.erase(0, cut);
    }
    if (_busy) _busy->stillBusy();
  }
  if (std::ferror(f)) clean = false;
  std::fclose(f);
  return clean;
}

Outcome FileListModel::appendFile(const std::string& file) {
  if (existsButNotRegular(file)) {
    return refuseNotRegular(file);
  }
  BusyScope busy(_busy);
  {
    Edit edit(*this);
    if (Outcome status = _idb->append(file); !status.ok()) {
      _reporter.logMessage(status.message());
      _reporter.showMessages();
      *_idb = *_backup;
      return status;
    }
    _modified = true;
  }
  refreshPartners();
  return Outcome::success();
}

// The chosen file relative to the current directory where it lies below it.
bool FileListModel::askFileName(const char* title, bool proposeProduct, std::string* chosen) {
  if (!_fileNamePrompt) return false;
  const std::string proposed =
      proposeProduct ? (_specGraph ? _specGraph->getProductName() : std::string()) + ".idb"
                     : std::string();
  std::string answer;
  if (!_fileNamePrompt->askFileName(title, "*idb", proposed, &answer)) return false;
  *chosen = trimCurrent(answer);
  return !chosen->empty();
}

bool FileListModel::showOpenBrowser() {
  std::string file;
  return abandonChanges() && askFileName("Open Idb", false, &file) && open(file).ok();
}

bool FileListModel::showReadBrowser() {
  std::string file;
  if (!askFileName("Append Idb", true, &file) || !appendFile(file).ok()) return false;
  _reporter.logMessage(format("Appended idb '%s'.", file.c_str()));
  return true;
}

bool FileListModel::showSaveBrowser() {
  std::string file;
  return askFileName("Save Idb", true, &file) && save(file.c_str()).ok();
}

Outcome FileListModel::save(const char* file) {
  std::string target = file ? file : _idb->name();
  if (target.empty() && !askFileName("Save Idb", true, &target)) return Outcome::error("");
  if (_buildPanel) {
    if (Outcome refused = checkDistDir(DistDirUse::Save, target, _buildPanel->getDistDir());
        !refused.ok()) {
      _reporter.error(refused.message());
      return refused;
    }
  }
  if (existsButNotRegular(target)) return refuseNotRegular(target);
  BusyScope busy(_busy);
  bool wasSorted = true;
  for (int i = 1; i < _idb->count() && wasSorted; i++)
    wasSorted = (*_idb)[i - 1]->dstpath() <= (*_idb)[i]->dstpath();
  Outcome saved;
  whileRedrawing([&] { saved = _idb->save(target); }, true);
  if (!saved.ok()) {
    // The records are still in the order the list shows, so the lines and
    // the selection stay as they are.
    if (saved.code() == AtomicFile::kNotRegular) return refuseNotRegular(target);
    Outcome failure = Outcome::error(
        format("Couldn't save idb '%s' (%s).", target.c_str(), saved.message().c_str()),
        saved.code());
    _reporter.logMessage(failure.message());
    _reporter.showMessages();
    return failure;
  }
  _modified = false;
  setIdbFileName(target);
  _reporter.logMessage(format("Saved idb '%s'.", target.c_str()));
  // Saving sorts the records.  Lines that kept the old order would make the
  // next edit hit records other than the ones the user selected.
  if (!wasSorted) {
    refresh();
    deselectAll();
  }
  return Outcome::success();
}

bool FileListModel::abandonChanges() {
  if (!_modified) return true;
  const std::string& name = _idb->name();
  if (name.empty())
    return _reporter.question(
        "There have been changes since you last saved.\nAbandon changes to idb file?\n");
  return _reporter.question(format(
      "There have been changes since you last saved.\nAbandon changes to idb file '%s'?\n",
      name.c_str()));
}

void FileListModel::clear() {
  if (!abandonChanges()) return;
  _idb = std::make_unique<Idb>();
  setIdbFileName("");
  _idb->setSourceRoot(_sourceRoot);
  _backup->setSourceRoot(_sourceRoot);
  refresh();
  refreshPartners();
}

void FileListModel::setIdbFileName(const std::string& name) {
  _idbFileName = name;
  if (_display) _display->fileNameChanged(fileNameLabel());
}

std::string FileListModel::fileNameLabel() const { return "Idb File:  " + _idbFileName; }

// ---- lines and selection ---------------------------------------------------------

void FileListModel::refresh() {
  assert(_idb && "FileList");
  resizeSelection();
  if (_view == kHierarchyView) return;
  if (_view < kHierarchyView || _view > kBuildView) {
    std::fprintf(stderr, "FileList::refresh\tUnrecognized view: %d\n", _view);
    return;
  }
  // Lines are made when asked for: the list asks for the few it shows and
  // the filter for each in turn, so no copy of a million lines is kept.
  _shownView = _view;
  _lineCount = _idb->count();
  if (_display) _display->linesChanged();
}

void FileListModel::formatLine(int index, std::string& out) const {
  out.clear();
  const ::idb* rec = (*_idb)[index];
  char modeText[32];
  switch (_shownView) {
    case kTagView:
      out += rec->tag();
      out += ' ';
      out += rec->srcpath();
      break;
    case kPermsView:
      std::snprintf(modeText, sizeof modeText, "%c %04o ", rec->type(),
                    static_cast<unsigned>(rec->mode()));
      out += modeText;
      out += rec->owner();
      out += ' ';
      out += rec->group();
      out += ' ';
      out += rec->dstpath();
      break;
    case kAttributesView:
      out += rec->dstpath();
      for (int a = 0; a < rec->nattrs(); a++) {
        out += ' ';
        out += rec->attr(a);
      }
      break;
    case kBuildView:
      _idb->write(out, static_cast<unsigned>(index));
      break;
  }
}

std::string_view FileListModel::line(int position) const {
  if (_linesHidden) return {};
  if (position < 1 || position > lineCount() || position > _idb->count()) return {};
  formatLine(position - 1, _lineBuffer);
  return _lineBuffer;
}

void FileListModel::resizeSelection() { _selected.resize(_idb->count()); }

void FileListModel::selectOnly(const std::vector<char>& flags) {
  _selected.resize(_idb->count());
  _selected.assign(flags);
  notifySelection();
}

void FileListModel::notifySelection() {
  if (_display) _display->selectionChanged();
}

bool FileListModel::selectMatching(const std::string& expr) {
  LineMatcher matcher(expr);
  if (!matcher.ok()) {
    _reporter.bell();
    return false;
  }
  BusyScope busy(_busy);
  std::vector<char> flags(_idb->count(), 0);
  const int n = std::min(lineCount(), _idb->count());
  // "All" and "None" say what they select without running over the text.
  if (matcher.matchesEveryLine()) {
    std::fill(flags.begin(), flags.begin() + n, 1);
  } else if (matcher.matchesOnlyEmptyLine()) {
    for (int p = 1; p <= n; p++) flags[p - 1] = line(p).empty();
  } else {
    // Matching costs about the same per line whatever the expression, so
    // a long list is cut in two and a helper thread takes the second half,
    // making lines in a buffer of its own; the halves write apart.
    // Each thread has a matcher of its own, so they never wait for each
    // other on the expression's shared state.
    auto scan = [&](const LineMatcher& m, int from, int to) {
      std::string text;
      for (int p = from; p <= to; p++) {
        formatLine(p - 1, text);
        flags[p - 1] = m.matches(text);
      }
    };
    auto scanSecondHalf = [&](int from) {
      LineMatcher own(expr);
      scan(own, from, n);
    };
    const int split = n >= kParallelLines ? n / 2 : n;
    std::thread helper;
    if (split < n) {
      try {
        helper = std::thread(scanSecondHalf, split + 1);
      } catch (const std::system_error&) {
        // No thread to be had: this one does both halves.
      }
    }
    scan(matcher, 1, split);
    if (helper.joinable()) helper.join();
    else if (split < n) scan(matcher, split + 1, n);
  }
  selectOnly(flags);
  return true;
}

void FileListModel::selectTag(const std::string& tag) {
  BusyScope busy(_busy);
  std::vector<char> flags(_idb->count(), 0);
  for (int i = 0; i < _idb->count(); i++) flags[i] = (*_idb)[i]->tag() == tag;
  selectOnly(flags);
}

void FileListModel::setSelectedPositions(const std::vector<int>& positions) {
  std::vector<char> flags(_idb->count(), 0);
  for (int p : positions)
    if (p >= 1 && p <= _idb->count()) flags[p - 1] = 1;
  selectOnly(flags);
}

void FileListModel::deselectAll() {
  _selected.resize(_idb->count());
  _selected.clear();
  notifySelection();
}

void FileListModel::selectOne(int position) {
  _selected.resize(_idb->count());
  _selected.selectOnly(position);
  notifySelection();
}

void FileListModel::toggleSelected(int position) {
  _selected.resize(_idb->count());
  _selected.toggle(position);
  notifySelection();
}

void FileListModel::selectRange(int first, int last) {
  _selected.resize(_idb->count());
  _selected.selectOnlyRange(first, last);
  notifySelection();
}

void FileListModel::setRangeSelected(int first, int last, bool on) {
  _selected.resize(_idb->count());
  _selected.setRange(first, last, on);
  notifySelection();
}

void FileListModel::selectAll() {
  _selected.resize(_idb->count());
  _selected.selectAll();
  notifySelection();
}

bool FileListModel::isSelected(int position) const { return _selected.has(position); }

std::vector<int> FileListModel::selectedPositions() const { return _selected.positions(); }

int FileListModel::totalDirsSelected() const {
  int n = 0;
  for (int i = 0; i < _selected.size(); i++)
    if (_selected[i] && (*_idb)[static_cast<int>(i)]->type() == 'd') n++;
  return n;
}

void FileListModel::showCurrent(int position) {
  if (position < 1 || position > _idb->count()) return;
  // Looking for every record's file takes a while on a large idb.
  BusyScope busy(_busy);
  if (cantPrependRoot(_sourceRoot, false) > 0) {
    cantPrependRoot(_sourceRoot, true);
    return;
  }
  const ::idb* rec = (*_idb)[position - 1];
  const std::string src(rec->srcpath());
  if (_addPanel) _addPanel->setCurrent(join(_sourceRoot, src));
  if (_tagsPanel) _tagsPanel->setCurrent(std::string(rec->tag()));
  if (_permsPanel)
    _permsPanel->setCurrent(src, std::string(rec->dstpath()), rec->mode(),
                            std::string(rec->owner()), std::string(rec->group()));
  if (_attrsPanel) _attrsPanel->setCurrent(rec->attrs());
}

// ---- whole-list operations -----------------------------------------------------------

void FileListModel::refreshPartners() {
  if (_addPanel) _addPanel->refresh();
  if (_tagsPanel) _tagsPanel->refresh();
}

void FileListModel::add(const std::vector<std::string>& paths) {
  if (paths.empty()) return;
  // New records are made relative to the source root; with records missing
  // under it the user has to settle the root first.
  if (cantPrependRoot(_sourceRoot, false) > 0) {
    cantPrependRoot(_sourceRoot, true);
    return;
  }
  BusyScope busy(_busy);
  std::vector<const std::string*> storable = storablePaths(paths);
  if (storable.empty()) return;
  {
    Edit edit(*this);
    const std::string tag = _tagsPanel ? _tagsPanel->getCurrent() : std::string();
    for (const std::string* path : storable) _idb->add(*path, tag, _sourceRoot);
    _modified = true;
  }
  if (_display) _display->showLastLine();
}

// The paths that can become records.  The source root itself has no name
// of its own under the root and is left out silently (what lies below it is
// added); a path outside the root, or whose name an idb line cannot hold,
// is left out with a line in the message log, which is then shown.
std::vector<const std::string*> FileListModel::storablePaths(
    const std::vector<std::string>& paths) {
  std::vector<const std::string*> storable;
  storable.reserve(paths.size());
  const std::string under = _sourceRoot == "/" ? "/" : _sourceRoot + "/";
  bool skipped = false;
  for (const std::string& path : paths) {
    if (path == _sourceRoot) continue;
    std::string why;
    if (path.compare(0, under.size(), under) != 0) {
      why = "it is outside Source Root '" + _sourceRoot + "'";
    } else if (const char* problem = Idb::unstorable(Idb::relativePath(path, _sourceRoot))) {
      if (std::strcmp(problem, "is empty") == 0) continue;  // "/" under the root "/"
      why = std::string("its name ") + problem + ", which an idb line cannot hold";
    } else {
      storable.push_back(&path);
      continue;
    }
    _reporter.logMessage("Skipped '" + visibleText(path) + "': " + why + ".");
    skipped = true;
  }
  if (skipped) _reporter.showMessages();
  return storable;
}

void FileListModel::removeItems(const std::vector<char>& doomed) {
  std::vector<unsigned> items;
  for (size_t i = 0; i < doomed.size(); i++)
    if (doomed[i]) items.push_back(static_cast<unsigned>(i) + 1);
  if (!items.empty()) _idb->removeItems(std::move(items));
}

void FileListModel::removeSelected() {
  if (_selected.count() == 0) return;
  BusyScope busy(_busy);
  Edit edit(*this);
  // Records go from the last selected to the first; a removed record's source
  // path is unmarked in the browser when, at that moment, no remaining record
  // installs to it.  Remaining then are the unselected records and the
  // selected ones before it.  One pass over the destinations answers that for
  // every removed source path at once.
  struct Installers {
    bool unselected = false;
    int firstSelected = INT_MAX;
  };
  std::vector<std::string> unmarks;
  if (_addPanel) {
    const int n = _idb->count();
    std::unordered_map<std::string_view, Installers> removedSources;
    for (int i = 0; i < n; i++)
      if (_selected[i]) removedSources.emplace((*_idb)[i]->srcpath(), Installers());
    for (int i = 0; i < n; i++) {
      auto found = removedSources.find((*_idb)[i]->dstpath());
      if (found == removedSources.end()) continue;
      if (!_selected[i])
        found->second.unselected = true;
      else if (i < found->second.firstSelected)
        found->second.firstSelected = i;
    }
    for (int i = n - 1; i >= 0; i--) {
      if (!_selected[i]) continue;
      const Installers& by = removedSources[(*_idb)[i]->srcpath()];
      if (!by.unselected && by.firstSelected >= i) unmarks.emplace_back((*_idb)[i]->srcpath());
    }
  }
  removeItems(_selected.flags());
  for (const std::string& src : unmarks) _addPanel->unmark(src);
  _modified = true;
  deselectAll();
}

FileListModel::Edit::Edit(FileListModel& model) : _model(model) {
  if (_model._editDepth++ == 0) _model.backup();
}

FileListModel::Edit::~Edit() {
  if (--_model._editDepth == 0) _model.refresh();
}

void FileListModel::backup() {
  *_backup = *_idb;
  // The copy carries the root its paths are relative to, so that undoing a
  // root move brings both back together.
  _backup->setSourceRoot(_idb->sourceRoot());
}

void FileListModel::undo() {
  std::swap(_idb, _backup);
  refresh();
  if (!_idb->sourceRoot().empty()) _sourceRoot = _idb->sourceRoot();
  updateSourceRootFields();
  refreshPartners();
}

void FileListModel::fixTag(const std::string& oldTag, const std::string& newTag) {
  for (int i = 0; i < _idb->count(); i++) {
    if ((*_idb)[i]->tag() == oldTag) {
      _idb->setTag(i, newTag);
      _modified = true;
    }
  }
}

std::unique_ptr<StringSet> FileListModel::getTags() const {
  auto tags = std::make_unique<StringSet>("Tags in File List");
  for (int i = 0; i < _idb->count(); i++) tags->add(std::string((*_idb)[i]->tag()));
  return tags;
}

std::vector<std::string> FileListModel::getList() const {
  std::vector<std::string> out;
  out.reserve(_idb->count());
  std::string buffer;
  for (int i = 1; i <= _idb->count(); i++) out.emplace_back(listLine(i, buffer));
  return out;
}

std::string_view FileListModel::listLine(int item, std::string& buffer) const {
  buffer.clear();
  if (item < 1 || item > _idb->count()) return buffer;
  const ::idb* rec = (*_idb)[item - 1];
  buffer += rec->tag();
  buffer += ' ';
  buffer += rec->srcpath();
  return buffer;
}

void FileListModel::createPatch(const std::string& patchName, const std::vector<int>& keep) {
  BusyScope busy(_busy);
  // The records that go and the new tags are one step.
  Edit edit(*this);
  // From the last item down, with a cursor into keep that moves down past
  // every entry above the item: what is not under the cursor goes.
  std::vector<char> doomed(_idb->count(), 0);
  int cursor = static_cast<int>(keep.size()) - 1;
  for (int item = _idb->count(); item >= 1; item--) {
    while (cursor >= 0 && keep[cursor] > item) cursor--;
    if (cursor < 0 || keep[cursor] != item) doomed[item - 1] = 1;
  }
  removeItems(doomed);
  deselectAll();

  if (_specGraph) {
    // The patch subsystem depends only on the old tag; ask once per tag.
    std::unordered_map<std::string, std::string> patchTags;
    for (int i = 0; i < _idb->count(); i++) {
      const std::string oldTag((*_idb)[i]->tag());
      auto known = patchTags.find(oldTag);
      if (known == patchTags.end())
        known = patchTags.emplace(oldTag, _specGraph->createPatchSubsystem(patchName, oldTag)).first;
      _idb->setTag(i, known->second);
    }
    for (;;) {
      const std::string product = _specGraph->getProductName();
      if (product.empty() || product == patchName) break;
      _specGraph->deleteProduct(product);
      // A graph that keeps the product would otherwise be asked forever.
      if (_specGraph->getProductName() == product) break;
    }
  }
  _modified = true;
  setIdbFileName("");
  _idb->setName("");
  refreshPartners();
}

// ---- edits of the selected records -------------------------------------------------

template <class Change>
bool FileListModel::editSelected(Change change) {
  if (_selected.count() == 0) return false;
  Edit step(*this);
  for (int i = 0; i < _selected.size() && i < _idb->count(); i++)
    if (_selected[i]) change(i);
  _modified = true;
  return true;
}

void FileListModel::replaceMode(unsigned long mode) {
  editSelected([&](int i) { _idb->setMode(i, static_cast<std::uint32_t>(mode & 0xFFFF)); });
}

void FileListModel::replaceOwner(const std::string& typed) {
  const std::string owner = deblanked(typed);
  if (owner.empty()) return;
  editSelected([&](int i) { _idb->setOwner(i, owner); });
}

void FileListModel::replaceGroup(const std::string& typed) {
  const std::string group = deblanked(typed);
  if (group.empty()) return;
  editSelected([&](int i) { _idb->setGroup(i, group); });
}

void FileListModel::replaceSourceDir(const std::string& typed) {
  const std::string dir = deblanked(typed);
  editSelected([&](int i) {
    _idb->setSrcpath(i, dir + "/" + mypathbasename(std::string((*_idb)[i]->srcpath())));
  });
}

void FileListModel::replaceSourceFile(const std::string& typed) {
  const std::string name = deblanked(typed);
  editSelected([&](int i) {
    _idb->setSrcpath(i, mypathdirname(std::string((*_idb)[i]->srcpath())) + "/" +
                            mypathbasename(name));
  });
}

void FileListModel::replaceDestDir(const std::string& typed) {
  const std::string dir = deblanked(typed);
  editSelected([&](int i) {
    _idb->setDstpath(i, dir + "/" + mypathbasename(std::string((*_idb)[i]->dstpath())));
  });
}

void FileListModel::replaceDestFile(const std::string& typed) {
  const std::string name = deblanked(typed);
  // A bare destination name has the directory "." and one directly under the
  // root "", so "x" becomes "./y" and "/x" becomes "/y"; installations rely on
  // that.
  editSelected([&](int i) {
    _idb->setDstpath(i, mypathdirname(std::string((*_idb)[i]->dstpath())) + "/" +
                            mypathbasename(name));
  });
}

void FileListModel::replaceTag(const std::string& tag) {
  editSelected([&](int i) { _idb->setTag(i, tag); });
}

void FileListModel::addAttribute(const std::string& attr) {
  editSelected([&](int i) { _idb->addAttribute(static_cast<unsigned>(i) + 1, attr); });
}

void FileListModel::addDirsAttribute(const std::string& attr) {
  editSelected([&](int i) {
    if ((*_idb)[i]->type() == 'd') _idb->addAttribute(static_cast<unsigned>(i) + 1, attr);
  });
}

void FileListModel::deleteAttributes() {
  editSelected([&](int i) { _idb->deleteAttributes(static_cast<unsigned>(i) + 1); });
}
