# The file twins, called from a real gfortran program that a GoogleTest driver
# runs and checks.
add_executable(mmfile_fortran_program ${CMAKE_CURRENT_LIST_DIR}/fortran_program.f90)
target_link_libraries(mmfile_fortran_program PRIVATE mmfileshared)
set_target_properties(mmfile_fortran_program PROPERTIES LINKER_LANGUAGE Fortran)
mmfs_add_gtest(mmfile_fortran_driver ${CMAKE_CURRENT_LIST_DIR}/fortran_driver.cpp
               LIBS mmfs_testsupport)
target_compile_definitions(mmfile_fortran_driver PRIVATE
  MMFILE_FORTRAN_PROGRAM="$<TARGET_FILE:mmfile_fortran_program>")
add_dependencies(mmfile_fortran_driver mmfile_fortran_program)
