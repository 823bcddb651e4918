/* The dialog for a document's fields, in dialog units: for the resource compiler on Windows, and for
   the table of templates on Linux. Nothing but numbers and texts, since both read it. */
#ifndef VELANDOC_RESOURCES_EDIT_FIELDS_DIALOG_H
#define VELANDOC_RESOURCES_EDIT_FIELDS_DIALOG_H

#define EDIT_FIELDS_ID 201
#define EDIT_FIELDS_CAPTION "Edit SharePoint Fields"
#define EDIT_FIELDS_WIDTH 399
#define EDIT_FIELDS_HEIGHT 218

#define EDIT_FIELDS_BUTTON_WIDTH 50
#define EDIT_FIELDS_BUTTON_HEIGHT 14

#define EDIT_FIELDS_OK_ID 1
#define EDIT_FIELDS_OK_TEXT "OK"
#define EDIT_FIELDS_OK_X 289
#define EDIT_FIELDS_OK_Y 197

#define EDIT_FIELDS_CANCEL_ID 2
#define EDIT_FIELDS_CANCEL_TEXT "Cancel"
#define EDIT_FIELDS_CANCEL_X 342
#define EDIT_FIELDS_CANCEL_Y 197

#endif
