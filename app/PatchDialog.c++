#include "app/PatchDialog.h"

#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/MessageB.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>
#include <sys/stat.h>

#include <algorithm>
#include <vector>

#include "app/ui/LayoutWidgets.h"
#include "filelist/FileListModel.h"
#include "ov/OvList.h"
#include "util/Format.h"
#include "util/Reporter.h"

const char* const PatchDialog::_defaultPatchDialogResources[] = {
    "*label1.labelString:  Tag                                       Source",
    "*label2.labelString:  Select files to be included in the patch product.  Use <Ctrl> to select disjoint items.",
    "*label3.labelString:  Every patch subsystem must have a 'follows' rule, which you may edit in the",
    "*label4.labelString:  Create Product Hierarchy view, after clicking on a subsystem node.  This operation",
    "*label5.labelString:  creates a product and adds the selected files, tagging to the new subsystems.",
    "*label.labelString:  Product Name",
    nullptr,
};

PatchDialog::PatchDialog(const char* name, FileListModel& fileList, const std::string& productName,
                         Reporter& reporter)
    : YrGenericDialog(name, "Create Patch"),
      _fileListModel(fileList),
      _productName(productName),
      _reporter(reporter) {}

std::string PatchDialog::proposeName(const std::string& product) {
  struct stat st;
  int n = 1;
  while (lstat(format("%s_patch%d.spec", product.c_str(), n).c_str(), &st) == 0) ++n;
  return format("%s_patch%d", product.c_str(), n);
}

Widget PatchDialog::createDialog(Widget parent) {
  setDefaultResources(parent, _defaultPatchDialogResources);
  Widget dialog = YrGenericDialog::createDialog(parent);
  _form = createManaged("form", xmFormWidgetClass, dialog);
  _scrolledWindow = createManagedScrolledWindow("scrolledWindow", _form);
  _scrolledList = createManaged("scrolledList", ovListWidgetClass, _scrolledWindow,
                                {{XmNvisibleItemCount, 6}, {XmNwidth, 588},
                                 {XmNselectionPolicy, XmEXTENDED_SELECT}});
  _label1 = createManaged("label1", xmLabelWidgetClass, _form,
                          {{XmNalignment, XmALIGNMENT_BEGINNING}});
  _rowcolumn4 = createManaged("rowcolumn4", xmRowColumnWidgetClass, _form);
  _label2 = createManaged("label2", xmLabelWidgetClass, _rowcolumn4);
  _label3 = createManaged("label3", xmLabelWidgetClass, _rowcolumn4);
  _label4 = createManaged("label4", xmLabelWidgetClass, _rowcolumn4);
  _label5 = createManaged("label5", xmLabelWidgetClass, _rowcolumn4);
  _rowcolumn1 = createManaged("rowcolumn1", xmRowColumnWidgetClass, _form);
  _rowcolumn = createManaged("rowcolumn", xmRowColumnWidgetClass, _form);
  _rowcolumn2 = createManaged("rowcolumn2", xmRowColumnWidgetClass, _rowcolumn,
                              {{XmNorientation, XmHORIZONTAL}});
  _label = createManaged("label", xmLabelWidgetClass, _rowcolumn2);
  _textfield = createManaged("textfield", xmTextFieldWidgetClass, _rowcolumn2, {{XmNcolumns, 30}});

  _chosen.resize(_fileListModel.idb().count());
  _listView = std::make_unique<ListView>(_scrolledList, *this, *this);
  std::string proposal = proposeName(_productName);
  XmTextFieldSetString(_textfield, const_cast<char*>(proposal.c_str()));

  // Heading, list, instructions, name row, spacer, top to bottom; the list
  // takes any extra height.
  XtVaSetValues(_label1, XmNtopAttachment, XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM, nullptr);
  XtVaSetValues(_rowcolumn1, XmNbottomAttachment, XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM,
                nullptr);
  XtVaSetValues(_rowcolumn, XmNbottomAttachment, XmATTACH_WIDGET, XmNbottomWidget, _rowcolumn1,
                XmNleftAttachment, XmATTACH_FORM, nullptr);
  XtVaSetValues(_rowcolumn4, XmNbottomAttachment, XmATTACH_WIDGET, XmNbottomWidget, _rowcolumn,
                XmNleftAttachment, XmATTACH_FORM, nullptr);
  XtVaSetValues(_scrolledWindow, XmNtopAttachment, XmATTACH_WIDGET, XmNtopWidget, _label1,
                XmNbottomAttachment, XmATTACH_WIDGET, XmNbottomWidget, _rowcolumn4,
                XmNleftAttachment, XmATTACH_FORM, XmNrightAttachment, XmATTACH_FORM, nullptr);
  return dialog;
}

int PatchDialog::count() const { return _fileListModel.idb().count(); }

std::string_view PatchDialog::text(int position) const {
  return _fileListModel.listLine(position, _lineBuffer);
}

bool PatchDialog::isSelected(int position) const { return _chosen.has(position); }

void PatchDialog::ok(Widget, XtPointer) {
  char* text = XmTextFieldGetString(_textfield);
  std::string name = text ? text : "";
  XtFree(text);
  if (name.empty()) {
    _reporter.error("Specify patch Product Name.");
    return;
  }
  // Positions come out ascending, as createPatch needs them.
  const std::vector<int> keep = _chosen.positions();
  if (keep.empty()) {
    _reporter.error("Select files in patch.");
    return;
  }
  _fileListModel.createPatch(name, keep);
  unpost();
}
