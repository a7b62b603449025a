! Calls the error-reporting twins the way the suite's Fortran code does, with
! real CHARACTER arguments, and prints the statuses and fields it got back.
! The directory for its files is the first command-line argument.
program mmerr_fortran_program
  implicit none
  integer :: handle, maxlevel, s(8)
  character(len=20) :: prefix, code1, code9
  character(len=80) :: message
  character(len=512) :: dir

  call get_command_argument(1, dir)
  ! ERR and 17 blanks become "ERR " on a handle writing to an opened unit.
  call mmerrf_new(handle, s(1))
  prefix = 'ERR'
  call mmerrf_prefix(handle, prefix, s(2))
  open (unit=21, file=trim(dir)//'/unit.txt', status='replace', action='write')
  call mmerrf_file(handle, 21, s(3))
  message = 'first record'
  call mmerrf_throw(handle, 4, message, s(4))
  write (21, '(A)') 'program line'
  ! A negative unit silences the handle; the message still counts.
  call mmerrf_file(handle, -1, s(5))
  message = 'never written'
  call mmerrf_throw(handle, 5, message, s(6))
  call mmerrf_maxlevel(handle, maxlevel, s(7))
  close (21)
  ! The default handle writes to standard error.
  message = 'from fortran'
  call mmerrf_throw(-1, 4, message, s(8))
  call mmerrf_return_code(1, code1)
  call mmerrf_return_code(9, code9)
  call mmerrf_delete(handle)
  print '(A,I0,A,I0,A,8(1X,I0))', 'handle=', handle, ' maxlevel=', maxlevel, ' statuses', s
  print '(A,A,A,A,A)', '[', code1, '][', code9, ']'
end program mmerr_fortran_program
