! Calls the error-reporting twins the way the suite's Fortran code does, with
! real CHARACTER arguments, and reports what it saw on standard output. The
! directory for its files is the first command-line argument.
program mmerr_fortran_program
  implicit none
  integer :: handle, status, level, maxlevel
  character(len=20) :: prefix, code
  character(len=80) :: message
  character(len=512) :: dir
  integer, parameter :: unit_file = 21

  call get_command_argument(1, dir)

  ! Prefix ERR followed by 17 blanks becomes "ERR " on a handle writing to a unit.
  call mmerrf_new(handle, status)
  print '(A,I0,A,I0)', 'new handle=', handle, ' status=', status
  prefix = 'ERR'
  call mmerrf_prefix(handle, prefix, status)
  print '(A,I0)', 'prefix status=', status
  open (unit=unit_file, file=trim(dir)//'/unit.txt', status='replace', action='write')
  call mmerrf_file(handle, unit_file, status)
  print '(A,I0)', 'file status=', status
  message = 'first record'
  level = 4
  call mmerrf_throw(handle, level, message, status)
  print '(A,I0)', 'throw status=', status
  write (unit_file, '(A)') 'program line'

  ! A negative unit silences the handle; the message is still counted.
  call mmerrf_file(handle, -1, status)
  message = 'never written'
  level = 5
  call mmerrf_throw(handle, level, message, status)
  call mmerrf_maxlevel(handle, maxlevel, status)
  print '(A,I0)', 'maxlevel=', maxlevel
  close (unit_file)

  ! Nineteen significant characters are kept whole.
  prefix = 'ABCDEFGHIJKLMNOPQRS'
  call mmerrf_prefix(handle, prefix, status)
  open (unit=unit_file, file=trim(dir)//'/long_prefix.txt', status='replace', action='write')
  call mmerrf_file(handle, unit_file, status)
  message = 'x'
  level = 4
  call mmerrf_throw(handle, level, message, status)
  close (unit_file)

  ! A level-4 message on the default handle goes to standard error.
  message = 'from fortran'
  level = 4
  call mmerrf_throw(-1, level, message, status)

  call mmerrf_return_code(1, code)
  print '(A,A,A)', 'code1=[', code, ']'
  call mmerrf_return_code(4, code)
  print '(A,A,A)', 'code4=[', code, ']'
  call mmerrf_return_code(9, code)
  print '(A,A,A)', 'code9=[', code, ']'

  call mmerrf_level(handle, 2, status)
  call mmerrf_get_level(handle, level, status)
  print '(A,I0,A,I0)', 'level=', level, ' status=', status
  call mmerrf_delete(handle)
  call mmerrf_get_level(handle, level, status)
  print '(A,I0)', 'after delete status=', status
end program mmerr_fortran_program
