#include "build/Generate.h"

#include <Xm/Label.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "build/BuildCommand.h"
#include "build/DistDirCheck.h"
#include "filelist/FileListModel.h"
#include "ov/OvGrid.h"
#include "spec/SpecGraphModel.h"
#include "util/BusyScope.h"
#include "util/Format.h"
#include "util/Reporter.h"
#include "util/Utils.h"
#include "yr/YrBusyIndicator.h"
#include "yr/YrProgram.h"

namespace {

struct ProgramResource {
  String buildProgram;
};

XtResource kProgramResources[] = {
    {const_cast<char*>("buildProgram"), const_cast<char*>("BuildProgram"), XtRString,
     sizeof(String), XtOffsetOf(ProgramResource, buildProgram), XtRString,
     const_cast<char*>(kBuildProgram)},
};

}  // namespace

Generate::Generate(const char* name, Widget parent, Reporter& reporter)
    : GenerateUI(name, parent), _reporter(reporter) {
  // The build options take any extra height.
  for (int row : {0, 1, 2, 3, 5}) OvGridSetRowResizable(_baseWidget, row, False);
}

Generate::~Generate() = default;

std::string Generate::fieldText(Widget field) {
  char* text = XmTextFieldGetString(field);
  std::string out = text ? text : "";
  XtFree(text);
  return out;
}

void Generate::setSourceRoot(const std::string& root) {
  XmTextFieldSetString(_sourceRootTextField, const_cast<char*>(root.c_str()));
}

void Generate::setDestRoot(const std::string& root) {
  XmTextFieldSetString(_destRootTextField, const_cast<char*>(root.c_str()));
}

void Generate::setDistDir(const std::string& text) {
  XmTextFieldSetString(_distDirTextField, const_cast<char*>(text.c_str()));
}

std::string Generate::getDistDir() { return normalize(fieldText(_distDirTextField)); }

void Generate::setSpecFileLabel(const std::string& text) {
  XmString label = XmStringCreateLocalized(const_cast<char*>(text.c_str()));
  XtVaSetValues(_label, XmNlabelString, label, nullptr);
  XmStringFree(label);
}

std::optional<std::string> Generate::getSourceRoot() {
  if (!_fileListModel) return std::nullopt;
  const std::string text = fieldText(_sourceRootTextField);
  // An empty field leaves the option out of the command.
  if (text.empty()) return text;
  std::optional<std::string> root = _fileListModel->setSourceRoot(text);
  if (!root) setSourceRoot(_fileListModel->sourceRoot());
  return root;
}

std::optional<std::string> Generate::getDestRoot() {
  if (!_fileListModel) return std::nullopt;
  const std::string text = fieldText(_destRootTextField);
  if (text.empty()) return text;
  std::optional<std::string> root = _fileListModel->setDestRoot(text);
  if (!root) setDestRoot(_fileListModel->destRoot() ? *_fileListModel->destRoot() : std::string());
  return root;
}

std::string Generate::buildProgram() const {
  ProgramResource value{};
  XtGetApplicationResources(_baseWidget, &value, kProgramResources, XtNumber(kProgramResources),
                            nullptr, 0);
  return value.buildProgram && *value.buildProgram ? value.buildProgram : kBuildProgram;
}

int Generate::runningBuilds() const {
  return static_cast<int>(std::count_if(_runs.begin(), _runs.end(),
                                        [](const auto& run) { return run->running(); }));
}

void Generate::allPushButton(Widget, XtPointer) { run(kBuildAll); }

void Generate::dryrunPushButton(Widget, XtPointer) { run(kBuildDryrun); }

// The build writes a binary idb into the distribution directory: it must
// not be where the text idb lives.  A missing directory is made.
bool Generate::checkDistDir(const std::string& dist) {
  std::string idbName = _fileListModel ? _fileListModel->idbFileName() : std::string();
  if (idbName.empty())
    idbName = (_specGraph ? _specGraph->getProductName() : std::string()) + ".idb";
  if (Outcome refused = ::checkDistDir(DistDirUse::Build, idbName, dist); !refused.ok()) {
    _reporter.error(refused.message());
    return false;
  }
  return true;
}

// The build reads the files from disk: unnamed or changed ones are saved
// first (which may ask for a name).
bool Generate::saveFiles() {
  if (!_specGraph || !_fileListModel) return false;
  if ((_specGraph->specFileName().empty() || _specGraph->changed()) &&
      !_specGraph->save(nullptr).ok())
    return false;
  if ((_fileListModel->idbFileName().empty() || _fileListModel->modified()) &&
      !_fileListModel->save(nullptr).ok())
    return false;
  return true;
}

bool Generate::run(const char* action) {
  forgetFinished();
  const std::string dist = getDistDir();
  if (!checkDistDir(dist)) return false;
  std::optional<std::string> src = getSourceRoot();
  if (!src) return false;
  std::optional<std::string> dst = getDestRoot();
  if (!dst) return false;
  if (!saveFiles()) return false;

  BusyScope busy(YrBusyIndicator::application());
  BuildOptions options;
  options.program = buildProgram();
  options.destRoot = *dst;
  options.sourceRoot = *src;
  options.idbName = _fileListModel->idbFileName();
  options.specName = _specGraph->specFileName();
  options.distDir = dist;
  options.verbose = XmToggleButtonGetState(_verboseToggleButton);
  options.noCompress = XmToggleButtonGetState(_noCompressToggleButton);
  options.noStrip = XmToggleButtonGetState(_noStripToggleButton);
  options.action = action;
  BuildCommand command(options);
  _reporter.showMessages();
  _reporter.logMessage(command.text());
  return startProgram(command.argv());
}

bool Generate::startProgram(const std::vector<std::string>& argv) {
  auto program = std::make_unique<YrProgram>(XtWidgetToApplicationContext(_baseWidget));
  program->setOutputCallback(&Generate::stdoutHandler, this);
  program->setErrorCallback(&Generate::stdoutHandler, this);
  program->setExitCallback(&Generate::exitHandler, this);
  if (Outcome started = program->start(argv); !started.ok()) {
    _reporter.logMessage(started.message());
    // A build that never ran has ended all the same.
    _reporter.logMessage("Done.");
    return false;
  }
  _runs.push_back(std::move(program));
  return true;
}

void Generate::forgetFinished() {
  _runs.erase(std::remove_if(_runs.begin(), _runs.end(),
                             [](const auto& run) { return !run->running(); }),
              _runs.end());
}

void Generate::stdoutHandler(YrProgram*, void* clientData, const char* line) {
  static_cast<Generate*>(clientData)->_reporter.logMessage(line);
}

void Generate::exitHandler(YrProgram*, void* clientData, int) {
  // The status is not examined: the program's own lines say what failed.
  static_cast<Generate*>(clientData)->_reporter.logMessage("Done.");
}
