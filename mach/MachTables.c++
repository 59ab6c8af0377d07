#include "mach/MachTables.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstdio>
#include <iterator>
#include <utility>

const char* const kMachFile = "/var/vessa/machfile";

namespace {

// Lines of the machine file hold at most this many characters; a longer
// line has always counted as several, and files in the field rely on the
// same reading.
constexpr std::size_t kMaxLine = 255;

const char* const kSubgrMarker = "SUBGRMAP";
const char* const kArchMarker = "ARCHMAP";

// The table shipped with the program, in the machine file's own layout.
const char* const kBuiltinMachList[] = {
    "7     1     -1    -1       0     LUMEN",
    "7     2     -1    -1       0     PRISM",
    "7     3     -1    -1       1     VEGA",
    "7     4     -1    -1       0     HALO",
    "7     5     -1    -1       2     AURORA",
    "7     6     -1    -1       2     NIMBUS",
    "7     7     -1    -1       1     QUASAR",
    "7     8     -1    -1       2     ZENITH",
    "7     9     -1    -1       0     CORONA",
    "7     10    -1    -1       1     PULSAR",
    "7     11    -1    -1       2     STRATA",
    "7     12    -1    -1       0     ORBIT",
    "7     13    -1    -1       1     SOLACE",
    "7     14    -1    -1       2     TALON",
    "7     15    -1    -1       0     VORTEX",
    "1     1     1     -1       0     KB10",
    "1     1     2     -1       0     KB12",
    "1     1     4     -1       0     KB16",
    "1     1     5     -1       1     KB20",
    "1     1     6     -1       1     KB22",
    "1     1     7     -1       1     KB24",
    "1     1     8     -1       1     KB28",
    "1     1     9     -1       2     KB30",
    "1     1     10    -1       2     KB32",
    "1     1     11    -1       3     KB36",
    "1     1     3     -1       1     KB40",
    "1     1     12    -1       3     KB44",
    "1     1     13    -1       3     KB48",
    "1     1     14    -1       4     KB52",
    "1     1     15    -1       4     KB56",
    "1     2     256   3840     2     R3000",
    "1     2     512   3840     2     R3000",
    "1     2     1024  3840     3     R4000",
    "1     2     1280  3840     3     R4000",
    "1     2     1536  3840     3     R4000",
    "1     2     10240 65280    3     R5000",
    "1     2     4096  65280    4     R8000",
    "1     2     2304  3840     4     R10000",
    "1     2     3584  3840     4     R10000",
    "12    1     -1    -1       0     IOBRIDGE",
    "SUBGRMAP",
    "KB10        LUMEN            LUMEN            LUMEN1           Desktop 10 Lumen",
    "KB10        LUMEN            LUMEN            LUMEN2           Desktop 10 Lumen, XT",
    "KB12        PRISM            PRISM            PRISM8           Desktop 12 Prism",
    "KB12        PRISM            PRISM            PRISM24          Desktop 12 Prism, 24-plane",
    "KB16        VEGA             VEGA             VEGA1            Deskside 16 Vega",
    "KB16        HALO             HALO             NULL             NULL",
    "KB20        LUMEN            LUMEN            LUMEN2           Deskside 20 Lumen, XT",
    "KB20        AURORA           AURORA           AURORA2          Deskside 20 Aurora",
    "KB22        AURORA           AURORA           AURORA4          Deskside 22 Aurora, Dual Head",
    "KB22        NIMBUS           NIMBUS           NIMBUS1          Deskside 22 Nimbus",
    "KB24        NIMBUS           NIMBUS           NIMBUS2          Rackmount 24 Nimbus",
    "KB24        QUASAR           QUASAR           QUASAR1          Rackmount 24 Quasar",
    "KB28        QUASARXL         QUASAR           QUASAR2          Deskside 28 Quasar, XL",
    "KB28        ZENITH           ZENITH           ZENITH4          Deskside 28 Zenith",
    "KB30        ZENITH           ZENITH           ZENITH8          Server 30 Zenith, Turbo",
    "KB30        CORONA           CORONA           NULL             NULL",
    "KB32        CORONA           CORONA           CORONA1          Server 32 Corona",
    "KB32        PULSAR           PULSAR           PULSAR1          Server 32 Pulsar",
    "KB36        PULSAR           PULSAR           PULSAR2          Deskside 36 Pulsar, XT",
    "KB36        STRATA           STRATA           STRATA1          Deskside 36 Strata",
    "KB40        LUMEN            LUMEN            LUMEN2           Deskside 20 Lumen, XT",
    "KB40        STRATA           STRATA           STRATA2          Deskside 40 Strata, Dual Head",
    "KB40        ORBIT            ORBIT            ORBIT1           Deskside 40 Orbit",
    "KB44        ORBIT            ORBIT            ORBIT2           Desktop 44 Orbit, XT",
    "KB44        SOLACE           SOLACE           SOLACE1          Desktop 44 Solace",
    "KB48        SOLACE           SOLACE           SOLACE2          Rackmount 48 Solace",
    "KB48        TALON            TALON            TALON1           Rackmount 48 Talon",
    "KB52        TALONVX          TALON            TALON2           Server 52 Talon, VX",
    "KB52        VORTEX           VORTEX           VORTEX1          Server 52 Vortex",
    "KB52        VORTEX           VORTEX           VORTEX4          Server 52 Vortex, Quad Head",
    "KB56        VORTEX           VORTEX           VORTEX8          Server 56 Vortex, Turbo",
    "KB56        HALO             HALO             HALO2            Server 56 Halo",
    "KB56        VEGA             VEGA             VEGA2            Server 56 Vega, XT",
    "KB20        PRISM            PRISM            PRISM8           Deskside 20 Prism",
    "KB24        LUMEN            LUMEN            NULL             NULL",
    "KB12        HALO             HALO             HALO1            Desktop 12 Halo",
    "ARCHMAP",
    "KB10        R3000                 32bit",
    "KB12        R3000                 32bit",
    "KB16        R3000                 32bit",
    "KB20        R4000                 32bit",
    "KB22        R4000                 32bit",
    "KB24        R4000                 64bit",
    "KB28        R4000                 32bit",
    "KB30        R8000                 64bit",
    "KB32        R8000                 64bit",
    "KB36        R10000                64bit",
    "KB40        R4000                 32bit",
    "KB44        R10000                64bit",
    "KB52        R10000                64bit",
};

std::string& machFileSetting() {
  static std::string path = kMachFile;
  return path;
}

}  // namespace

// Pieces of at most kMaxLine bytes, each ending after a newline or at the
// size limit.  Bytes after a NUL in a piece are dropped: the file is text,
// and a NUL has always ended the line's text.
std::vector<std::string> splitMachText(const std::string& text) {
  std::vector<std::string> pieces;
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t nl = text.find('\n', pos);
    std::size_t end = nl == std::string::npos ? text.size() : nl + 1;
    if (end - pos > kMaxLine) end = pos + kMaxLine;
    std::string piece = text.substr(pos, end - pos);
    pos = end;
    if (piece == "\n" || piece[0] == '#') continue;
    std::size_t nul = piece.find('\0');
    if (nul != std::string::npos) piece.erase(nul);
    if (!piece.empty() && piece.back() == '\n') piece.pop_back();
    pieces.push_back(piece);
  }
  return pieces;
}

namespace {

// strtok over a string: tokens separated by runs of delimiters, each token
// consuming exactly one delimiter behind it.
class Tokens {
 public:
  explicit Tokens(const std::string& text) : _text(text) {}
  bool next(const char* delims, std::string& token) {
    std::size_t begin = _text.find_first_not_of(delims, _pos);
    if (begin == std::string::npos) {
      _pos = _text.size();
      return false;
    }
    std::size_t end = _text.find_first_of(delims, begin);
    if (end == std::string::npos) end = _text.size();
    token = _text.substr(begin, end - begin);
    _pos = end < _text.size() ? end + 1 : end;
    return true;
  }
  /// A "NULL" token is an empty field.
  bool nextField(const char* delims, std::string& field) {
    if (!next(delims, field)) return false;
    if (field == "NULL") field.clear();
    return true;
  }
  /// Whatever follows the last token's delimiter.
  std::string rest() const { return _text.substr(_pos); }

 private:
  const std::string& _text;
  std::size_t _pos = 0;
};

const char* const kBlanks = " \t";
const char* const kBlanksNewline = " \t\n";

// A decimal integer read leniently: a sign and digits, anything else ends
// it, no digits gives 0.  Out-of-range values saturate instead of wrapping.
std::int32_t toInt(const std::string& token) {
  long long v = std::strtoll(token.c_str(), nullptr, 10);
  if (v > INT32_MAX) return INT32_MAX;
  if (v < INT32_MIN) return INT32_MIN;
  return static_cast<std::int32_t>(v);
}

}  // namespace

const std::string& machFile() { return machFileSetting(); }

void setMachFile(const std::string& path) { machFileSetting() = path; }

const std::vector<std::string>& builtinMachList() {
  static const std::vector<std::string> list(std::begin(kBuiltinMachList),
                                             std::end(kBuiltinMachList));
  return list;
}

std::vector<std::string> getMachList(const std::string& file) {
  std::FILE* in = std::fopen(file.c_str(), "r");
  if (!in) return builtinMachList();
  // A read error (a directory, an I/O failure) ends the file where it
  // happens; what was read before it counts.
  std::string text;
  char buf[8192];
  for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, in)) > 0;) text.append(buf, n);
  std::fclose(in);
  std::vector<std::string> lines = splitMachText(text);
  if (lines.empty()) return builtinMachList();
  return lines;
}

int getMachTables(std::vector<Subgr_Map>& subgr, std::vector<Mach_Map>& mach,
                  std::vector<Arch_Map>& arch, const std::string& file) {
  return buildMachTables(getMachList(file), subgr, mach, arch);
}

int buildMachTables(const std::vector<std::string>& lines, std::vector<Subgr_Map>& subgr,
                    std::vector<Mach_Map>& mach, std::vector<Arch_Map>& arch) {
  subgr.clear();
  mach.clear();
  arch.clear();

  std::size_t subgrAt = lines.size(), archAt = lines.size();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i] == kSubgrMarker) subgrAt = i;
    if (lines[i] == kArchMarker) archAt = i;
  }
  // Sections out of order cannot be told apart; refuse them like a missing
  // marker.
  if (subgrAt == lines.size() || archAt == lines.size() || archAt < subgrAt) return -1;
  mach.reserve(subgrAt);
  subgr.reserve(archAt - subgrAt - 1);
  arch.reserve(lines.size() - archAt - 1);

  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    if (line.size() > kMaxLine || line.empty() || line[0] == '#' || line == kSubgrMarker ||
        line == kArchMarker)
      continue;
    if (i < subgrAt) {
      Mach_Map row;
      if (parse_mach(line, row) != 0) return -1;
      mach.push_back(std::move(row));
    } else if (i < archAt) {
      Subgr_Map row;
      if (parse_subgr(line, row) != 0) return -1;
      subgr.push_back(std::move(row));
    } else {
      Arch_Map row;
      if (parse_arch(line, row) != 0) return -1;
      arch.push_back(std::move(row));
    }
  }
  return 0;
}

int parse_mach(const std::string& line, Mach_Map& row) {
  Tokens tokens(line);
  std::int32_t* numbers[] = {&row.mclass, &row.type, &row.value, &row.mask, &row.category};
  std::string token;
  for (std::int32_t* n : numbers) {
    if (!tokens.next(kBlanks, token)) return -1;
    *n = toInt(token);
  }
  return tokens.nextField(kBlanksNewline, row.name) ? 0 : -1;
}

int parse_subgr(const std::string& line, Subgr_Map& row) {
  Tokens tokens(line);
  if (!tokens.nextField(kBlanks, row.cpuboard) || !tokens.nextField(kBlanks, row.gfxname) ||
      !tokens.nextField(kBlanks, row.gfxboard) || !tokens.nextField(kBlanksNewline, row.subgr))
    return -1;
  std::string rest = tokens.rest();
  rest.erase(std::min(rest.find('\n'), rest.size()));
  // A "NULL" right behind the single separator is an empty model; once the
  // columns are padded it stays the text "NULL", which the panel skips.
  if (rest == "NULL") {
    row.model.clear();
    return 0;
  }
  std::size_t begin = rest.find_first_not_of(kBlanks);
  row.model = begin == std::string::npos ? "" : rest.substr(begin);
  return 0;
}

int parse_arch(const std::string& line, Arch_Map& row) {
  Tokens tokens(line);
  return tokens.nextField(kBlanks, row.cpuboard) && tokens.nextField(kBlanks, row.processor) &&
                 tokens.nextField(kBlanksNewline, row.wordsize)
             ? 0
             : -1;
}
