# The Fortran twins, called from a real gfortran program that a GoogleTest
# driver runs and checks.
add_executable(mmerr_fortran_program ${CMAKE_CURRENT_LIST_DIR}/mmerr_fortran_program.f90)
target_link_libraries(mmerr_fortran_program PRIVATE mmfileshared)
set_target_properties(mmerr_fortran_program PROPERTIES LINKER_LANGUAGE Fortran)
mmfs_add_gtest(mmerr_fortran_driver ${CMAKE_CURRENT_LIST_DIR}/mmerr_fortran_driver.cpp
               LIBS mmfs_testsupport)
target_compile_definitions(mmerr_fortran_driver PRIVATE
  MMERR_FORTRAN_PROGRAM="$<TARGET_FILE:mmerr_fortran_program>")
add_dependencies(mmerr_fortran_driver mmerr_fortran_program)
