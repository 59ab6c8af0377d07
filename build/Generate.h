// Generate: the "Build Product" panel.  It checks the distribution
// directory, saves the spec and idb files when they need it, and runs the
// distribution-build program on them; every line the program writes goes to
// the message log, and "Done." follows when it exits.
//
// Nothing stops a second build while one runs: each run has its own child
// and both write into the log.  The program is "/usr/sbin/forgeset" unless
// the resource "buildProgram" (class "BuildProgram") names another.
//
// The file list and the spec graph are set after construction and may stay
// null (a build then stops before running anything).  Messages go through
// the Reporter given at construction, which must outlive the panel.
#ifndef TAMBLIN_BUILD_GENERATE_H
#define TAMBLIN_BUILD_GENERATE_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/ui/GenerateUI.h"
#include "filelist/BuildPartner.h"

class FileListModel;
class Reporter;
class SpecGraphModel;
class YrProgram;

class Generate : public GenerateUI, public BuildPartner {
 public:
  Generate(const char* name, Widget parent, Reporter& reporter);
  ~Generate() override;
  const char* className() const override { return "Generate"; }

  /// The idb and the spec it saves and builds; both must outlive the panel.
  void connect(FileListModel& fileList, SpecGraphModel& specGraph) {
    _fileListModel = &fileList;
    _specGraph = &specGraph;
  }

  // What the file list tells and asks the panel.
  void setSourceRoot(const std::string& root) override;
  void setDestRoot(const std::string& root) override;
  /// The distribution directory field, normalized.
  std::string getDistDir() override;

  /// The text of the spec file label.
  void setSpecFileLabel(const std::string& text);
  /// Puts text into the distribution directory field.
  void setDistDir(const std::string& text);

  /// The root in the field as the file list accepts it ("" for an empty
  /// field); nothing when there is no file list or it refuses the root, in
  /// which case the field shows the file list's root again.
  std::optional<std::string> getSourceRoot();
  std::optional<std::string> getDestRoot();

  /// Checks, saves and starts the build with action ("-all" or "-dryrun").
  /// False when it stopped before starting the program.
  virtual bool run(const char* action);

  /// The program that builds: the "buildProgram" resource or the default.
  std::string buildProgram() const;
  /// Builds whose program has not yet exited.
  int runningBuilds() const;

 protected:
  void allPushButton(Widget, XtPointer callData) override;
  void dryrunPushButton(Widget, XtPointer callData) override;

 private:
  static void stdoutHandler(YrProgram* program, void* clientData, const char* line);
  static void exitHandler(YrProgram* program, void* clientData, int status);
  bool checkDistDir(const std::string& dist);
  bool saveFiles();
  bool startProgram(const std::vector<std::string>& argv);
  void forgetFinished();
  static std::string fieldText(Widget field);

  Reporter& _reporter;
  FileListModel* _fileListModel = nullptr;
  SpecGraphModel* _specGraph = nullptr;
  // One runner per build started; a finished one is released by the next run
  // or with the panel (never inside its own callbacks).
  std::vector<std::unique_ptr<YrProgram>> _runs;
};

#endif
