// AttrsText: the installation attributes the Attributes panel writes, as
// values, and their composition into and reading from idb attribute texts.
//
// The texts are the idb's own and must not change: "preop(cmd)",
// "postop(cmd)", "exitop(cmd)", "removeop(cmd)", "config(update)" /
// "config(noupdate)" / "config(suggest)", "shadow", "noshare", "nostrip",
// "norqs", "stripdso" and "mach(KEY=NAME,...)", written in this order.  An
// attribute is one word on one line, so a command's newlines are written as
// ";" and read back as newlines (a ";" after a backslash stays).
#ifndef TAMBLIN_FILELIST_ATTRSTEXT_H
#define TAMBLIN_FILELIST_ATTRSTEXT_H

#include <string>
#include <utility>
#include <vector>

struct AttrsState {
  enum Op { PreOp, PostOp, ExitOp, RemoveOp, kOps };
  enum Config { Update, NoUpdate, Suggest };
  enum Flag { Shadow, NoShare, NoStrip, NoRqs, StripDSO, kFlags };

  bool opOn[kOps] = {};
  std::string opText[kOps];
  bool configOn = false;
  Config config = Update;
  bool flags[kFlags] = {};
  bool machOn = false;
  /// The "mach" attribute's pairs (key, name) in writing order.
  std::vector<std::pair<std::string, std::string>> mach;
};

class AttrsText {
 public:
  static const char* const kOpKeywords[AttrsState::kOps];
  static const char* const kFlagKeywords[AttrsState::kFlags];

  /// "keyword(text)" with every newline of text written as ";".
  static std::string opAttr(const char* keyword, const std::string& text);
  /// A command read back from an attribute: ";" becomes a newline, except
  /// where a backslash escapes it (the backslash and the character after it
  /// stay as they are).
  static std::string prepareOpText(const std::string& command);
  /// "mach(K=N,...)" of the pairs, or "" when there are none.
  static std::string machAttr(const std::vector<std::pair<std::string, std::string>>& pairs);

  /// The attributes of a panel state, in the fixed writing order.
  static std::vector<std::string> compose(const AttrsState& state);

  /// What a double click shows of an entry's attributes.  removeop and
  /// unknown attributes are not read back; a "mach" attribute's pairs land
  /// in state.mach (machOn stays for the caller to decide).
  static AttrsState read(const std::vector<std::string>& attrs);
};

#endif
