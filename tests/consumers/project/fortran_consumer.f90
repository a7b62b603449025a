! A Fortran program using the installed library through its twins.
program fortran_consumer
  implicit none
  integer :: handle, status, maxlevel
  character(len=80) :: message
  character(len=20) :: code

  call mmerrf_new(handle, status)
  if (status /= 1) stop 1
  call mmerrf_file(handle, 6, status)
  message = 'fortran consumer'
  call mmerrf_throw(handle, 4, message, status)
  call mmerrf_maxlevel(handle, maxlevel, status)
  call mmerrf_return_code(maxlevel, code)
  if (code /= 'MMERR_WARNING') stop 2
  print '(A)', 'fortran consumer ok'
end program fortran_consumer
