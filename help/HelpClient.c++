#include "help/HelpClient.h"

#include <X11/Xatom.h>
#include <X11/Xresource.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <string>
#include <vector>

#include "help/HelpRequest.h"
#include "util/ChildProcess.h"

namespace {

// Keep in step with the server's buffers.
const size_t kResourceSize = 256;

struct HelpState {
  Display* display = nullptr;
  std::string client = ".";
  std::string className;
  std::string separator;
  std::string locale;
  std::string selection;
  Atom selectionAtom = 0;
  Atom requestAtom = 0;
  std::string helpSubSys;
  std::string helpTitle;
  std::string lastRequest;
  HelpPrograms programs;
};

HelpState& state() {
  static HelpState s;
  return s;
}

int ignoreErrors(Display*, XErrorEvent*) { return 0; }

// The display's own defaults first, then the class's app-defaults file
// (per locale when one is set).
std::string helpResource(const char* name, const char* className, XrmDatabase* file, bool* opened) {
  HelpState& s = state();
  if (const char* value = XGetDefault(s.display, s.client.c_str(), name))
    return std::string(value).substr(0, kResourceSize - 1);
  if (!*opened) {
    *opened = true;
    std::string path = s.programs.resourceRoot + "/";
    if (!s.locale.empty()) path += s.locale + "/";
    path += "app-defaults/" + s.className;
    *file = XrmGetFileDatabase(path.c_str());
  }
  if (!*file) return "";
  char* type = nullptr;
  XrmValue value{};
  std::string resource = std::string("*") + name;
  std::string resourceClass = std::string("*") + className;
  if (!XrmGetResource(*file, resource.c_str(), resourceClass.c_str(), &type, &value) || !value.addr)
    return "";
  return std::string(value.addr).substr(0, kResourceSize - 1);
}

void loadResources() {
  HelpState& s = state();
  XrmDatabase file = nullptr;
  bool opened = false;
  s.helpSubSys = helpResource("helpSubSys", "HelpSubSys", &file, &opened);
  s.helpTitle = helpResource("helpTitle", "HelpTitle", &file, &opened);
  if (file) XrmDestroyDatabase(file);
  if (s.helpTitle.empty()) s.helpTitle = s.client;
}

[[noreturn]] void execOrExit(const std::vector<std::string>& words, bool searchPath) {
  std::vector<char*> argv;
  for (const std::string& w : words) argv.push_back(const_cast<char*>(w.c_str()));
  argv.push_back(nullptr);
  if (searchPath)
    execvp(argv[0], argv.data());
  else
    execv(argv[0], argv.data());
  _exit(0);
}

// Runs in the grandchild: becomes the server, or the error box.
[[noreturn]] void serverOrErrorBox(const std::vector<std::string>& server,
                                   const std::vector<std::string>& notice,
                                   const std::vector<std::string>& message) {
  int null = open("/dev/null", O_RDWR);
  if (null >= 0) {
    dup2(null, 1);
    if (null > 2) close(null);
  }
  // The server outlives the program: it must not hold the display's or
  // anybody's descriptors.
  keepOnlyStandardDescriptors();
  if (access(server[0].c_str(), X_OK) == 0) execOrExit(server, false);
  if (access(notice[0].c_str(), X_OK) == 0) execOrExit(notice, false);
  execOrExit(message, true);
}

void startServer(const std::string& request) {
  const HelpPrograms& p = state().programs;
  const std::string locale = state().locale;
  // Everything the grandchild needs is made before forking.
  std::vector<std::string> server = {p.server, "-pending", request};
  std::string text = p.resourceRoot + (locale.empty() ? "" : "/" + locale) + "/app-defaults/Desktophelp";
  const char* missing = "OrvexHelp server program (/usr/sbin/orvexhelp) not found.";
  const char* install = "Please install ocular.sw.orvexhelp and try again.";
  bool haveText = access(text.c_str(), R_OK) == 0;
  std::vector<std::string> notice =
      haveText ? std::vector<std::string>{p.notice, "-B", "Ok", "-header", "Help Error", "-file", text,
                                          "-icon", "warning"}
               : std::vector<std::string>{p.notice, "-t", missing, "-t", install, "-B", "Ok",
                                          "-header", "Help Error", "-icon", "warning"};
  std::vector<std::string> message =
      haveText ? std::vector<std::string>{p.message, "-title", "Help Error", "-buttons", "Ok",
                                          "-file", text}
               : std::vector<std::string>{p.message, "-title", "Help Error", "-buttons", "Ok",
                                          std::string(missing) + "\n" + install};
  pid_t child = fork();
  if (child == 0) {
    if (fork() == 0) serverOrErrorBox(server, notice, message);
    _exit(0);
  }
  if (child > 0) {
    int status;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
  }
}

int send(const char* key, const char* command, const char* book, const char* userData) {
  HelpState& s = state();
  if (!s.display) return 0;
  HelpRequest request;
  request.client = s.client;
  request.command = command;
  request.separator = s.separator;
  request.book = book ? book : "";
  request.key = key ? key : "";
  request.userData = userData ? userData : "";
  request.title = s.helpTitle;
  request.subsys = s.helpSubSys;
  s.lastRequest = request.text();

  if (!s.selectionAtom) s.selectionAtom = XInternAtom(s.display, s.selection.c_str(), False);
  Window owner = XGetSelectionOwner(s.display, s.selectionAtom);
  if (owner == None) {
    startServer(s.lastRequest);
    return 1;
  }
  // The owner may vanish meanwhile: the request is then lost, quietly.
  XSync(s.display, False);
  XErrorHandler previous = XSetErrorHandler(ignoreErrors);
  XChangeProperty(s.display, owner, s.requestAtom, s.requestAtom, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(s.lastRequest.c_str()),
                  static_cast<int>(s.lastRequest.size() + 1));
  XSync(s.display, False);
  XSetErrorHandler(previous);
  return 1;
}

}  // namespace

void OrvexHelpInit(Display* display, const char* clientName, const char* className,
                   const char* separator) {
  HelpState& s = state();
  s.display = display;
  s.client = clientName && *clientName ? clientName : ".";
  s.className = className ? className : "";
  s.separator = separator ? separator : "";
  s.locale = helpLocaleName(std::setlocale(LC_MESSAGES, nullptr));
  s.selection = helpServerSelection(s.locale);
  s.selectionAtom = 0;
  s.requestAtom = display ? XInternAtom(display, kHelpRequestProperty, False) : 0;
  if (display) loadResources();
}

int OrvexHelpMsg(const char* key, const char* book, const char* userData) {
  return send(key, "view", book, userData);
}

int OrvexHelpIndexMsg(const char* key, const char* book) { return send(key, "list", book, nullptr); }

void OrvexHelpSetPrograms(const HelpPrograms& programs) { state().programs = programs; }

const std::string& OrvexHelpLastRequest() { return state().lastRequest; }
