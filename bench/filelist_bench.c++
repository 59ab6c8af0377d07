// Times the file list model on a large idb: a source tree of real files and
// an idb of many records pointing into it, then open, select by expression,
// re-tag half the records, undo, remove a tenth, save and the root check.
// Prints each step's wall time and the peak resident memory after it.
//
//   filelist_bench [workdir] [records] [files]
//
// The tree (files in directories of 100) and the idb are generated once in
// workdir and reused by later runs.
#include <sys/resource.h>
#include <sys/stat.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "filelist/AddFilesPartner.h"
#include "filelist/FileListModel.h"
#include "util/Reporter.h"

namespace {

const char* const kTags[] = {"tool.sw.base", "tool.sw.lib", "tool.man.pages", "tool.sw.dev",
                             "tool.books.help"};

std::string fileName(int i) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "d%04d/file%07d.o", i / 100, i);
  return buf;
}

// The tree holds files 0 .. files-1 (empty regular files).
void makeTree(const std::string& root, int files) {
  std::string marker = root + "/.complete";
  if (access(marker.c_str(), F_OK) == 0) return;
  mkdir(root.c_str(), 0755);
  for (int i = 0; i < files; i++) {
    if (i % 100 == 0) mkdir((root + "/" + fileName(i).substr(0, 5)).c_str(), 0755);
    int fd = ::open((root + "/" + fileName(i)).c_str(), O_CREAT | O_WRONLY, 0644);
    if (fd < 0) {
      std::perror("create");
      std::exit(1);
    }
    close(fd);
  }
  close(::open(marker.c_str(), O_CREAT | O_WRONLY, 0644));
}

// Record i installs to a destination of its own, in scrambled order so that
// saving has to sort, and takes its source from file i % files.
void makeIdb(const std::string& path, int records, int files) {
  if (access(path.c_str(), F_OK) == 0) return;
  std::FILE* out = std::fopen(path.c_str(), "w");
  if (!out) {
    std::perror(path.c_str());
    std::exit(1);
  }
  for (int i = 0; i < records; i++) {
    unsigned scrambled = static_cast<unsigned>(i) * 2654435761u % static_cast<unsigned>(records);
    std::fprintf(out, "f 0644 root sys usr/share/tool/%07u/%s %s %s%s\n", scrambled,
                 fileName(i % files).c_str() + 6, fileName(i % files).c_str(), kTags[i % 5],
                 i % 7 ? "" : " config(noupdate) preop('chmod 644 x')");
  }
  std::fclose(out);
}

// The browser beside the list, as far as the list talks to it.
class CountingAddPanel : public AddFilesPartner {
 public:
  void newSourceRootDirectory(const std::string&) override {}
  void unmark(const std::string&) override { unmarked++; }
  void refresh() override {}
  void setCurrent(const std::string&) override {}
  long unmarked = 0;
};

long peakKb() {
  struct rusage u;
  getrusage(RUSAGE_SELF, &u);
  return u.ru_maxrss;
}

double cpuSeconds(int who) {
  struct rusage u;
  getrusage(who, &u);
  return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

// Wall time, processor time (this process and its finished children, so that
// the find below counts) and the peak resident memory so far.
void step(const char* name, const std::function<std::string()>& body) {
  auto t0 = std::chrono::steady_clock::now();
  double c0 = cpuSeconds(RUSAGE_SELF) + cpuSeconds(RUSAGE_CHILDREN);
  std::string note = body();
  double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  double c = cpuSeconds(RUSAGE_SELF) + cpuSeconds(RUSAGE_CHILDREN) - c0;
  std::printf("%-48s %7.3f s wall %7.3f s cpu %6ld MB peak  %s\n", name, s, c, peakKb() / 1024,
              note.c_str());
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string work = argc > 1 ? argv[1] : "/tmp/tamblin-filelist-bench";
  const int records = argc > 2 ? std::atoi(argv[2]) : 1000000;
  const int files = argc > 3 ? std::atoi(argv[3]) : 100000;
  const std::string tree = work + "/src";
  mkdir(work.c_str(), 0755);

  step("generate tree and idb (first run only)", [&] {
    makeTree(tree, files);
    makeIdb(work + "/big.idb", records, files);
    makeIdb(work + "/tree.idb", files, files);
    return std::string();
  });

  StreamReporter reporter(stderr);
  FileListModel model(reporter);
  CountingAddPanel addPanel;
  model.setAddFilesPartner(&addPanel);
  model.setView(FileListModel::kTagView);
  if (!model.setSourceRoot(tree)) return 1;

  step("open", [&] {
    Outcome opened = model.open(work + "/big.idb");
    return opened.ok() ? std::to_string(model.idb().count()) + " records" : opened.message();
  });
  step("open again (the old idb is replaced)", [&] {
    Outcome opened = model.open(work + "/big.idb");
    return opened.ok() ? std::to_string(model.idb().count()) + " records" : opened.message();
  });
  step("select by expression on the tag, ^[a-z]+.(sw...) ", [&] {
    model.selectMatching("^[a-z]+.(sw.base|sw.lib|sw.dev) ");
    return std::to_string(model.totalSelected()) + " selected";
  });
  step("select by expression \"^$\" (None)", [&] {
    model.selectMatching(FileListModel::kSelectNoneExpression);
    return std::to_string(model.totalSelected()) + " selected";
  });
  step("select by expression \".*\" (All)", [&] {
    model.selectMatching(FileListModel::kSelectAllExpression);
    return std::to_string(model.totalSelected()) + " selected";
  });
  step("select by expression \"sw\\.lib\"", [&] {
    model.selectMatching("sw\\.lib");
    return std::to_string(model.totalSelected()) + " selected";
  });
  step("select by expression \"[0-9]+\\.o$\"", [&] {
    model.selectMatching("[0-9]+\\.o$");
    return std::to_string(model.totalSelected()) + " selected";
  });
  step("replace the tag of half the records", [&] {
    std::vector<int> half;
    for (int p = 1; p <= model.idb().count(); p += 2) half.push_back(p);
    model.setSelectedPositions(half);
    model.replaceTag("tool.sw.patched");
    model.refresh();
    return std::to_string(half.size()) + " re-tagged";
  });
  step("undo", [&] {
    model.undo();
    return std::string(model.line(1));
  });
  step("remove a tenth", [&] {
    std::vector<int> tenth;
    for (int p = 1; p <= model.idb().count(); p += 10) tenth.push_back(p);
    model.setSelectedPositions(tenth);
    model.removeSelected();
    return std::to_string(model.idb().count()) + " left, " + std::to_string(addPanel.unmarked) +
           " unmarked";
  });
  step("save", [&] {
    return model.save((work + "/saved.idb").c_str()).message();
  });
  step("cantPrependRoot, every record", [&] {
    return std::to_string(model.cantPrependRoot(tree, false)) + " not found";
  });

  FileListModel small(reporter);
  small.setSourceRoot(tree);
  if (!small.open(work + "/tree.idb").ok()) return 1;
  step("cantPrependRoot, one record per file of the tree", [&] {
    return std::to_string(small.cantPrependRoot(tree, false)) + " not found of " +
           std::to_string(small.idb().count());
  });
  step("find -follow -print on the tree", [&] {
    std::string cmd = "/bin/find " + tree + " -follow -print";
    std::FILE* p = popen(cmd.c_str(), "r");
    long lines = 0;
    char buf[4096];
    while (std::fgets(buf, sizeof buf, p)) lines++;
    pclose(p);
    return std::to_string(lines) + " lines";
  });
  return 0;
}
