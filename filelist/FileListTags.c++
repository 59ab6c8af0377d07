#include "filelist/FileListTags.h"

#include <Xm/List.h>
#include <Xm/TextF.h>

#include <cstdio>
#include <memory>

#include "filelist/FileListModel.h"
#include "idb/StringSet.h"
#include "spec/SpecGraphModel.h"
#include "util/BusyScope.h"
#include "util/Reporter.h"
#include "yr/YrBusyIndicator.h"

const char* const FileListTags::kNoEntrySelected =
    "You haven't selected any idb entries to assign too.\n"
    "Select items in the list on the right, then press Assign.\n"
    "Depress <Ctrl> when you click to select disjoint items.\n"
    "If there are none, press <Tag Files> to add some first.";
const char* const FileListTags::kNoTagSelected =
    "There isn't a tag selected for assignment.  Create tags using\n"
    "the Add pushbutton or by reading a spec via the File pulldown.";

namespace {

std::string textOf(XmString s) {
  std::string out;
  if (!s) return out;
  if (char* text = static_cast<char*>(
          XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL))) {
    out = text;
    XtFree(text);
  }
  return out;
}

class ListItem {
 public:
  explicit ListItem(const std::string& text)
      : _s(XmStringCreateLocalized(const_cast<char*>(text.c_str()))) {}
  ~ListItem() { XmStringFree(_s); }
  ListItem(const ListItem&) = delete;
  ListItem& operator=(const ListItem&) = delete;
  operator XmString() const { return _s; }

 private:
  XmString _s;
};

}  // namespace

FileListTags::FileListTags(const char* name, Widget parent, Reporter& reporter)
    : FileListTagsUI(name, parent), _reporter(reporter) {}

// ---- The list ------------------------------------------------------------------

int FileListTags::itemCount() const {
  int count = 0;
  XtVaGetValues(_tagsList, XmNitemCount, &count, nullptr);
  return count;
}

std::string FileListTags::itemText(int position) const {
  XmStringTable items = nullptr;
  int count = 0;
  XtVaGetValues(_tagsList, XmNitems, &items, XmNitemCount, &count, nullptr);
  if (position < 1 || position > count) return std::string();
  return textOf(items[position - 1]);
}

std::vector<std::string> FileListTags::items() const {
  std::vector<std::string> out;
  for (int p = 1, n = itemCount(); p <= n; ++p) out.push_back(itemText(p));
  return out;
}

int FileListTags::positionOf(const std::string& tag) const {
  ListItem item(tag);
  return XmListItemPos(_tagsList, item);
}

int FileListTags::selectedPosition() const {
  int* positions = nullptr;
  int count = 0;
  if (!XmListGetSelectedPos(_tagsList, &positions, &count)) return 0;
  int first = count > 0 ? positions[0] : 0;
  XtFree(reinterpret_cast<char*>(positions));
  return first;
}

int FileListTags::topPosition() const {
  int top = 0;
  XtVaGetValues(_tagsList, XmNtopItemPosition, &top, nullptr);
  return top;
}

std::string FileListTags::fieldText() const {
  char* text = XmTextFieldGetString(_selectionTextField);
  std::string out = text ? text : "";
  XtFree(text);
  return out;
}

// The list allows one selected tag; selecting a position replaces it.
void FileListTags::selectQuietly(int position) {
  XmListDeselectAllItems(_tagsList);
  if (position >= 1) XmListSelectPos(_tagsList, position, False);
}

void FileListTags::putInField(const std::string& text) {
  XmTextFieldSetString(_selectionTextField, const_cast<char*>(text.c_str()));
  XmTextFieldSetInsertionPosition(_selectionTextField, XmTextFieldGetLastPosition(_selectionTextField));
}

void FileListTags::add(const std::string& tag) {
  if (tag.empty()) return;
  ListItem item(tag);
  if (XmListItemExists(_tagsList, item)) return;
  XmListAddItemUnselected(_tagsList, item, 0);
  selectQuietly(itemCount());
  XmListSetBottomPos(_tagsList, 0);
}

void FileListTags::deleteAll() {
  XmListDeleteAllItems(_tagsList);
  XmTextFieldSetString(_selectionTextField, const_cast<char*>(""));
}

void FileListTags::refresh() {
  deleteAll();
  // Built once and handed to the list in one call: the idb may use many tags.
  std::vector<std::string> tags;
  StringSet seen("Tags shown");
  auto collect = [&](const StringSet& set) {
    for (int i = 0; i < set.count(); ++i)
      if (!seen.find(set[i]) && *set[i]) tags.push_back(seen.add(set[i]));
  };
  if (_fileListModel) collect(*_fileListModel->getTags());
  if (_specGraph) collect(*_specGraph->getTags());
  std::vector<XmString> strings;
  strings.reserve(tags.size());
  for (const std::string& t : tags) strings.push_back(XmStringCreateLocalized(const_cast<char*>(t.c_str())));
  if (!strings.empty())
    XmListAddItemsUnselected(_tagsList, strings.data(), static_cast<int>(strings.size()), 0);
  for (XmString s : strings) XmStringFree(s);
  if (!tags.empty()) XmListSelectPos(_tagsList, 1, True);
}

std::string FileListTags::getCurrent() {
  int* positions = nullptr;
  int count = 0;
  if (!XmListGetSelectedPos(_tagsList, &positions, &count)) return "?";
  std::string tag = count > 0 ? itemText(positions[0]) : std::string();
  XtFree(reinterpret_cast<char*>(positions));
  if (tag.empty()) {
    std::fprintf(stderr, "FileListTags::getCurrent\tNever happens. Count=%d\n", count);
    return "?";
  }
  return tag;
}

void FileListTags::setCurrent(const std::string& tag) {
  int position = positionOf(tag);
  if (position == 0) {
    XmListSetPos(_tagsList, 1);
    return;
  }
  selectQuietly(position);
  int visible = 1;
  XtVaGetValues(_tagsList, XmNvisibleItemCount, &visible, nullptr);
  int top = position - visible / 2;
  XmListSetPos(_tagsList, top < 1 ? 1 : top);
}

// ---- Widget callbacks -----------------------------------------------------------

void FileListTags::addPushButton(Widget, XtPointer) { add(fieldText()); }

void FileListTags::selectionTextField(Widget, XtPointer) { add(fieldText()); }

void FileListTags::browseSelection(Widget, XtPointer callData) {
  auto* cb = static_cast<XmListCallbackStruct*>(callData);
  putInField(textOf(cb->item));
}

void FileListTags::singleSelection(Widget w, XtPointer callData) { browseSelection(w, callData); }

void FileListTags::defaultAction(Widget, XtPointer callData) {
  auto* cb = static_cast<XmListCallbackStruct*>(callData);
  if (_fileListModel) _fileListModel->selectTag(textOf(cb->item));
}

void FileListTags::deletePushButton(Widget, XtPointer) {
  int p = selectedPosition();
  if (p == 0) return;
  XmListDeletePos(_tagsList, p);
  int count = itemCount();
  // Position 0 is Motif's name for the last item: deleting the first of
  // two leaves the remaining one selected.
  if (count > p)
    selectQuietly(p);
  else if (count > 0)
    selectQuietly(p > 1 ? p - 1 : count);
}

void FileListTags::replacePushButton(Widget, XtPointer) {
  std::string text = fieldText();
  if (text.empty()) return;
  int q = positionOf(text);
  int s = selectedPosition();
  if (s == 0) return;
  if (q == 0 || q == s) {
    ListItem item(text);
    XmString items[1] = {item};
    XmListReplaceItemsPos(_tagsList, items, 1, s);
    selectQuietly(s);
    return;
  }
  // The text is listed elsewhere already: the selected entry goes and the
  // other one is selected (it moved up if it stood below).
  XmListDeletePos(_tagsList, s);
  selectQuietly(q > s ? q - 1 : q);
}

void FileListTags::arrowButton(Widget, XtPointer) {
  if (!_fileListModel || _fileListModel->totalSelected() == 0) {
    _reporter.error(kNoEntrySelected);
    return;
  }
  BusyScope busy(YrBusyIndicator::application());
  if (selectedPosition() == 0)
    _reporter.error(kNoTagSelected);
  else
    _fileListModel->replaceTag(getCurrent());
}
