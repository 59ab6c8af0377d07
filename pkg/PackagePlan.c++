#include "pkg/PackagePlan.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <cstdlib>
#include <ctime>
#include <map>
#include <set>
#include <unordered_map>

#include "idb/Idb.h"
#include "pkg/BuildInput.h"
#include "pkg/DebName.h"
#include "pkg/DebWriter.h"
#include "spec/SpecGraphModel.h"
#include "spec/SpecMapping.h"
#include "spec/SpecRules.h"
#include "util/Utils.h"

struct PackagePlan::Subsystem {
  const SpecNode* node;
  const SpecNode* image;
  const SpecNode* product;
  std::string tag;
  std::string where;
  SpecMapping mapping;
  bool built = false;
  std::vector<int> records;
};

namespace {

std::string whereOf(const SpecNode* node) {
  return node->sourceFile() + ":" + std::to_string(node->sourceLine());
}

// A description as written in the spec, without the quotes that keep it one
// item there.
std::string unquote(const std::string& id) {
  if (id.size() >= 2 && (id[0] == '"' || id[0] == '\'') && id.back() == id[0])
    return id.substr(1, id.size() - 2);
  return id;
}

bool hasDotDot(std::string_view path) {
  size_t start = 0;
  while (start <= path.size()) {
    size_t end = path.find('/', start);
    if (end == std::string_view::npos) end = path.size();
    if (path.substr(start, end - start) == "..") return true;
    start = end + 1;
  }
  return false;
}

std::string rfc2822(std::time_t t) {
  char buf[64];
  std::tm tm{};
  gmtime_r(&t, &tm);
  static const char* const kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  std::snprintf(buf, sizeof buf, "%s, %02d %s %04d %02d:%02d:%02d +0000", kDays[tm.tm_wday],
                tm.tm_mday, kMonths[tm.tm_mon], tm.tm_year + 1900, tm.tm_hour, tm.tm_min,
                tm.tm_sec);
  return buf;
}

std::string script(const char* when, const std::vector<std::string>& commands) {
  if (commands.empty()) return std::string();
  // Commands name paths as the idb does, relative to the installation root;
  // DPKG_ROOT is that root when dpkg installs elsewhere than "/".
  std::string s = "#!/bin/sh\nset -e\nif " + std::string(when) + "; then\n  cd \"${DPKG_ROOT:-/}\"\n";
  for (const std::string& c : commands) s += "  " + c + "\n";
  s += "fi\n";
  return s;
}

PlannedFile directory(const std::string& path) {
  PlannedFile d;
  d.path = path;
  d.type = 'd';
  d.mode = 0755;
  d.owner = d.group = "root";
  return d;
}

}  // namespace

int PlannedPackage::recordFiles() const {
  return static_cast<int>(
      std::count_if(files.begin(), files.end(), [](const PlannedFile& f) { return f.record >= 0; }));
}

std::uint64_t PlannedPackage::recordBytes() const {
  std::uint64_t n = 0;
  for (const PlannedFile& f : files)
    if (f.record >= 0) n += f.size;
  return n;
}

std::string PackagePlan::defaultMaintainer() {
  const char* full = std::getenv("DEBFULLNAME");
  const char* email = std::getenv("DEBEMAIL");
  if (!email) email = std::getenv("EMAIL");
  if (email && std::strchr(email, '<')) return email;
  std::string name = full ? full : "";
  const passwd* pw = getpwuid(getuid());
  std::string user = pw ? pw->pw_name : "root";
  if (name.empty() && pw && pw->pw_gecos) {
    name = pw->pw_gecos;
    name = name.substr(0, name.find(','));
  }
  if (name.empty()) name = user;
  std::string mail = email ? email : "";
  if (mail.empty()) {
    char host[256] = "localhost";
    gethostname(host, sizeof host - 1);
    mail = user + "@" + host;
  }
  return name + " <" + mail + ">";
}

PackagePlan::~PackagePlan() = default;

void PackagePlan::problem(const std::string& where, const std::string& message) {
  _problems.push_back(where + ": " + message);
}

void PackagePlan::warning(const std::string& where, const std::string& message) {
  _warnings.push_back(where + ": warning: " + message);
}

PackagePlan::PackagePlan(const BuildInput& input, const PlanOptions& options)
    : _input(input), _options(options) {
  if (_options.maintainer.empty()) _options.maintainer = defaultMaintainer();
  std::string root = _options.destRoot;
  while (!root.empty() && root.front() == '/') root.erase(0, 1);
  while (!root.empty() && root.back() == '/') root.pop_back();
  _root = root.empty() ? "./" : "./" + root + "/";

  const SpecGraphModel& spec = input.spec();
  bool found = _options.product.empty();
  for (int i = 0; i < spec.rootCount(); i++) found = found || spec.root(i)->name() == _options.product;
  if (!found) {
    _usageError = "no product '" + _options.product + "' in " + input.specFile();
    return;
  }
  planSubsystems();
  assignRecords();
  planProducts();
}

void PackagePlan::planSubsystems() {
  for (const SpecNode* node : _input.spec().nodes()) {
    if (node->level() != 3) continue;
    auto s = std::make_unique<Subsystem>(Subsystem{
        node, node->parent(), node->parent()->parent(), node->getTag(), whereOf(node),
        SpecMapping(node->mapping()), false, {}});
    s->built = _options.product.empty() || s->product->name() == _options.product;
    if (s->built && !s->mapping.error().empty())
      problem(s->where, "exp of " + s->tag + ": " + s->mapping.error());
    _subsystems.push_back(s.get());
    _owned.push_back(std::move(s));
  }
}

void PackagePlan::assignRecords() {
  const Idb& records = _input.idb();
  // Tags repeat over thousands of records: match each distinct tag once.
  std::unordered_map<std::string_view, std::vector<Subsystem*>> byTag;
  std::unordered_map<std::string_view, int> firstDst;
  for (int i = 0; i < records.count(); i++) {
    const idb* r = records[i];
    auto [it, fresh] = byTag.try_emplace(r->tag());
    if (fresh) {
      for (Subsystem* s : _subsystems)
        if (s->mapping.matches(r->tag())) it->second.push_back(s);
      if (it->second.empty()) {
        problem(_input.recordWhere(i), "tag not mapped by any subsystem: " + std::string(r->tag()));
      } else if (it->second.size() > 1) {
        std::string names;
        for (Subsystem* s : it->second) names += (names.empty() ? "" : ", ") + s->tag;
        problem(_input.recordWhere(i),
                "tag " + std::string(r->tag()) + " is mapped by several subsystems: " + names);
      }
    }
    if (it->second.size() != 1 || !it->second[0]->built) continue;
    it->second[0]->records.push_back(i);
    auto [dup, first] = firstDst.try_emplace(r->dstpath(), i);
    if (!first)
      problem(_input.recordWhere(i), "destination " + std::string(r->dstpath()) +
                                         " installed twice (also line " +
                                         std::to_string(_input.recordLine(dup->second)) + ")");
  }

  // A product that ships a copyright file gives it to every package.
  for (Subsystem* s : _subsystems)
    for (int i : s->records) {
      std::string_view dst = records[i]->dstpath();
      if (_copyright.empty() && records[i]->type() == 'f' &&
          (dst == "copyright" || (dst.size() > 10 && dst.substr(dst.size() - 10) == "/copyright")))
        _copyright = _input.sourceRoot() + "/" + std::string(records[i]->srcpath());
    }
  std::map<std::string, std::string> names;  // package name -> tag
  std::set<const SpecNode*> badImages;
  for (Subsystem* s : _subsystems) {
    if (!s->built) continue;
    if (s->records.empty()) problem(s->where, "subsystem without files: " + s->tag);
    PlannedPackage p;
    p.tag = s->tag;
    p.where = s->where;
    p.name = DebName::package(s->tag);
    p.version = s->image->version();
    if (Outcome why = DebName::packageProblem(p.name); !why.ok()) problem(s->where, why.message());
    auto [it, fresh] = names.try_emplace(p.name, s->tag);
    if (!fresh)
      problem(s->where, "subsystems " + it->second + " and " + s->tag +
                            " would both be the package " + p.name);
    if (Outcome why = DebName::versionProblem(p.version);
        !why.ok() && badImages.insert(s->image).second)
      problem(whereOf(s->image), why.message());
    if (s->node->required())
      p.priority = "important";
    else if (s->node->isDefault())
      p.priority = "standard";
    p.description = unquote(s->node->id());
    p.longDescription = {unquote(s->image->id()) + " (" + s->image->name() + " " +
                             s->image->version() + ") of " + unquote(s->product->id()) + ".",
                         "Subsystem " + s->tag + "."};
    for (int i : s->records) planRecord(i, p);
    planRelations(*s, p);
    finish(p);
    _packages.push_back(std::move(p));
  }
}

void PackagePlan::planRecord(int i, PlannedPackage& package) {
  const idb* r = _input.idb()[i];
  const std::string where = _input.recordWhere(i);
  const std::string dst(r->dstpath());
  if (!dst.empty() && dst[0] == '/') problem(where, "absolute destination path " + dst);
  if (hasDotDot(r->dstpath())) problem(where, "'..' in destination path " + dst);
  if (hasDotDot(r->srcpath())) problem(where, "'..' in source path " + std::string(r->srcpath()));
  RecordAttrs attrs = RecordAttrs::of(*r);
  for (const std::string& p : attrs.problems) problem(where, p);
  if (_options.verbose)
    for (const std::string& a : attrs.ignored)
      warning(where, "attribute " + a + " has no meaning on Linux and is ignored");

  PlannedFile f;
  std::string rel = dst;
  while (!rel.empty() && rel.front() == '/') rel.erase(0, 1);
  f.path = _root + rel;
  f.type = r->type();
  f.mode = r->mode() & 07777;
  f.owner = std::string(r->owner());
  f.group = std::string(r->group());
  f.record = i;
  switch (r->type()) {
    case 'f': {
      f.source = _input.sourceRoot() + "/" + std::string(r->srcpath());
      struct stat st;
      if (::stat(f.source.c_str(), &st) != 0) {
        problem(where, "not found: " + std::string(r->srcpath()) + " (installs as " + dst + ")");
      } else if (!S_ISREG(st.st_mode)) {
        problem(where, "source " + std::string(r->srcpath()) + " is not a regular file");
      } else {
        f.size = static_cast<std::uint64_t>(st.st_size);
      }
      f.conffile = attrs.config != RecordAttrs::NoConfig;
      if (!_options.noStrip && !attrs.nostrip) {
        f.strip = PlannedFile::StripExecutable;
        f.stripDso = attrs.stripdso;
      }
      break;
    }
    case 'd':
      break;
    case 'l':
      if (!attrs.hasSymval) problem(where, "link " + dst + " without symval(TARGET)");
      f.linkTarget = attrs.symval;
      break;
    case 'b':
    case 'c':
      if (!attrs.hasDev) problem(where, "device " + dst + " without dev(MAJOR,MINOR)");
      f.major = attrs.major;
      f.minor = attrs.minor;
      break;
    case 'p':
      break;
    case 's':
      problem(where, "socket " + dst + " cannot be packaged (a program makes it when it runs)");
      break;
    default:
      problem(where, "unknown type '" + std::string(1, r->type()) + "'");
  }
  if (attrs.config != RecordAttrs::NoConfig && r->type() != 'f')
    problem(where, "config on " + dst + ", which is not a regular file");
  // Commands in record order; finish() wraps them into the scripts.
  auto add = [](std::vector<std::string>& to, const std::vector<std::string>& commands) {
    to.insert(to.end(), commands.begin(), commands.end());
  };
  add(package.preops, attrs.preop);
  add(package.postops, attrs.postop);
  add(package.exitops, attrs.exitop);
  add(package.removeops, attrs.removeop);
  package.files.push_back(std::move(f));
}

// A relation names a subsystem by its tag, or, shorter, by image.subsys
// within the same product or by subsys within the same image.
std::string PackagePlan::resolve(const Subsystem& s, const std::string& name, bool* known) const {
  const size_t dots = std::count(name.begin(), name.end(), '.');
  std::string tag = dots >= 2   ? name
                    : dots == 1 ? s.product->name() + "." + name
                                : s.product->name() + "." + s.image->name() + "." + name;
  const std::string product = tag.substr(0, tag.find('.'));
  bool productInSpec = false;
  *known = false;
  for (const Subsystem* other : _subsystems) {
    productInSpec = productInSpec || other->product->name() == product;
    *known = *known || other->tag == tag;
  }
  // Products this spec does not describe are taken on trust.
  if (!productInSpec) *known = true;
  return tag;
}

void PackagePlan::planRelations(Subsystem& s, PlannedPackage& package) {
  SpecRules rules(s.node->rules());
  for (const SpecRulesError& e : rules.errors())
    problem(s.where, "rules of " + s.tag + ": " + e.message);
  const std::string version = s.image->version();
  // The version constraints of a target: at most two, lower bound first.
  auto constraints = [&](const SpecRule& rule, const SpecTarget& t) {
    std::vector<std::string> out;
    if (t.low.kind == SpecBound::OldVers)
      warning(s.where, std::string(SpecRules::keyword(rule.kind)) + " " + t.name +
                           ": lower bound oldvers cannot be said in Debian's terms; dropped");
    else if (!t.low.open())
      out.push_back(">= " + t.low.text);
    if (t.high.kind == SpecBound::OldVers)
      out.push_back("<< " + version);
    else if (!t.high.open())
      out.push_back("<= " + t.high.text);
    return out;
  };
  // One entry that carries one version: keeps `keep` (0 lower, 1 upper) of two.
  auto single = [&](const SpecRule& rule, const SpecTarget& t, const std::string& name,
                    int keep) -> std::string {
    std::vector<std::string> c = constraints(rule, t);
    if (c.empty()) return name;
    if (c.size() == 2) {
      warning(s.where, std::string(SpecRules::keyword(rule.kind)) + " " + t.name + ": " +
                           (keep ? "lower" : "upper") + " bound " + (keep ? t.low.text : t.high.text) +
                           " dropped (Debian gives this relation one version)");
      return name + " (" + c[keep] + ")";
    }
    return name + " (" + c[0] + ")";
  };
  for (const SpecRule& rule : rules.rules()) {
    std::vector<std::pair<const SpecTarget*, std::string>> targets;
    for (const SpecTarget& t : rule.targets) {
      if (rule.kind == SpecRule::Replaces && t.name == "self") continue;
      bool known = false;
      std::string tag = resolve(s, t.name, &known);
      if (!known) {
        problem(s.where, std::string(SpecRules::keyword(rule.kind)) + " names unknown subsystem " +
                             t.name + " (" + tag + ")");
        continue;
      }
      targets.push_back({&t, DebName::package(tag)});
    }
    if (targets.empty()) continue;
    switch (rule.kind) {
      case SpecRule::Prereq:
        if (targets.size() == 1) {
          std::vector<std::string> c = constraints(rule, *targets[0].first);
          if (c.empty()) package.depends.push_back(targets[0].second);
          for (const std::string& one : c) package.depends.push_back(targets[0].second + " (" + one + ")");
        } else {
          std::string alternatives;
          for (const auto& [t, name] : targets)
            alternatives += (alternatives.empty() ? "" : " | ") + single(rule, *t, name, 0);
          package.depends.push_back(alternatives);
        }
        break;
      case SpecRule::Follows:
        for (const auto& [t, name] : targets) {
          std::vector<std::string> c = constraints(rule, *t);
          if (c.empty()) package.depends.push_back(name);
          for (const std::string& one : c) package.depends.push_back(name + " (" + one + ")");
        }
        break;
      case SpecRule::Incompat:
        for (const auto& [t, name] : targets) package.conflicts.push_back(single(rule, *t, name, 1));
        break;
      case SpecRule::Replaces:
        for (const auto& [t, name] : targets) {
          std::string entry = single(rule, *t, name, 1);
          package.replaces.push_back(entry);
          package.breaks.push_back(entry);
        }
        break;
      case SpecRule::Updates:
        for (const auto& [t, name] : targets) package.replaces.push_back(single(rule, *t, name, 1));
        break;
    }
  }
}

// Documentation every package carries, the parent directories of its files,
// its scripts, and the order the archive wants.
void PackagePlan::finish(PlannedPackage& p) {
  const std::string doc = "./usr/share/doc/" + p.name + "/";
  std::string changelog = p.name + " (" + p.version + ") unstable; urgency=medium\n\n" +
                          "  * Built by forgeset from " + mypathbasename(_input.specFile()) +
                          " and " + mypathbasename(_input.idbFile()) + ".\n\n -- " + _options.maintainer + "  " +
                          rfc2822(DebWriter::buildTime()) + "\n";
  PlannedFile log;
  log.path = doc + "changelog.gz";
  log.mode = 0644;
  log.owner = log.group = "root";
  log.content = DebWriter::gzip(changelog);
  log.size = log.content.size();
  log.generated = true;
  p.files.push_back(std::move(log));
  if (!_copyright.empty()) {
    PlannedFile c;
    c.path = doc + "copyright";
    c.mode = 0644;
    c.owner = c.group = "root";
    c.source = _copyright;
    struct stat st;
    if (::stat(c.source.c_str(), &st) == 0) c.size = static_cast<std::uint64_t>(st.st_size);
    if (std::none_of(p.files.begin(), p.files.end(),
                     [&](const PlannedFile& f) { return f.path == c.path; }))
      p.files.push_back(std::move(c));
  }

  std::set<std::string> dirs;
  for (const PlannedFile& f : p.files)
    if (f.type == 'd') dirs.insert(f.path);
  std::vector<PlannedFile> parents;
  for (const PlannedFile& f : p.files) {
    std::string path = f.path;
    for (size_t slash = path.rfind('/'); slash != std::string::npos && slash > 1;
         slash = path.rfind('/', slash - 1)) {
      std::string parent = path.substr(0, slash);
      if (!dirs.insert(parent).second) break;
      parents.push_back(directory(parent));
    }
  }
  for (PlannedFile& d : parents) p.files.push_back(std::move(d));
  std::stable_sort(p.files.begin(), p.files.end(),
                   [](const PlannedFile& a, const PlannedFile& b) { return a.path < b.path; });

  p.preinst = script("[ \"$1\" = install ] || [ \"$1\" = upgrade ]", p.preops);
  std::vector<std::string> after = p.postops;
  after.insert(after.end(), p.exitops.begin(), p.exitops.end());
  p.postinst = script("[ \"$1\" = configure ]", after);
  p.postrm = script("[ \"$1\" = remove ]", p.removeops);
}

void PackagePlan::planProducts() {
  const SpecGraphModel& spec = _input.spec();
  for (int i = 0; i < spec.rootCount(); i++) {
    const SpecNode* product = spec.root(i);
    if (!_options.product.empty() && product->name() != _options.product) continue;
    PlannedPackage p;
    p.product = true;
    p.tag = product->name();
    p.where = whereOf(product);
    p.name = DebName::package(product->name());
    if (Outcome why = DebName::packageProblem(p.name); !why.ok()) problem(p.where, why.message());
    for (const PlannedPackage& other : _packages)
      if (other.name == p.name)
        problem(p.where, "product " + p.tag + " and subsystem " + other.tag +
                             " would both be the package " + p.name);
    p.version = product->childCount() ? product->child(0)->version() : "1";
    p.section = "metapackages";
    p.description = unquote(product->id());
    p.longDescription = {"Installs the required and default subsystems of " + p.tag +
                         " and suggests the others."};
    for (const PlannedPackage& sub : _packages) {
      if (sub.product || sub.tag.compare(0, p.tag.size() + 1, p.tag + ".") != 0) continue;
      const SpecNode* node = spec.getNode(sub.tag);
      if (node && (node->required() || node->isDefault()))
        p.depends.push_back(sub.name + " (= " + sub.version + ")");
      else
        p.suggests.push_back(sub.name);
    }
    finish(p);
    _packages.push_back(std::move(p));
  }
}

std::vector<std::string> PackagePlan::describe() const {
  std::vector<std::string> out;
  auto join = [](const std::vector<std::string>& v) {
    std::string s;
    for (const std::string& x : v) s += (s.empty() ? "" : ", ") + x;
    return s;
  };
  for (const PlannedPackage& p : _packages) {
    out.push_back("package " + p.name + " " + p.version + ": " + std::to_string(p.recordFiles()) +
                  " files, " + std::to_string(p.recordBytes()) + " bytes (" + p.tag + ")");
    const std::pair<const char*, const std::vector<std::string>*> fields[] = {
        {"Depends", &p.depends},   {"Conflicts", &p.conflicts}, {"Replaces", &p.replaces},
        {"Breaks", &p.breaks},     {"Suggests", &p.suggests}};
    for (const auto& [field, values] : fields)
      if (!values->empty()) out.push_back(std::string("  ") + field + ": " + join(*values));
  }
  return out;
}
