// Fuzz target: a hierarchy built through the model's setters, every value
// first put to the same check as the node detail panel's Assign.  Whatever
// the check accepts must be written to text that reads back to the same
// nodes and fields; whatever it refuses is left out, as Assign leaves it.
//
// The input is a sequence of operations: one byte each, then for those that
// set a text a length byte and that many bytes of text.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "spec/SpecGraphModel.h"
#include "spec/SpecReader.h"
#include "util/Reporter.h"

namespace {

class QuietReporter : public Reporter {
 public:
  void logMessage(const std::string&) override {}
  void showMessages() override {}
  void error(const std::string&) override {}
  void warning(const std::string&) override {}
  bool question(const std::string&) override { return true; }
  void bell() override {}
};

// Words of the format and pieces of values, so that short inputs reach
// the interesting cases.
const char* const kWords[] = {
    "product", "image", "subsys", "endsubsys", "default", "patch", "id", "exp", "include",
    "prereq (\n    a 0 oldvers\n)", "prereq ( b 1 2 )", "replaces self", "incompat x 0 oldvers",
    "(", ")", "v1.0(beta)", "\"", "'", "\\", "\"a b\"", "'c d'", "$HOME", "${X", "\n", " ",
    "\t", "p.i.(s)", "a\nb", "", "1(2)"};

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : _data(data), _size(size) {}
  bool done() const { return _at >= _size; }
  unsigned byte() { return _at < _size ? _data[_at++] : 0; }
  std::string text() {
    unsigned n = byte();
    if (n >= 0xe0) return kWords[(n - 0xe0) % (sizeof kWords / sizeof kWords[0])];
    std::string out;
    for (unsigned i = 0; i < n && _at < _size; ++i) out += static_cast<char>(_data[_at++]);
    return out;
  }

 private:
  const std::uint8_t* _data;
  std::size_t _size;
  std::size_t _at = 0;
};

std::string writeAll(const SpecGraphModel& graph) {
  char* buf = nullptr;
  std::size_t len = 0;
  std::FILE* fp = open_memstream(&buf, &len);
  graph.writeAll(fp);
  std::fclose(fp);
  std::string text(buf, len);
  std::free(buf);
  return text;
}

void fail(const char* what, const std::string& text) {
  std::fprintf(stderr, "%s\n---- written:\n%s\n", what, text.c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  QuietReporter reporter;
  SpecGraphModel graph(&reporter);
  std::vector<SpecNode*> nodes[3];
  Input in(data, size);
  while (!in.done()) {
    unsigned op = in.byte();
    unsigned which = in.byte();
    switch (op % 9) {
      case 0:
        nodes[0].push_back(graph.addRoot(graph.add("p" + std::to_string(nodes[0].size()))));
        continue;
      case 1:
      case 2: {
        std::vector<SpecNode*>& parents = nodes[op % 9 - 1];
        if (parents.empty()) continue;
        SpecNode* parent = parents[which % parents.size()];
        nodes[op % 9].push_back(graph.addChild(parent, graph.add("n" + std::to_string(which))));
        continue;
      }
      default:
        break;
    }
    int level = 1 + static_cast<int>(which % 3);
    if (nodes[level - 1].empty()) continue;
    SpecNode* node = nodes[level - 1][(which / 3) % nodes[level - 1].size()];
    if (op % 9 == 3) {
      std::uint32_t bits = 0;
      for (int i = 0; i < 4; ++i) bits = bits << 8 | in.byte();
      node->setOrder(static_cast<std::int32_t>(bits));  // any order, negative ones too
      continue;
    }
    if (op % 9 == 4) {
      unsigned flags = in.byte();
      if (level == 3) {
        node->setRequired(flags & 1);
        node->setDefault(flags & 2);
        node->setMiniroot(flags & 4);
        node->setPatch(flags & 8);
      }
      continue;
    }
    // The fields the detail panel edits at each level.
    SpecField field = SpecField::kName;
    switch (op % 9) {
      case 5: field = SpecField::kName; break;
      case 6: field = SpecField::kId; break;
      case 7: field = level == 2 ? SpecField::kVersion : SpecField::kId; break;
      default: field = level == 3 ? (which & 8 ? SpecField::kRules : SpecField::kMapping)
                                  : SpecField::kId; break;
    }
    std::string value = in.text();
    SpecFieldCheck check = checkSpecField(field, level, value);
    if (!check.ok) continue;  // refused, as Assign refuses it
    switch (field) {
      case SpecField::kName: node->setName(check.value); break;
      case SpecField::kId: node->setId(check.value); break;
      case SpecField::kVersion: node->setVersion(check.value); break;
      case SpecField::kRules: node->setRules(check.value); break;
      case SpecField::kMapping: node->setMapping(check.value); break;
    }
  }

  std::string text = writeAll(graph);
  SpecGraphModel back(&reporter);
  SpecReadReport report;
  readSpecText(back, reporter, "written", text, &report);
  if (!report.clean()) fail(("does not read back cleanly: " + report.firstError + " at '" +
                             report.firstErrorAt + "'").c_str(), text);
  std::vector<SpecNode*> a = graph.nodes(), b = back.nodes();
  if (a.size() != b.size()) fail("a different number of nodes reads back", text);
  for (std::size_t i = 0; i < a.size(); ++i) {
    const SpecNode& x = *a[i];
    const SpecNode& y = *b[i];
    bool same = x.level() == y.level() && x.name() == y.name() && x.id() == y.id();
    if (x.level() == 2) same = same && x.version() == y.version() && x.order() == y.order();
    // A product's or image's patch flag is not written: patch subsystems mark
    // them when read.
    if (x.level() == 3)
      same = same && x.required() == y.required() && x.isDefault() == y.isDefault() &&
             x.miniroot() == y.miniroot() && x.patch() == y.patch() && x.rules() == y.rules() &&
             x.mapping() == y.mapping();
    if (!same) fail(("node " + x.getTag() + " reads back differently").c_str(), text);
  }
  if (writeAll(back) != text) fail("the text read back is written differently", text);
  return 0;
}
