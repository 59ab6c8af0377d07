#include "filelist/ListView.h"

#include <algorithm>

#include <Xm/Xm.h>

#include "ov/OvList.h"

ListView::ListView(Widget list, Source& source, Gestures& gestures)
    : _list(list), _source(source), _gestures(gestures) {
  const OvListSource s{&ListView::textOf, &ListView::selectedOf};
  OvListSetSource(_list, &s, this);
  XtAddCallback(_list, OvNgestureCallback, &ListView::callback, this);
  XtAddCallback(_list, XmNdestroyCallback, &ListView::destroyed, this);
  contentsChanged();
}

ListView::~ListView() {
  if (!_list) return;  // the widget went first
  XtRemoveCallback(_list, OvNgestureCallback, &ListView::callback, this);
  XtRemoveCallback(_list, XmNdestroyCallback, &ListView::destroyed, this);
  OvListSetSource(_list, nullptr, nullptr);
}

void ListView::destroyed(Widget, XtPointer self, XtPointer) {
  static_cast<ListView*>(self)->_list = nullptr;
}

void ListView::contentsChanged() {
  if (_list) OvListSetItemCount(_list, _source.count());
}

void ListView::selectionChanged() {
  if (_list) OvListRedraw(_list);
}

void ListView::showLast() {
  if (_list) OvListSetBottomPosition(_list, 0);
}

void ListView::showPosition(int position) {
  if (!_list) return;
  const int top = OvListTopPosition(_list), visible = std::max(1, OvListVisibleRows(_list));
  if (position >= top && position < top + visible) return;
  OvListSetTopPosition(_list, std::max(1, position - visible / 2));
}

int ListView::itemCount() const { return _list ? OvListItemCount(_list) : 0; }

std::vector<int> ListView::selection() const {
  std::vector<int> out;
  for (int p = 1; p <= itemCount(); ++p)
    if (selectedOf(const_cast<ListView*>(this), p)) out.push_back(p);
  return out;
}

void ListView::handle(const OvListCallbackStruct& cbs) {
  if (cbs.reason == XmCR_DEFAULT_ACTION) {
    _gestures.activate(cbs.position);
    return;
  }
  switch (cbs.gesture) {
    case OvLIST_SELECT_ONE: _gestures.selectOne(cbs.position); break;
    case OvLIST_TOGGLE: _gestures.toggle(cbs.position); break;
    case OvLIST_SELECT_RANGE: _gestures.selectRange(cbs.first, cbs.last); break;
    case OvLIST_SET_RANGE: _gestures.setRange(cbs.first, cbs.last, cbs.on); break;
    case OvLIST_SELECT_ALL: _gestures.selectAll(); break;
    case OvLIST_DESELECT_ALL: _gestures.deselectAll(); break;
    default: break;
  }
}

const char* ListView::textOf(XtPointer self, int position, size_t* length) {
  std::string_view text = static_cast<ListView*>(self)->_source.text(position);
  *length = text.size();
  return text.data();
}

Boolean ListView::selectedOf(XtPointer self, int position) {
  return static_cast<ListView*>(self)->_source.isSelected(position) ? True : False;
}

void ListView::callback(Widget, XtPointer self, XtPointer callData) {
  if (callData) static_cast<ListView*>(self)->handle(*static_cast<OvListCallbackStruct*>(callData));
}
