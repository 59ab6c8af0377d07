#include "filelist/MachSelection.h"

const char* const MachSelection::kKeys[6] = {"CPUARCH", "GFX",  "CPUBOARD",
                                             "GFXBOARD", "SUBGR", "MODEL"};

MachSelection::MachSelection(std::vector<Subgr_Map> subgr, std::vector<Arch_Map> arch)
    : _subgr(std::move(subgr)), _arch(std::move(arch)) {
  for (const Subgr_Map& row : _subgr) {
    addName(kCpuBoard, row.cpuboard);
    addName(kGfxBoard, row.gfxboard);
    addName(kSubgr, row.subgr);
    if (row.model != "NULL") addName(kModel, row.model);
  }
}

void MachSelection::addName(int g, const std::string& name) {
  if (name.empty() || find(g, name)) return;
  Toggle t;
  t.name = name;
  _groups[g - kCpuBoard].push_back(t);
}

MachSelection::Toggle* MachSelection::find(int g, const std::string& name) {
  for (Toggle& t : _groups[g - kCpuBoard])
    if (t.name == name) return &t;
  return nullptr;
}

const MachSelection::Toggle* MachSelection::find(int g, const std::string& name) const {
  return const_cast<MachSelection*>(this)->find(g, name);
}

bool MachSelection::isOn(int g, const std::string& name) const {
  const Toggle* t = find(g, name);
  return t && t->on;
}

void MachSelection::set(int g, const std::string& name, bool on) {
  if (Toggle* t = find(g, name)) t->on = on;
}

void MachSelection::sensitize(int g, const char* name, bool state) {
  for (Toggle& t : _groups[g - kCpuBoard])
    if (!name || t.name == name) t.sensitive = state;
}

void MachSelection::untoggleInsensitive() {
  for (std::vector<Toggle>& group : _groups)
    for (Toggle& t : group)
      if (t.on && !t.sensitive) t.on = false;
}

void MachSelection::cpuBoardInterlock() {
  for (int g : {kGfxBoard, kSubgr, kModel}) sensitize(g, nullptr, false);
  bool anyCpu = false;
  for (const Subgr_Map& row : _subgr) {
    if (!isOn(kCpuBoard, row.cpuboard)) continue;
    anyCpu = true;
    sensitize(kGfxBoard, row.gfxboard.c_str(), true);
    sensitize(kSubgr, row.subgr.c_str(), true);
    sensitize(kModel, row.model.c_str(), true);
  }
  if (!anyCpu)
    for (int g : {kGfxBoard, kSubgr, kModel}) sensitize(g, nullptr, true);
  untoggleInsensitive();
}

void MachSelection::modelChanged(const std::string& name) {
  for (const Subgr_Map& row : _subgr) {
    if (row.model != name) continue;
    set(kCpuBoard, row.cpuboard, true);
    set(kGfxBoard, row.gfxboard, true);
    set(kSubgr, row.subgr, true);
  }
}

void MachSelection::selectCpuBoards(const std::string& processor) {
  for (const Subgr_Map& row : _subgr) {
    const Arch_Map* arch = nullptr;
    for (const Arch_Map& a : _arch)
      if (a.cpuboard == row.cpuboard) {
        arch = &a;
        break;
      }
    if (!arch) continue;
    bool on = arch->processor == processor;
    set(kCpuBoard, row.cpuboard, on);
    set(kModel, row.model, on);
  }
  cpuBoardInterlock();
}

void MachSelection::clear() {
  for (std::vector<Toggle>& group : _groups)
    for (Toggle& t : group) {
      t.on = false;
      t.sensitive = true;
    }
}

std::vector<std::pair<std::string, std::string>> MachSelection::machPairs() const {
  std::vector<std::pair<std::string, std::string>> out;
  for (int g : {kCpuBoard, kGfxBoard, kSubgr})
    for (const Toggle& t : group(g))
      if (t.on) out.emplace_back(kKeys[g], t.name);
  return out;
}
