// Arbitrary edits of an arbitrary idb through the file list model.  The
// input is an idb text, a NUL, then operations (one byte each, some followed
// by an argument byte).  After every operation the list must show one line
// per record and the selection must name existing records only.
#include <dirent.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "filelist/FileListModel.h"
#include "idb/StringSet.h"
#include "util/Reporter.h"

namespace {

void check(bool ok) {
  if (!ok) std::abort();
}

// Says nothing, agrees to everything.
class QuietReporter : public Reporter {
 public:
  void logMessage(const std::string&) override {}
  void showMessages() override {}
  void error(const std::string&) override {}
  void warning(const std::string&) override {}
  bool question(const std::string&) override { return true; }
  void bell() override {}
};

// A scratch file for the idb text, in a directory named after the process:
// removed when the run ends normally, and by the next run when a timeout or
// a crash ended it at once.
const char kPrefix[] = "filelist-fuzz-";
std::string scratchDir;

std::string tempRoot() {
  const char* t = std::getenv("TMPDIR");
  return t && *t ? t : "/tmp";
}

void removeScratch(const std::string& dir) {
  unlink((dir + "/in.idb").c_str());
  rmdir(dir.c_str());
}

void removeOwnScratch() { removeScratch(scratchDir); }

void removeStaleScratch() {
  std::string root = tempRoot();
  DIR* d = opendir(root.c_str());
  if (!d) return;
  while (dirent* e = readdir(d)) {
    if (std::strncmp(e->d_name, kPrefix, sizeof kPrefix - 1) != 0) continue;
    long pid = std::strtol(e->d_name + sizeof kPrefix - 1, nullptr, 10);
    if (pid > 0 && kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
      removeScratch(root + "/" + e->d_name);
  }
  closedir(d);
}

const std::string& scratchFile() {
  static const std::string path = [] {
    removeStaleScratch();
    scratchDir = tempRoot() + "/" + kPrefix + std::to_string(getpid());
    if (mkdir(scratchDir.c_str(), 0700) != 0 && errno != EEXIST) std::abort();
    std::atexit(removeOwnScratch);
    return scratchDir + "/in.idb";
  }();
  return path;
}

const char* const kWords[] = {"t", "a.b.c", ".*", "^$", "[", "lib", "x/y", "", "/", "0",
                              "symval(x)", "d"};

void checkInvariants(FileListModel& model) {
  const int count = model.idb().count();
  if (model.view() >= FileListModel::kTagView && model.view() <= FileListModel::kBuildView) {
    model.refresh();
    check(model.lineCount() == count);
  }
  std::vector<int> selected = model.selectedPositions();
  check(static_cast<int>(selected.size()) == model.totalSelected());
  for (int p : selected) check(p >= 1 && p <= count && model.isSelected(p));
  check(model.totalDirsSelected() <= model.totalSelected());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const size_t split = input.find('\0');
  std::string_view text = input.substr(0, split);
  std::string_view ops = split == std::string_view::npos ? std::string_view() : input.substr(split + 1);

  std::FILE* f = std::fopen(scratchFile().c_str(), "w");
  if (!f) return 0;
  std::fwrite(text.data(), 1, text.size(), f);
  std::fclose(f);

  QuietReporter reporter;
  FileListModel model(reporter);
  model.setView(FileListModel::kTagView);
  // Most inputs do not read; a failed open leaves the model as it was, empty.
  if (!model.open(scratchFile()).ok()) check(model.idb().count() == 0);
  checkInvariants(model);

  for (size_t i = 0; i < ops.size(); i++) {
    const unsigned char op = static_cast<unsigned char>(ops[i]);
    const unsigned char arg = i + 1 < ops.size() ? static_cast<unsigned char>(ops[++i]) : 0;
    const std::string word = kWords[arg % (sizeof kWords / sizeof *kWords)];
    const int count = model.idb().count();
    // Gestures name positions just outside the list too.
    const int position = count > 0 ? static_cast<int>(arg) % (count + 2) : static_cast<int>(arg) % 3;
    const int other = count > 0 ? static_cast<int>(arg * 31u) % (count + 2) : 0;
    switch (op % 25) {
      case 0: model.selectMatching(word); break;
      case 1: model.selectMatching(std::string(1, static_cast<char>(arg))); break;
      case 2: {
        std::vector<int> positions;
        for (int p = 1; p <= count; p++)
          if ((p * 7 + arg) % 3 == 0) positions.push_back(p);
        model.setSelectedPositions(positions);
        break;
      }
      case 3: model.selectTag(word); break;
      case 4: model.replaceTag(word.empty() ? "t" : word); break;
      case 5: model.replaceDestFile(word); break;
      case 6: model.replaceSourceDir(word); break;
      case 7: model.addAttribute(word.empty() ? "x" : word); break;
      case 8: model.addDirsAttribute("config(suggest)"); break;
      case 9: model.deleteAttributes(); break;
      case 10: model.removeSelected(); break;
      case 11: model.undo(); break;
      case 12: { FileListModel::Edit step(model); } break;
      case 13: model.createPatch("patch", model.selectedPositions()); break;
      case 14: model.fixTag(word, "renamed.sw.x"); break;
      case 15: model.setView(arg % 5); break;
      case 16: model.replaceMode(arg * 0x1111UL); break;
      case 17: model.srcpathsInDir(model.sourceRoot() + "/" + word); break;
      case 18: check(model.getTags()->count() <= count); break;
      case 19: check(static_cast<int>(model.getList().size()) == count); break;
      case 20: model.selectOne(position); break;
      case 21: model.toggleSelected(position); break;
      case 22: model.selectRange(position, other); break;
      case 23: model.setRangeSelected(other, position, arg & 1); break;
      case 24: model.selectAll(); break;
    }
    checkInvariants(model);
  }
  return 0;
}
