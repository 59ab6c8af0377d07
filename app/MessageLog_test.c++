#include <gtest/gtest.h>

#include <Xm/ScrolledW.h>
#include <Xm/Text.h>

#include <string>

#include "app/MessageLog.h"
#include "util/UiTestApp.h"

namespace {

// A log in a shown window, laid out as the view's: word-wrapped, read-only.
class MessageLogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    shell = UiTestApp::newShell("log");
    Widget scrolled = XtVaCreateManagedWidget("scrolledWindow", xmScrolledWindowWidgetClass, shell,
                                              XmNscrollingPolicy, XmAPPLICATION_DEFINED,
                                              XmNvisualPolicy, XmVARIABLE, XmNwidth, 830,
                                              XmNheight, 91, nullptr);
    text = XtVaCreateManagedWidget("messageText", xmTextWidgetClass, scrolled, XmNeditMode,
                                   XmMULTI_LINE_EDIT, XmNeditable, False, XmNwordWrap, True,
                                   XmNrows, 5, XmNscrollHorizontal, False, nullptr);
    XtRealizeWidget(shell);
    UiTestApp::flush();
  }
  void TearDown() override {
    XtDestroyWidget(shell);
    UiTestApp::flush();
  }
  Widget shell = nullptr;
  Widget text = nullptr;
};

size_t countLines(const std::string& text) {
  size_t n = text.empty() ? 0 : 1;
  for (char c : text) n += c == '\n';
  return n;
}

TEST(MessageLogShownTest, LongMessagesAreCutOnACharacterWithAMark) {
  const size_t max = MessageLog::kMaxLineBytes;
  std::string mark = MessageLog::kCutMark;
  struct Case {
    const char* name;
    std::string message, shown;
  } cases[] = {
      {"short", "Opened idb 'a.idb'.", "Opened idb 'a.idb'."},
      {"exactly the limit", std::string(max, 'a'), std::string(max, 'a')},
      {"one byte over", std::string(max + 1, 'a'),
       std::string(max, 'a') + mark + " 1 more bytes]"},
      // A two-byte character across the limit is not split.
      {"a character across the cut", std::string(max - 1, 'a') + "\xc3\xa9" + "tail",
       std::string(max - 1, 'a') + mark + " 6 more bytes]"},
      {"ten megabytes", std::string(10 << 20, 'x'),
       std::string(max, 'x') + mark + " " + std::to_string((10 << 20) - max) + " more bytes]"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.shown, MessageLog::shown(c.message)) << c.name;
}

TEST_F(MessageLogTest, ShowsCutLinesAndKeepsTheLastMessages) {
  MessageLog log(text);
  log.append("");
  EXPECT_EQ("", log.text());
  log.append("first");
  std::string huge(4 << 20, 'p');
  log.append(huge.c_str());
  EXPECT_EQ("first\n" + MessageLog::shown(huge), log.text());
  UiTestApp::flush();

  // Filled past its bound: the oldest batch gives way to one note, and
  // the next batch takes the note along and counts on.
  for (size_t i = 3; i <= MessageLog::kMaxMessages; ++i) log.append(("m" + std::to_string(i)).c_str());
  ASSERT_EQ(MessageLog::kMaxMessages, log.lines());
  log.append("last");
  size_t batch = MessageLog::kDropBatch;
  EXPECT_EQ(MessageLog::kMaxMessages - batch + 2, log.lines());
  std::string shown = log.text();
  EXPECT_EQ(log.lines(), countLines(shown));
  std::string note = "(" + std::to_string(batch) + " earlier messages are no longer shown.)\n";
  EXPECT_EQ(note + "m" + std::to_string(batch + 1) + "\n", shown.substr(0, note.size() + 5));
  EXPECT_EQ("\nlast", shown.substr(shown.size() - 5));

  while (log.lines() < MessageLog::kMaxMessages) log.append("more");
  log.append("after");
  EXPECT_EQ(2 * batch - 1, log.dropped());
  shown = log.text();
  EXPECT_EQ(0u, shown.find("(" + std::to_string(2 * batch - 1) + " earlier messages"));
  EXPECT_EQ(log.lines(), countLines(shown));
  EXPECT_EQ("\nafter", shown.substr(shown.size() - 6));
  // The newest line is the one in view.
  XmTextPosition top = XmTextGetTopCharacter(text);
  EXPECT_GT(top, static_cast<XmTextPosition>(shown.size() / 2));
  UiTestApp::flush();
}

}  // namespace
