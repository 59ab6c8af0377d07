// SpecGraphWindow: what the hierarchy panel tells the window it sits in.
// The main window's view implements it; tests that need no window pass
// SpecGraphWindow::none().
#ifndef TAMBLIN_SPEC_SPECGRAPHWINDOW_H
#define TAMBLIN_SPEC_SPECGRAPHWINDOW_H

#include <string>

class SpecGraphWindow {
 public:
  virtual ~SpecGraphWindow() = default;

  /// A subsystem came or went: "Create Patch..." may change.
  virtual void refreshCreatePatchMenuAction() = 0;
  /// The spec file label now reads text.
  virtual void specFileLabelChanged(const std::string& text) = 0;

  /// A window that ignores both.
  static SpecGraphWindow& none() {
    struct Ignoring : SpecGraphWindow {
      void refreshCreatePatchMenuAction() override {}
      void specFileLabelChanged(const std::string&) override {}
    };
    static Ignoring window;
    return window;
  }
};

#endif
