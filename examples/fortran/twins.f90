! The library from Fortran: error handles writing to a unit, a token list and
! file lookups. Token twins take NUL-terminated text; file twins take ordinary
! blank-padded CHARACTER variables.
program twins
  implicit none
  integer :: handle, status, list, count, i
  character(len=80) :: message
  character(len=256) :: token, path
  character(len=20) :: prefix
  integer, external :: mmtokenf_new, mmtokenf_num, mmtokenf_get_token, mmtokenf_delete

  ! An error handle whose messages are records on unit 6, behind a prefix.
  call mmerrf_new(handle, status)
  call mmerrf_file(handle, 6, status)
  prefix = 'twins:'
  call mmerrf_prefix(handle, prefix, status)
  message = 'a warning written through the Fortran runtime'
  call mmerrf_throw(handle, 4, message, status)

  ! A token list from a line; each token is copied into a 256-character field.
  status = mmtokenf_new(list, 'HETATM 12 O 1.25'//char(0), ' '//char(0), char(0), &
                        char(0), char(0), char(0))
  count = mmtokenf_num(list)
  print '(A,I0,A)', 'the line has ', count, ' tokens'
  do i = 0, count - 1
    token = ' '
    status = mmtokenf_get_token(list, i, token)
    print '(A,I0,A,A)', '  token ', i, ': ', token(1:index(token, char(0)) - 1)
  end do
  status = mmtokenf_delete(list)

  ! Paths: expansion of ~ and a test for absolute paths.
  call mmfilef_dir_expand('~/data', path, status)
  print '(A,A)', 'expanded ~/data: ', trim(path)
  call mmfilef_path_is_absolute(trim(path), status)
  print '(A,I0)', 'is it absolute (0 = yes): ', status
  call mmerrf_delete(handle)
end program twins
