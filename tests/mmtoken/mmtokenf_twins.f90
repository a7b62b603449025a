! Calls the Fortran twins of the token lists the way the suite's Fortran code
! does: plain external calls (integers by reference, NUL-terminated text, the
! compiler's hidden lengths appended), and explicit interfaces for the twin
! that takes values and the one without a trailing underscore. Exits non-zero
! and names the check when anything differs.
program mmtokenf_twins
  use, intrinsic :: iso_c_binding
  implicit none

  interface
    function mmtokenf_addn(handle, token, width, left, column) &
        bind(C, name='mmtokenf_addn_') result(status)
      import :: c_int, c_char
      integer(c_int), value :: handle, width, left, column
      character(kind=c_char), dimension(*) :: token
      integer(c_int) :: status
    end function
    function mmtokenf_regex_index(handle, subject) &
        bind(C, name='mmtokenf_regex_index') result(position)
      import :: c_int, c_char
      integer(c_int) :: handle
      character(kind=c_char), dimension(*) :: subject
      integer(c_int) :: position
    end function
    function mmtokenf_get_string(handle) bind(C, name='mmtokenf_get_string_') result(line)
      import :: c_int, c_ptr
      integer(c_int) :: handle
      type(c_ptr) :: line
    end function
    function c_strlen(text) bind(C, name='strlen') result(length)
      import :: c_ptr, c_size_t
      type(c_ptr), value :: text
      integer(c_size_t) :: length
    end function
    subroutine c_free(block) bind(C, name='free')
      import :: c_ptr
      type(c_ptr), value :: block
    end subroutine
  end interface

  integer, external :: mmtokenf_initialize, mmtokenf_new, mmtokenf_num, mmtokenf_get_token
  integer, external :: mmtokenf_find_type, mmtokenf_get_int, mmtokenf_get_double
  integer, external :: mmtokenf_index, mmtokenf_indexn, mmtokenf_replace, mmtokenf_toupper
  integer, external :: mmtokenf_tolower_token, mmtokenf_delete_token, mmtokenf_copy
  integer, external :: mmtokenf_merge, mmtokenf_copyn, mmtokenf_mergen, mmtokenf_clear
  integer, external :: mmtokenf_regex_compile, mmtokenf_delete, mmtokenf_add
  external :: mmtokenf_terminate

  character, parameter :: nul = char(0)
  integer :: failures, h, h2, h3, ival, width, left, column
  real(8) :: dval

  failures = 0
  call expect_int('initialize', mmtokenf_initialize(), 0)

  call expect_int('new', mmtokenf_new(h, 'atom 12 C 1.5 "x y" # note' // nul, ' ,' // nul, &
                                      '""' // nul, '#' // nul, nul, '=' // nul), 0)
  call expect_int('num', mmtokenf_num(h), 5)
  call expect_token('get_token quoted', h, 4, 'x y')
  call expect_int('find_type integer', mmtokenf_find_type(h, 1), 1)
  call expect_int('find_type word', mmtokenf_find_type(h, 0), 0)
  call expect_int('get_int status', mmtokenf_get_int(h, 1, ival), 0)
  call expect_int('get_int value', ival, 12)
  call expect_int('get_double status', mmtokenf_get_double(h, 3, dval), 0)
  if (abs(dval - 1.5d0) > 1.0d-12) call fail('get_double value')
  call expect_int('get_int of a real', mmtokenf_get_int(h, 3, ival), -1)
  call expect_int('get_int of a real stores 0', ival, 0)
  call expect_int('index', mmtokenf_index(h, 'C' // nul), 2)
  call expect_int('indexn', mmtokenf_indexn(h, 'a?' // nul, 1), 0)

  call expect_int('replace', mmtokenf_replace(h, 2, 'Cl' // nul), 0)
  call expect_token('replaced token', h, 2, 'Cl')
  call expect_int('toupper', mmtokenf_toupper(h), 0)
  call expect_token('upper-cased', h, 0, 'ATOM')
  call expect_int('tolower_token', mmtokenf_tolower_token(h, 0), 0)
  call expect_token('lower-cased', h, 0, 'atom')
  call expect_int('delete_token', mmtokenf_delete_token(h, 1), 0)
  call expect_int('num after delete_token', mmtokenf_num(h), 4)

  call expect_int('addn by value', mmtokenf_addn(h, 'ab' // nul, 5, 0, 0), 0)
  call expect_token('addn field', h, 4, '   ab')
  call expect_string('get_string', h, 'atom CL 1.5 "X Y" "   ab"')

  call expect_int('new empty', mmtokenf_new(h2, nul, nul, nul, nul, nul, nul), 0)
  call expect_int('add', mmtokenf_add(h2, 'first' // nul), 0)
  call expect_int('copy', mmtokenf_copy(h2, h), 0)
  call expect_int('num after copy', mmtokenf_num(h2), 5)
  call expect_int('merge', mmtokenf_merge(h2, h), 0)
  call expect_int('num after merge', mmtokenf_num(h2), 10)
  call expect_int('clear', mmtokenf_clear(h2), 0)
  call expect_int('num after clear', mmtokenf_num(h2), 0)
  width = 6
  left = 1
  column = 0
  call expect_int('copyn', mmtokenf_copyn(h2, h, width, left, column), 0)
  call expect_token('copyn field', h2, 0, 'atom  ')
  left = 0
  call expect_int('mergen', mmtokenf_mergen(h2, h, width, left, column), 0)
  call expect_token('mergen field', h2, 6, '    CL')

  call expect_int('new patterns', mmtokenf_new(h3, '*.mae lig#' // nul, ' ' // nul, nul, nul, &
                                               nul, nul), 0)
  call expect_int('regex_compile', mmtokenf_regex_compile(h3), 0)
  call expect_int('regex_index first', mmtokenf_regex_index(h3, 'x.mae' // nul), 0)
  call expect_int('regex_index second', mmtokenf_regex_index(h3, 'lig7.sdf' // nul), 1)
  call expect_int('regex_index none', mmtokenf_regex_index(h3, 'ligand' // nul), -1)

  call expect_int('delete', mmtokenf_delete(h), 0)
  call expect_int('delete second', mmtokenf_delete(h2), 0)
  call expect_int('delete third', mmtokenf_delete(h3), 0)
  call mmtokenf_terminate()

  if (failures /= 0) then
    print '(a,i0,a)', 'mmtokenf twins: ', failures, ' checks FAILED'
    error stop 1
  end if
  print '(a)', 'mmtokenf twins: all checks passed'

contains

  subroutine fail(what)
    character(len=*), intent(in) :: what
    print '(a,a)', 'FAILED: ', what
    failures = failures + 1
  end subroutine

  subroutine expect_int(what, got, expected)
    character(len=*), intent(in) :: what
    integer, intent(in) :: got, expected
    if (got /= expected) then
      print '(a,a,a,i0,a,i0)', 'FAILED: ', what, ': got ', got, ', expected ', expected
      failures = failures + 1
    end if
  end subroutine

  ! The twin copies the token with its terminator into a 256-character field.
  subroutine expect_token(what, handle, position, expected)
    character(len=*), intent(in) :: what, expected
    integer, intent(in) :: handle, position
    character(len=256) :: field
    integer :: length
    field = repeat('*', 256)
    if (mmtokenf_get_token(handle, position, field) /= 0) then
      call fail(what)
      return
    end if
    length = index(field, nul) - 1
    if (length < 0) then
      call fail(what)
    else if (field(1:length) /= expected .or. len(expected) /= length) then
      print '(a,a,a,a,a)', 'FAILED: ', what, ': got "', field(1:length), '"'
      failures = failures + 1
    end if
  end subroutine

  subroutine expect_string(what, handle, expected)
    character(len=*), intent(in) :: what, expected
    integer, intent(in) :: handle
    type(c_ptr) :: line
    character(kind=c_char), pointer :: chars(:)
    character(len=:), allocatable :: text
    integer :: i, length
    line = mmtokenf_get_string(handle)
    if (.not. c_associated(line)) then
      call fail(what)
      return
    end if
    length = int(c_strlen(line))
    call c_f_pointer(line, chars, [length])
    allocate(character(len=length) :: text)
    do i = 1, length
      text(i:i) = chars(i)
    end do
    call c_free(line)
    if (text /= expected .or. length /= len(expected)) then
      print '(a,a,a,a,a)', 'FAILED: ', what, ': got "', text, '"'
      failures = failures + 1
    end if
  end subroutine

end program
