#include "pkg/AptRepository.h"

#include <nettle/md5.h>
#include <nettle/sha2.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "pkg/DebWriter.h"
#include "util/AtomicFile.h"

namespace {

std::string field(const std::string& paragraph, const std::string& name) {
  std::istringstream in(paragraph);
  for (std::string line; std::getline(in, line);)
    if (line.compare(0, name.size() + 1, name + ":") == 0) {
      size_t b = line.find_first_not_of(' ', name.size() + 1);
      return b == std::string::npos ? "" : line.substr(b);
    }
  return "";
}

Outcome save(const std::string& path, const std::string& bytes) {
  AtomicFile file(path);
  Outcome status = file.open();
  if (status.ok()) {
    std::fwrite(bytes.data(), 1, bytes.size(), file.stream());
    status = file.commit();
  }
  if (status.ok()) return status;
  return Outcome::error("cannot write " + path + " (" + std::strerror(status.code()) + ")",
                        status.code());
}

std::string rfc2822(std::time_t t) {
  char buf[64];
  std::tm tm{};
  gmtime_r(&t, &tm);
  std::strftime(buf, sizeof buf, "%a, %d %b %Y %H:%M:%S UTC", &tm);
  return buf;
}

}  // namespace

std::string AptRepository::paragraph(const DebResult& deb) {
  return deb.control + "Filename: ./" + deb.fileName + "\nSize: " + std::to_string(deb.size) +
         "\nMD5sum: " + deb.md5 + "\nSHA256: " + deb.sha256 + "\n";
}

Outcome AptRepository::write(const std::string& dist, const std::vector<DebResult>& written,
                             std::time_t date) {
  std::map<std::string, std::string> byFile;  // file name -> paragraph
  std::set<std::string> names;
  for (const DebResult& deb : written) {
    byFile[deb.fileName] = paragraph(deb);
    names.insert(field(deb.control, "Package"));
  }
  // Earlier entries whose files remain and whose packages were not rebuilt.
  std::ifstream old(dist + "/Packages");
  std::stringstream oldText;
  oldText << old.rdbuf();
  std::string all = oldText.str();
  size_t pos = 0;
  while (pos < all.size()) {
    size_t end = all.find("\n\n", pos);
    std::string para = all.substr(pos, end == std::string::npos ? std::string::npos : end - pos + 1);
    pos = end == std::string::npos ? all.size() : end + 2;
    std::string file = field(para, "Filename");
    if (file.compare(0, 2, "./") == 0) file.erase(0, 2);
    struct stat st;
    if (file.empty() || file.find('/') != std::string::npos || byFile.count(file) ||
        names.count(field(para, "Package")) || ::stat((dist + "/" + file).c_str(), &st) != 0)
      continue;
    byFile[file] = para;
  }
  std::vector<std::pair<std::string, std::string>> sorted;  // (package, paragraph)
  std::set<std::string> architectures;
  for (const auto& [file, para] : byFile) {
    sorted.push_back({field(para, "Package") + " " + file, para});
    architectures.insert(field(para, "Architecture"));
  }
  std::sort(sorted.begin(), sorted.end());
  std::string packages;
  for (const auto& [key, para] : sorted) packages += (packages.empty() ? "" : "\n") + para;
  const std::string gz = DebWriter::gzip(packages);

  std::string release = "Origin: forgeset\nLabel: forgeset\nDate: " + rfc2822(date) +
                        "\nArchitectures:";
  for (const std::string& a : architectures) release += " " + a;
  const std::pair<const char*, const std::string*> files[] = {{"Packages", &packages},
                                                              {"Packages.gz", &gz}};
  release += "\nMD5Sum:\n";
  for (const auto& [name, bytes] : files) {
    md5_ctx c;
    md5_init(&c);
    md5_update(&c, bytes->size(), reinterpret_cast<const std::uint8_t*>(bytes->data()));
    std::uint8_t d[MD5_DIGEST_SIZE];
    md5_digest(&c, sizeof d, d);
    release += " " + DebWriter::hex(d, sizeof d) + " " + std::to_string(bytes->size()) + " " + name + "\n";
  }
  release += "SHA256:\n";
  for (const auto& [name, bytes] : files) {
    sha256_ctx c;
    sha256_init(&c);
    sha256_update(&c, bytes->size(), reinterpret_cast<const std::uint8_t*>(bytes->data()));
    std::uint8_t d[SHA256_DIGEST_SIZE];
    sha256_digest(&c, sizeof d, d);
    release += " " + DebWriter::hex(d, sizeof d) + " " + std::to_string(bytes->size()) + " " + name + "\n";
  }
  if (Outcome why = save(dist + "/Packages", packages); !why.ok()) return why;
  if (Outcome why = save(dist + "/Packages.gz", gz); !why.ok()) return why;
  return save(dist + "/Release", release);
}
