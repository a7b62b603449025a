// Conversions between Fortran CHARACTER arguments and C strings, shared by
// every Fortran-callable twin of the library.
//
// A CHARACTER argument arrives as a pointer to its first character with the
// declared length passed separately (by value, after the visible arguments).
// Inputs are copied up to that length or the first NUL, whichever comes first,
// and trimmed of trailing blanks; outputs are blank-padded to the field.
#ifndef MMFILESHARED_MMERR_FORTRAN_STRING_INTERNAL_H
#define MMFILESHARED_MMERR_FORTRAN_STRING_INTERNAL_H

#include <cstddef>
#include <string>

namespace morvellanth::fortran {

// A Fortran input string as a NUL-terminated copy owned by the object.
class InputString {
 public:
  InputString(const char* field, int declared_length);
  const char* c_str() const { return text_.c_str(); }
  std::size_t size() const { return text_.size(); }

 private:
  std::string text_;
};

// Copies `value` into the field and pads it with blanks. Returns false (the
// field then holds the first `field_length` characters) when it does not fit.
bool StoreOutput(char* field, int field_length, const char* value);

// Throws at level 5 (FATAL) on handle -1 the message "<twin>: <what> not
// long enough; need <need> chars, have <have>" and returns -1.
int ReportTooLong(const char* twin, const char* what, int need, int have);

// StoreOutput, and on truncation throws at level 5 (FATAL) on handle -1 the
// message "<twin>: <what> not long enough; need <n> chars, have <field_length>"
// and returns -1; returns 0 when the value fits.
int StoreOutputReported(const char* twin, const char* what, char* field,
                        int field_length, const char* value);

}  // namespace morvellanth::fortran

#endif  // MMFILESHARED_MMERR_FORTRAN_STRING_INTERNAL_H
