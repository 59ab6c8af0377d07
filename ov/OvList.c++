#include "ov/OvList.h"

#include <X11/Xft/Xft.h>
#include <Xm/DrawP.h>
#include <Xm/PrimitiveP.h>
#include <Xm/ScrollBar.h>
#include <Xm/ScrolledW.h>
#include <Xm/TraitP.h>
#include <Xm/XmP.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "util/Utils.h"

namespace {

struct OvListClassPart {
  XtPointer extension;
};

struct OvListClassRec {
  CoreClassPart core_class;
  XmPrimitiveClassPart primitive_class;
  OvListClassPart list_class;
};

struct OvListPart {
  // Resources.
  XmRenderTable render_table;
  unsigned char selection_policy;
  int visible_item_count;
  Pixel select_color;
  XtCallbackList gesture_callback;
  XtCallbackList default_action_callback;

  // The rows.
  OvListSource source;
  XtPointer closure;
  int count;
  int top;     // first row shown
  int cursor;  // location cursor
  int anchor;  // where the last range started
  int hoffset;  // pixels scrolled to the right
  int widest;   // widest row seen so far, for the horizontal scroll bar

  // Drawing.
  XftFont* font;
  XftDraw* draw;
  XftColor colors[4];  // foreground, background, selected text, selected ground
  bool colorsAllocated;
  GC gc;
  int row_height;

  Widget vbar;
  Widget hbar;

  // While held, redraws wait: a key that scrolls and selects, and the
  // owner's redraw inside a gesture, draw the rows once at the end.
  int hold;
  bool pending;

  // Pointer state.
  bool dragging;
  bool dragSets;  // a Ctrl-drag sets its range to dragOn
  Boolean dragOn;
  int dragLast;
  Time lastClickTime;
  int lastClickPosition;
};

struct OvListRec {
  CorePart core;
  XmPrimitivePart primitive;
  OvListPart list;
};

enum { kForeground, kBackground, kSelectedText, kSelectedGround };
constexpr int kMargin = 2;

OvListPart& part(Widget w) { return reinterpret_cast<OvListRec*>(w)->list; }
XmPrimitivePart& prim(Widget w) { return reinterpret_cast<OvListRec*>(w)->primitive; }

#define LIST_OFFSET(field) XtOffsetOf(OvListRec, list.field)

XtResource resources[] = {
    {const_cast<char*>(XmNrenderTable), const_cast<char*>(XmCRenderTable), XmRRenderTable,
     sizeof(XmRenderTable), LIST_OFFSET(render_table), XmRImmediate, nullptr},
    {const_cast<char*>(XmNselectionPolicy), const_cast<char*>(XmCSelectionPolicy),
     XmRSelectionPolicy, sizeof(unsigned char), LIST_OFFSET(selection_policy), XmRImmediate,
     reinterpret_cast<XtPointer>(XmEXTENDED_SELECT)},
    {const_cast<char*>(XmNvisibleItemCount), const_cast<char*>(XmCVisibleItemCount), XmRInt,
     sizeof(int), LIST_OFFSET(visible_item_count), XmRImmediate, reinterpret_cast<XtPointer>(0)},
    {const_cast<char*>(XmNselectColor), const_cast<char*>(XmCSelectColor), XmRPixel,
     sizeof(Pixel), LIST_OFFSET(select_color), XmRImmediate,
     reinterpret_cast<XtPointer>(XmREVERSED_GROUND_COLORS)},
    {OvNgestureCallback, const_cast<char*>(XmCCallback), XmRCallback, sizeof(XtCallbackList),
     LIST_OFFSET(gesture_callback), XmRImmediate, nullptr},
    {const_cast<char*>(XmNdefaultActionCallback), const_cast<char*>(XmCCallback), XmRCallback,
     sizeof(XtCallbackList), LIST_OFFSET(default_action_callback), XmRImmediate, nullptr},
    // A list is a tab group of its own, as XmList is.
    {const_cast<char*>(XmNnavigationType), const_cast<char*>(XmCNavigationType),
     XmRNavigationType, sizeof(unsigned char), XtOffsetOf(OvListRec, primitive.navigation_type),
     XmRImmediate, reinterpret_cast<XtPointer>(XmTAB_GROUP)},
    {const_cast<char*>(XmNshadowThickness), const_cast<char*>(XmCShadowThickness),
     XmRHorizontalDimension, sizeof(Dimension),
     XtOffsetOf(OvListRec, primitive.shadow_thickness), XmRImmediate,
     reinterpret_cast<XtPointer>(2)},
};

// ---- rows ------------------------------------------------------------------

std::string_view rowText(Widget w, int position) {
  OvListPart& l = part(w);
  if (!l.source.text || position < 1 || position > l.count) return {};
  size_t length = 0;
  const char* text = l.source.text(l.closure, position, &length);
  return text ? std::string_view(text, length) : std::string_view();
}

bool rowSelected(Widget w, int position) {
  OvListPart& l = part(w);
  return l.source.isSelected && l.source.isSelected(l.closure, position);
}

int inset(Widget w) { return prim(w).highlight_thickness + prim(w).shadow_thickness + kMargin; }

int visibleRows(Widget w) {
  int area = static_cast<int>(w->core.height) - 2 * inset(w);
  return std::max(1, area / std::max(1, part(w).row_height));
}

int lastTop(Widget w) { return std::max(1, part(w).count - visibleRows(w) + 1); }

// Bytes of UTF-8 to code points; a byte that starts no valid sequence
// (overlong forms and surrogates included) is U+FFFD.
void decode(std::string_view text, std::vector<FcChar32>& out) {
  out.clear();
  const auto* s = reinterpret_cast<const unsigned char*>(text.data());
  const size_t n = text.size();
  size_t i = 0;
  while (i < n) {
    const unsigned c = s[i];
    int extra = c < 0x80 ? 0 : (c & 0xE0) == 0xC0 ? 1 : (c & 0xF0) == 0xE0 ? 2
              : (c & 0xF8) == 0xF0 ? 3 : -1;
    FcChar32 cp = c & (extra == 0 ? 0x7F : extra == 1 ? 0x1F : extra == 2 ? 0x0F : 0x07);
    bool ok = extra >= 0 && i + extra < n;
    for (int k = 1; ok && k <= extra; ++k) {
      const unsigned cc = s[i + k];
      ok = (cc & 0xC0) == 0x80;
      cp = (cp << 6) | (cc & 0x3F);
    }
    static const FcChar32 least[] = {0, 0x80, 0x800, 0x10000};
    if (ok && (cp < least[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp < 0xE000))) ok = false;
    out.push_back(ok ? cp : 0xFFFD);
    i += ok ? extra + 1 : 1;
  }
}

// ---- scroll bars -------------------------------------------------------------

void updateScrollBars(Widget w) {
  OvListPart& l = part(w);
  if (l.vbar) {
    int visible = visibleRows(w);
    int maximum = std::max(l.count, 1);
    int slider = std::min(visible, maximum);
    int value = std::min(l.top - 1, maximum - slider);
    XtVaSetValues(l.vbar, XmNminimum, 0, XmNmaximum, maximum, XmNsliderSize, slider, XmNvalue,
                  std::max(value, 0), XmNpageIncrement, std::max(1, visible - 1), XmNincrement,
                  1, nullptr);
  }
  if (l.hbar) {
    int width = std::max(1, static_cast<int>(w->core.width) - 2 * inset(w));
    int maximum = std::max(l.widest, width);
    l.hoffset = std::min(l.hoffset, maximum - width);
    XtVaSetValues(l.hbar, XmNminimum, 0, XmNmaximum, maximum, XmNsliderSize, width, XmNvalue,
                  std::max(l.hoffset, 0), XmNpageIncrement, std::max(1, width - 20),
                  XmNincrement, 10, nullptr);
  }
}

// ---- drawing -------------------------------------------------------------------

void freeColors(Widget w) {
  OvListPart& l = part(w);
  if (!l.colorsAllocated) return;
  Display* d = XtDisplay(w);
  for (XftColor& c : l.colors)
    XftColorFree(d, DefaultVisualOfScreen(XtScreen(w)), w->core.colormap, &c);
  l.colorsAllocated = false;
}

void allocColors(Widget w) {
  freeColors(w);
  OvListPart& l = part(w);
  Pixel fg = prim(w).foreground, bg = w->core.background_pixel;
  Pixel pixels[4] = {fg, bg, bg, fg};
  if (l.select_color == XmHIGHLIGHT_COLOR) {
    pixels[kSelectedText] = fg;
    pixels[kSelectedGround] = prim(w).highlight_color;
  } else if (l.select_color != XmREVERSED_GROUND_COLORS &&
             l.select_color != XmDEFAULT_SELECT_COLOR) {
    pixels[kSelectedText] = fg;
    pixels[kSelectedGround] = l.select_color;
  }
  Display* d = XtDisplay(w);
  for (int i = 0; i < 4; ++i) {
    XColor xc;
    xc.pixel = pixels[i];
    XQueryColor(d, w->core.colormap, &xc);
    XRenderColor rc{xc.red, xc.green, xc.blue, 0xFFFF};
    XftColorAllocValue(d, DefaultVisualOfScreen(XtScreen(w)), w->core.colormap, &rc,
                       &l.colors[i]);
  }
  l.colorsAllocated = true;
}

// The font of the render table's first rendition, opened through Xft
// whatever the rendition's type (a core font's name is matched by
// fontconfig).
XftFont* openFont(Widget w) {
  OvListPart& l = part(w);
  Display* d = XtDisplay(w);
  int screen = XScreenNumberOfScreen(XtScreen(w));
  XftFont* font = nullptr;
  XmStringTag* tags = nullptr;
  int n = l.render_table ? XmRenderTableGetTags(l.render_table, &tags) : 0;
  if (n > 0) {
    XmRendition r = XmRenderTableGetRendition(l.render_table, tags[0]);
    if (r) {
      char* name = nullptr;
      char* style = nullptr;
      int size = 0;
      XmFontType type = XmFONT_IS_FONT;
      Arg args[4];
      XtSetArg(args[0], XmNfontName, &name);
      XtSetArg(args[1], XmNfontType, &type);
      XtSetArg(args[2], XmNfontSize, &size);
      XtSetArg(args[3], XmNfontStyle, &style);
      XmRenditionRetrieve(r, args, 4);
      bool named = name && name != reinterpret_cast<char*>(XmAS_IS);
      bool styled = style && style != reinterpret_cast<char*>(XmAS_IS) && *style;
      if (named && type == XmFONT_IS_XFT) {
        FcPattern* p = FcPatternCreate();
        FcPatternAddString(p, FC_FAMILY, reinterpret_cast<const FcChar8*>(name));
        FcPatternAddDouble(p, FC_SIZE, size > 0 ? size : 10);
        if (styled) FcPatternAddString(p, FC_STYLE, reinterpret_cast<const FcChar8*>(style));
        FcResult result;
        FcPattern* match = XftFontMatch(d, screen, p, &result);
        FcPatternDestroy(p);
        if (match) font = XftFontOpenPattern(d, match);
      } else if (named) {
        font = XftFontOpenXlfd(d, screen, name);
      }
      XmRenditionFree(r);
    }
  }
  for (int i = 0; i < n; ++i) XtFree(tags[i]);
  XtFree(reinterpret_cast<char*>(tags));
  if (!font) font = XftFontOpenName(d, screen, "Sans-10");
  return font;
}

void makeFont(Widget w) {
  OvListPart& l = part(w);
  if (l.font) XftFontClose(XtDisplay(w), l.font);
  l.font = openFont(w);
  l.row_height = l.font->ascent + l.font->descent + 2;
}

struct Span {
  int x;        // where the first drawn glyph starts
  size_t first;
  size_t last;  // past the last drawn glyph
  int width;    // the whole (cut) row
};

int advance(Display* d, XftFont* font, FcChar32 c) {
  XGlyphInfo info;
  FT_UInt glyph = XftCharIndex(d, font, c);
  XftGlyphExtents(d, font, &glyph, 1, &info);
  return info.xOff;
}

// Which glyphs of the row fall into [left, right) once the row starts at
// x0.  The whole row is measured (it is at most OvLIST_MAX_ROW_BYTES long),
// so the horizontal scroll range and the cut mark agree at every offset.
Span visibleSpan(Widget w, const std::vector<FcChar32>& glyphs, int x0, int left, int right) {
  Display* d = XtDisplay(w);
  XftFont* font = part(w).font;
  Span s{x0, glyphs.size(), glyphs.size(), 0};
  int x = x0;
  for (size_t i = 0; i < glyphs.size(); ++i) {
    int a = advance(d, font, glyphs[i]);
    if (s.first == glyphs.size() && x + a > left) {
      s.first = i;
      s.x = x;
    }
    if (s.last == glyphs.size() && x >= right) s.last = i;
    x += a;
  }
  if (s.first > s.last) s.first = s.last;
  s.width = x - x0;
  return s;
}

void drawRow(Widget w, int position, std::vector<FcChar32>& glyphs) {
  OvListPart& l = part(w);
  Display* d = XtDisplay(w);
  int in = inset(w);
  int y = in + (position - l.top) * l.row_height;
  int width = static_cast<int>(w->core.width) - 2 * in;
  if (width <= 0) return;
  bool selected = rowSelected(w, position);
  XftDrawRect(l.draw, &l.colors[selected ? kSelectedGround : kBackground], in, y, width,
              l.row_height);

  std::string_view text = rowText(w, position);
  bool cut = text.size() > OvLIST_MAX_ROW_BYTES;
  if (cut) text = text.substr(0, utf8Prefix(text, OvLIST_MAX_ROW_BYTES));
  decode(text, glyphs);
  int x0 = in + 1 - l.hoffset;
  Span s = visibleSpan(w, glyphs, x0, in, in + width);
  XftColor* color = &l.colors[selected ? kSelectedText : kForeground];
  int baseline = y + 1 + l.font->ascent;
  if (s.last > s.first)
    XftDrawString32(l.draw, color, l.font, s.x, baseline, glyphs.data() + s.first,
                    static_cast<int>(s.last - s.first));
  int rowWidth = s.width;
  if (cut) {
    // The cut mark: an ellipsis on a box in the other ground, so that it
    // cannot be mistaken for text of the line.
    static const FcChar32 mark[] = {0x2026};
    XGlyphInfo info;
    XftTextExtents32(d, l.font, mark, 1, &info);
    int mx = x0 + s.width + 2;
    XftDrawRect(l.draw, &l.colors[selected ? kSelectedText : kSelectedGround], mx, y + 1,
                info.xOff + 4, l.row_height - 2);
    XftDrawString32(l.draw, &l.colors[selected ? kSelectedGround : kSelectedText], l.font, mx + 2,
                    baseline, mark, 1);
    rowWidth += info.xOff + 8;
  }
  if (rowWidth + 2 > l.widest) {
    l.widest = rowWidth + 2;
    if (l.hbar) updateScrollBars(w);
  }
  if (position == l.cursor && prim(w).have_traversal) {
    // The location cursor, drawn as XmList draws it in the highlight
    // colour.
    XSetForeground(d, l.gc, selected ? l.colors[kSelectedText].pixel : prim(w).highlight_color);
    XDrawRectangle(d, XtWindow(w), l.gc, in, y, width - 1, l.row_height - 1);
  }
}

void drawRows(Widget w, int first, int last) {
  OvListPart& l = part(w);
  if (!XtIsRealized(w) || !l.draw) return;
  if (l.hold > 0) {
    l.pending = true;
    return;
  }
  int in = inset(w);
  XRectangle clip{static_cast<short>(in), static_cast<short>(in),
                  static_cast<unsigned short>(std::max(1, static_cast<int>(w->core.width) - 2 * in)),
                  static_cast<unsigned short>(std::max(1, static_cast<int>(w->core.height) - 2 * in))};
  XftDrawSetClipRectangles(l.draw, 0, 0, &clip, 1);
  XSetClipRectangles(XtDisplay(w), l.gc, 0, 0, &clip, 1, Unsorted);
  std::vector<FcChar32> glyphs;
  int bottom = std::min(l.count, l.top + visibleRows(w));
  for (int p = std::max(first, l.top); p <= std::min(last, bottom); ++p) drawRow(w, p, glyphs);
  XSetClipMask(XtDisplay(w), l.gc, None);
}

void drawFrame(Widget w) {
  XmPrimitivePart& p = prim(w);
  Dimension ht = p.highlight_thickness;
  XmeDrawShadows(XtDisplay(w), XtWindow(w), p.top_shadow_GC, p.bottom_shadow_GC, ht, ht,
                 w->core.width - 2 * ht, w->core.height - 2 * ht, p.shadow_thickness,
                 XmSHADOW_IN);
  auto* wc = reinterpret_cast<XmPrimitiveWidgetClass>(XtClass(w));
  if (p.highlighted && wc->primitive_class.border_highlight)
    wc->primitive_class.border_highlight(w);
}

void redrawAll(Widget w) {
  OvListPart& l = part(w);
  if (!XtIsRealized(w) || !l.draw) return;
  if (l.hold > 0) {
    l.pending = true;
    return;
  }
  l.pending = false;
  int in = inset(w);
  // Below the last row: the plain ground.
  int used = (std::min(l.count, l.top + visibleRows(w)) - l.top + 1) * l.row_height;
  int area = static_cast<int>(w->core.height) - 2 * in;
  if (used < area)
    XftDrawRect(l.draw, &l.colors[kBackground], in, in + std::max(used, 0),
                std::max(1, static_cast<int>(w->core.width) - 2 * in), area - std::max(used, 0));
  XftDrawSetClip(l.draw, nullptr);
  drawRows(w, l.top, l.top + visibleRows(w));
  XftDrawSetClip(l.draw, nullptr);
  drawFrame(w);
}

// Redraws inside the scope are drawn once, when the outermost one ends.
class HoldRedraw {
 public:
  explicit HoldRedraw(Widget w) : _w(w) { ++part(w).hold; }
  ~HoldRedraw() {
    if (--part(_w).hold == 0 && part(_w).pending) redrawAll(_w);
  }
  HoldRedraw(const HoldRedraw&) = delete;
  HoldRedraw& operator=(const HoldRedraw&) = delete;

 private:
  Widget _w;
};

// ---- moving ------------------------------------------------------------------

void setTop(Widget w, int top) {
  OvListPart& l = part(w);
  top = std::max(1, std::min(top, lastTop(w)));
  if (top == l.top) return;
  l.top = top;
  updateScrollBars(w);
  redrawAll(w);
}

void showPosition(Widget w, int position) {
  OvListPart& l = part(w);
  int visible = visibleRows(w);
  if (position < l.top) setTop(w, position);
  else if (position >= l.top + visible) setTop(w, position - visible + 1);
}

void callGesture(Widget w, XEvent* event, int gesture, int position, int first, int last,
                 bool on) {
  OvListCallbackStruct cbs{};
  cbs.reason = XmCR_EXTENDED_SELECT;
  cbs.event = event;
  cbs.gesture = gesture;
  cbs.position = position;
  cbs.first = std::min(first, last);
  cbs.last = std::max(first, last);
  cbs.on = on;
  HoldRedraw hold(w);
  XtCallCallbackList(w, part(w).gesture_callback, &cbs);
  redrawAll(w);
}

void callDefaultAction(Widget w, XEvent* event, int position) {
  OvListCallbackStruct cbs{};
  cbs.reason = XmCR_DEFAULT_ACTION;
  cbs.event = event;
  cbs.position = position;
  cbs.first = cbs.last = position;
  XtCallCallbackList(w, part(w).default_action_callback, &cbs);
}

bool extended(Widget w) { return part(w).selection_policy == XmEXTENDED_SELECT; }
bool multiple(Widget w) { return part(w).selection_policy == XmMULTIPLE_SELECT; }

unsigned modifiers(XEvent* e) {
  if (!e) return 0;
  if (e->type == KeyPress || e->type == KeyRelease) return e->xkey.state;
  if (e->type == ButtonPress || e->type == ButtonRelease) return e->xbutton.state;
  if (e->type == MotionNotify) return e->xmotion.state;
  return 0;
}

// The location cursor moves to position; unless only the cursor moves,
// the selection follows as XmList's keyboard selection does.
void moveCursor(Widget w, XEvent* e, int position) {
  OvListPart& l = part(w);
  if (l.count <= 0) return;
  position = std::max(1, std::min(position, l.count));
  HoldRedraw hold(w);
  int old = l.cursor;
  l.cursor = position;
  showPosition(w, position);
  unsigned m = modifiers(e);
  if (extended(w) && (m & ShiftMask)) {
    callGesture(w, e, OvLIST_SELECT_RANGE, position, l.anchor, position, true);
  } else if ((m & ControlMask) || multiple(w)) {
    drawRows(w, old, old);
    drawRows(w, position, position);
    drawFrame(w);
  } else {
    l.anchor = position;
    callGesture(w, e, OvLIST_SELECT_ONE, position, position, position, true);
  }
}

// ---- actions ---------------------------------------------------------------------

int param(String* params, Cardinal* n) {
  return params && n && *n > 0 ? std::atoi(params[0]) : 0;
}

void takeFocus(Widget w) {
  if (prim(w).traversal_on) XmProcessTraversal(w, XmTRAVERSE_CURRENT);
}

int pointerPosition(Widget w, int y) {
  OvListPart& l = part(w);
  if (l.count <= 0) return 0;
  int row = (y - inset(w)) / std::max(1, l.row_height);
  if (y < inset(w)) row = -1;
  return std::max(1, std::min(l.top + row, l.count));
}

void selectPress(Widget w, XEvent* e, String*, Cardinal*) {
  OvListPart& l = part(w);
  takeFocus(w);
  HoldRedraw hold(w);
  if (e->type != ButtonPress || l.count <= 0) return;
  int y = e->xbutton.y;
  int rowEnd = inset(w) + (std::min(l.count, l.top + visibleRows(w)) - l.top + 1) * l.row_height;
  if (y >= rowEnd) return;  // below the last row
  int p = pointerPosition(w, y);
  Time t = e->xbutton.time;
  bool isDouble = p == l.lastClickPosition &&
                  t - l.lastClickTime <= static_cast<Time>(XtGetMultiClickTime(XtDisplay(w)));
  l.lastClickTime = isDouble ? 0 : t;
  l.lastClickPosition = p;
  int old = l.cursor;
  l.cursor = p;
  drawRows(w, old, old);
  if (isDouble) {
    l.dragging = false;
    callDefaultAction(w, e, p);
    return;
  }
  unsigned m = e->xbutton.state;
  l.dragging = extended(w);
  l.dragLast = p;
  if (multiple(w)) {
    l.anchor = p;
    callGesture(w, e, OvLIST_TOGGLE, p, p, p, !rowSelected(w, p));
  } else if (!extended(w)) {
    l.anchor = p;
    callGesture(w, e, OvLIST_SELECT_ONE, p, p, p, true);
  } else if ((m & ShiftMask) && (m & ControlMask)) {
    l.dragSets = true;
    l.dragOn = rowSelected(w, l.anchor) ? True : False;
    callGesture(w, e, OvLIST_SET_RANGE, p, l.anchor, p, l.dragOn);
  } else if (m & ShiftMask) {
    l.dragSets = false;
    callGesture(w, e, OvLIST_SELECT_RANGE, p, l.anchor, p, true);
  } else if (m & ControlMask) {
    l.anchor = p;
    l.dragSets = true;
    l.dragOn = rowSelected(w, p) ? False : True;
    callGesture(w, e, OvLIST_TOGGLE, p, p, p, l.dragOn);
  } else {
    l.anchor = p;
    l.dragSets = false;
    callGesture(w, e, OvLIST_SELECT_ONE, p, p, p, true);
  }
}

void selectMotion(Widget w, XEvent* e, String*, Cardinal*) {
  OvListPart& l = part(w);
  if (!l.dragging || e->type != MotionNotify) return;
  HoldRedraw hold(w);
  int y = e->xmotion.y;
  // Dragging past an edge scrolls a row at a time.
  if (y < inset(w) && l.top > 1) setTop(w, l.top - 1);
  else if (y >= static_cast<int>(w->core.height) - inset(w)) setTop(w, l.top + 1);
  int p = pointerPosition(w, y);
  if (p == l.dragLast || p == 0) return;
  l.dragLast = p;
  int old = l.cursor;
  l.cursor = p;
  drawRows(w, old, old);
  if (l.dragSets) callGesture(w, e, OvLIST_SET_RANGE, p, l.anchor, p, l.dragOn);
  else callGesture(w, e, OvLIST_SELECT_RANGE, p, l.anchor, p, true);
}

void selectRelease(Widget w, XEvent*, String*, Cardinal*) { part(w).dragging = false; }

void scrollRows(Widget w, XEvent*, String* params, Cardinal* n) {
  setTop(w, part(w).top + param(params, n));
}

void moveBy(Widget w, XEvent* e, String* params, Cardinal* n) {
  OvListPart& l = part(w);
  int step = param(params, n);
  if (step == 1000) step = std::max(1, visibleRows(w) - 1);  // a page
  if (step == -1000) step = -std::max(1, visibleRows(w) - 1);
  moveCursor(w, e, (l.cursor > 0 ? l.cursor : 1) + step);
}

void moveFirst(Widget w, XEvent* e, String*, Cardinal*) { moveCursor(w, e, 1); }
void moveLast(Widget w, XEvent* e, String*, Cardinal*) { moveCursor(w, e, part(w).count); }

void scrollSideways(Widget w, XEvent*, String* params, Cardinal* n) {
  OvListPart& l = part(w);
  int width = std::max(1, static_cast<int>(w->core.width) - 2 * inset(w));
  int to = std::max(0, std::min(l.hoffset + param(params, n) * 10, std::max(0, l.widest - width)));
  if (to == l.hoffset) return;
  l.hoffset = to;
  updateScrollBars(w);
  redrawAll(w);
}

void selectCursor(Widget w, XEvent* e, String*, Cardinal*) {
  OvListPart& l = part(w);
  if (l.count <= 0) return;
  int p = std::max(1, l.cursor);
  l.cursor = p;
  unsigned m = modifiers(e);
  if (multiple(w) || (extended(w) && (m & ControlMask))) {
    l.anchor = p;
    callGesture(w, e, OvLIST_TOGGLE, p, p, p, !rowSelected(w, p));
  } else if (extended(w) && (m & ShiftMask)) {
    callGesture(w, e, OvLIST_SELECT_RANGE, p, l.anchor, p, true);
  } else {
    l.anchor = p;
    callGesture(w, e, OvLIST_SELECT_ONE, p, p, p, true);
  }
}

void selectAll(Widget w, XEvent* e, String*, Cardinal*) {
  if (extended(w) || multiple(w)) callGesture(w, e, OvLIST_SELECT_ALL, 0, 1, part(w).count, true);
}

void deselectAll(Widget w, XEvent* e, String*, Cardinal*) {
  callGesture(w, e, OvLIST_DESELECT_ALL, 0, 1, part(w).count, false);
}

void activate(Widget w, XEvent* e, String*, Cardinal*) {
  OvListPart& l = part(w);
  if (l.count > 0) callDefaultAction(w, e, std::max(1, l.cursor));
}

XtActionsRec actions[] = {
    {const_cast<char*>("OvListSelectPress"), selectPress},
    {const_cast<char*>("OvListSelectMotion"), selectMotion},
    {const_cast<char*>("OvListSelectRelease"), selectRelease},
    {const_cast<char*>("OvListScroll"), scrollRows},
    {const_cast<char*>("OvListMove"), moveBy},
    {const_cast<char*>("OvListFirst"), moveFirst},
    {const_cast<char*>("OvListLast"), moveLast},
    {const_cast<char*>("OvListSideways"), scrollSideways},
    {const_cast<char*>("OvListSelectCursor"), selectCursor},
    {const_cast<char*>("OvListSelectAll"), selectAll},
    {const_cast<char*>("OvListDeselectAll"), deselectAll},
    {const_cast<char*>("OvListActivate"), activate},
};

// Modifiers are read inside the actions, so each key is bound once whatever
// Shift and Ctrl do; Motif's virtual keys (osf...) and the plain key
// symbols both reach the same action.
char translations[] =
    "~s ~m ~a <Key>Tab: PrimitiveNextTabGroup()\n"
    "s ~m ~a <Key>Tab: PrimitivePrevTabGroup()\n"
    "<Btn1Down>: OvListSelectPress()\n"
    "<Btn1Motion>: OvListSelectMotion()\n"
    "<Btn1Up>: OvListSelectRelease()\n"
    "<Btn4Down>: OvListScroll(-3)\n"
    "<Btn5Down>: OvListScroll(3)\n"
    "<Key>osfUp: OvListMove(-1)\n"
    "<Key>osfDown: OvListMove(1)\n"
    "<Key>osfPageUp: OvListMove(-1000)\n"
    "<Key>osfPageDown: OvListMove(1000)\n"
    "<Key>osfBeginLine: OvListFirst()\n"
    "<Key>osfEndLine: OvListLast()\n"
    "<Key>osfBeginData: OvListFirst()\n"
    "<Key>osfEndData: OvListLast()\n"
    "<Key>osfLeft: OvListSideways(-1)\n"
    "<Key>osfRight: OvListSideways(1)\n"
    "<Key>Up: OvListMove(-1)\n"
    "<Key>Down: OvListMove(1)\n"
    "<Key>Prior: OvListMove(-1000)\n"
    "<Key>Next: OvListMove(1000)\n"
    "<Key>Home: OvListFirst()\n"
    "<Key>End: OvListLast()\n"
    "<Key>Left: OvListSideways(-1)\n"
    "<Key>Right: OvListSideways(1)\n"
    "c <Key>slash: OvListSelectAll()\n"
    "c <Key>backslash: OvListDeselectAll()\n"
    "<Key>osfSelectAll: OvListSelectAll()\n"
    "<Key>osfDeselectAll: OvListDeselectAll()\n"
    "<Key>osfSelect: OvListSelectCursor()\n"
    "<Key>space: OvListSelectCursor()\n"
    "<Key>osfActivate: OvListActivate()\n"
    "<Key>Return: OvListActivate()\n"
    "<Key>KP_Enter: OvListActivate()\n"
    "<Key>osfHelp: PrimitiveHelp()\n"
    "<FocusIn>: PrimitiveFocusIn()\n"
    "<FocusOut>: PrimitiveFocusOut()\n"
    "<Enter>: PrimitiveEnter()\n"
    "<Leave>: PrimitiveLeave()\n"
    "<Unmap>: PrimitiveUnmap()\n";

// ---- scroll bar callbacks ----------------------------------------------------------

void verticalScrolled(Widget, XtPointer client, XtPointer call) {
  auto* cbs = static_cast<XmScrollBarCallbackStruct*>(call);
  Widget w = static_cast<Widget>(client);
  OvListPart& l = part(w);
  int top = std::max(1, std::min(cbs->value + 1, lastTop(w)));
  if (top == l.top) return;
  l.top = top;  // the bar already shows it
  redrawAll(w);
}

void horizontalScrolled(Widget, XtPointer client, XtPointer call) {
  auto* cbs = static_cast<XmScrollBarCallbackStruct*>(call);
  Widget w = static_cast<Widget>(client);
  if (part(w).hoffset == cbs->value) return;
  part(w).hoffset = cbs->value;
  redrawAll(w);
}

Widget makeBar(Widget w, const char* name, unsigned char orientation, XtCallbackProc proc) {
  Widget bar = XtVaCreateManagedWidget(name, xmScrollBarWidgetClass, XtParent(w), XmNorientation,
                                       orientation, nullptr);
  for (const char* reason : {XmNvalueChangedCallback, XmNdragCallback, XmNincrementCallback,
                             XmNdecrementCallback, XmNpageIncrementCallback,
                             XmNpageDecrementCallback, XmNtoTopCallback, XmNtoBottomCallback})
    XtAddCallback(bar, reason, proc, w);
  return bar;
}

// ---- class methods ------------------------------------------------------------------

void preferredSize(Widget w, Dimension* width, Dimension* height) {
  OvListPart& l = part(w);
  int rows = l.visible_item_count > 0 ? l.visible_item_count : 10;
  *width = 200;
  *height = static_cast<Dimension>(rows * l.row_height + 2 * inset(w));
}

void initialize(Widget, Widget w, ArgList, Cardinal*) {
  OvListPart& l = part(w);
  l.render_table = l.render_table ? XmRenderTableCopy(l.render_table, nullptr, 0)
                                  : XmRenderTableCopy(XmeGetDefaultRenderTable(w, XmTEXT_FONTLIST),
                                                      nullptr, 0);
  l.source = OvListSource{nullptr, nullptr};
  l.closure = nullptr;
  l.count = 0;
  l.top = 1;
  l.cursor = 0;
  l.anchor = 1;
  l.hoffset = 0;
  l.widest = 0;
  l.font = nullptr;
  l.draw = nullptr;
  l.colorsAllocated = false;
  l.hold = 0;
  l.pending = false;
  l.dragging = false;
  l.dragSets = false;
  l.dragOn = True;
  l.dragLast = 0;
  l.lastClickTime = 0;
  l.lastClickPosition = 0;
  l.vbar = l.hbar = nullptr;
  makeFont(w);
  XGCValues values;
  values.foreground = prim(w).foreground;
  l.gc = XtAllocateGC(w, 0, GCForeground, &values, GCForeground | GCClipMask, 0);
  Dimension width, height;
  preferredSize(w, &width, &height);
  if (w->core.width == 0) w->core.width = width;
  if (w->core.height == 0 || l.visible_item_count > 0) w->core.height = height;

  Widget parent = XtParent(w);
  unsigned char policy = XmAUTOMATIC;
  if (XmIsScrolledWindow(parent)) XtVaGetValues(parent, XmNscrollingPolicy, &policy, nullptr);
  if (XmIsScrolledWindow(parent) && policy == XmAPPLICATION_DEFINED) {
    l.vbar = makeBar(w, "VertScrollBar", XmVERTICAL, verticalScrolled);
    l.hbar = makeBar(w, "HorScrollBar", XmHORIZONTAL, horizontalScrolled);
    XmScrolledWindowSetAreas(parent, l.hbar, l.vbar, w);
  }
}

void destroy(Widget w) {
  OvListPart& l = part(w);
  // The bars live in the parent; without the list they have nothing to move.
  // When the parent goes too they go with it (and may be freed already: the
  // parent outlives its children during a destroy, the siblings need not).
  if (!XtParent(w)->core.being_destroyed)
    for (Widget bar : {l.vbar, l.hbar})
      if (bar) XtDestroyWidget(bar);
  freeColors(w);
  if (l.draw) XftDrawDestroy(l.draw);
  if (l.font) XftFontClose(XtDisplay(w), l.font);
  XtReleaseGC(w, l.gc);
  XmRenderTableFree(l.render_table);
}

void realize(Widget w, XtValueMask* mask, XSetWindowAttributes* attributes) {
  *mask |= CWBitGravity;
  attributes->bit_gravity = ForgetGravity;
  XtCreateWindow(w, InputOutput, CopyFromParent, *mask, attributes);
  OvListPart& l = part(w);
  l.draw = XftDrawCreate(XtDisplay(w), XtWindow(w), DefaultVisualOfScreen(XtScreen(w)),
                         w->core.colormap);
  allocColors(w);
  updateScrollBars(w);
}

void resize(Widget w) {
  OvListPart& l = part(w);
  l.top = std::max(1, std::min(l.top, lastTop(w)));
  updateScrollBars(w);
  if (XtIsRealized(w)) XClearArea(XtDisplay(w), XtWindow(w), 0, 0, 0, 0, True);
}

void expose(Widget w, XEvent*, Region) { redrawAll(w); }

Boolean setValues(Widget old, Widget, Widget w, ArgList, Cardinal*) {
  OvListPart& o = part(old);
  OvListPart& l = part(w);
  Boolean redisplay = False;
  if (l.render_table != o.render_table) {
    l.render_table = XmRenderTableCopy(l.render_table, nullptr, 0);
    XmRenderTableFree(o.render_table);
    makeFont(w);
    redisplay = True;
  }
  if (l.select_color != o.select_color || prim(w).foreground != prim(old).foreground ||
      w->core.background_pixel != old->core.background_pixel) {
    if (XtIsRealized(w)) allocColors(w);
    redisplay = True;
  }
  if (l.visible_item_count != o.visible_item_count && l.visible_item_count > 0) {
    Dimension width, height;
    preferredSize(w, &width, &height);
    w->core.height = height;
  }
  return redisplay;
}

XtGeometryResult queryGeometry(Widget w, XtWidgetGeometry* request, XtWidgetGeometry* reply) {
  Dimension width, height;
  preferredSize(w, &width, &height);
  reply->request_mode = CWWidth | CWHeight;
  reply->width = std::max(width, w->core.width);
  reply->height = part(w).visible_item_count > 0 ? height : std::max(height, w->core.height);
  if ((request->request_mode & CWWidth) && (request->request_mode & CWHeight) &&
      request->width == reply->width && request->height == reply->height)
    return XtGeometryYes;
  if (reply->width == w->core.width && reply->height == w->core.height) return XtGeometryNo;
  return XtGeometryAlmost;
}

// Focus changes show or hide the location cursor; the primitive class
// draws the highlight border.
void redrawCursor(Widget w) {
  OvListPart& l = part(w);
  if (l.cursor > 0) drawRows(w, l.cursor, l.cursor);
}

void borderHighlight(Widget w) {
  auto* super = reinterpret_cast<XmPrimitiveWidgetClass>(xmPrimitiveWidgetClass);
  super->primitive_class.border_highlight(w);
  redrawCursor(w);
}

void borderUnhighlight(Widget w) {
  auto* super = reinterpret_cast<XmPrimitiveWidgetClass>(xmPrimitiveWidgetClass);
  super->primitive_class.border_unhighlight(w);
  redrawCursor(w);
}

void classInitialize() {}

}  // namespace

OvListClassRec ovListClassRec = {
    {
        // core_class
        reinterpret_cast<WidgetClass>(&xmPrimitiveClassRec),  // superclass
        const_cast<char*>("OvList"),                          // class_name
        sizeof(OvListRec),                                    // widget_size
        classInitialize,                                      // class_initialize
        nullptr,                                              // class_part_initialize
        False,                                                // class_inited
        initialize,                                           // initialize
        nullptr,                                              // initialize_hook
        realize,                                              // realize
        actions,                                              // actions
        XtNumber(actions),                                    // num_actions
        resources,                                            // resources
        XtNumber(resources),                                  // num_resources
        NULLQUARK,                                            // xrm_class
        True,                                                 // compress_motion
        XtExposeCompressMaximal,                              // compress_exposure
        True,                                                 // compress_enterleave
        False,                                                // visible_interest
        destroy,                                              // destroy
        resize,                                               // resize
        expose,                                               // expose
        setValues,                                            // set_values
        nullptr,                                              // set_values_hook
        XtInheritSetValuesAlmost,                             // set_values_almost
        nullptr,                                              // get_values_hook
        nullptr,                                              // accept_focus
        XtVersion,                                            // version
        nullptr,                                              // callback_private
        translations,                                         // tm_table
        queryGeometry,                                        // query_geometry
        nullptr,                                              // display_accelerator
        nullptr,                                              // extension
    },
    {
        // primitive_class
        borderHighlight,     // border_highlight
        borderUnhighlight,   // border_unhighlight
        // None: the primitive's traversal bindings would take the arrow
        // keys; the list's own table binds Tab for traversal.
        nullptr,             // translations
        nullptr,             // arm_and_activate
        nullptr,             // syn_resources
        0,                   // num_syn_resources
        nullptr,             // extension
    },
    {nullptr},
};

WidgetClass ovListWidgetClass = reinterpret_cast<WidgetClass>(&ovListClassRec);

Widget OvCreateList(Widget parent, const char* name, ArgList args, Cardinal numArgs) {
  return XtCreateWidget(name, ovListWidgetClass, parent, args, numArgs);
}

void OvListSetSource(Widget w, const OvListSource* source, XtPointer closure) {
  part(w).source = source ? *source : OvListSource{nullptr, nullptr};
  part(w).closure = closure;
  redrawAll(w);
}

void OvListSetItemCount(Widget w, int count) {
  OvListPart& l = part(w);
  l.count = std::max(count, 0);
  l.top = std::max(1, std::min(l.top, lastTop(w)));
  l.cursor = l.count == 0 ? 0 : std::min(std::max(l.cursor, 1), l.count);
  l.anchor = std::min(std::max(l.anchor, 1), std::max(l.count, 1));
  l.widest = 0;
  updateScrollBars(w);
  redrawAll(w);
}

int OvListItemCount(Widget w) { return part(w).count; }

void OvListRedraw(Widget w) { redrawAll(w); }

int OvListTopPosition(Widget w) { return part(w).top; }

void OvListSetTopPosition(Widget w, int position) { setTop(w, position); }

void OvListSetBottomPosition(Widget w, int position) {
  OvListPart& l = part(w);
  if (position <= 0) position = l.count;
  setTop(w, position - visibleRows(w) + 1);
}

int OvListVisibleRows(Widget w) { return visibleRows(w); }

int OvListRowHeight(Widget w) { return part(w).row_height; }

int OvListPositionAt(Widget w, int y) {
  OvListPart& l = part(w);
  if (y < inset(w) || l.count <= 0) return 0;
  int p = l.top + (y - inset(w)) / std::max(1, l.row_height);
  return p <= l.count && p < l.top + visibleRows(w) + 1 ? p : 0;
}

int OvListCursorPosition(Widget w) { return part(w).cursor; }

const char* OvListRowText(Widget w, int position, size_t* length) {
  std::string_view text = rowText(w, position);
  *length = text.size();
  return text.empty() ? (position >= 1 && position <= part(w).count ? "" : nullptr) : text.data();
}

Boolean OvListRowSelected(Widget w, int position) {
  return position >= 1 && position <= part(w).count && rowSelected(w, position) ? True : False;
}
