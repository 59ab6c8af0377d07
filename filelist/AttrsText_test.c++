#include "filelist/AttrsText.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "filelist/MachSelection.h"
#include "mach/MachTables.h"

namespace {

using Texts = std::vector<std::string>;

AttrsState fullPanel() {
  AttrsState s;
  for (int op = 0; op < AttrsState::kOps; op++) s.opOn[op] = true;
  s.opText[AttrsState::PreOp] = "mkdir -p /var/x\nchmod 755 /var/x";
  s.opText[AttrsState::PostOp] = "echo a\\;b";
  s.opText[AttrsState::ExitOp] = "";
  s.opText[AttrsState::RemoveOp] = "rm -f /tmp/y";
  s.configOn = true;
  s.config = AttrsState::Suggest;
  for (bool& f : s.flags) f = true;
  s.machOn = true;
  s.mach = {{"CPUBOARD", "KB40"}, {"CPUBOARD", "KB52"}, {"GFXBOARD", "LUMEN"}, {"SUBGR", "LUMEN2"}};
  return s;
}

TEST(AttrsTextTest, FullPanelWrittenInFixedOrder) {
  EXPECT_EQ((Texts{"preop(mkdir -p /var/x;chmod 755 /var/x)", "postop(echo a\\;b)", "exitop()",
                   "removeop(rm -f /tmp/y)", "config(suggest)", "shadow", "noshare", "nostrip",
                   "norqs", "stripdso",
                   "mach(CPUBOARD=KB40,CPUBOARD=KB52,GFXBOARD=LUMEN,SUBGR=LUMEN2)"}),
            AttrsText::compose(fullPanel()));
}

TEST(AttrsTextTest, PartialPanels) {
  struct Case {
    const char* what;
    AttrsState state;
    Texts expected;
  };
  std::vector<Case> cases;
  cases.push_back({"nothing on", AttrsState(), {}});
  AttrsState machNoBoard;
  machNoBoard.machOn = true;
  cases.push_back({"mach without a board", machNoBoard, {}});
  AttrsState boardsNoMach;
  boardsNoMach.mach = {{"CPUBOARD", "KB10"}};
  cases.push_back({"boards without the mach toggle", boardsNoMach, {}});
  AttrsState configs[3];
  const char* configTexts[] = {"config(update)", "config(noupdate)", "config(suggest)"};
  for (int i = 0; i < 3; i++) {
    configs[i].configOn = true;
    configs[i].config = static_cast<AttrsState::Config>(i);
    cases.push_back({configTexts[i], configs[i], {configTexts[i]}});
  }
  AttrsState textNoToggle;
  textNoToggle.opText[AttrsState::PreOp] = "ignored";
  cases.push_back({"text without its toggle", textNoToggle, {}});
  for (const Case& c : cases) EXPECT_EQ(c.expected, AttrsText::compose(c.state)) << c.what;
}

TEST(AttrsTextTest, ReadBackShowsWhatWasWrittenExceptRemoveop) {
  AttrsState back = AttrsText::read(AttrsText::compose(fullPanel()));
  EXPECT_EQ("mkdir -p /var/x\nchmod 755 /var/x", back.opText[AttrsState::PreOp]);
  EXPECT_EQ("echo a\\;b", back.opText[AttrsState::PostOp]);  // escaped ";" stays
  EXPECT_TRUE(back.opOn[AttrsState::PreOp]);
  EXPECT_FALSE(back.opOn[AttrsState::ExitOp]);  // empty text: toggle follows it
  EXPECT_EQ("", back.opText[AttrsState::RemoveOp]);
  EXPECT_FALSE(back.opOn[AttrsState::RemoveOp]);
  EXPECT_TRUE(back.configOn);
  EXPECT_EQ(AttrsState::Suggest, back.config);
  for (bool f : back.flags) EXPECT_TRUE(f);
  EXPECT_FALSE(back.machOn);
  EXPECT_EQ(fullPanel().mach, back.mach);

  struct Case {
    Texts attrs;
    AttrsState::Config config;
    bool configOn;
    std::vector<std::pair<std::string, std::string>> mach;
  } cases[] = {
      {{"config(noupdate)"}, AttrsState::NoUpdate, true, {}},
      {{"config(other)"}, AttrsState::Update, true, {}},
      {{"symval(x)", "dev(1,2)", "bogus"}, AttrsState::Update, false, {}},
      {{"mach(CPUBOARD=KB10)"}, AttrsState::Update, false, {{"CPUBOARD", "KB10"}}},
      {{"mach(MODEL=Desktop 10 Lumen,SUBGR=LUMEN1)"},
       AttrsState::Update,
       false,
       {{"MODEL", "Desktop 10 Lumen"}, {"SUBGR", "LUMEN1"}}},
      {{"mach(broken"}, AttrsState::Update, false, {}},
  };
  for (const Case& c : cases) {
    AttrsState s = AttrsText::read(c.attrs);
    EXPECT_EQ(c.config, s.config) << c.attrs[0];
    EXPECT_EQ(c.configOn, s.configOn) << c.attrs[0];
    EXPECT_EQ(c.mach, s.mach) << c.attrs[0];
  }
  EXPECT_EQ("a\nb\\;c\n", AttrsText::prepareOpText("a;b\\;c;"));
}

class MachSelectionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::vector<Subgr_Map> subgr;
    std::vector<Mach_Map> mach;
    std::vector<Arch_Map> arch;
    ASSERT_EQ(0, buildMachTables(builtinMachList(), subgr, mach, arch));
    selection = std::make_unique<MachSelection>(subgr, arch);
  }
  Texts names(int g, bool (*pick)(const MachSelection::Toggle&)) {
    Texts out;
    for (const MachSelection::Toggle& t : selection->group(g))
      if (pick(t)) out.push_back(t.name);
    return out;
  }
  static bool on(const MachSelection::Toggle& t) { return t.on; }
  static bool sensitive(const MachSelection::Toggle& t) { return t.sensitive; }
  static bool insensitive(const MachSelection::Toggle& t) { return !t.sensitive; }
  std::unique_ptr<MachSelection> selection;
};

TEST_F(MachSelectionTest, GroupsFromTheBuiltInTables) {
  EXPECT_EQ(15u, selection->group(MachSelection::kCpuBoard).size());
  EXPECT_EQ("KB10", selection->group(MachSelection::kCpuBoard)[0].name);
  EXPECT_EQ("KB56", selection->group(MachSelection::kCpuBoard)[14].name);
  EXPECT_EQ(15u, selection->group(MachSelection::kGfxBoard).size());
  // "NULL" models are left out, and a model of two rows is one toggle.
  for (const MachSelection::Toggle& t : selection->group(MachSelection::kModel))
    EXPECT_NE("NULL", t.name);
  EXPECT_EQ(32u, selection->group(MachSelection::kModel).size());
}

TEST_F(MachSelectionTest, ProcessorButtonsSelectExactlyTheirBoards) {
  selection->set(MachSelection::kCpuBoard, "KB10", true);  // replaced, not added to
  selection->selectCpuBoards("R4000");
  EXPECT_EQ((Texts{"KB20", "KB22", "KB24", "KB28", "KB40"}), names(MachSelection::kCpuBoard, on));
  const Texts r4kModels = {"Deskside 20 Lumen, XT", "Deskside 20 Aurora",
                           "Deskside 22 Aurora, Dual Head", "Deskside 22 Nimbus",
                           "Rackmount 24 Nimbus", "Rackmount 24 Quasar", "Deskside 28 Quasar, XL",
                           "Deskside 28 Zenith", "Deskside 40 Strata, Dual Head",
                           "Deskside 40 Orbit", "Deskside 20 Prism"};
  EXPECT_EQ(r4kModels, names(MachSelection::kModel, on));
  EXPECT_EQ(r4kModels, names(MachSelection::kModel, sensitive));
  EXPECT_EQ((Texts{"LUMEN", "PRISM", "AURORA", "NIMBUS", "QUASAR", "ZENITH", "STRATA", "ORBIT"}),
            names(MachSelection::kGfxBoard, sensitive));
  EXPECT_EQ((Texts{"LUMEN2", "PRISM8", "AURORA2", "AURORA4", "NIMBUS1", "NIMBUS2", "QUASAR1",
                   "QUASAR2", "ZENITH4", "STRATA2", "ORBIT1"}),
            names(MachSelection::kSubgr, sensitive));
  EXPECT_EQ(Texts{}, names(MachSelection::kCpuBoard, insensitive));

  selection->selectCpuBoards("R8000");
  EXPECT_EQ((Texts{"KB30", "KB32"}), names(MachSelection::kCpuBoard, on));
  EXPECT_EQ((Texts{"Server 30 Zenith, Turbo", "Server 32 Corona", "Server 32 Pulsar"}),
            names(MachSelection::kModel, on));
  // A board and model that no longer fit are switched off by the interlock.
  EXPECT_EQ(Texts{}, names(MachSelection::kGfxBoard, on));
}

TEST_F(MachSelectionTest, InterlockModelsAndAttributePairs) {
  selection->set(MachSelection::kCpuBoard, "KB10", true);
  selection->cpuBoardInterlock();
  EXPECT_EQ(Texts{"LUMEN"}, names(MachSelection::kGfxBoard, sensitive));
  selection->set(MachSelection::kGfxBoard, "LUMEN", true);
  selection->set(MachSelection::kGfxBoard, "VEGA", true);  // insensitive: goes off again
  selection->untoggleInsensitive();
  EXPECT_EQ(Texts{"LUMEN"}, names(MachSelection::kGfxBoard, on));
  // The last CPU board off: everything sensitive again.
  selection->set(MachSelection::kCpuBoard, "KB10", false);
  selection->cpuBoardInterlock();
  EXPECT_EQ(Texts{}, names(MachSelection::kGfxBoard, insensitive));
  EXPECT_EQ(Texts{}, names(MachSelection::kModel, insensitive));
  EXPECT_EQ(Texts{"LUMEN"}, names(MachSelection::kGfxBoard, on));

  // A model switches on the boards of its rows, both of them here.
  selection->clear();
  selection->modelChanged("Deskside 20 Lumen, XT");
  EXPECT_EQ((Texts{"KB20", "KB40"}), names(MachSelection::kCpuBoard, on));
  EXPECT_EQ((std::vector<std::pair<std::string, std::string>>{{"CPUBOARD", "KB20"},
                                                             {"CPUBOARD", "KB40"},
                                                             {"GFXBOARD", "LUMEN"},
                                                             {"SUBGR", "LUMEN2"}}),
            selection->machPairs());
  EXPECT_EQ("mach(CPUBOARD=KB20,CPUBOARD=KB40,GFXBOARD=LUMEN,SUBGR=LUMEN2)",
            AttrsText::machAttr(selection->machPairs()));
}

}  // namespace
