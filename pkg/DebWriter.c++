#include "pkg/DebWriter.h"

#include <archive.h>
#include <archive_entry.h>
#include <elf.h>
#include <fcntl.h>
#include <grp.h>
#include <nettle/md5.h>
#include <nettle/sha2.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <thread>
#include <unordered_map>
#include <vector>

#include "pkg/PackagePlan.h"

namespace {

// Owner and group names go into the archive as written; the numbers beside
// them are this machine's where it knows the name (dpkg prefers the names).
class Ids {
 public:
  la_int64_t uid(const std::string& name) {
    auto [it, fresh] = _uids.try_emplace(name, 0);
    if (fresh)
      if (const passwd* pw = getpwnam(name.c_str())) it->second = pw->pw_uid;
    return it->second;
  }
  la_int64_t gid(const std::string& name) {
    auto [it, fresh] = _gids.try_emplace(name, 0);
    if (fresh)
      if (const group* gr = getgrnam(name.c_str())) it->second = gr->gr_gid;
    return it->second;
  }

 private:
  std::unordered_map<std::string, la_int64_t> _uids, _gids;
};

struct ArchiveDeleter {
  void operator()(archive* a) const { archive_write_free(a); }
};
using Archive = std::unique_ptr<archive, ArchiveDeleter>;

struct EntryDeleter {
  void operator()(archive_entry* e) const { archive_entry_free(e); }
};
using Entry = std::unique_ptr<archive_entry, EntryDeleter>;

Archive newTar(bool compress) {
  Archive a(archive_write_new());
  archive_write_set_format_gnutar(a.get());
  if (compress) {
    archive_write_add_filter_xz(a.get());
    // As dpkg-deb does: xz on every core.  Always the multi-threaded
    // encoder (at least two threads), whose output depends on the block
    // size only, so that machines with any number of cores write the same
    // bytes.
    const unsigned cores = std::max(2u, std::thread::hardware_concurrency());
    archive_write_set_filter_option(a.get(), "xz", "threads", std::to_string(cores).c_str());
  }
  archive_write_set_bytes_in_last_block(a.get(), 1);
  return a;
}

std::string archiveError(archive* a, const std::string& what) {
  const char* why = archive_error_string(a);
  return what + ": " + (why ? why : "archive error");
}

// Collects an archive in memory.
la_ssize_t toString(archive*, void* data, const void* buf, size_t n) {
  static_cast<std::string*>(data)->append(static_cast<const char*>(buf), n);
  return static_cast<la_ssize_t>(n);
}

// Writes the outer archive to a file and hashes it on the way.
struct HashedFile {
  int fd;
  md5_ctx md5;
  sha256_ctx sha;
  std::uint64_t size = 0;
};

la_ssize_t toHashedFile(archive* a, void* data, const void* buf, size_t n) {
  auto* out = static_cast<HashedFile*>(data);
  const char* p = static_cast<const char*>(buf);
  size_t left = n;
  while (left > 0) {
    ssize_t w = ::write(out->fd, p, left);
    if (w < 0) {
      if (errno == EINTR) continue;
      archive_set_error(a, errno, "%s", std::strerror(errno));
      return -1;
    }
    p += w;
    left -= static_cast<size_t>(w);
  }
  md5_update(&out->md5, n, static_cast<const std::uint8_t*>(buf));
  sha256_update(&out->sha, n, static_cast<const std::uint8_t*>(buf));
  out->size += n;
  return static_cast<la_ssize_t>(n);
}

// Runs strip on source into target; false when it failed.
bool strip(const std::string& source, const std::string& target, bool shared) {
  std::vector<const char*> argv = {"strip", "--remove-section=.comment", "--remove-section=.note"};
  if (shared) argv.push_back("--strip-unneeded");
  argv.insert(argv.end(), {"-o", target.c_str(), source.c_str(), nullptr});
  pid_t pid = fork();
  if (pid < 0) return false;
  if (pid == 0) {
    execvp("strip", const_cast<char* const*>(argv.data()));
    _exit(127);
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Runs argv in cwd; its standard output into *out.  False unless it exits 0.
bool runCapture(const std::vector<std::string>& args, const std::string& cwd, std::string* out) {
  int pipefd[2];
  if (pipe2(pipefd, O_CLOEXEC) != 0) return false;
  pid_t pid = fork();
  if (pid < 0) return false;
  if (pid == 0) {
    dup2(pipefd[1], 1);
    // Its advice is for source packages, not for us.
    int null = ::open("/dev/null", O_WRONLY);
    if (null >= 0) dup2(null, 2);
    if (chdir(cwd.c_str()) != 0) _exit(127);
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  ::close(pipefd[1]);
  char buf[4096];
  for (ssize_t n; (n = ::read(pipefd[0], buf, sizeof buf)) != 0;) {
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) break;
    out->append(buf, static_cast<size_t>(n));
  }
  ::close(pipefd[0]);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// A shared library in a directory the dynamic linker searches: ldconfig must
// run when it comes and goes, and other packages learn its dependency from
// the shlibs file.
bool publicLibrary(const std::string& path) {
  const std::string dir = path.substr(0, path.rfind('/'));
  for (const char* base : {"./lib", "./usr/lib", "./lib64", "./usr/lib64", "./usr/local/lib"}) {
    const std::string b = base;
    if (dir == b) return true;
    // A multiarch directory such as usr/lib/x86_64-linux-gnu.
    if (dir.compare(0, b.size() + 1, b + "/") == 0 &&
        dir.find('/', b.size() + 1) == std::string::npos &&
        dir.find("-linux-") != std::string::npos)
      return true;
  }
  return false;
}

template <typename Ehdr, typename Shdr, typename Dyn>
std::string sonameOf(int fd) {
  Ehdr eh;
  if (::pread(fd, &eh, sizeof eh, 0) != sizeof eh || eh.e_shentsize != sizeof(Shdr)) return "";
  for (unsigned i = 0; i < eh.e_shnum && i < 4096; i++) {
    Shdr sh;
    if (::pread(fd, &sh, sizeof sh, static_cast<off_t>(eh.e_shoff + i * sizeof sh)) != sizeof sh)
      return "";
    if (sh.sh_type != SHT_DYNAMIC) continue;
    Shdr str;
    if (::pread(fd, &str, sizeof str, static_cast<off_t>(eh.e_shoff + sh.sh_link * sizeof str)) !=
        sizeof str)
      return "";
    for (std::uint64_t off = 0; off + sizeof(Dyn) <= sh.sh_size; off += sizeof(Dyn)) {
      Dyn d;
      if (::pread(fd, &d, sizeof d, static_cast<off_t>(sh.sh_offset + off)) != sizeof d) return "";
      if (d.d_tag == DT_NULL) break;
      if (d.d_tag != DT_SONAME) continue;
      char name[256] = "";
      ssize_t n = ::pread(fd, name, sizeof name - 1, static_cast<off_t>(str.sh_offset + d.d_un.d_val));
      if (n <= 0) return "";
      name[n] = '\0';
      return name;
    }
  }
  return "";
}

std::string soname(const std::string& path) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return "";
  unsigned char ident[EI_NIDENT] = {};
  std::string name;
  if (::pread(fd, ident, sizeof ident, 0) == EI_NIDENT)
    name = ident[EI_CLASS] == ELFCLASS64 ? sonameOf<Elf64_Ehdr, Elf64_Shdr, Elf64_Dyn>(fd)
                                         : sonameOf<Elf32_Ehdr, Elf32_Shdr, Elf32_Dyn>(fd);
  ::close(fd);
  return name;
}

// "libgreet.so.1" -> "libgreet 1"; "libx-2.0.so" -> "libx 2.0".
std::string shlibsKey(const std::string& soname) {
  size_t so = soname.find(".so.");
  if (so != std::string::npos) return soname.substr(0, so) + " " + soname.substr(so + 4);
  if (soname.size() > 3 && soname.compare(soname.size() - 3, 3, ".so") == 0) {
    std::string stem = soname.substr(0, soname.size() - 3);
    size_t dash = stem.rfind('-');
    if (dash != std::string::npos) return stem.substr(0, dash) + " " + stem.substr(dash + 1);
  }
  return "";
}

class DataWriter {
 public:
  DataWriter(const DebOptions& options, archive* a) : _options(options), _a(a) {}

  std::optional<std::string> add(const PlannedFile& f) {
    Entry e(archive_entry_new());
    archive_entry_set_pathname(e.get(), f.path.c_str());
    archive_entry_set_uname(e.get(), f.owner.c_str());
    archive_entry_set_gname(e.get(), f.group.c_str());
    archive_entry_set_uid(e.get(), _ids.uid(f.owner));
    archive_entry_set_gid(e.get(), _ids.gid(f.group));
    archive_entry_set_mtime(e.get(), _options.mtime, 0);
    const mode_t perms = f.mode & 07777;
    _entries++;
    switch (f.type) {
      case 'd':
        archive_entry_set_mode(e.get(), AE_IFDIR | perms);
        _kib++;
        return header(e.get(), f);
      case 'l':
        archive_entry_set_mode(e.get(), AE_IFLNK | 0777);
        archive_entry_set_symlink(e.get(), f.linkTarget.c_str());
        _kib++;
        return header(e.get(), f);
      case 'b':
      case 'c':
        archive_entry_set_mode(e.get(), (f.type == 'b' ? AE_IFBLK : AE_IFCHR) | perms);
        archive_entry_set_rdevmajor(e.get(), f.major);
        archive_entry_set_rdevminor(e.get(), f.minor);
        _kib++;
        return header(e.get(), f);
      case 'p':
        archive_entry_set_mode(e.get(), AE_IFIFO | perms);
        _kib++;
        return header(e.get(), f);
      default:
        archive_entry_set_mode(e.get(), AE_IFREG | perms);
        return regular(e.get(), f);
    }
  }

  struct Elf {
    std::string source, path;
    int kind;
  };
  bool anyElf() const { return _anyElf; }
  const std::vector<Elf>& elfFiles() const { return _elf; }
  std::uint64_t installedKiB() const { return _kib; }
  int entries() const { return _entries; }
  const std::string& md5sums() const { return _md5sums; }

 private:
  std::optional<std::string> header(archive_entry* e, const PlannedFile& f) {
    if (archive_write_header(_a, e) != ARCHIVE_OK) return archiveError(_a, f.path);
    return std::nullopt;
  }

  std::optional<std::string> regular(archive_entry* e, const PlannedFile& f) {
    md5_ctx md5;
    md5_init(&md5);
    if (f.generated) {
      archive_entry_set_size(e, static_cast<la_int64_t>(f.content.size()));
      if (auto why = header(e, f)) return why;
      md5_update(&md5, f.content.size(), reinterpret_cast<const std::uint8_t*>(f.content.data()));
      if (archive_write_data(_a, f.content.data(), f.content.size()) < 0)
        return archiveError(_a, f.path);
      finishFile(md5, f, f.content.size());
      return std::nullopt;
    }
    std::string source = f.source;
    std::string stripped;
    const int kind = DebWriter::elfKind(source);
    _anyElf = _anyElf || kind != 0;
    if (kind == 1 || kind == 2) _elf.push_back({f.source, f.path, kind});
    if (f.strip != PlannedFile::Keep && (kind == 1 || (kind == 2 && f.stripDso))) {
      stripped = _options.tempDir + "/strip." + std::to_string(getpid()) + "." +
                 std::to_string(_entries);
      if (!strip(source, stripped, kind == 2)) {
        ::unlink(stripped.c_str());
        return "strip " + source + " failed";
      }
      source = stripped;
    }
    struct Remove {
      std::string path;
      ~Remove() {
        if (!path.empty()) ::unlink(path.c_str());
      }
    } remove{stripped};
    int fd = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return "cannot read " + source + " (" + std::strerror(errno) + ")";
    struct Close {
      int fd;
      ~Close() { ::close(fd); }
    } close{fd};
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) return source + " is not a regular file";
    const std::uint64_t size = static_cast<std::uint64_t>(st.st_size);
    archive_entry_set_size(e, static_cast<la_int64_t>(size));
    if (auto why = header(e, f)) return why;
    static thread_local std::vector<char> buf(1 << 16);
    std::uint64_t done = 0;
    while (done < size) {
      ssize_t n = ::read(fd, buf.data(), buf.size());
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return "cannot read " + source + " (" + std::strerror(errno) + ")";
      if (n == 0) return source + " became shorter while it was read";
      if (static_cast<std::uint64_t>(n) > size - done) n = static_cast<ssize_t>(size - done);
      md5_update(&md5, static_cast<size_t>(n), reinterpret_cast<const std::uint8_t*>(buf.data()));
      if (archive_write_data(_a, buf.data(), static_cast<size_t>(n)) < 0)
        return archiveError(_a, f.path);
      done += static_cast<std::uint64_t>(n);
    }
    finishFile(md5, f, size);
    return std::nullopt;
  }

  void finishFile(md5_ctx& md5, const PlannedFile& f, std::uint64_t size) {
    std::uint8_t digest[MD5_DIGEST_SIZE];
    md5_digest(&md5, sizeof digest, digest);
    _md5sums += DebWriter::hex(digest, sizeof digest) + "  " + f.path.substr(2) + "\n";
    _kib += (size + 1023) / 1024;
  }

  const DebOptions& _options;
  archive* _a;
  Ids _ids;
  bool _anyElf = false;
  std::vector<Elf> _elf;
  std::uint64_t _kib = 0;
  int _entries = 0;
  std::string _md5sums;
};

std::optional<std::string> addMember(archive* a, const char* name, mode_t mode,
                                     const std::string& text, std::time_t mtime) {
  Entry e(archive_entry_new());
  archive_entry_set_pathname(e.get(), name);
  archive_entry_set_mode(e.get(), mode);
  archive_entry_set_uid(e.get(), 0);
  archive_entry_set_gid(e.get(), 0);
  if (std::strchr(name, '/')) {  // inside control.tar
    archive_entry_set_uname(e.get(), "root");
    archive_entry_set_gname(e.get(), "root");
  }
  archive_entry_set_mtime(e.get(), mtime, 0);
  archive_entry_set_size(e.get(), static_cast<la_int64_t>(text.size()));
  if (archive_write_header(a, e.get()) != ARCHIVE_OK ||
      (!text.empty() && archive_write_data(a, text.data(), text.size()) < 0))
    return archiveError(a, name);
  return std::nullopt;
}

}  // namespace

std::vector<std::string> DebWriter::sharedLibraryDepends(const std::vector<std::string>& elfFiles,
                                                         const DebOptions& options) {
  std::vector<std::string> depends;
  if (elfFiles.empty()) return depends;
  // dpkg-shlibdeps wants to run in a source tree: an empty one will do.
  std::string dir = options.tempDir + "/.shlibdeps.XXXXXX";
  if (!mkdtemp(&dir[0])) return depends;
  ::mkdir((dir + "/debian").c_str(), 0755);
  ::close(::open((dir + "/debian/control").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  std::vector<std::string> args = {"dpkg-shlibdeps", "-O", "--ignore-missing-info"};
  for (const std::string& l : options.libraryDirs) args.push_back("-l" + l);
  args.insert(args.end(), elfFiles.begin(), elfFiles.end());
  std::string out;
  // Without dpkg-shlibdeps, or when it cannot tell, the rules' relations stand alone.
  if (runCapture(args, dir, &out)) {
    const std::string key = "shlibs:Depends=";
    size_t at = out.find(key);
    if (at != std::string::npos) {
      std::string list = out.substr(at + key.size());
      list = list.substr(0, list.find('\n'));
      size_t pos = 0;
      while (pos < list.size()) {
        size_t comma = list.find(',', pos);
        if (comma == std::string::npos) comma = list.size();
        std::string dep = list.substr(pos, comma - pos);
        dep.erase(0, dep.find_first_not_of(' '));
        if (!dep.empty()) depends.push_back(dep);
        pos = comma + 1;
      }
    }
  }
  ::unlink((dir + "/debian/control").c_str());
  ::rmdir((dir + "/debian").c_str());
  ::rmdir(dir.c_str());
  return depends;
}

std::string DebWriter::hex(const std::uint8_t* bytes, size_t n) {
  static const char kHex[] = "0123456789abcdef";
  std::string out;
  for (size_t i = 0; i < n; i++) {
    out += kHex[bytes[i] >> 4];
    out += kHex[bytes[i] & 15];
  }
  return out;
}

std::string DebWriter::gzip(const std::string& text) {
  z_stream z{};
  deflateInit2(&z, 9, Z_DEFLATED, 31, 9, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&z, text.size()) + 32, '\0');
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  z.avail_in = static_cast<uInt>(text.size());
  z.next_out = reinterpret_cast<Bytef*>(&out[0]);
  z.avail_out = static_cast<uInt>(out.size());
  deflate(&z, Z_FINISH);
  out.resize(z.total_out);
  deflateEnd(&z);
  return out;
}

std::time_t DebWriter::buildTime() {
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH")) return std::strtoll(epoch, nullptr, 10);
  return std::time(nullptr);
}

std::string DebWriter::buildArchitecture() {
  if (std::FILE* p = popen("dpkg --print-architecture 2>/dev/null", "r")) {
    char buf[64] = "";
    bool got = std::fgets(buf, sizeof buf, p) != nullptr;
    pclose(p);
    std::string arch = got ? buf : "";
    while (!arch.empty() && (arch.back() == '\n' || arch.back() == ' ')) arch.pop_back();
    if (!arch.empty()) return arch;
  }
#if defined(__x86_64__)
  return "amd64";
#elif defined(__aarch64__)
  return "arm64";
#elif defined(__i386__)
  return "i386";
#else
  return "all";
#endif
}

int DebWriter::elfKind(const std::string& path) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return 0;
  unsigned char ident[EI_NIDENT] = {};
  int kind = 0;
  if (::pread(fd, ident, sizeof ident, 0) == EI_NIDENT && std::memcmp(ident, ELFMAG, SELFMAG) == 0) {
    kind = 3;
    // Header fields in the file's own byte order; this machine reads its own.
    auto phdrs = [&](auto ehdr, auto phdr) {
      if (::pread(fd, &ehdr, sizeof ehdr, 0) != sizeof ehdr) return;
      if (ehdr.e_type == ET_EXEC) {
        kind = 1;
      } else if (ehdr.e_type == ET_DYN) {
        kind = 2;
        for (unsigned i = 0; i < ehdr.e_phnum && i < 256; i++) {
          if (::pread(fd, &phdr, sizeof phdr, static_cast<off_t>(ehdr.e_phoff + i * sizeof phdr)) !=
              sizeof phdr)
            break;
          if (phdr.p_type == PT_INTERP) kind = 1;
        }
      }
    };
    if (ident[EI_CLASS] == ELFCLASS64)
      phdrs(Elf64_Ehdr{}, Elf64_Phdr{});
    else
      phdrs(Elf32_Ehdr{}, Elf32_Phdr{});
  }
  ::close(fd);
  return kind;
}

std::string DebWriter::controlText(const PlannedPackage& p, const std::string& architecture,
                                   const std::string& maintainer, std::uint64_t installedKiB) {
  std::string c = "Package: " + p.name + "\nVersion: " + p.version +
                  "\nArchitecture: " + architecture + "\nMaintainer: " + maintainer +
                  "\nInstalled-Size: " + std::to_string(installedKiB) + "\n";
  const std::pair<const char*, const std::vector<std::string>*> relations[] = {
      {"Depends", &p.depends}, {"Suggests", &p.suggests}, {"Conflicts", &p.conflicts},
      {"Breaks", &p.breaks},   {"Replaces", &p.replaces}};
  for (const auto& [field, values] : relations) {
    if (values->empty()) continue;
    c += std::string(field) + ": ";
    for (size_t i = 0; i < values->size(); i++) c += (i ? ", " : "") + (*values)[i];
    c += "\n";
  }
  c += "Section: " + p.section + "\nPriority: " + p.priority + "\n";
  c += "Description: " + (p.description.empty() ? p.tag : p.description) + "\n";
  for (const std::string& line : p.longDescription) c += line.empty() ? " .\n" : " " + line + "\n";
  return c;
}

Outcome DebWriter::write(const PlannedPackage& p, const std::string& dist,
                         const DebOptions& options, DebResult* result) {
  const std::string suffix = options.compress ? ".tar.xz" : ".tar";
  // The data member first, into a temporary file: its size goes into the ar
  // header, and the control member needs its sums.
  std::string dataPath = dist + "/." + p.name + ".data.XXXXXX";
  int dataFd = mkstemp(&dataPath[0]);
  if (dataFd < 0)
    return Outcome::error("cannot write in " + dist + " (" + std::strerror(errno) + ")");
  struct Cleanup {
    std::string path;
    int fd;
    ~Cleanup() {
      if (fd >= 0) ::close(fd);
      ::unlink(path.c_str());
    }
  } data{dataPath, dataFd};

  Archive tar = newTar(options.compress);
  if (archive_write_open_fd(tar.get(), dataFd) != ARCHIVE_OK)
    return Outcome::error(archiveError(tar.get(), dataPath));
  DataWriter writer(options, tar.get());
  for (const PlannedFile& f : p.files)
    if (auto why = writer.add(f)) return Outcome::error(*why);
  if (archive_write_close(tar.get()) != ARCHIVE_OK)
    return Outcome::error(archiveError(tar.get(), dataPath));
  tar.reset();

  const std::string arch = writer.anyElf() ? options.architecture : "all";
  PlannedPackage withLibs = p;
  std::string shlibs, triggers;
  std::vector<std::string> elfSources;
  for (const auto& elf : writer.elfFiles()) {
    elfSources.push_back(elf.source);
    if (elf.kind != 2 || !publicLibrary(elf.path)) continue;
    triggers = "activate-noawait ldconfig\n";
    const std::string key = shlibsKey(soname(elf.source));
    if (!key.empty()) shlibs += key + " " + p.name + " (>= " + p.version + ")\n";
  }
  for (std::string& dep : sharedLibraryDepends(elfSources, options))
    if (std::find(withLibs.depends.begin(), withLibs.depends.end(), dep) == withLibs.depends.end())
      withLibs.depends.push_back(std::move(dep));
  result->control = controlText(withLibs, arch, options.maintainer, writer.installedKiB());
  result->architecture = arch;
  result->files = writer.entries();

  std::string control;
  Archive ctl = newTar(options.compress);
  archive_write_open(ctl.get(), &control, nullptr, toString, nullptr);
  std::string conffiles;
  for (const PlannedFile& f : p.files)
    if (f.conffile) conffiles += f.path.substr(1) + "\n";
  const struct {
    const char* name;
    mode_t mode;
    const std::string* text;
  } members[] = {{"./control", 0644, &result->control}, {"./md5sums", 0644, &writer.md5sums()},
                 {"./conffiles", 0644, &conffiles},     {"./preinst", 0755, &p.preinst},
                 {"./postinst", 0755, &p.postinst},     {"./postrm", 0755, &p.postrm},
                 {"./shlibs", 0644, &shlibs},           {"./triggers", 0644, &triggers}};
  Entry dir(archive_entry_new());
  archive_entry_set_pathname(dir.get(), "./");
  archive_entry_set_mode(dir.get(), AE_IFDIR | 0755);
  archive_entry_set_uname(dir.get(), "root");
  archive_entry_set_gname(dir.get(), "root");
  archive_entry_set_mtime(dir.get(), options.mtime, 0);
  if (archive_write_header(ctl.get(), dir.get()) != ARCHIVE_OK)
    return Outcome::error(archiveError(ctl.get(), "control"));
  for (const auto& m : members) {
    if (m.text->empty()) continue;
    if (auto why = addMember(ctl.get(), m.name, AE_IFREG | m.mode, *m.text, options.mtime))
      return Outcome::error(*why);
  }
  if (archive_write_close(ctl.get()) != ARCHIVE_OK)
    return Outcome::error(archiveError(ctl.get(), "control"));
  ctl.reset();

  std::string version = p.version.substr(p.version.find(':') + 1);
  result->fileName = p.name + "_" + version + "_" + arch + ".deb";
  result->file = dist + "/" + result->fileName;
  std::string debPath = dist + "/." + result->fileName + ".XXXXXX";
  int debFd = mkstemp(&debPath[0]);
  if (debFd < 0)
    return Outcome::error("cannot write in " + dist + " (" + std::strerror(errno) + ")");
  Cleanup deb{debPath, debFd};
  HashedFile out{debFd, {}, {}, 0};
  md5_init(&out.md5);
  sha256_init(&out.sha);
  Archive ar(archive_write_new());
  archive_write_set_format_ar_bsd(ar.get());
  archive_write_set_bytes_per_block(ar.get(), 0);
  if (archive_write_open(ar.get(), &out, nullptr, toHashedFile, nullptr) != ARCHIVE_OK)
    return Outcome::error(archiveError(ar.get(), debPath));
  if (auto why = addMember(ar.get(), "debian-binary", AE_IFREG | 0644, "2.0\n", options.mtime))
    return Outcome::error(*why);
  if (auto why = addMember(ar.get(), ("control" + suffix).c_str(), AE_IFREG | 0644, control,
                           options.mtime))
    return Outcome::error(*why);
  struct stat st;
  if (fstat(dataFd, &st) != 0 || lseek(dataFd, 0, SEEK_SET) != 0)
    return Outcome::error("cannot read back " + dataPath);
  Entry e(archive_entry_new());
  archive_entry_set_pathname(e.get(), ("data" + suffix).c_str());
  archive_entry_set_mode(e.get(), AE_IFREG | 0644);
  archive_entry_set_mtime(e.get(), options.mtime, 0);
  archive_entry_set_size(e.get(), st.st_size);
  if (archive_write_header(ar.get(), e.get()) != ARCHIVE_OK)
    return Outcome::error(archiveError(ar.get(), debPath));
  std::vector<char> buf(1 << 16);
  for (ssize_t n; (n = ::read(dataFd, buf.data(), buf.size())) > 0;)
    if (archive_write_data(ar.get(), buf.data(), static_cast<size_t>(n)) < 0)
      return Outcome::error(archiveError(ar.get(), debPath));
  if (archive_write_close(ar.get()) != ARCHIVE_OK)
    return Outcome::error(archiveError(ar.get(), debPath));
  ar.reset();
  if (fchmod(debFd, 0644) != 0 || (fsync(debFd) != 0 && errno != EINVAL))
    return Outcome::error("cannot write " + debPath);
  if (::rename(debPath.c_str(), result->file.c_str()) != 0)
    return Outcome::error("cannot write " + result->file + " (" + std::strerror(errno) + ")");
  std::uint8_t md5[MD5_DIGEST_SIZE], sha[SHA256_DIGEST_SIZE];
  md5_digest(&out.md5, sizeof md5, md5);
  sha256_digest(&out.sha, sizeof sha, sha);
  result->md5 = DebWriter::hex(md5, sizeof md5);
  result->sha256 = DebWriter::hex(sha, sizeof sha);
  result->size = out.size;
  return Outcome::success();
}
