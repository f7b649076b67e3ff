#pragma once
// What a value assigned to a field becomes before it is stored: Jet's conversion of the
// Variant ADO hands it into the column's own type. Text is read as a user types it: numbers
// with the locale's decimal separator and also with ".", dates in the forms CStr prints and
// as ISO "yyyy-mm-dd[ hh:nn[:ss]]", Yes/No as "True"/"False", "Yes"/"No", "On"/"Off" or a
// number.
//
// Rules kept:
//  - A value that does not fit is refused, never wrapped or cut: a Byte of 300, a text
//    longer than the column's declared length, a Jet 3 text with a character its code page
//    lacks. The error is ADO's -2147217887 ("Multiple-step operation generated errors"),
//    the number Jet gives for a value a field cannot take, with a sentence naming the
//    field and the reason; nothing is stored.
//  - Whole-number types and Currency round halves to even, as VB and Jet do.
//  - Null and Empty store Null; so does a blank text given to a column that is not text,
//    which is what a user who clears a cell means. A Yes/No column cannot hold Null and
//    stores No instead.

#include <string>

#include "format/CodePage.h"
#include "format/Format.h"
#include "format/TableDef.h"
#include "jet/Locale.h"
#include "jet/Variant.h"

namespace jet {

// The value in the kind the column's type reads back as (ValueReader): Boolean, Byte,
// Integer, Long, Currency, Single, Double, Date, String (text, memo and the braced
// upper-case Replication ID), ByteArray (binary and OLE), Decimal; or Null.
Variant convertForColumn(const Column& column, const Variant& value, Version version, const CodePage& codePage,
                         const Locale& locale = Locale::current());

// "{8E39276A-...}" into its 16 stored bytes; false when the text is not a GUID.
bool guidBytes(std::string_view text, uint8_t out[16]);

}  // namespace jet
