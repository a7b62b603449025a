# The file twins, called from a real gfortran program that a GoogleTest driver
# runs and checks.
mmfs_add_fortran_driver(mmfile_fortran_driver ${CMAKE_CURRENT_LIST_DIR}/fortran_driver.cpp
  mmfile_fortran_program ${CMAKE_CURRENT_LIST_DIR}/fortran_program.f90 MMFILE_FORTRAN_PROGRAM)
