# The Fortran twins, called from a real gfortran program that a GoogleTest
# driver runs and checks.
mmfs_add_fortran_driver(mmerr_fortran_driver ${CMAKE_CURRENT_LIST_DIR}/mmerr_fortran_driver.cpp
  mmerr_fortran_program ${CMAKE_CURRENT_LIST_DIR}/mmerr_fortran_program.f90 MMERR_FORTRAN_PROGRAM)
