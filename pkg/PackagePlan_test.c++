#include "pkg/PackagePlan.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "pkg/BuildInput.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"

namespace {

using Lines = std::vector<std::string>;

const char kSpec[] =
    "product pq id \"P\"\n"                                    // 1
    "  image sw id \"Software\" version 2\n"                  // 2
    "    subsys base id \"Base\" required\n"                  // 3
    "      replaces self\n"
    "      prereq ( pq.sw.lib 1 maxint )\n"
    "      exp pq.sw.base\n"
    "    endsubsys\n"
    "    subsys lib id \"Library\" default exp pq.sw.lib endsubsys\n"  // 8
    "    subsys opt id \"Optional\"\n"                        // 9
    "      prereq ( lib 1 3 sw.base 0 maxint )\n"
    "      incompat pq.sw.base 2 oldvers\n"
    "      replaces pq.sw.old 0 oldvers\n"
    "      follows base 1 4\n"
    "      updates q.sw.x 0 maxint\n"
    "      exp pq.sw.opt\n"
    "    endsubsys\n"
    "    subsys old id \"Old\" exp pq.sw.old endsubsys\n"     // 17
    "  endimage\n"
    "endproduct\n";

class PackagePlanTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir.write("tree/bin/a", "binary");
    dir.write("tree/lib/l", "library");
    dir.write("tree/opt", "o");
    dir.write("tree/old", "x");
  }

  // Plans idb text against spec text; the plan's problems.
  PackagePlan& plan(const std::string& idb, const std::string& spec = kSpec,
                    PlanOptions options = PlanOptions()) {
    input = std::make_unique<BuildInput>(&reporter);
    EXPECT_TRUE(input->setSourceRoot(dir.file("tree")).ok());
    EXPECT_TRUE(input->loadIdb(dir.write("p.idb", idb)).ok());
    EXPECT_TRUE(input->loadSpec(dir.write("p.spec", spec)));
    options.maintainer = "M <m@x>";
    _plan = std::make_unique<PackagePlan>(*input, options);
    return *_plan;
  }
  std::string idbAt(int line) { return dir.file("p.idb") + ":" + std::to_string(line) + ": "; }
  std::string specAt(int line) { return dir.file("p.spec") + ":" + std::to_string(line) + ": "; }
  const PlannedPackage* package(const std::string& name) {
    for (const PlannedPackage& p : _plan->packages())
      if (p.name == name) return &p;
    return nullptr;
  }

  TempDir dir;
  RecordingReporter reporter;
  std::unique_ptr<BuildInput> input;
  std::unique_ptr<PackagePlan> _plan;
};

const char kGoodIdb[] =
    "f 0755 root sys usr/bin/a bin/a pq.sw.base\n"
    "f 0644 root sys usr/lib/l lib/l pq.sw.lib\n"
    "f 0644 root sys usr/opt opt pq.sw.opt\n"
    "f 0644 root sys usr/old old pq.sw.old\n";

TEST_F(PackagePlanTest, Relations) {
  PackagePlan& p = plan(kGoodIdb);
  EXPECT_EQ(Lines{}, p.problems());
  EXPECT_EQ((Lines{specAt(9) + "warning: prereq lib: upper bound 3 dropped (Debian gives this "
                               "relation one version)",
                   specAt(9) + "warning: incompat pq.sw.base: lower bound 2 dropped (Debian gives "
                               "this relation one version)"}),
            p.warnings());
  ASSERT_NE(nullptr, package("pq.sw.base"));
  EXPECT_EQ(Lines{"pq.sw.lib (>= 1)"}, package("pq.sw.base")->depends);
  EXPECT_EQ(Lines{}, package("pq.sw.base")->replaces);  // replaces self says nothing
  const PlannedPackage* opt = package("pq.sw.opt");
  ASSERT_NE(nullptr, opt);
  EXPECT_EQ((Lines{"pq.sw.lib (>= 1) | pq.sw.base", "pq.sw.base (>= 1)", "pq.sw.base (<= 4)"}),
            opt->depends);
  EXPECT_EQ(Lines{"pq.sw.base (<< 2)"}, opt->conflicts);
  EXPECT_EQ((Lines{"pq.sw.old (<< 2)", "q.sw.x"}), opt->replaces);
  EXPECT_EQ(Lines{"pq.sw.old (<< 2)"}, opt->breaks);
  EXPECT_EQ("important", package("pq.sw.base")->priority);
  EXPECT_EQ("standard", package("pq.sw.lib")->priority);
  EXPECT_EQ("optional", opt->priority);
  const PlannedPackage* product = package("pq");
  ASSERT_NE(nullptr, product);
  EXPECT_EQ((Lines{"pq.sw.base (= 2)", "pq.sw.lib (= 2)"}), product->depends);
  EXPECT_EQ((Lines{"pq.sw.opt", "pq.sw.old"}), product->suggests);
}

TEST_F(PackagePlanTest, FilesAndScripts) {
  PackagePlan& p = plan(
      "f 4755 bin adm usr/bin/a bin/a pq.sw.base postop(echo one; echo two) "
      "preop('mkdir -p x') exitop(e) removeop(r)\n"
      "l 0777 root sys usr/bin/b bin/b pq.sw.base symval(a)\n"
      "f 0644 root sys etc/a.conf bin/a pq.sw.base config(update) postop(three)\n"
      "c 0600 root sys dev/x x pq.sw.base dev(4,5)\n"
      "p 0600 root sys var/fifo x pq.sw.base\n"
      "f 0644 root sys usr/lib/l lib/l pq.sw.lib\n"
      "f 0644 root sys usr/opt opt pq.sw.opt\n"
      "f 0644 root sys usr/old old pq.sw.old\n",
      kSpec, [] {
        PlanOptions o;
        o.destRoot = "/opt/root/";
        return o;
      }());
  EXPECT_EQ(Lines{}, p.problems());
  const PlannedPackage* base = package("pq.sw.base");
  ASSERT_NE(nullptr, base);
  Lines paths;
  for (const PlannedFile& f : base->files) paths.push_back(std::string(1, f.type) + " " + f.path);
  EXPECT_EQ((Lines{"d ./opt", "d ./opt/root", "d ./opt/root/dev", "c ./opt/root/dev/x",
                   "d ./opt/root/etc", "f ./opt/root/etc/a.conf", "d ./opt/root/usr",
                   "d ./opt/root/usr/bin", "f ./opt/root/usr/bin/a", "l ./opt/root/usr/bin/b",
                   "d ./opt/root/var", "p ./opt/root/var/fifo", "d ./usr", "d ./usr/share",
                   "d ./usr/share/doc", "d ./usr/share/doc/pq.sw.base",
                   "f ./usr/share/doc/pq.sw.base/changelog.gz"}),
            paths);
  const PlannedFile& a = base->files[8];
  EXPECT_EQ(04755u, a.mode);
  EXPECT_EQ("bin", a.owner);
  EXPECT_EQ("adm", a.group);
  EXPECT_EQ(dir.file("tree/bin/a"), a.source);
  EXPECT_EQ(6u, a.size);
  EXPECT_EQ(PlannedFile::StripExecutable, a.strip);
  EXPECT_TRUE(base->files[5].conffile);
  EXPECT_EQ("a", base->files[9].linkTarget);
  EXPECT_EQ(4u, base->files[3].major);
  EXPECT_EQ(5u, base->files[3].minor);
  EXPECT_EQ(
      "#!/bin/sh\nset -e\nif [ \"$1\" = configure ]; then\n  cd \"${DPKG_ROOT:-/}\"\n"
      "  echo one\n  echo two\n  three\n  e\nfi\n",
      base->postinst);
  EXPECT_EQ(
      "#!/bin/sh\nset -e\nif [ \"$1\" = install ] || [ \"$1\" = upgrade ]; then\n"
      "  cd \"${DPKG_ROOT:-/}\"\n  mkdir -p x\nfi\n",
      base->preinst);
  EXPECT_EQ("#!/bin/sh\nset -e\nif [ \"$1\" = remove ]; then\n  cd \"${DPKG_ROOT:-/}\"\n  r\nfi\n",
            base->postrm);
  EXPECT_EQ("", package("pq.sw.lib")->preinst);
}

// A product that ships a copyright file gives every package a copy where
// Debian looks for it.
TEST_F(PackagePlanTest, CopyrightGoesToEveryPackage) {
  dir.write("tree/COPYING", "GPL");
  PackagePlan& p = plan(std::string(kGoodIdb) +
                        "f 0644 root sys usr/share/doc/pq/copyright COPYING pq.sw.lib\n");
  EXPECT_EQ(Lines{}, p.problems());
  for (const char* name : {"pq", "pq.sw.base", "pq.sw.lib", "pq.sw.opt", "pq.sw.old"}) {
    const PlannedPackage* package = this->package(name);
    ASSERT_NE(nullptr, package) << name;
    const std::string path = std::string("./usr/share/doc/") + name + "/copyright";
    bool found = false;
    for (const PlannedFile& f : package->files)
      if (f.path == path) found = f.source == dir.file("tree/COPYING") && f.size == 3;
    EXPECT_TRUE(found) << name;
  }
}

TEST_F(PackagePlanTest, NamesDebianRefusesOrShares) {
  PackagePlan& p = plan("f 0644 root sys a opt x.sw.a\nf 0644 root sys b opt x.sw.A\n",
                        "product x id X image sw id S version 1\n"
                        "subsys a id A exp x.sw.a endsubsys\n"
                        "subsys A id B exp x.sw.A endsubsys\n"
                        "endimage endproduct\n");
  EXPECT_EQ((Lines{specAt(3) + "subsystems x.sw.a and x.sw.A would both be the package x.sw.a",
                   specAt(1) + "package name 'x' is shorter than two characters"}),
            p.problems());
}

TEST_F(PackagePlanTest, OneProductOfSeveral) {
  const std::string spec = std::string(kSpec) +
                           "product other id O image i id I version 1\n"
                           "subsys s id S exp other.i.s endsubsys endimage endproduct\n";
  PlanOptions options;
  options.product = "pq";
  PackagePlan& p = plan(std::string(kGoodIdb) + "f 0644 root sys usr/o opt other.i.s\n", spec,
                        options);
  EXPECT_EQ(Lines{}, p.problems());
  EXPECT_EQ(nullptr, package("other.i.s"));
  EXPECT_NE(nullptr, package("pq"));
  options.product = "none";
  EXPECT_EQ("no product 'none' in " + dir.file("p.spec"), plan(kGoodIdb, spec, options).usageError());
}

TEST_F(PackagePlanTest, Problems) {
  PackagePlan& p = plan(
      "f 0755 root sys usr/bin/a bin/a pq.sw.base\n"       // 1
      "f 0644 root sys usr/bin/a lib/l pq.sw.base\n"       // 2 twice
      "f 0644 root sys usr/missing nowhere pq.sw.base\n"   // 3
      "l 0777 root sys usr/link x pq.sw.base\n"            // 4
      "b 0600 root sys dev/b x pq.sw.base\n"               // 5
      "f 0644 root sys /abs opt pq.sw.base\n"              // 6
      "f 0644 root sys usr/../x opt pq.sw.base\n"          // 7
      "f 0644 root sys usr/t opt pq.sw.unknown\n"          // 8
      "s 0644 root sys tmp/sock x pq.sw.base\n"            // 9
      "d 0755 root sys etc/d x pq.sw.base config(update)\n"  // 10
      "f 0644 root sys usr/g opt pq.sw.base frob\n",       // 11
      "product pq id P\n"
      "  image sw id S version v2\n"                      // 2
      "    subsys base id B prereq ( nothere 0 maxint ) exp pq.sw.base endsubsys\n"  // 3
      "    subsys empty id E exp pq.sw.nothing endsubsys\n"                          // 4
      "    subsys bad id X exp pq.sw.bad| endsubsys\n"                              // 5
      "  endimage\n"
      "endproduct\n");
  EXPECT_EQ((Lines{
                specAt(5) + "exp of pq.sw.bad: expression ends after an operator",
                idbAt(2) + "destination usr/bin/a installed twice (also line 1)",
                idbAt(8) + "tag not mapped by any subsystem: pq.sw.unknown",
                specAt(2) + "version 'v2' does not start with a digit",
                idbAt(3) + "not found: nowhere (installs as usr/missing)",
                idbAt(4) + "link usr/link without symval(TARGET)",
                idbAt(5) + "device dev/b without dev(MAJOR,MINOR)",
                idbAt(6) + "absolute destination path /abs",
                idbAt(7) + "'..' in destination path usr/../x",
                idbAt(9) + "socket tmp/sock cannot be packaged (a program makes it when it runs)",
                idbAt(10) + "config on etc/d, which is not a regular file",
                idbAt(11) + "unknown attribute 'frob'",
                specAt(3) + "prereq names unknown subsystem nothere (pq.sw.nothere)",
                specAt(4) + "subsystem without files: pq.sw.empty",
                specAt(5) + "subsystem without files: pq.sw.bad",
            }),
            p.problems());
}

}  // namespace
