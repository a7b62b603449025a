! Calls the file twins the way the suite's Fortran code does, with real
! CHARACTER arguments, and prints what it saw on standard output. The
! directory for its files is the first command-line argument.
program mmfile_fortran_program
  implicit none
  character(len=512) :: dir, found
  character(len=8) :: short
  character(len=64) :: expanded
  integer :: status
  integer, parameter :: unit_probe = 21

  call get_command_argument(1, dir)
  open (unit=unit_probe, file=trim(dir)//'/probe.dat', status='replace', action='write')
  write (unit_probe, '(A)') 'probe'
  close (unit_probe)

  call mmfilef_path_set(trim(dir)//'/none:'//dir, status)
  print '(A,I0)', 'set status=', status

  call mmfilef_find('probe.dat', 0, found, status)
  print '(A,I0)', 'find status=', status
  print '(A,A,A)', 'find path=[', trim(found), ']'
  print '(A,L1)', 'find padded=', found(len_trim(found)+1:) == ' '

  call mmfilef_find('missing.dat', 0, found, status)
  print '(A,I0)', 'miss status=', status

  call mmfilef_path_get(short, status)
  print '(A,I0)', 'get status=', status
  print '(A,A,A)', 'get short=[', short, ']'

  call mmfilef_dir_expand('$MMFILE_FORTRAN_VAR/x', expanded, status)
  print '(A,I0)', 'expand status=', status
  print '(A,A,A)', 'expand=[', trim(expanded), ']'

  call mmfilef_path_is_absolute('/abs/path   ', status)
  print '(A,I0)', 'absolute status=', status
  call mmfilef_path_is_absolute('rel/path', status)
  print '(A,I0)', 'relative status=', status
end program mmfile_fortran_program
