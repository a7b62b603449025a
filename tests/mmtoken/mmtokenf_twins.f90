! Calls the Fortran twins of the token lists the way the suite's Fortran code
! does: plain external calls (integers by reference, NUL-terminated text, the
! compiler's hidden lengths appended), and explicit interfaces for the twin
! that takes values and the one without a trailing underscore. Stops with a
! non-zero code at the first check that differs, naming it.
program mmtokenf_twins
  use, intrinsic :: iso_c_binding
  ! The twins are integer functions, declared by implicit typing as in the
  ! suite's older code; everything else is declared.
  implicit integer (m)

  interface
    integer(c_int) function mmtokenf_addn(handle, token, width, left, column) bind(C, name='mmtokenf_addn_')
      import
      integer(c_int), value :: handle, width, left, column
      character(kind=c_char) :: token(*)
    end function
    integer(c_int) function mmtokenf_regex_index(handle, subject) bind(C, name='mmtokenf_regex_index')
      import
      integer(c_int) :: handle
      character(kind=c_char) :: subject(*)
    end function
    type(c_ptr) function mmtokenf_get_string(handle) bind(C, name='mmtokenf_get_string_')
      import
      integer(c_int) :: handle
    end function
    integer(c_int) function c_strcmp(line, text) bind(C, name='strcmp')
      import
      type(c_ptr), value :: line
      character(kind=c_char) :: text(*)
    end function
    subroutine c_free(block) bind(C, name='free')
      import
      type(c_ptr), value :: block
    end subroutine
  end interface

  character, parameter :: nul = char(0)
  character(len=256) :: field
  integer :: h, h2, h3, ival
  real(8) :: dval
  type(c_ptr) :: line

  call expect('initialize', mmtokenf_initialize(), 0)
  call expect('new', mmtokenf_new(h, 'atom 12 C 1.5 "x y" # note' // nul, ' ,' // nul, &
                                  '""' // nul, '#' // nul, nul, '=' // nul), 0)
  call expect('get_token', mmtokenf_get_token(h, 4, field), 0)
  call expect('get_token copies the token and its terminator', index(field, 'x y' // nul), 1)
  call expect('find_type', mmtokenf_find_type(h, 1), 1)
  call expect('get_int', mmtokenf_get_int(h, 1, ival), 0)
  call expect('get_int value', ival, 12)
  call expect('get_double', mmtokenf_get_double(h, 3, dval), 0)
  call expect('get_double value', int(dval * 10), 15)
  call expect('index', mmtokenf_index(h, 'C' // nul), 2)
  call expect('indexn', mmtokenf_indexn(h, 'a?' // nul, 1), 0)
  call expect('replace', mmtokenf_replace(h, 2, 'Cl' // nul), 0)
  call expect('toupper', mmtokenf_toupper(h), 0)
  call expect('tolower_token', mmtokenf_tolower_token(h, 0), 0)
  call expect('delete_token', mmtokenf_delete_token(h, 1), 0)
  call expect('addn by value', mmtokenf_addn(h, 'ab' // nul, 5, 0, 0), 0)
  line = mmtokenf_get_string(h)
  call expect('get_string', c_strcmp(line, 'atom CL 1.5 "X Y" "   ab"' // nul), 0)
  call c_free(line)

  call expect('new empty', mmtokenf_new(h2, nul, nul, nul, nul, nul, nul), 0)
  call expect('add', mmtokenf_add(h2, 'first' // nul), 0)
  call expect('copy', mmtokenf_copy(h2, h), 0)
  call expect('merge', mmtokenf_merge(h2, h), 0)
  call expect('num after add, copy and merge', mmtokenf_num(h2), 10)
  call expect('clear', mmtokenf_clear(h2), 0)
  call expect('copyn', mmtokenf_copyn(h2, h, 6, 1, 0), 0)
  call expect('mergen', mmtokenf_mergen(h2, h, 6, 0, 0), 0)
  call expect('mergen field', mmtokenf_get_token(h2, 6, field), 0)
  call expect('right-justified field', index(field, '    CL' // nul), 1)

  call expect('new patterns', mmtokenf_new(h3, '*.mae lig#' // nul, ' ' // nul, nul, nul, nul, nul), 0)
  call expect('regex_compile', mmtokenf_regex_compile(h3), 0)
  call expect('regex_index', mmtokenf_regex_index(h3, 'lig7.sdf' // nul), 1)
  call expect('delete', mmtokenf_delete(h) + mmtokenf_delete(h2) + mmtokenf_delete(h3), 0)
  call mmtokenf_terminate()

  print '(a)', 'mmtokenf twins: all checks passed'

contains

  subroutine expect(what, got, expected)
    character(len=*), intent(in) :: what
    integer, intent(in) :: got, expected
    if (got /= expected) then
      print '(a,a,a,i0,a,i0)', 'FAILED: ', what, ': got ', got, ', expected ', expected
      error stop 1
    end if
  end subroutine

end program
