// MakeTabPixmaps: writes the ten tab images of the main view as XPM data
// compiled into the program.
//
//   MakeTabPixmaps OUTPUT.c++
//
// Each image is 130 by 33 pixels, one character per pixel.  The blank is
// the background (a symbolic colour the program resolves from its
// resources: "buttonBackground" in the normal images, "basicBackground" in
// the selected ones), "." is black, and each tab has its own few colours.
// The lettering is drawn with the small bitmap font below, in one or two
// lines, so that it stays sharp at this size on any display.
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 130;
constexpr int kHeight = 33;
constexpr int kGlyphWidth = 5;
constexpr int kGlyphHeight = 9;  // 7 above the baseline, 2 below
constexpr int kAdvance = 6;

// 5 by 9 glyphs, "#" is ink.  Only the letters the tab labels use.
const std::map<char, std::vector<const char*>>& glyphs() {
  static const std::map<char, std::vector<const char*>> table = {
      {'A', {" ### ", "#   #", "#   #", "#####", "#   #", "#   #", "#   #", "     ", "     "}},
      {'B', {"#### ", "#   #", "#   #", "#### ", "#   #", "#   #", "#### ", "     ", "     "}},
      {'C', {" ### ", "#   #", "#    ", "#    ", "#    ", "#   #", " ### ", "     ", "     "}},
      {'D', {"#### ", "#   #", "#   #", "#   #", "#   #", "#   #", "#### ", "     ", "     "}},
      {'E', {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#####", "     ", "     "}},
      {'F', {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#    ", "     ", "     "}},
      {'H', {"#   #", "#   #", "#   #", "#####", "#   #", "#   #", "#   #", "     ", "     "}},
      {'P', {"#### ", "#   #", "#   #", "#### ", "#    ", "#    ", "#    ", "     ", "     "}},
      {'T', {"#####", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "     ", "     "}},
      {'a', {"     ", "     ", " ### ", "    #", " ####", "#   #", " ####", "     ", "     "}},
      {'b', {"#    ", "#    ", "#### ", "#   #", "#   #", "#   #", "#### ", "     ", "     "}},
      {'c', {"     ", "     ", " ### ", "#    ", "#    ", "#    ", " ### ", "     ", "     "}},
      {'d', {"    #", "    #", " ####", "#   #", "#   #", "#   #", " ####", "     ", "     "}},
      {'e', {"     ", "     ", " ### ", "#   #", "#####", "#    ", " ### ", "     ", "     "}},
      {'g', {"     ", "     ", " ####", "#   #", "#   #", "#   #", " ####", "    #", " ### "}},
      {'h', {"#    ", "#    ", "#### ", "#   #", "#   #", "#   #", "#   #", "     ", "     "}},
      {'i', {"  #  ", "     ", " ##  ", "  #  ", "  #  ", "  #  ", " ### ", "     ", "     "}},
      {'l', {" ##  ", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### ", "     ", "     "}},
      {'m', {"     ", "     ", "## # ", "# # #", "# # #", "# # #", "# # #", "     ", "     "}},
      {'n', {"     ", "     ", "#### ", "#   #", "#   #", "#   #", "#   #", "     ", "     "}},
      {'o', {"     ", "     ", " ### ", "#   #", "#   #", "#   #", " ### ", "     ", "     "}},
      {'r', {"     ", "     ", "# ## ", "##  #", "#    ", "#    ", "#    ", "     ", "     "}},
      {'s', {"     ", "     ", " ####", "#    ", " ### ", "    #", "#### ", "     ", "     "}},
      {'t', {" #   ", " #   ", "#### ", " #   ", " #   ", " #  #", "  ## ", "     ", "     "}},
      {'u', {"     ", "     ", "#   #", "#   #", "#   #", "#  ##", " ## #", "     ", "     "}},
      {'y', {"     ", "     ", "#   #", "#   #", "#   #", "#   #", " ####", "    #", " ### "}},
      {'&', {" ##  ", "#  # ", "#  # ", " ##  ", "# # #", "#  # ", " ## #", "     ", "     "}},
  };
  return table;
}

struct Tab {
  const char* label;
  std::vector<const char*> colours;  // besides background and black
};

const Tab kTabs[5] = {
    {"Create Product Hierarchy", {"#99999999FFFF", "#6B6B6B6B6B6B", "#FFFF99999999", "#AAAAAAAA3333"}},
    {"Tag Files", {"#E3E3AAAA0000", "#FFFF00000000"}},
    {"Edit Permissions & Destinations",
     {"#CCCC77777777", "#888888883333", "#808080808080", "#FFFFFFFF0000"}},
    {"Add Attributes",
     {"#77777777CCCC", "#808080808080", "#EEEEEEEEEEEE", "#333388888888", "#FFFFFFFF0000",
      "#272727272727", "#888888883333"}},
    {"Build Product", {"#FFFFFFFFFFFF", "#888888883333", "#6B6B6B6B6B6B", "#CCCC77777777"}},
};

// The characters standing for a tab's own colours, in order.
const char kColourChars[] = "abcdefg";

using Image = std::vector<std::string>;

// Breaks a label into lines that fit the text area, at blanks.
std::vector<std::string> wrap(const std::string& label, int maxChars) {
  std::vector<std::string> lines;
  std::string line, word;
  auto flushWord = [&]() {
    if (word.empty()) return;
    if (!line.empty() && static_cast<int>(line.size() + 1 + word.size()) > maxChars) {
      lines.push_back(line);
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
    word.clear();
  };
  for (char c : label) {
    if (c == ' ')
      flushWord();
    else
      word += c;
  }
  flushWord();
  if (!line.empty()) lines.push_back(line);
  return lines;
}

bool drawText(Image& img, int x0, int y0, const std::string& text, char ink) {
  int x = x0;
  for (char c : text) {
    if (c != ' ') {
      auto it = glyphs().find(c);
      if (it == glyphs().end()) {
        std::fprintf(stderr, "MakeTabPixmaps: no glyph for '%c'\n", c);
        return false;
      }
      for (int row = 0; row < kGlyphHeight; ++row)
        for (int col = 0; col < kGlyphWidth; ++col)
          if (it->second[row][col] == '#') img[y0 + row][x + col] = ink;
    }
    x += kAdvance;
  }
  return true;
}

// One tab: a card with rounded top corners.  The selected tab stands a little
// higher and is open at the bottom, so that it joins the panel below it.
bool drawTab(const Tab& tab, bool selected, Image& img) {
  img.assign(kHeight, std::string(kWidth, ' '));
  const int top = selected ? 1 : 4;
  const int bottom = kHeight - 1;
  const char fill = 'a', shade = 'b';
  for (int y = top; y <= bottom; ++y) {
    int corner = y - top < 3 ? 3 - (y - top) : 0;  // rounded top corners
    int left = 2 + corner;
    int right = kWidth - 3 - corner;
    for (int x = left; x <= right; ++x) {
      bool edge = x == left || x == right || y == top;
      img[y][x] = edge ? '.' : fill;
    }
    if (right - 1 > left) img[y][right - 1] = y == top ? '.' : shade;
  }
  if (!selected)
    for (int x = 2; x < kWidth - 2; ++x) img[bottom][x] = '.';
  // An emblem of the tab's other colours at the left.
  int emblemColours = static_cast<int>(tab.colours.size()) - 2;
  for (int i = 0; i < emblemColours; ++i)
    for (int y = top + 6 + i * 5; y < top + 10 + i * 5 && y < bottom - 1; ++y)
      for (int x = 6; x < 11; ++x) img[y][x] = kColourChars[2 + i];
  if (emblemColours <= 0)
    for (int y = top + 8; y < top + 20 && y < bottom - 1; ++y)
      for (int x = 6; x < 11; ++x) img[y][x] = shade;
  // Lettering: black, one or two lines, centred in the area right of the
  // emblem.
  const int textLeft = 14, textRight = kWidth - 5;
  const int maxChars = (textRight - textLeft) / kAdvance;
  std::vector<std::string> lines = wrap(tab.label, maxChars);
  if (lines.size() > 2) {
    std::fprintf(stderr, "MakeTabPixmaps: '%s' needs more than two lines\n", tab.label);
    return false;
  }
  const int lineHeight = 11;
  int blockHeight = static_cast<int>(lines.size()) * lineHeight - (lineHeight - 7);
  int y = top + (bottom - top - blockHeight) / 2 + 1;
  for (const std::string& line : lines) {
    int width = static_cast<int>(line.size()) * kAdvance - 1;
    int x = textLeft + (textRight - textLeft - width) / 2;
    if (!drawText(img, x, y, line, '.')) return false;
    y += lineHeight;
  }
  return true;
}

void writeImage(std::FILE* out, const char* var, const Tab& tab, bool selected,
                const Image& img) {
  std::fprintf(out, "static const char* const %s[] = {\n", var);
  std::fprintf(out, "    \"%d %d %zu 1\",\n", kWidth, kHeight, tab.colours.size() + 2);
  std::fprintf(out, "    \"  c #848484848484 m white s %s\",\n",
               selected ? "basicBackground" : "buttonBackground");
  std::fprintf(out, "    \". c #000000000000\",\n");
  for (size_t i = 0; i < tab.colours.size(); ++i)
    std::fprintf(out, "    \"%c c %s\",\n", kColourChars[i], tab.colours[i]);
  for (const std::string& row : img) std::fprintf(out, "    \"%s\",\n", row.c_str());
  std::fprintf(out, "};\n\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: MakeTabPixmaps OUTPUT.c++\n");
    return 2;
  }
  std::string tmp = std::string(argv[1]) + ".tmp";
  std::FILE* out = std::fopen(tmp.c_str(), "w");
  if (!out) {
    std::perror(tmp.c_str());
    return 1;
  }
  std::fprintf(out, "// Generated by MakeTabPixmaps; do not edit.\n#include \"app/TabPixmaps.h\"\n\n");
  for (int selected = 0; selected < 2; ++selected)
    for (int i = 0; i < 5; ++i) {
      Image img;
      if (!drawTab(kTabs[i], selected != 0, img)) {
        std::fclose(out);
        std::remove(tmp.c_str());
        return 1;
      }
      std::string var = std::string(selected ? "selected" : "normal") + std::to_string(i);
      writeImage(out, var.c_str(), kTabs[i], selected != 0, img);
    }
  std::fprintf(out, "const char* const* const normalTabXpm[5] = {normal0, normal1, normal2, normal3, normal4};\n");
  std::fprintf(out, "const char* const* const selectedTabXpm[5] = {selected0, selected1, selected2, selected3, selected4};\n");
  if (std::fclose(out) != 0 || std::rename(tmp.c_str(), argv[1]) != 0) {
    std::perror(argv[1]);
    return 1;
  }
  return 0;
}
