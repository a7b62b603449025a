! Fortran line writers used by error handles whose output is a Fortran unit:
! the record goes through the Fortran runtime, so it interleaves correctly
! with the program's own writes to the same unit.

! Writes the first `length` characters of `text` to `unit` as one record; a
! negative length writes an empty record. Returns the runtime's iostat.
integer(c_int) function fprint_line(unit, text, length) bind(C, name="fprint_line_")
  use, intrinsic :: iso_c_binding, only: c_int, c_char
  implicit none
  integer(c_int), intent(in) :: unit
  character(kind=c_char), intent(in) :: text(*)
  integer(c_int), intent(in) :: length
  integer :: status

  if (length <= 0) then
    write (unit, '(A)', iostat=status) ''
  else
    call write_record(text, length)
  end if
  fprint_line = status

contains

  subroutine write_record(chars, n)
    integer(c_int), intent(in) :: n
    character(kind=c_char), intent(in) :: chars(n)
    character(len=n) :: line
    integer :: i
    do i = 1, n
      line(i:i) = chars(i)
    end do
    write (unit, '(A)', iostat=status) line
  end subroutine write_record
end function fprint_line

! Writes one empty record to `unit`.
integer(c_int) function fskip_line(unit) bind(C, name="fskip_line_")
  use, intrinsic :: iso_c_binding, only: c_int
  implicit none
  integer(c_int), intent(in) :: unit
  integer :: status
  write (unit, '(A)', iostat=status) ''
  fskip_line = status
end function fskip_line
