// Messages to the user of the instrument: a main text and, where there is more to say, a detail.
//
// Each is shown as an alert, which on this host is one line for either text on standard error, and
// printed to standard output too where that is switched on. Texts are Mac Roman; what is shown is
// UTF-8. Null texts and a null `sourceFile` are "not given". A message that cannot be shown is
// lost. The state is unguarded: one thread.
#pragma once

#include "host/HostTypes.h"

namespace cairnset {

// Opaque on this host: they are stored or passed on only.
struct Dialog;
struct EventRecord;
struct TextEdit;
using DialogRef = Dialog*;
using TEHandle = TextEdit**;

// --- Messages ----------------------------------------------------------------------------------

/// Shows a message. An alert without `text` says that an unknown error has occurred.
///
/// For standard output `text` is a format, as it always was: its first "%s" and every "%1$s" become
/// the detail (an empty text where there is none), each with flags, a width of at most 4095 and a
/// precision, as printf has them, and "%%" becomes "%". The detail is a format without arguments.
/// Every other "%" is printed unchanged. Alerts show both texts as they are, with a blank for
/// each line break.
void displayErrorStrings(const char* text, const char* detail, void* unused = nullptr);

/// The same for a deferred task: `pair` is an array of two text pointers. Always 0.
OSStatus displayErrorStringsAsyncTask(void* pair);

/// The same with the source place that raised it: a carriage return, the file, ":" and the line are
/// appended to `detail` itself, which needs room for the file name and 13 more characters. Nothing
/// is appended to a null detail.
void displayErrorStringsWithCode(const char* text, char* detail, const char* sourceFile, int line);

// The detail of these is the result code with the source place, cut to 1023 characters.

void displayFileManagerError(long code, const char* sourceFile = nullptr, int line = 0);
/// "... while <action> <name>."; at most 1024 characters of the name count. Either may be null.
void displayFileManagerErrorWhile(long code, const char* action, const char* name,
                                  const char* sourceFile = nullptr, int line = 0);
void displayFileManagerErrorWhileOpening(long code, const char* name,
                                         const char* sourceFile = nullptr, int line = 0);
/// Names the item by the FSSpec's name, or "?" for null.
void displayFileManagerErrorWhileOpening(long code, const FSSpec* fsSpec,
                                         const char* sourceFile = nullptr, int line = 0);
/// Names the item by its held name, cut to the 63 bytes of an FSSpec; "?" for null and for
/// what was never a place. The item need not exist.
void displayFileManagerErrorWhileOpening(long code, const FSRef* ref,
                                         const char* sourceFile = nullptr, int line = 0);

void displayCantInstantiateError();
void displayOutOfMemoryError();
/// Misspelt on purpose: its callers use this name.
void displayUnkownError();

// --- Switches; none can be set back --------------------------------------------------------------

/// Prints messages to standard output from now on.
void setPIAlertStdOut();
/// Shows no more alerts.
void disablePIAlertWindows();
/// A field for messages; it is stored, and nothing is written to it.
void setPIAlertTEHandle(TEHandle handle);

/// An alert's event filter: remembers the dialog and returns false, which leaves every event to the
/// alert.
bool modalFilterProc(DialogRef dialog, EventRecord* event, short* item);

}  // namespace cairnset
