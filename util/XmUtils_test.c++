// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include <X11/Shell.h>
#include <Xm/TextF.h>

#include "util/UiTestApp.h"
#include "util/XmUtils.h"

namespace {

class XmUtilsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    _top = UiTestApp::newShell();
    _field = XmCreateTextField(_top, const_cast<char*>("field"), nullptr, 0);
    XtManageChild(_field);
    XtRealizeWidget(_top);
  }
  void TearDown() override { XtDestroyWidget(_top); }
  std::string text() {
    char* t = XmTextFieldGetString(_field);
    std::string s = t;
    XtFree(t);
    return s;
  }
  Widget _top = nullptr;
  Widget _field = nullptr;
};

TEST_F(XmUtilsTest, DeblankDropsSpacesKeepsTabsAndMovesToEnd) {
  XmTextFieldSetString(_field, const_cast<char*>(" my prod\tuct "));
  XmTextFieldSetInsertionPosition(_field, 0);
  deblankTextField(_field);
  EXPECT_EQ("myprod\tuct", text());
  EXPECT_EQ(XmTextFieldGetLastPosition(_field), XmTextFieldGetInsertionPosition(_field));
}

std::string plainText(XmString s) {
  char* t = static_cast<char*>(
      XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
  std::string out = t ? t : "";
  XtFree(t);
  return out;
}

TEST_F(XmUtilsTest, CompoundStringsFromArrays) {
  char a[] = "first", b[] = "second\nline";
  char* strings[] = {a, b};
  XmString joined = xs_str_array_to_xmstr(strings, 2);
  // Two lines joined by a separator; the "\n" inside a string stays text.
  EXPECT_EQ(2, XmStringLineCount(joined));
  EXPECT_EQ("firstsecond\nline", plainText(joined));
  XmStringFree(joined);
  XmString empty = xs_str_array_to_xmstr(strings, 0);
  EXPECT_EQ("", plainText(empty));
  XmStringFree(empty);

  XmString* array = xs_str_array_to_xmstr_array(strings, 2);
  ASSERT_NE(nullptr, array);
  EXPECT_EQ("first", plainText(array[0]));
  // "\n" inside a string becomes a line break (a separator), not a character.
  EXPECT_EQ(2, XmStringLineCount(array[1]));
  XmStringFree(array[0]);
  XmStringFree(array[1]);
  XtFree(reinterpret_cast<char*>(array));
}

}  // namespace

namespace {

// A value too long to draw is shown cut with a mark, read-only, and read
// back whole; a value put in afterwards makes the field ordinary again.
// (A 1 MB value drawn whole ends the program with BadLength.)
TEST_F(XmUtilsTest, LongValuesAreShownCutAndKeptWhole) {
  // The program runs in the user's locale; a field made in a UTF-8 one
  // keeps non-ASCII letters.
  std::string before = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_TRUE(std::setlocale(LC_CTYPE, "C.UTF-8"));
  XtDestroyWidget(_field);
  _field = XmCreateTextField(_top, const_cast<char*>("utf8Field"), nullptr, 0);
  XtManageChild(_field);
  std::string whole(1 << 20, 'x');
  whole.replace(kShownPartOfCutValue - 1, 2, "\xc3\xbc");  // a "ü" across the cut
  showFieldValue(_field, whole);
  UiTestApp::flush();
  std::string shown = text();
  EXPECT_EQ(0u, shown.find("[CUT: 1048576 bytes, too long to show; kept whole] ")) << shown.substr(0, 80);
  EXPECT_LT(shown.size(), kShownPartOfCutValue + 100);
  // The cut does not split the two bytes of the letter.
  EXPECT_EQ(std::string::npos, shown.find("\xc3 ..."));
  EXPECT_FALSE(XmTextFieldGetEditable(_field));
  EXPECT_EQ(whole, fieldValue(_field));

  showFieldValue(_field, "/srv/\xc3\xbc" "n\xc3\xaf" "code");
  EXPECT_TRUE(XmTextFieldGetEditable(_field));
  EXPECT_EQ("/srv/\xc3\xbc" "n\xc3\xaf" "code", fieldValue(_field));

  // Exactly at the limit is still shown whole.
  std::string limit(kLongestShownValue, 'y');
  showFieldValue(_field, limit);
  EXPECT_EQ(limit, text());
  EXPECT_TRUE(XmTextFieldGetEditable(_field));
  std::setlocale(LC_CTYPE, before.c_str());
}

}  // namespace
