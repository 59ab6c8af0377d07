#include "help/HelpRequest.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(HelpRequestTest, RequestText) {
  HelpRequest minimal;
  HelpRequest view;
  view.client = "tamblin";
  view.separator = "|";
  view.book = "TamblinHelp";
  view.key = "tagFiles";
  view.userData = "u1";
  view.title = "Tamblin";
  view.subsys = "tamblin.sw.help";
  HelpRequest index = view;
  index.command = "list";
  index.key.clear();
  index.userData.clear();
  HelpRequest quoted;
  quoted.key = "a \"b\" c";
  HelpRequest onlySubsys;
  onlySubsys.subsys = "s";

  struct Case {
    const char* name;
    HelpRequest request;
    std::string text;
  };
  const std::vector<Case> cases = {
      {"defaults", minimal, "client=\".\" command=\"view\" separator=\"\""},
      {"every field", view,
       "client=\"tamblin\" command=\"view\" separator=\"|\" book=\"TamblinHelp\" "
       "keyvalue=\"tagFiles\" user_data=\"u1\" title=\"Tamblin\" subsys=\"tamblin.sw.help\""},
      {"index without key or user data", index,
       "client=\"tamblin\" command=\"list\" separator=\"|\" book=\"TamblinHelp\" "
       "title=\"Tamblin\" subsys=\"tamblin.sw.help\""},
      {"quotes are sent as they are", quoted,
       "client=\".\" command=\"view\" separator=\"\" keyvalue=\"a \"b\" c\""},
      {"a late field alone", onlySubsys, "client=\".\" command=\"view\" separator=\"\" subsys=\"s\""},
  };
  for (const auto& c : cases) EXPECT_EQ(c.text, c.request.text()) << c.name;
}

TEST(HelpRequestTest, ServerSelectionFollowsTheLocale) {
  struct Case {
    const char* locale;
    std::string selection;
  };
  const std::vector<Case> cases = {
      {nullptr, "ORVEX_HELP_SERVER"},
      {"", "ORVEX_HELP_SERVER"},
      {"C", "ORVEX_HELP_SERVER"},
      {"de_DE", "ORVEX_HELP_SERVER_de_DE"},
      {"C.UTF-8", "ORVEX_HELP_SERVER_C.UTF-8"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.selection, helpServerSelection(helpLocaleName(c.locale)))
        << (c.locale ? c.locale : "<unset>");
}

}  // namespace
