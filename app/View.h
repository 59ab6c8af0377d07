// View: the main window's contents.  Five picture tabs over the message log
// and the work area; every panel is created once, stacked in its place, and
// choosing a tab raises the panels of that view.  The view owns the panels
// (connected once by a PanelWiring) and the message log that every part of
// the program writes to.
//
// Views are numbered in tab order: 0 "Create Product Hierarchy", 1 "Tag
// Files", 2 "Edit Permissions & Destinations", 3 "Add Attributes", 4 "Build
// Product".
#ifndef TAMBLIN_APP_VIEW_H
#define TAMBLIN_APP_VIEW_H

#include <X11/xpm.h>

#include <memory>
#include <string>
#include <vector>

#include "app/ui/ViewUI.h"
#include "spec/SpecGraphWindow.h"
#include "util/Reporter.h"

class FileListTags;
class FileListAdd;
class FileListAttrs;
class FileListModel;
class FileListPerms;
class Generate;
class FileList;
class IdbDocument;
class LogJump;
class MessageLog;
struct PanelWiring;
class SpecDetail;
class SpecGraph;
class SpecDocument;
class YrMenuItem;
class YrMenuToggle;
class YrTabPanel;

class View : public ViewUI, public SpecGraphWindow {
 public:
  static constexpr int kNumViews = 5;

  View(const char* name, Widget parent);
  ~View() override;
  const char* className() const override { return "View"; }

  /// Shows view 0 to 4; any other number is reported on standard error
  /// after the tabs were deselected.
  void setView(int view);
  int currentView() const { return _currentView; }
  void selectTab(int index);
  int deselectAllTabs();
  void initialView();

  /// Appends a line to the message log (an empty text is ignored; see
  /// MessageLog for what is cut and what is kept).
  void logMessage(const char* text);
  void showMessages();
  void hideMessages();
  /// The whole log as shown, lines separated by "\n".
  std::string messages() const;
  MessageLog& log() { return *_log; }
  bool messagesShown() const;

  void showInternalNames();
  void hideInternalNames();
  /// Activates "Create Patch..." when the idb has records and the spec has
  /// a subsystem, else deactivates it.
  void refreshCreatePatchMenuAction() override;

  /// The menu objects the main window hands over (each may stay null).
  void setShowMessagesToggle(YrMenuToggle* t) { _showMessagesToggle = t; }
  void setShowInternalNamesToggle(YrMenuToggle* t) { _showInternalNamesToggle = t; }
  void setCreatePatchItem(YrMenuItem* i) { _createPatchItem = i; }

  /// The spec being edited (null until the product hierarchy panel is
  /// there); not owned.
  SpecDocument* specDocument() const { return _spec; }
  void setSpecDocument(SpecDocument* spec) { _spec = spec; }

  /// The idb being edited: the file list panel, unless a test puts
  /// another in its place; not owned.
  IdbDocument* idbDocument() const { return _idb; }
  void setIdbDocument(IdbDocument* idb) { _idb = idb; }

  /// Connects the Add Files, Permissions and Attributes panels with the
  /// file list in both directions (the file list's model, not owned).
  void connectFileList(FileListModel& fileList);
  FileListAdd* addPanel() const { return _addPanel; }
  FileListPerms* permsPanel() const { return _permsPanel; }
  FileListAttrs* attrsPanel() const { return _attrsPanel; }

  /// How the core reports to the user: this log and the shared dialogs.
  Reporter& reporter() { return *_reporter; }

  /// The panels of the first two tabs.
  SpecGraph* specGraph() const { return _specGraph; }
  SpecDetail* specDetail() const { return _specDetail; }
  FileListTags* tagsPanel() const { return _tagsPanel; }
  /// The idb's model behind the file list panel (null until that panel is
  /// there); not owned.
  FileListModel* fileList() const { return _fileListModel; }

  /// Where the Add Files panel browses (the directory given last).
  /// Moves the Add Files panel there too.
  void setBrowsingDirectory(const std::string& dir);
  const std::string& browsingDirectory() const { return _browsingDirectory; }

  /// The spec file label of the hierarchy changed: the build panel shows
  /// the same text.
  void specFileLabelChanged(const std::string& text) override;

  /// The "Build Product" panel.
  Generate* buildPanel() const { return _buildPanel; }

  YrTabPanel* tabPanel() const { return _tabPanel.get(); }
  bool usesTextLabels() const { return _useTextLabels; }
  /// The body raised for view (left side), for tests and tools.
  Widget leftBody(int view) const;
  Widget messageText() const { return _messageText; }
  /// What a double click on a "FILE:LINE:" line of the log shows.
  LogJump* logJump() const { return _logJump.get(); }

  /// Replaces the compiled-in tab images (null: back to them) for views
  /// made afterwards; lets tests see what a broken image does.
  static void useTabImages(const char* const* const* normal, const char* const* const* selected);

 private:
  static void tabSelectCallback(YrTabPanel* caller, void* clientData, int index);
  void makePixmaps(Widget parent);
  void createTabPanel();
  void createPanels();
  void colourMessageLog();
  static void raise(Widget w);

  Display* _display;
  std::unique_ptr<YrTabPanel> _tabPanel;
  int _currentView = 0;
  bool _useTextLabels = false;
  Pixmap _selectedPixmaps[kNumViews] = {};
  Pixmap _normalPixmaps[kNumViews] = {};
  std::string _tabLabels[kNumViews];
  YrMenuToggle* _showMessagesToggle = nullptr;
  YrMenuToggle* _showInternalNamesToggle = nullptr;
  YrMenuItem* _createPatchItem = nullptr;
  SpecDocument* _spec = nullptr;
  IdbDocument* _idb = nullptr;
  FileList* _fileListPanel = nullptr;  // one of _panels
  std::unique_ptr<Reporter> _reporter;
  std::unique_ptr<MessageLog> _log;
  FileListAdd* _addPanel = nullptr;
  FileListPerms* _permsPanel = nullptr;
  FileListAttrs* _attrsPanel = nullptr;
  // Panels shown in the work area, in creation order.
  std::vector<std::unique_ptr<class YrComponent>> _panels;
  SpecGraph* _specGraph = nullptr;
  SpecDetail* _specDetail = nullptr;
  FileListTags* _tagsPanel = nullptr;
  Generate* _buildPanel = nullptr;
  FileListModel* _fileListModel = nullptr;
  std::unique_ptr<PanelWiring> _wiring;
  std::string _browsingDirectory;
  std::unique_ptr<LogJump> _logJump;
};

#endif
