# The token-list twins, called from a real gfortran program that checks every
# result itself and exits non-zero, naming the check, when one differs.
mmfs_add_fortran_program(mmtokenf_twins ${CMAKE_CURRENT_LIST_DIR}/mmtokenf_twins.f90)
add_test(NAME mmtokenf_twins COMMAND mmtokenf_twins)
set_tests_properties(mmtokenf_twins PROPERTIES
  PASS_REGULAR_EXPRESSION "mmtokenf twins: all checks passed"
  FAIL_REGULAR_EXPRESSION "FAILED")
