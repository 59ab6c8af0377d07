#include "app/View.h"

#include <X11/StringDefs.h>
#include <Xm/Form.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>

#include <cstdio>
#include <cstring>
#include <functional>

#include "app/LogJump.h"
#include "app/MessageLog.h"
#include "app/PanelWiring.h"
#include "app/TabPixmaps.h"
#include "app/ui/FileListUI.h"
#include "filelist/FileList.h"
#include "filelist/IdbDocument.h"
#include "app/ViewReporter.h"
#include "filelist/FileListTags.h"
#include "filelist/FileListAdd.h"
#include "filelist/FileListAttrs.h"
#include "filelist/FileListModel.h"
#include "filelist/FileListPerms.h"
#include "build/Generate.h"
#include "ov/OvGrid.h"
#include "spec/SpecDetail.h"
#include "spec/SpecDocument.h"
#include "spec/SpecGraph.h"
#include "spec/SpecGraphModel.h"
#include "yr/YrMenuItem.h"
#include "yr/YrMenuToggle.h"
#include "yr/YrTabPanel.h"

namespace {

const char* const kTabLabels[View::kNumViews] = {
    "Create Product Hierarchy", "Tag Files", "Edit Permissions & Destinations", "Add Attributes",
    "Build Product"};

const char* const* const* gNormalImages = normalTabXpm;
const char* const* const* gSelectedImages = selectedTabXpm;

struct TabColours {
  String buttonBackground;
  String basicBackground;
};

XtResource kTabColourResources[] = {
    {const_cast<char*>("buttonBackground"), const_cast<char*>("ButtonBackground"), XtRString,
     sizeof(String), XtOffsetOf(TabColours, buttonBackground), XtRString,
     const_cast<char*>("yellow")},
    {const_cast<char*>("basicBackground"), const_cast<char*>("BasicBackground"), XtRString,
     sizeof(String), XtOffsetOf(TabColours, basicBackground), XtRString,
     const_cast<char*>("yellow")},
};

struct LogColour {
  String readOnlyBackground;
};

XtResource kLogColourResources[] = {
    {const_cast<char*>("readOnlyBackground"), const_cast<char*>("ReadOnlyBackground"), XtRString,
     sizeof(String), XtOffsetOf(LogColour, readOnlyBackground), XtRString,
     const_cast<char*>("yellow")},
};

Pixmap makePixmap(Widget w, const char* const* data, const char* symbol, const char* colour) {
  Screen* screen = XtScreen(w);
  XpmColorSymbol symbols[1];
  symbols[0].name = const_cast<char*>(symbol);
  symbols[0].value = const_cast<char*>(colour);
  symbols[0].pixel = 0;
  XpmAttributes attributes{};
  attributes.valuemask = XpmColorSymbols | XpmDepth | XpmColormap | XpmVisual;
  attributes.colorsymbols = symbols;
  attributes.numsymbols = 1;
  attributes.depth = DefaultDepthOfScreen(screen);
  attributes.colormap = DefaultColormapOfScreen(screen);
  attributes.visual = DefaultVisualOfScreen(screen);
  Pixmap pixmap = 0, mask = 0;
  int status = XpmCreatePixmapFromData(XtDisplay(w), RootWindowOfScreen(screen),
                                       const_cast<char**>(data), &pixmap, &mask, &attributes);
  if (mask) XFreePixmap(XtDisplay(w), mask);
  XpmFreeAttributes(&attributes);
  return status == XpmSuccess ? pixmap : 0;
}

}  // namespace

void View::useTabImages(const char* const* const* normal, const char* const* const* selected) {
  gNormalImages = normal ? normal : normalTabXpm;
  gSelectedImages = selected ? selected : selectedTabXpm;
}

View::View(const char* name, Widget parent) : ViewUI(name, parent), _display(XtDisplay(parent)) {
  _reporter = std::make_unique<ViewReporter>(*this);
  _log = std::make_unique<MessageLog>(_messageText);
  makePixmaps(parent);
  createTabPanel();
  createPanels();
  colourMessageLog();
  _fileListModel->initSourceRoot();
  _fileListModel->initDestRoot();
  _logJump = std::make_unique<LogJump>(this, _messageText, _fileListPanel, _specGraph);
}

View::~View() {
  _logJump.reset();  // before its widget goes
  // The whole tree at once (the tabs still show the pictures); the panels
  // then only forget their widgets.
  if (_baseWidget) XtDestroyWidget(_baseWidget);
  _panels.clear();
  _tabPanel.reset();
  for (int i = 0; i < kNumViews; ++i) {
    if (_normalPixmaps[i]) XFreePixmap(_display, _normalPixmaps[i]);
    if (_selectedPixmaps[i]) XFreePixmap(_display, _selectedPixmaps[i]);
  }
}

void View::makePixmaps(Widget parent) {
  TabColours colours{};
  XtGetApplicationResources(parent, &colours, kTabColourResources, XtNumber(kTabColourResources),
                            nullptr, 0);
  for (int i = 0; i < kNumViews; ++i)
    _normalPixmaps[i] = makePixmap(parent, gNormalImages[i], "buttonBackground",
                                   colours.buttonBackground);
  for (int i = 0; i < kNumViews; ++i)
    _selectedPixmaps[i] = makePixmap(parent, gSelectedImages[i], "basicBackground",
                                     colours.basicBackground);
  for (int i = 0; i < kNumViews; ++i) _tabLabels[i] = kTabLabels[i];
  // One missing picture and every tab shows its text instead, so that the
  // row looks the same throughout.
  for (int i = 0; i < kNumViews && !_useTextLabels; ++i)
    if (!_normalPixmaps[i] || !_selectedPixmaps[i]) _useTextLabels = true;
}

void View::createTabPanel() {
  _tabPanel = std::make_unique<YrTabPanel>("tabPanel", _baseWidget, 1, 40);
  XtVaSetValues(_tabPanel->baseWidget(), OvNrow, 0, OvNcolumn, 0, OvNresizeVertical, False,
                nullptr);
  for (int i = 0; i < kNumViews; ++i) _tabPanel->addTab("");
  deselectAllTabs();
  _tabPanel->show();
  _tabPanel->addSelectCallback(&View::tabSelectCallback, this);
  OvGridSetRowResizable(_baseWidget, 0, False);
}

void View::createPanels() {
  // Every panel once, in its body, shown as soon as it is made.
  Reporter& reporter = *_reporter;
  struct Place {
    std::function<YrComponent*()> make;
    bool attach;  // the body is a form: fill it
  };
  const Place places[] = {
      {[&] {
         auto* list = new FileList("FileList", _rightFrame, reporter,
                                   [this] { return _currentView; });
         _fileListPanel = list;
         _fileListModel = &list->model();
         _idb = list;
         return list;
       },
       false},
      {[&] { return _tagsPanel = new FileListTags("FileListTags", _tagsBody, reporter); }, true},
      {[&] { return _specGraph = new SpecGraph("SpecGraph", _specBody, reporter, *this); },
       false},
      {[&] { return _specDetail = new SpecDetail("SpecDetail", _rightForm, reporter); }, true},
      {[this] { return _addPanel = new FileListAdd("FileListAdd", _addBody); }, true},
      {[this] { return _permsPanel = new FileListPerms("FileListPerms", _permsBody); }, true},
      {[this] { return _attrsPanel = new FileListAttrs("FileListAttrs", _attrsBody); }, true},
      {[&] { return _buildPanel = new Generate("Generate", _generateBody, reporter); }, true},
  };
  for (const Place& place : places) {
    YrComponent* panel = place.make();
    _panels.emplace_back(panel);
    panel->show();
    if (place.attach)
      XtVaSetValues(panel->baseWidget(), XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment,
                    XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM, XmNrightAttachment,
                    XmATTACH_FORM, nullptr);
  }
  _spec = _specGraph;
  _wiring.reset(new PanelWiring{reporter, *_fileListModel, *_specGraph, *_specDetail, *_tagsPanel,
                                *_addPanel, *_permsPanel, *_attrsPanel, *_buildPanel});
  _wiring->connect();
}

void View::specFileLabelChanged(const std::string& text) {
  if (_buildPanel) _buildPanel->setSpecFileLabel(text);
}

void View::setBrowsingDirectory(const std::string& dir) {
  _browsingDirectory = dir;
  if (_addPanel) _addPanel->setBrowsingDirectory(dir.c_str());
}

void View::connectFileList(FileListModel& fileList) { _wiring->connectFilePanels(fileList); }

void View::colourMessageLog() {
  LogColour colour{};
  XtGetApplicationResources(_baseWidget, &colour, kLogColourResources,
                            XtNumber(kLogColourResources), nullptr, 0);
  const char* value = colour.readOnlyBackground;
  int length = static_cast<int>(std::strlen(value)) + 1;
  XtVaSetValues(_messageText, XtVaTypedArg, XmNbackground, XmRString, value, length, nullptr);
  Widget bar = nullptr;
  XtVaGetValues(_scrolledWindow, XmNverticalScrollBar, &bar, nullptr);
  if (bar) XtVaSetValues(bar, XtVaTypedArg, XmNbackground, XmRString, value, length, nullptr);
}

void View::selectTab(int index) {
  if (index < 0 || index >= kNumViews) return;
  Widget tab = _tabPanel->tab(index);
  if (_useTextLabels) {
    _tabPanel->setTabLabel(index, _tabLabels[index].c_str());
    XtVaSetValues(tab, XmNshadowThickness, 2, nullptr);
  } else {
    _tabPanel->setTabPixmap(index, _selectedPixmaps[index]);
  }
}

int View::deselectAllTabs() {
  for (int i = 0; i < kNumViews; ++i) {
    if (_useTextLabels) {
      _tabPanel->setTabLabel(i, _tabLabels[i].c_str());
      XtVaSetValues(_tabPanel->tab(i), XmNshadowThickness, 0, nullptr);
    } else {
      _tabPanel->setTabPixmap(i, _normalPixmaps[i]);
    }
  }
  return 1;
}

void View::initialView() {
  _tabPanel->selectTab("1", false);
  setView(0);
}

void View::tabSelectCallback(YrTabPanel*, void* clientData, int index) {
  if (index >= 0 && index < kNumViews) static_cast<View*>(clientData)->setView(index);
}

Widget View::leftBody(int view) const {
  switch (view) {
    case 0: return _specBody;
    case 1: return _filesBody;
    case 2: return _permsBody;
    case 3: return _attrsBody;
    case 4: return _generateBody;
    default: return nullptr;
  }
}

void View::raise(Widget w) {
  if (w && XtIsRealized(w)) XRaiseWindow(XtDisplay(w), XtWindow(w));
}

void View::setView(int view) {
  deselectAllTabs();
  if (view < 0 || view >= kNumViews) {
    std::fprintf(stderr, "View::setView\tUnrecognized view: %d\n", view);
    return;
  }
  selectTab(view);
  raise(leftBody(view));
  _currentView = view;
  if (view == 0) {
    raise(_rightForm);
  } else {
    if (_idb) _idb->refresh();
    raise(_rightFrame);
  }
}

void View::logMessage(const char* text) { _log->append(text); }

std::string View::messages() const { return _log->text(); }

bool View::messagesShown() const { return XtIsManaged(_messageForm); }

void View::showMessages() {
  if (!XtIsManaged(_messageForm)) XtManageChild(_messageForm);
  if (_showMessagesToggle) _showMessagesToggle->setVisualState(true);
}

void View::hideMessages() {
  if (XtIsManaged(_messageForm)) XtUnmanageChild(_messageForm);
  if (_showMessagesToggle) _showMessagesToggle->setVisualState(false);
}

void View::showInternalNames() {
  if (_attrsPanel) _attrsPanel->showInternalNames();
  if (_showInternalNamesToggle) _showInternalNamesToggle->setVisualState(true);
}

void View::hideInternalNames() {
  if (_attrsPanel) _attrsPanel->hideInternalNames();
  if (_showInternalNamesToggle) _showInternalNamesToggle->setVisualState(false);
}

void View::refreshCreatePatchMenuAction() {
  if (!_createPatchItem) return;
  if (_idb && _idb->recordCount() > 0 && _spec && _spec->subsystemExists())
    _createPatchItem->activate();
  else
    _createPatchItem->deactivate();
}
