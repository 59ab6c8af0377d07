#include "filelist/FileListAdd.h"

#include <Xm/FileSB.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>

#include "filelist/BrowserDirectory.h"
#include "filelist/FileListModel.h"
#include "filelist/LineMatcher.h"
#include "filelist/PanelFields.h"
#include "idb/StringSet.h"
#include "util/BusyScope.h"
#include "util/Reporter.h"
#include "util/Utils.h"
#include "yr/YrBusyIndicator.h"
#include "yr/YrDialogManager.h"
#include "yr/YrInterruptDialog.h"

const char* const FileListAdd::kAddedTag = "ALREADY_ADDED_CHARSET";

namespace {

const char* const kResources[] = {
    "*filesList.boldLabelFont:  Monospace",
    "*browserMenu*browsingDirectory.labelString:  Browsing Directory...",
    nullptr,
};

const char* const kNoSelection =
    "You haven't selected any files in the browser to add.\nSelect items in the list on the "
    "left, then press the Add arrow.\nDepress <Ctrl> when you click to select disjoint items.";

XmString makeItem(const std::string& text, bool marked) {
  return XmStringCreate(const_cast<char*>(text.c_str()),
                        const_cast<char*>(marked ? FileListAdd::kAddedTag : XmFONTLIST_DEFAULT_TAG));
}

bool isDirectory(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

StreamReporter& stderrReporter() {
  static StreamReporter r(stderr);
  return r;
}

}  // namespace

FileListAdd::FileListAdd(const char* name, Widget parent)
    : FileListAddUI(name, parent) {
  setDefaultResources(parent, kResources);
  addBoldRendition();
  addBrowserMenu();
}

FileListAdd::~FileListAdd() = default;

void FileListAdd::connect(FileListModel& fileList, Reporter& reporter) {
  _model = &fileList;
  _reporter = &reporter;
}

void FileListAdd::log(const std::string& line) {
  (_reporter ? *_reporter : stderrReporter()).logMessage(line);
}

void FileListAdd::error(const std::string& text) {
  if (_reporter)
    _reporter->error(text);
  else
    getTheErrorDialog()->post(text.c_str());
}

// Marked entries are drawn with the font the resource "boldLabelFont" of the
// list names, added to the list's own render table under kAddedTag.
void FileListAdd::addBoldRendition() {
  String fontName = nullptr;
  XtResource resource = {const_cast<char*>("boldLabelFont"), const_cast<char*>("BoldLabelFont"),
                         XtRString, sizeof(String), 0, XtRString,
                         const_cast<char*>("Monospace")};
  XtGetSubresources(XtParent(_filesList), &fontName, XtName(_filesList), "XmList", &resource, 1,
                    nullptr, 0);
  XmRenderTable table = nullptr;
  XtVaGetValues(_filesList, XmNrenderTable, &table, nullptr);
  Arg args[4];
  int n = 0;
  XtSetArg(args[n], XmNfontName, fontName); n++;
  XtSetArg(args[n], XmNfontType, XmFONT_IS_XFT); n++;
  XtSetArg(args[n], XmNfontStyle, const_cast<char*>("Bold")); n++;
  XtSetArg(args[n], XmNfontSize, 9); n++;
  XmRendition bold = XmRenditionCreate(_filesList, const_cast<char*>(kAddedTag), args, n);
  XmRenderTable merged = XmRenderTableAddRenditions(table ? XmRenderTableCopy(table, nullptr, 0)
                                                          : nullptr,
                                                    &bold, 1, XmMERGE_REPLACE);
  XtVaSetValues(_filesList, XmNrenderTable, merged, nullptr);
  XmRenderTableFree(merged);
  XmRenditionFree(bold);
}

// The directory chooser hangs from the browser's popup menu, which the
// third button over the list posts.
void FileListAdd::addBrowserMenu() {
  Widget menu = XmCreatePopupMenu(_filesList, const_cast<char*>("browserMenu"), nullptr, 0);
  Widget item = XtCreateManagedWidget("browsingDirectory", xmPushButtonWidgetClass, menu,
                                      nullptr, 0);
  XtAddCallback(item, XmNactivateCallback, &FileListAdd::chooseDirectory, this);
  XtAddEventHandler(_filesList, ButtonPressMask, False, &FileListAdd::postBrowserMenu, menu);
}

void FileListAdd::postBrowserMenu(Widget, XtPointer menu, XEvent* event, Boolean*) {
  if (event->type != ButtonPress || event->xbutton.button != Button3) return;
  XmMenuPosition(static_cast<Widget>(menu), &event->xbutton);
  XtManageChild(static_cast<Widget>(menu));
}

void FileListAdd::chooseDirectory(Widget, XtPointer clientData, XtPointer) {
  static_cast<FileListAdd*>(clientData)->showOpenBrowser();
}

// ---- browsing ----------------------------------------------------------------------------

bool FileListAdd::isSubdir(const std::string& root, const std::string& dir) {
  return BrowserDirectory::isSubdir(root, dir, _reporter ? *_reporter : stderrReporter());
}

void FileListAdd::setBrowsingDirectory(const char* text) {
  std::string path;
  if (!text) {
    if (!_browsingDirectory) return;
    path = *_browsingDirectory;
  } else {
    path = BrowserDirectory::typedPath(text);
  }
  if (!BrowserDirectory::isReadableDirectory(path)) return;
  const std::string canonical = dcanon(path);
  const std::string root = _model ? _model->sourceRoot() : std::string("/");
  if (!isSubdir(root, canonical)) {
    error("'" + canonical + "' is outside Source Root '" + root + "'");
    setFieldText(_directoryTextField, browsingDirectory());
    return;
  }
  BusyScope busy(YrBusyIndicator::application());
  _browsingDirectory = canonical;
  setFieldText(_directoryTextField, canonical);
  std::unique_ptr<StringSet> names = BrowserDirectory::readEntries(canonical);
  std::unique_ptr<StringSet> added =
      _model ? _model->srcpathsInDir(canonical) : std::make_unique<StringSet>("none");
  showEntries(*names, *added);
}

void FileListAdd::showEntries(const StringSet& names, const StringSet& added) {
  const int n = names.count();
  _names.assign(n, std::string());
  _marked.assign(n, 0);
  _positions.clear();
  _positions.reserve(n);
  std::vector<XmString> items(n);
  for (int i = 0; i < n; i++) {
    _names[i] = names.item(i);
    _marked[i] = added.find(names.item(i)) != nullptr;
    _positions.emplace(_names[i], i + 1);
    items[i] = makeItem(_names[i], _marked[i]);
  }
  XmListDeleteAllItems(_filesList);
  if (n > 0) XmListAddItemsUnselected(_filesList, items.data(), n, 0);
  for (XmString s : items) XmStringFree(s);
}

void FileListAdd::replaceEntry(int pos, const std::string& text, bool marked) {
  if (pos < 1 || pos > static_cast<int>(_names.size())) return;
  XmString item = makeItem(text, marked);
  XmListReplaceItemsPos(_filesList, &item, 1, pos);
  XmStringFree(item);
  if (_names[pos - 1] != text) {
    _positions.erase(_names[pos - 1]);
    _names[pos - 1] = text;
    _positions[text] = pos;
  }
  _marked[pos - 1] = marked;
}

std::string FileListAdd::getEntryText(int pos, bool* marked) const {
  XmString* items = nullptr;
  int count = 0;
  XtVaGetValues(_filesList, XmNitems, &items, XmNitemCount, &count, nullptr);
  if (pos < 1 || pos > count) return std::string();
  char* text = nullptr;
  bool tagged = false;
  if (!XmStringGetLtoR(items[pos - 1], const_cast<char*>(XmFONTLIST_DEFAULT_TAG), &text) &&
      XmStringGetLtoR(items[pos - 1], const_cast<char*>(kAddedTag), &text))
    tagged = true;
  if (marked) *marked = tagged;
  std::string out = text ? text : "";
  XtFree(text);
  return out;
}

int FileListAdd::getEntryPos(const std::string& name) {
  auto found = _positions.find(name);
  if (found == _positions.end()) found = _positions.find(name + "/");
  if (found != _positions.end()) return found->second;
  log(browsingDirectory() + "/" + name + " does not exist.");
  if (_reporter) _reporter->showMessages();
  return 0;
}

void FileListAdd::newSourceRootDirectory(const std::string& root) {
  if (!_browsingDirectory || !isSubdir(root, *_browsingDirectory))
    setBrowsingDirectory(root.c_str());
  refresh();
}

void FileListAdd::setCurrent(const std::string& fullPath) {
  std::string dir = mypathdirname(fullPath);
  if (dir.empty()) dir = "/";
  setBrowsingDirectory(dir.c_str());
  XmListDeselectAllItems(_filesList);
  int pos = getEntryPos(mypathbasename(fullPath));
  if (pos == 0) return;
  selectPositions({pos});
  int visible = 0;
  XtVaGetValues(_filesList, XmNvisibleItemCount, &visible, nullptr);
  XmListSetPos(_filesList, std::max(1, pos - visible / 2));
}

// ---- marks -----------------------------------------------------------------------------

void FileListAdd::mark(const std::string& name) {
  int pos = getEntryPos(name);
  if (pos) replaceEntry(pos, _names[pos - 1], true);
}

void FileListAdd::unmark(const std::string& srcpath) {
  if (!_model) return;
  // The root and the source path meet without a "/" between them, unlike
  // the double click's join.
  const std::string joined = _model->sourceRoot() + srcpath;
  std::string dir = mypathdirname(joined);
  if (dir.empty()) dir = "/";
  if (dir != browsingDirectory()) return;
  std::string name = mypathbasename(joined);
  int pos = getEntryPos(name);
  if (pos == 0) return;
  if (isDirectory(joined)) name += "/";
  replaceEntry(pos, name, false);
}

void FileListAdd::refresh() {
  if (!_browsingDirectory || !_model) return;
  std::unique_ptr<StringSet> added = _model->srcpathsInDir(*_browsingDirectory);
  for (int pos = 1; pos <= static_cast<int>(_names.size()); pos++) {
    bool in = added->find(_names[pos - 1].c_str()) != nullptr;
    if (in != static_cast<bool>(_marked[pos - 1])) replaceEntry(pos, _names[pos - 1], in);
  }
}

// ---- selection -------------------------------------------------------------------------

void FileListAdd::selectPositions(const std::vector<int>& positions) {
  // Motif selects position by position in quadratic time; handing it the
  // whole set at once does not.
  XtVaSetValues(_filesList, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
  XtVaSetValues(_filesList, XmNselectedPositions, const_cast<int*>(positions.data()),
                XmNselectedPositionCount, static_cast<int>(positions.size()), nullptr);
  XtVaSetValues(_filesList, XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
}

std::vector<int> FileListAdd::selectedPositions() const {
  int* list = nullptr;
  int count = 0;
  std::vector<int> out;
  if (XmListGetSelectedPos(_filesList, &list, &count)) {
    out.assign(list, list + count);
    XtFree(reinterpret_cast<char*>(list));
  }
  std::sort(out.begin(), out.end());
  return out;
}

void FileListAdd::selectionTextField(Widget, XtPointer) {
  LineMatcher matcher(fieldText(_selectionTextField));
  if (!matcher.ok()) {
    std::fputc('\a', stdout);
    std::fflush(stdout);
    return;
  }
  BusyScope busy(YrBusyIndicator::application());
  XmListDeselectAllItems(_filesList);
  std::vector<int> positions;
  for (int i = 0; i < static_cast<int>(_names.size()); i++) {
    const std::string& name = _names[i];
    if (name == "./" || name == "../") continue;
    if (matcher.matches(name)) positions.push_back(i + 1);
  }
  selectPositions(positions);
}

void FileListAdd::allPushButton(Widget, XtPointer) {
  XmTextFieldSetString(_selectionTextField, const_cast<char*>(".*"));
}

void FileListAdd::nonePushButton(Widget, XtPointer) {
  XmTextFieldSetString(_selectionTextField, const_cast<char*>("^$"));
}

void FileListAdd::defaultAction(Widget, XtPointer callData) {
  auto* cbs = static_cast<XmListCallbackStruct*>(callData);
  if (!cbs || cbs->item_position < 1 || cbs->item_position > static_cast<int>(_names.size()))
    return;
  std::string path =
      BrowserDirectory::entryPath(browsingDirectory(), _names[cbs->item_position - 1]);
  setBrowsingDirectory(path.c_str());
}

void FileListAdd::directoryTextField(Widget, XtPointer) {
  setBrowsingDirectory(fieldText(_directoryTextField).c_str());
}

// ---- adding ----------------------------------------------------------------------------

void FileListAdd::arrowButton(Widget, XtPointer) { addSelectedFiles(); }

bool FileListAdd::searchInterrupted(int count) {
  YrInterruptDialog* dialog = getTheInterruptDialog();
  char text[96];
  std::snprintf(text, sizeof text, "Searching, Please wait...\n%d files added", count);
  dialog->post(text);
  if (!dialog->wasInterrupted()) return false;
  refresh();
  return true;
}

bool FileListAdd::addDir(const std::string& dir, StringSet& set, int& count) {
  DirectorySearch::Poll poll = [this](int n) { return searchInterrupted(n); };
  if (!DirectorySearch::addDir(dir, set, count, poll)) return false;
  // Called inside the Add's busy scope: the count stays in the working
  // dialog until the whole Add ends.
  char text[64];
  std::snprintf(text, sizeof text, "Added \n%d files.", set.count());
  BusyScope added(YrBusyIndicator::application(), text);
  return true;
}

void FileListAdd::addSelectedFiles() {
  const std::vector<int> positions = selectedPositions();
  if (positions.empty()) {
    error(kNoSelection);
    return;
  }
  if (!_model || _model->totalUnfound() > 0) return;
  BusyScope busy(YrBusyIndicator::application());
  StringSet newItems("New Items");
  int count = 0;
  const std::string root = _model->sourceRoot();
  for (int pos : positions) {
    XmListSetBottomPos(_filesList, pos);
    const std::string path =
        dcanon(BrowserDirectory::entryPath(browsingDirectory(), _names[pos - 1]));
    if (!BrowserDirectory::isUnder(root, path)) {
      // "../" at the source root: searching it would list the whole tree
      // above the root, none of which can be added.
      log("Skipped '" + path + "': it is outside Source Root '" + root + "'.");
      if (_reporter) _reporter->showMessages();
      continue;
    }
    if (!isDirectory(path)) {
      newItems.add(path);
      ++count;
    } else if (!addDir(path, newItems, count)) {
      // Nothing of this Add reaches the idb; the marks were recomputed.
      getTheInterruptDialog()->unpost();
      return;
    }
    replaceEntry(pos, _names[pos - 1], true);
  }
  getTheInterruptDialog()->unpost();
  std::vector<std::string> paths;
  paths.reserve(newItems.count());
  for (int i = 0; i < newItems.count(); i++) paths.emplace_back(newItems.item(i));
  _model->add(paths);
  // Entries whose names the file list skipped lose the mark set above.
  refresh();
  XmListDeselectAllItems(_filesList);
}

// ---- directory chooser -----------------------------------------------------------------

void FileListAdd::showOpenBrowser() {
  BusyScope busy(YrBusyIndicator::application());
  if (!_chooser) {
    _chooser = XmCreateFileSelectionDialog(_baseWidget, const_cast<char*>("fileListBrowser"),
                                           nullptr, 0);
    XmString mask = XmStringCreateLocalized(const_cast<char*>("*.idb"));
    XtVaSetValues(_chooser, XmNdirMask, mask, XmNfileTypeMask, XmFILE_DIRECTORY, nullptr);
    XmStringFree(mask);
    XtVaSetValues(XtParent(_chooser), XmNtitle, "Browsing Directory", nullptr);
    // Only the directories and the selection remain; Help has nothing to
    // show, as in the shared dialogs.
    for (unsigned char child : {XmDIALOG_FILTER_LABEL, XmDIALOG_FILTER_TEXT, XmDIALOG_LIST_LABEL,
                                XmDIALOG_HELP_BUTTON})
      if (Widget w = XmFileSelectionBoxGetChild(_chooser, child)) XtUnmanageChild(w);
    if (Widget list = XmFileSelectionBoxGetChild(_chooser, XmDIALOG_LIST))
      XtUnmanageChild(XtParent(list));
    XtAddCallback(_chooser, XmNcancelCallback, &FileListAdd::chooserCancel, this);
    XtRemoveAllCallbacks(_chooser, XmNokCallback);
    XtAddCallback(_chooser, XmNokCallback, &FileListAdd::chooserOk, this);
    // A window manager's Close is Cancel; without one the chooser takes the
    // keyboard itself, as the shared dialogs do.
    yrOnWindowClose(XtParent(_chooser), &FileListAdd::chooserCancel, this);
    yrFocusOnMap(XtParent(_chooser));
  }
  XtManageChild(_chooser);
}

void FileListAdd::chooserOk(Widget w, XtPointer clientData, XtPointer callData) {
  auto* self = static_cast<FileListAdd*>(clientData);
  auto* cbs = static_cast<XmFileSelectionBoxCallbackStruct*>(callData);
  char* text = nullptr;
  if (cbs && cbs->value)
    text = static_cast<char*>(XmStringUnparse(cbs->value, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT,
                                              nullptr, 0, XmOUTPUT_ALL));
  if (text && *text) self->setBrowsingDirectory(text);
  XtFree(text);
  XtUnmanageChild(w);
}

// Called with the box (Cancel) or with its shell (Close).
void FileListAdd::chooserCancel(Widget, XtPointer clientData, XtPointer) {
  XtUnmanageChild(static_cast<FileListAdd*>(clientData)->_chooser);
}
