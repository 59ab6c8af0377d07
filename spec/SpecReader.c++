#include "spec/SpecReader.h"

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "spec/SpecGraphModel.h"
#include "spec/SpecLexer.h"
#include "util/Reporter.h"

namespace {

// The scratch reads of a check tell nobody anything.
class SilentReporter : public Reporter {
 public:
  void logMessage(const std::string&) override {}
  void showMessages() override {}
  void error(const std::string&) override {}
  void warning(const std::string&) override {}
  bool question(const std::string&) override { return false; }
  void bell() override {}
};

const char* const kWhite = " \t\r\n";

std::vector<std::string> wordsOf(const std::string& text) {
  std::vector<std::string> out;
  std::string::size_type at = text.find_first_not_of(kWhite);
  while (at != std::string::npos) {
    std::string::size_type end = text.find_first_of(kWhite, at);
    out.push_back(text.substr(at, end == std::string::npos ? end : end - at));
    at = end == std::string::npos ? end : text.find_first_not_of(kWhite, end);
  }
  return out;
}

// Short enough for a dialog line.
std::string shown(const std::string& text) {
  std::string one = text.size() > 60 ? text.substr(0, 60) + "..." : text;
  for (char& c : one)
    if (c == '\n' || c == '\t') c = ' ';
  return one;
}

bool isFormatWord(const std::string& w) {
  static const std::set<std::string> kWords = {
      "product", "endproduct", "image",  "endimage",  "subsys",   "endsubsys", "maint",
      "endmaint", "default",   "required", "miniroot", "patch",   "id",        "version",
      "order",   "exp",        "replaces", "incompat", "prereq",  "updates",   "follows",
      "clientonly", "inplace", "include",  "setenv"};
  return kWords.count(w) > 0;
}

// Writes a hierarchy holding value in field at level and reads it back.
// Returns the value read back; *report says how the read went.
// *joinsOther is set when another field read back differs: the value's
// words went to another item of the file.
std::string roundTrip(SpecField field, int level, const std::string& value,
                      SpecReadReport* report, bool* joinsOther) {
  SilentReporter silent;
  SpecGraphModel scratch(&silent);
  SpecNode* node = scratch.addRoot(scratch.add(level == 1 && field == SpecField::kName ? value : "p"));
  if (level >= 2)
    node = scratch.addChild(node, scratch.add(level == 2 && field == SpecField::kName ? value : "i"));
  if (level >= 3) {
    node = scratch.addChild(node, scratch.add(field == SpecField::kName ? value : "s"));
    // The flags follow the name on its line: whatever they meet must end it.
    node->setRequired(true);
    node->setDefault(true);
    node->setMiniroot(true);
    node->setPatch(true);
  }
  switch (field) {
    case SpecField::kName: break;
    case SpecField::kId: node->setId(value); break;
    case SpecField::kVersion: node->setVersion(value); break;
    case SpecField::kRules: node->setRules(value); break;
    case SpecField::kMapping: node->setMapping(value); break;
  }
  char* buf = nullptr;
  size_t len = 0;
  std::FILE* fp = open_memstream(&buf, &len);
  scratch.writeAll(fp);
  std::fclose(fp);
  std::string text(buf, len);
  std::free(buf);

  SpecGraphModel back(&silent);
  readSpecText(back, silent, "value", text, report);
  std::vector<SpecNode*> nodes = back.nodes();
  if (nodes.size() != static_cast<std::size_t>(level)) {
    report->errors += 1;
    return std::string();
  }
  const SpecNode* got = nodes.back();
  std::string fields[] = {got->name(), got->id(), got->version(), got->rules(), got->mapping()};
  const std::string wanted[] = {node->name(), node->id(), node->version(), node->rules(),
                                node->mapping()};
  for (int f = 0; f < 5; ++f)
    if (f != static_cast<int>(field) && fields[f] != wanted[f]) *joinsOther = true;
  if (got->required() != node->required() || got->isDefault() != node->isDefault() ||
      got->miniroot() != node->miniroot())
    *joinsOther = true;
  return fields[static_cast<int>(field)];
}

// Why a read of the written value failed, from its first error.
std::string readFailure(const SpecReadReport& r) {
  const std::string& at = r.firstErrorAt;
  if (r.firstError == "directive")
    return "'" + at + "' would be read as a directive of the spec format; put it in double quotes";
  if (isFormatWord(at))
    return "'" + at + "' is a word of the spec format there; put it in double quotes";
  if (at.size() > 1 && at.find_first_of("()") != std::string::npos)
    return "reading it back stops at '" + shown(at) +
           "': a parenthesis of a prereq group must stand alone, with blanks around it";
  if (!r.firstError.empty())
    return "reading it back stops at '" + shown(at) + "' (" + r.firstError + ")";
  return "reading it back does not give the same hierarchy";
}

}  // namespace

const char* specFieldLabel(SpecField field) {
  switch (field) {
    case SpecField::kName: return "Name";
    case SpecField::kId: return "Description";
    case SpecField::kVersion: return "Version";
    case SpecField::kRules: return "Rules";
    case SpecField::kMapping: return "Mapping";
  }
  return "";
}

SpecFieldCheck checkSpecField(SpecField field, int level, const std::string& value) {
  SpecFieldCheck result;
  std::vector<std::string> words = wordsOf(value);
  // Checked before any read: the reader ends the program on such a word.
  for (const std::string& w : words)
    if (w.size() > static_cast<std::size_t>(kSpecMaxToken)) {
      result.reason = "the word '" + shown(w) + "' is longer than " +
                      std::to_string(kSpecMaxToken) + " characters, the most a spec file holds";
      return result;
    }
  if (field == SpecField::kName) {
    if (value.empty()) {
      result.reason = "a name cannot be empty";
      return result;
    }
    if (value.find_first_of(kWhite) != std::string::npos) {
      result.reason = "a name is one word, without blanks, tabs or line breaks";
      return result;
    }
    if (value.find_first_of("\"'") != std::string::npos) {
      result.reason = "a name cannot hold quote characters";
      return result;
    }
  } else if ((field == SpecField::kId || field == SpecField::kVersion) && words.empty()) {
    result.reason = "it is empty; write \"\" for an empty text";
    return result;
  }
  // Without a '$' there is nothing to replace (and a long text must not be
  // taken for a reference that grows too long).
  std::string substituted = value;
  if (value.find('$') != std::string::npos &&
      (envsub(substituted) != EnvsubResult::kDone || substituted != value)) {
    result.reason =
        "reading the file would replace its environment references ($...) by their values";
    return result;
  }

  SpecReadReport report;
  bool joinsOther = false;
  std::string back = roundTrip(field, level, value, &report, &joinsOther);
  if (!report.clean()) {
    result.reason = readFailure(report);
    return result;
  }
  if (joinsOther) {
    result.reason = "reading it back, its words would join another item of the file";
    return result;
  }
  if (report.prereqCarry != 0) {
    result.reason =
        "a prereq group lists triples: a subsystem, its lowest and its highest version";
    return result;
  }
  if (back != value) {
    // The same words laid out as the reader lays them out are the same
    // value; the layout must then be one that reads back as it is.
    SpecReadReport again;
    if (wordsOf(back) != words || roundTrip(field, level, back, &again, &joinsOther) != back ||
        !again.clean() || joinsOther) {
      result.reason = "it would read back as '" + shown(back) + "'";
      return result;
    }
  }
  result.ok = true;
  result.value = back;
  return result;
}
