// PanelWiring: who talks to whom among the panels of the main window.
//
// Every member is a reference, so a wiring that leaves a panel out does not
// compile.  connect() makes every connection in both directions, in the one
// place that knows the order they need: the tags panel and the hierarchy
// before the default graph is made (its tags go to the tags panel), the
// file panels before the roots are shown.  All must outlive the wiring's
// use; the view owns them.
#ifndef TAMBLIN_APP_PANELWIRING_H
#define TAMBLIN_APP_PANELWIRING_H

class FileListAdd;
class FileListAttrs;
class FileListModel;
class FileListPerms;
class FileListTags;
class Generate;
class Reporter;
class SpecDetail;
class SpecGraph;

struct PanelWiring {
  Reporter& reporter;
  FileListModel& fileList;  // the idb being edited (the file list panel's model)
  SpecGraph& specGraph;
  SpecDetail& specDetail;
  FileListTags& tags;
  FileListAdd& add;
  FileListPerms& perms;
  FileListAttrs& attrs;
  Generate& build;

  /// Connects every panel with the others and with the file list, then
  /// makes the default hierarchy and shows the roots.
  void connect() const;
  /// Connects the Add Files, Permissions and Attributes panels with
  /// fileList in both directions (part of connect()).
  void connectFilePanels(FileListModel& fileList) const;
};

#endif
