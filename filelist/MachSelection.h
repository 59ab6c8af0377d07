// MachSelection: the hardware toggles of the Attributes panel as values,
// with the interlocks between them.
//
// Four groups, numbered as the keys of the "mach" attribute: 2 CPU boards,
// 3 graphics boards, 4 graphics subtypes, 5 models.  Each holds one toggle
// per distinct name of its column of the subgraphics map, in row order
// (models reading "NULL" and empty names left out).  Every toggle is on or
// off and sensitive or not.  The panel mirrors this state in its widgets.
#ifndef TAMBLIN_FILELIST_MACHSELECTION_H
#define TAMBLIN_FILELIST_MACHSELECTION_H

#include <string>
#include <utility>
#include <vector>

#include "mach/MachTables.h"

class MachSelection {
 public:
  enum Group { kCpuBoard = 2, kGfxBoard = 3, kSubgr = 4, kModel = 5 };
  /// The key table of the "mach" attribute; entries 2 to 5 name the groups.
  static const char* const kKeys[6];

  struct Toggle {
    std::string name;
    bool on = false;
    bool sensitive = true;
  };

  MachSelection(std::vector<Subgr_Map> subgr, std::vector<Arch_Map> arch);

  const std::vector<Toggle>& group(int g) const { return _groups[g - kCpuBoard]; }
  /// The state of the toggle name in group g; false when there is none.
  bool isOn(int g, const std::string& name) const;
  /// Switches one toggle, nothing else.
  void set(int g, const std::string& name, bool on);
  /// The sensitivity of the toggle name, or of the whole group when name is
  /// null.
  void sensitize(int g, const char* name, bool state);
  /// Switches off every toggle of the four groups that is on but
  /// insensitive.
  void untoggleInsensitive();

  /// After a CPU board changed: only the boards and models that go with the
  /// CPU boards on stay sensitive (all of them when no CPU board is on);
  /// those that no longer fit are switched off.
  void cpuBoardInterlock();
  /// After the model toggle name changed (either way): the CPU board,
  /// graphics board and subtype of every row of that model go on.
  void modelChanged(const std::string& name);
  /// Exactly the CPU boards of one processor ("R4000") and their models go
  /// on, the others off; then the CPU board interlock.
  void selectCpuBoards(const std::string& processor);
  /// Everything off and sensitive.
  void clear();

  /// The pairs of the "mach" attribute: CPU boards, graphics boards and
  /// subtypes that are on, group by group in toggle order.
  std::vector<std::pair<std::string, std::string>> machPairs() const;

 private:
  Toggle* find(int g, const std::string& name);
  const Toggle* find(int g, const std::string& name) const;
  void addName(int g, const std::string& name);

  std::vector<Subgr_Map> _subgr;
  std::vector<Arch_Map> _arch;
  std::vector<Toggle> _groups[4];
};

#endif
