#include "spec/SpecDetail.h"

#include <Xm/List.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "filelist/FileListModel.h"
#include "filelist/FileListTags.h"
#include "idb/StringSet.h"
#include "spec/SpecGraph.h"
#include "spec/SpecNode.h"
#include "spec/SpecReader.h"
#include "util/Format.h"
#include "util/Reporter.h"
#include "util/XmUtils.h"

const char* const SpecDetail::kUnquotedBlank =
    "The Description contains an UNQUOTED BLANK.\n\nUse double quotes:  \"My Product "
    "Description\"\nsingle quotes:  'My Product Description'\nor quote each blank:  "
    "2\\\"\\ Tape\\ Player\nand Assign again.\n\nNOTE: The build operation would otherwise fail "
    "with\n\"unrecognized product component\"";
const char* const SpecDetail::kUnmatchedQuote =
    "The Description contains an UNMATCHED QUOTE.\n\nAdd a matching quote (\" or ') and Assign "
    "again.\n\nNOTE: The build operation would otherwise fail with\n\"unrecognized product "
    "component\"";
const char* const SpecDetail::kNoNodeSelected =
    "You haven't selected a node to assign too.  Select\na node by clicking on it with the left "
    "mouse button.\nCreate nodes using the <Add> button.";

namespace {

// A value too long to draw is shown cut and read whole (XmUtils).
std::string fieldText(Widget w) { return fieldValue(w); }

void setText(Widget w, const std::string& text) { showFieldValue(w, text); }

void setToggle(Widget w, bool on) { XmToggleButtonSetState(w, on, False); }
bool toggleState(Widget w) { return XmToggleButtonGetState(w); }

}  // namespace

SpecDetail::SpecDetail(const char* name, Widget parent, Reporter& reporter)
    : SpecDetailUI(name, parent), _reporter(reporter) {
  if (!_showRequiredToggleButton) XtUnmanageChild(_requiredToggleButton);
  refresh();
}

// ---- Showing the current node ----------------------------------------------------

void SpecDetail::setCurrent(SpecNode* node) {
  _current = node;
  refresh();
}

Widget SpecDetail::shownForm() const {
  for (Widget form : {_noneForm, _productForm, _imageForm, _subsysForm})
    if (XtIsManaged(form)) return form;
  return nullptr;
}

// The new form is managed before the old ones go, so the frame never
// shrinks to nothing in between.
void SpecDetail::showForm(Widget form) {
  if (!XtIsManaged(form)) XtManageChild(form);
  for (Widget other : {_noneForm, _productForm, _imageForm, _subsysForm})
    if (other != form && XtIsManaged(other)) XtUnmanageChild(other);
}

void SpecDetail::refresh() {
  if (!_current || !_specGraph) {
    showForm(_noneForm);
    return;
  }
  int level = _specGraph->model().getLevel(_current);
  assert((level >= 1) && (level <= 3) && "SpecDetail.c++");
  switch (level) {
    case 1:
      setText(_productNameTextField, _current->name());
      setText(_productIdTextField, _current->id());
      showForm(_productForm);
      break;
    case 2:
      setText(_imageNameTextField, _current->name());
      setText(_imageIdTextField, _current->id());
      setText(_versionTextField, _current->version());
      setText(_orderTextField, std::to_string(_current->order()));
      refreshOrderList();
      showForm(_imageForm);
      break;
    default:
      fillSubsystem();
      showForm(_subsysForm);
      break;
  }
}

void SpecDetail::fillSubsystem() {
  setText(_subsysNameTextField, _current->name());
  setText(_subsysIdTextField, _current->id());
  if (_showRequiredToggleButton) setToggle(_requiredToggleButton, _current->required());
  setToggle(_defaultToggleButton, _current->isDefault());
  setToggle(_minirootToggleButton, _current->miniroot());
  setToggle(_patchToggleButton, _current->patch());
  // A patch subsystem is never required.
  XtSetSensitive(_requiredToggleButton, !_current->patch());
  setText(_mappingText, _current->mapping());
  setText(_rulesText, _current->rules());
}

void SpecDetail::refreshOrderList() {
  XmListDeleteAllItems(_orderList);
  if (!_current || !_specGraph) return;
  std::string own;
  std::unique_ptr<StringSet> ordering = _specGraph->model().getOrdering(_current, &own);
  ordering->sort();
  std::vector<XmString> items;
  for (int i = 0; i < ordering->count(); ++i)
    items.push_back(XmStringCreateLocalized(const_cast<char*>((*ordering)[i])));
  if (!items.empty())
    XmListAddItemsUnselected(_orderList, items.data(), static_cast<int>(items.size()), 0);
  for (XmString s : items) XmStringFree(s);
}

std::vector<std::string> SpecDetail::orderItems() const {
  XmStringTable items = nullptr;
  int count = 0;
  XtVaGetValues(_orderList, XmNitems, &items, XmNitemCount, &count, nullptr);
  std::vector<std::string> out;
  for (int i = 0; i < count; ++i) {
    char* text = static_cast<char*>(XmStringUnparse(items[i], nullptr, XmCHARSET_TEXT,
                                                    XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    out.push_back(text ? text : "");
    XtFree(text);
  }
  return out;
}

void SpecDetail::browseSelection(Widget, XtPointer callData) {
  auto* cb = static_cast<XmListCallbackStruct*>(callData);
  char* text = static_cast<char*>(XmStringUnparse(cb->item, nullptr, XmCHARSET_TEXT,
                                                  XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
  std::string line = text ? text : "";
  XtFree(text);
  int order = 0;
  char tag[4096];
  if (!_specGraph || std::sscanf(line.c_str(), "%04d %4095s", &order, tag) != 2) return;
  SpecNode* node = _specGraph->model().getNode(tag);
  if (node && node != _current) _specGraph->model().select(node);
}

// ---- Assign ----------------------------------------------------------------------

int SpecDetail::okDescription(const std::string& text) {
  bool inDouble = false, inSingle = false;
  for (std::string::size_type i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == ' ' && !inDouble && !inSingle) {
      _reporter.error(kUnquotedBlank);
      return 0;
    }
    if (c == '\\')
      ++i;
    else if (c == '\'' && !inDouble)
      inSingle = !inSingle;
    else if (c == '"' && !inSingle)
      inDouble = !inDouble;
  }
  if (inDouble || inSingle) {
    _reporter.error(kUnmatchedQuote);
    return 0;
  }
  return 1;
}

void SpecDetail::fixMapping(SpecNode* subsys, int level, const std::string& newName) {
  assert(_specGraph->model().getLevel(subsys) == 3 && "_specGraph->getLevel(node) == 3");
  std::string oldTag = subsys->getTag();
  std::string parts[3];
  std::string::size_type start = 0;
  for (int i = 0; i < 3 && start != std::string::npos; ++i) {
    std::string::size_type dot = i < 2 ? oldTag.find('.', start) : std::string::npos;
    parts[i] = oldTag.substr(start, dot == std::string::npos ? dot : dot - start);
    start = dot == std::string::npos ? dot : dot + 1;
  }
  parts[level - 1] = newName;
  std::string newTag = parts[0] + "." + parts[1] + "." + parts[2];
  // A mapping the user has edited in the form, or in the node, is theirs.
  bool untouched = subsys != _current || fieldText(_mappingText) == subsys->mapping();
  if (subsys->mapping() == oldTag && untouched) {
    subsys->setMapping(newTag);
    if (subsys == _current) setText(_mappingText, newTag);
  }
  if (_fileListModel) _fileListModel->fixTag(oldTag, newTag);
}

void SpecDetail::renamed(const std::string& name) {
  _current->setName(name);
  _specGraph->model().relayout();
  if (_tagsPanel) _tagsPanel->refresh();
}

void SpecDetail::applyArrowButton(Widget, XtPointer) {
  if (!_current || !_specGraph) {
    _reporter.error(kNoNodeSelected);
    return;
  }
  bool assigned = false;
  switch (_specGraph->model().getLevel(_current)) {
    case 3: assigned = assignSubsystem(); break;
    case 2: assigned = assignImage(); break;
    default: assigned = assignProduct(); break;
  }
  if (assigned) _specGraph->model().setChanged(true);
}

// Reads each field's text and checks that it would read back from a spec
// file as it is; posts the first refusal.  On success *values hold what to
// store, which the fields then show.
bool SpecDetail::writableFields(std::initializer_list<std::pair<SpecField, Widget>> fields,
                                std::vector<std::string>* values) {
  int level = _specGraph->model().getLevel(_current);
  for (const auto& f : fields) {
    std::string text = fieldText(f.second);
    SpecFieldCheck check = checkSpecField(f.first, level, text);
    if (!check.ok) {
      std::string shown = text.size() > 60 ? text.substr(0, 60) + "..." : text;
      _reporter.error(std::string("The ") + specFieldLabel(f.first) + " '" + shown +
                      "' cannot be saved in a spec file:\n" + check.reason +
                      ".\n\nChange it and Assign again.");
      return false;
    }
    values->push_back(check.value);
  }
  auto value = values->begin();
  for (const auto& f : fields) {
    if (fieldText(f.second) != *value) setText(f.second, *value);
    ++value;
  }
  return true;
}

bool SpecDetail::assignSubsystem() {
  if (!okDescription(fieldText(_subsysIdTextField))) return false;
  std::vector<std::string> v;
  if (!writableFields({{SpecField::kId, _subsysIdTextField},
                       {SpecField::kName, _subsysNameTextField},
                       {SpecField::kMapping, _mappingText},
                       {SpecField::kRules, _rulesText}},
                      &v))
    return false;
  _current->setId(v[0]);
  fixMapping(_current, 3, v[1]);
  renamed(v[1]);
  _current->setDefault(toggleState(_defaultToggleButton));
  if (_showRequiredToggleButton) _current->setRequired(toggleState(_requiredToggleButton));
  _current->setMiniroot(toggleState(_minirootToggleButton));
  _current->setPatch(toggleState(_patchToggleButton));
  _current->setMapping(fieldText(_mappingText));
  _current->setRules(v[3]);
  return true;
}

bool SpecDetail::assignImage() {
  if (!okDescription(fieldText(_imageIdTextField))) return false;
  std::vector<std::string> v;
  if (!writableFields({{SpecField::kId, _imageIdTextField},
                       {SpecField::kName, _imageNameTextField},
                       {SpecField::kVersion, _versionTextField}},
                      &v))
    return false;
  _current->setId(v[0]);
  for (int i = 0; i < _current->childCount(); ++i) fixMapping(_current->child(i), 2, v[1]);
  renamed(v[1]);
  _current->setVersion(v[2]);
  _current->setOrder(std::atoi(fieldText(_orderTextField).c_str()));
  refreshOrderList();
  return true;
}

bool SpecDetail::assignProduct() {
  if (!okDescription(fieldText(_productIdTextField))) return false;
  std::vector<std::string> v;
  if (!writableFields({{SpecField::kId, _productIdTextField},
                       {SpecField::kName, _productNameTextField}},
                      &v))
    return false;
  _current->setId(v[0]);
  for (int i = 0; i < _current->childCount(); ++i) {
    SpecNode* image = _current->child(i);
    for (int j = 0; j < image->childCount(); ++j) fixMapping(image->child(j), 1, v[1]);
  }
  renamed(v[1]);
  return true;
}

// ---- Rule templates ----------------------------------------------------------------

void SpecDetail::insertRule(const char* format) {
  if (!_current) return;
  // Rules shown cut are read-only: inserting would make the cut text the value.
  if (!XmTextGetEditable(_rulesText)) return;
  std::string text = ::format(format, _current->getTag().c_str());
  XmTextPosition at = XmTextGetInsertionPosition(_rulesText);
  XmTextInsert(_rulesText, at, &text[0]);
  XmTextSetInsertionPosition(_rulesText, at + static_cast<XmTextPosition>(text.size()));
}

void SpecDetail::prereqPushButton(Widget, XtPointer) { insertRule("prereq (\n    %s 0 oldvers\n)\n"); }
void SpecDetail::incompatPushButton(Widget, XtPointer) { insertRule("incompat %s 0 oldvers\n"); }
void SpecDetail::replacesPushButton(Widget, XtPointer) { insertRule("replaces %s 0 oldvers\n"); }
