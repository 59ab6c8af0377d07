// Machine tables: the hardware descriptions behind the machine-dependent
// installation attributes (CPU boards, graphics boards, graphics subtypes,
// marketed models, processors).
//
// The tables come from the installer's machine file when it can be read and
// holds lines, otherwise from a built-in copy of the same text.  The file
// format is fixed by the installer:
//   - lines of at most 255 characters (a longer line is read as several);
//     lines beginning with "#" and empty lines are skipped;
//   - machine rows: class type value mask category name (five decimal
//     integers and a name, separated by blanks or tabs);
//   - the line "SUBGRMAP", then subgraphics rows: CPU board, graphics name,
//     graphics board, subgraphics, and the rest of the line as the model;
//   - the line "ARCHMAP", then architecture rows: CPU board, processor,
//     word size ("32bit" or "64bit").
// The word "NULL" stands for an empty field.  A marker that occurs more than
// once counts at its last occurrence.
#ifndef TAMBLIN_MACH_MACHTABLES_H
#define TAMBLIN_MACH_MACHTABLES_H

#include <cstdint>
#include <string>
#include <vector>

/// One machine row.  Nothing reads the integers today, but they must parse.
struct Mach_Map {
  std::int32_t mclass = 0;  // 1 CPU board and processor rows, 7 graphics rows
  std::int32_t type = 0;    // type within the class
  std::int32_t value = 0;   // -1 where not applicable
  std::int32_t mask = 0;    // -1 where not applicable
  std::int32_t category = 0;
  std::string name;         // board, processor or graphics name
};

/// One row of the subgraphics map.
struct Subgr_Map {
  std::string cpuboard;  // value of the CPUBOARD attribute toggles
  std::string gfxname;   // graphics name as installed
  std::string gfxboard;  // value of the GFXBOARD attribute toggles
  std::string subgr;     // value of the SUBGR attribute toggles
  std::string model;     // marketed model, free text; may be the text "NULL"
};

/// One row of the architecture map.
struct Arch_Map {
  std::string cpuboard;
  std::string processor;  // such as R4000
  std::string wordsize;   // "32bit" or "64bit"
};

/// The installer's machine file.
extern const char* const kMachFile;

/// The file the loader reads when no file is named: kMachFile unless
/// setMachFile changed it (tests point it at their own files).
const std::string& machFile();
void setMachFile(const std::string& path);

/// The built-in list, used when the machine file is missing or holds no
/// line other than comments and empty lines.
const std::vector<std::string>& builtinMachList();

/// The machine file's kept lines (comments and empty lines dropped, one
/// trailing newline removed), or the built-in list.
std::vector<std::string> getMachList(const std::string& file = machFile());

/// Loads the three tables; the counts are the tables' sizes.  Returns 0, or
/// -1 when a marker is missing (the tables stay empty) or a row does not
/// parse (the rows before it stay in the tables).
int getMachTables(std::vector<Subgr_Map>& subgr, std::vector<Mach_Map>& mach,
                  std::vector<Arch_Map>& arch, const std::string& file = machFile());

/// The lines that the machine file's text holds, as getMachList keeps them;
/// empty when there is none (the caller then takes the built-in list).
std::vector<std::string> splitMachText(const std::string& text);

/// getMachTables over lines already read.
int buildMachTables(const std::vector<std::string>& lines, std::vector<Subgr_Map>& subgr,
                    std::vector<Mach_Map>& mach, std::vector<Arch_Map>& arch);

/// Fill one record from one line; 0, or -1 when a required field is
/// missing.  A trailing newline in the line is allowed.
int parse_mach(const std::string& line, Mach_Map& row);
int parse_subgr(const std::string& line, Subgr_Map& row);
int parse_arch(const std::string& line, Arch_Map& row);

#endif
