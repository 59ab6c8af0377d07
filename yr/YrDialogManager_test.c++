#include <gtest/gtest.h>

#include <Xm/MessageB.h>
#include <Xm/Xm.h>

#include <unistd.h>

#include <memory>
#include <string>

#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrFileSelectionDialog.h"
#include "yr/YrGenericDialog.h"
#include "yr/YrInterruptDialog.h"

namespace {

class YrDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    app = std::make_unique<YrApp>("Tamblin", UiTestApp::context(), UiTestApp::display());
    YrDialogManager::setWaitLimit(5000);
  }
  void TearDown() override {
    EXPECT_EQ(0u, YrDialogManager::pendingResponders());
    YrDialogManager::clearResponders();
    YrDialogManager::setWaitLimit(0);
    app.reset();
    UiTestApp::flush();
  }
  std::unique_ptr<YrApp> app;
};

// The box's text with its line breaks.
std::string messageOf(Widget box) {
  XmString s = nullptr;
  XtVaGetValues(box, XmNmessageString, &s, nullptr);
  XmString separator = XmStringSeparatorCreate();
  Arg args[3];
  XtSetArg(args[0], XmNincludeStatus, XmINSERT);
  XtSetArg(args[1], XmNsubstitute, separator);
  XtSetArg(args[2], XmNpattern, const_cast<char*>("\n"));
  XmParseMapping newline = XmParseMappingCreate(args, 3);
  XmStringFree(separator);
  char* t = static_cast<char*>(
      XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, &newline, 1, XmOUTPUT_ALL));
  XmParseMappingFree(newline);
  std::string out = t ? t : "";
  XtFree(t);
  XmStringFree(s);
  return out;
}

TEST_F(YrDialogTest, ModalWaitReturnsTheButtonPressed) {
  struct Case {
    YrDialogManager* dialog;
    YrDialogManager::Answer press;
    YrDialogManager::Answer expected;
  } cases[] = {
      {getTheQuestionDialog(), YrDialogManager::Ok, YrDialogManager::Ok},
      {getTheQuestionDialog(), YrDialogManager::Cancel, YrDialogManager::Cancel},
      {getTheErrorDialog(), YrDialogManager::Ok, YrDialogManager::Ok},
      {getTheWarningDialog(), YrDialogManager::Cancel, YrDialogManager::Cancel},
  };
  for (const Case& c : cases) {
    std::string seen;
    bool postedWhenAnswered = false;
    YrDialogManager::queueResponder([&](YrDialogManager& d) {
      seen = messageOf(d.baseWidget());
      postedWhenAnswered = d.isPosted();
      d.press(c.press);
    });
    const char* text = "There have been changes since you last saved.\nAbandon changes to idb file?\n";
    EXPECT_EQ(c.expected, c.dialog->postAndWait(text));
    EXPECT_TRUE(postedWhenAnswered);
    EXPECT_EQ(text, seen);  // the text shown, line breaks included
    EXPECT_EQ(text, c.dialog->message());
    EXPECT_FALSE(c.dialog->isPosted());
  }
}

TEST_F(YrDialogTest, UnansweredWaitEndsAsCancelAfterTheLimit) {
  YrDialogManager::setWaitLimit(200);
  EXPECT_EQ(YrDialogManager::Cancel, getTheQuestionDialog()->postAndWait("Anyone?"));
  EXPECT_FALSE(getTheQuestionDialog()->isPosted());
}

struct Calls {
  std::string log;
};
void okCb(void* c) { static_cast<Calls*>(c)->log += "ok "; }
void cancelCb(void* c) { static_cast<Calls*>(c)->log += "cancel "; }

TEST_F(YrDialogTest, PostedDialogCallsTheCallbackOfTheButtonPressed) {
  Calls calls;
  Widget box = getTheErrorDialog()->post("Select files in patch.", &calls, okCb, cancelCb);
  EXPECT_TRUE(getTheErrorDialog()->isPosted());
  EXPECT_EQ("Select files in patch.", messageOf(box));
  getTheErrorDialog()->press(YrDialogManager::Cancel);
  getTheErrorDialog()->post("Specify patch Product Name.", &calls, okCb, cancelCb);
  getTheErrorDialog()->press(YrDialogManager::Ok);
  // A post without callbacks forgets the earlier ones.
  getTheErrorDialog()->post("again");
  getTheErrorDialog()->press(YrDialogManager::Ok);
  EXPECT_EQ("cancel ok ", calls.log);
  EXPECT_FALSE(getTheErrorDialog()->isPosted());
}

TEST_F(YrDialogTest, FileSelectionReturnsTheChosenPathOnlyOnOk) {
  TempDir dir;
  dir.write("a.idb", "");
  dir.write("b.spec", "");
  YrFileSelectionDialog* fsb = getTheFileSelectionDialog();
  fsb->setDirectory(dir.path());

  std::string proposedSeen, titleSeen;
  YrDialogManager::queueResponder([&](YrDialogManager& dlg) {
    auto& f = static_cast<YrFileSelectionDialog&>(dlg);
    proposedSeen = f.selection();
    XmString t = nullptr;
    XtVaGetValues(f.baseWidget(), XmNdialogTitle, &t, nullptr);
    char* s = static_cast<char*>(
        XmStringUnparse(t, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    titleSeen = s;
    XtFree(s);
    XmStringFree(t);
    f.setSelection(dir.file("chosen.idb"));
    f.press(YrDialogManager::Ok);
  });
  std::string chosen = "unchanged";
  EXPECT_EQ(YrDialogManager::Ok, fsb->postAndWait("Save Idb", "*idb", "tamblin.idb", &chosen));
  EXPECT_EQ(dir.file("tamblin.idb"), proposedSeen);
  EXPECT_EQ("Save Idb", titleSeen);
  EXPECT_EQ(dir.file("chosen.idb"), chosen);

  YrDialogManager::queueResponder([](YrDialogManager& dlg) { dlg.press(YrDialogManager::Cancel); });
  chosen = "unchanged";
  EXPECT_EQ(YrDialogManager::Cancel, fsb->postAndWait("Open Idb", "*idb", nullptr, &chosen));
  EXPECT_EQ("unchanged", chosen);
}

// Processes events until the dialog is down (or a second has passed).
bool comesDown(YrDialogManager& d) {
  for (int i = 0; i < 100 && d.isPosted(); i++) {
    UiTestApp::flush();
    while (XtAppPending(UiTestApp::context())) XtAppProcessEvent(UiTestApp::context(), XtIMAll);
    if (d.isPosted()) usleep(10000);
  }
  return !d.isPosted();
}

std::string titleOf(YrDialogManager& d) {
  char* title = nullptr;
  XtVaGetValues(XtParent(d.baseWidget()), XmNtitle, &title, nullptr);
  return title ? title : "";
}

// Every way of answering takes every kind of dialog down, the modal ones
// included; the modal wait then returns what the answer meant.  (Answered
// through callbacks alone, a file selection box used to stay up, modal,
// while the wait returned.)
TEST_F(YrDialogTest, EveryAnswerTakesTheDialogDown) {
  enum Way { PressOk, PressCancel, Close };
  struct Case {
    YrDialogManager* dialog;
    Way way;
    YrDialogManager::Answer expected;
  } cases[] = {
      {getTheErrorDialog(), PressOk, YrDialogManager::Ok},
      {getTheErrorDialog(), Close, YrDialogManager::Ok},
      {getTheWarningDialog(), PressOk, YrDialogManager::Ok},
      {getTheWarningDialog(), Close, YrDialogManager::Ok},
      {getTheQuestionDialog(), PressOk, YrDialogManager::Ok},
      {getTheQuestionDialog(), PressCancel, YrDialogManager::Cancel},
      {getTheQuestionDialog(), Close, YrDialogManager::Cancel},
      {getTheFileSelectionDialog(), PressOk, YrDialogManager::Ok},
      {getTheFileSelectionDialog(), PressCancel, YrDialogManager::Cancel},
      {getTheFileSelectionDialog(), Close, YrDialogManager::Cancel},
      {getTheInterruptDialog(), PressCancel, YrDialogManager::Cancel},
      {getTheInterruptDialog(), Close, YrDialogManager::Cancel},
  };
  int n = 0;
  for (const Case& c : cases) {
    std::string what = std::string(c.dialog->name()) + " way " + std::to_string(c.way);
    bool wasUp = false;
    YrDialogManager::queueResponder([&](YrDialogManager& d) {
      wasUp = d.isPosted() && XtIsRealized(d.baseWidget());
      if (c.way == Close)
        UiTestApp::sendWindowClose(XtParent(d.baseWidget()));
      else
        d.press(c.way == PressOk ? YrDialogManager::Ok : YrDialogManager::Cancel);
    });
    YrDialogManager::Answer a;
    if (c.dialog == getTheFileSelectionDialog()) {
      std::string chosen;
      a = getTheFileSelectionDialog()->postAndWait("Save Spec", "*spec", "x.spec", &chosen);
    } else {
      a = c.dialog->postAndWait("text");
    }
    EXPECT_TRUE(wasUp) << what;
    EXPECT_EQ(c.expected, a) << what;
    EXPECT_TRUE(comesDown(*c.dialog)) << what;
    ++n;
  }
  EXPECT_EQ(12, n);
}

TEST_F(YrDialogTest, DialogsHaveRealTitlesAndErrorsNoCancel) {
  struct Case {
    YrDialogManager* dialog;
    const char* title;
    bool cancel;
  } cases[] = {
      {getTheErrorDialog(), "Error", false},
      {getTheWarningDialog(), "Warning", false},
      {getTheQuestionDialog(), "Question", true},
      {getTheInterruptDialog(), "Working", true},
  };
  for (const Case& c : cases) {
    c.dialog->post("text");
    EXPECT_EQ(c.title, titleOf(*c.dialog));
    Widget cancel = XmMessageBoxGetChild(c.dialog->baseWidget(), XmDIALOG_CANCEL_BUTTON);
    EXPECT_EQ(c.cancel, XtIsManaged(cancel)) << c.title;
    c.dialog->unpost();
  }
}

TEST_F(YrDialogTest, FileSelectionIsWideEnoughForItsPaths) {
  YrDialogManager::queueResponder([](YrDialogManager& d) {
    Dimension width = 0;
    XtVaGetValues(d.baseWidget(), XmNwidth, &width, nullptr);
    EXPECT_GE(width, 600);
    d.press(YrDialogManager::Cancel);
  });
  std::string chosen;
  getTheFileSelectionDialog()->postAndWait("Open Spec", "*spec", nullptr, &chosen);
}

TEST_F(YrDialogTest, InterruptIsSeenByThePoll) {
  YrInterruptDialog* interrupt = getTheInterruptDialog();
  interrupt->post("Searching...");
  EXPECT_FALSE(interrupt->wasInterrupted());
  interrupt->press(YrDialogManager::Cancel);
  EXPECT_TRUE(interrupt->wasInterrupted());
  interrupt->post("Searching again...");  // a new post starts afresh
  EXPECT_FALSE(interrupt->wasInterrupted());
  interrupt->unpost();
}

class Checked : public YrGenericDialog {
 public:
  Checked() : YrGenericDialog("checked", "Checked") {}
  bool accept = false;
  int oks = 0;

 protected:
  void ok(Widget w, XtPointer cd) override {
    ++oks;
    if (accept) YrGenericDialog::ok(w, cd);
  }
};

TEST_F(YrDialogTest, GenericDialogStaysUpUntilItsOkAccepts) {
  Checked dialog;
  dialog.post();
  dialog.press(YrDialogManager::Ok);
  EXPECT_TRUE(dialog.isPosted());
  dialog.accept = true;
  dialog.press(YrDialogManager::Ok);
  EXPECT_FALSE(dialog.isPosted());
  EXPECT_EQ(2, dialog.oks);
  EXPECT_EQ(YrDialogManager::Ok, dialog.answer());
}

}  // namespace
