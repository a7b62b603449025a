# The route of the default handle to an embedded interpreter, tested by a
# program that embeds the system's CPython. The library itself must not need
# the interpreter's library: it finds the entry points at run time.
find_package(Python3 REQUIRED COMPONENTS Interpreter Development.Embed)
mmfs_add_gtest(python_redirect_test ${CMAKE_CURRENT_LIST_DIR}/python_redirect_embed.cpp
               LIBS mmfs_testsupport Python3::Python)
add_test(NAME LibraryDoesNotNeedPython
         COMMAND sh -c "! readelf -d \"$0\" | grep -i 'NEEDED.*python'"
                 $<TARGET_FILE:mmfileshared>)
