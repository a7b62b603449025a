// Messages of the default handle routed to an embedded interpreter's
// sys.stderr while a redirect object is alive. The child starts its own
// interpreter with sys.stderr replaced by an io.StringIO and, at the end,
// prints what the interpreter received after "PYTHON:" on standard output.
#include <Python.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "mmerr/capture.h"
#include "mmerr/mmerr.h"
#include "support/test_support.h"

using morvellanth::mmlibs::RedirectMmerrToPythonStderr;

TEST(PythonRedirect, OnlyTheDefaultHandleGoesToPythonWhileARedirectLives) {
  auto child = mmfs_test::RunInChild([] {
    Py_Initialize();
    PyRun_SimpleString("import io, sys\nsys.stderr = io.StringIO()\n");
    mmerr_throw(-1, 4, "no redirect\n");
    {
      RedirectMmerrToPythonStderr redirect;
      mmerr_throw(-1, 4, "%s|\n", std::string(5000, 'z').c_str());
      char message[80];
      std::string("from fortran").append(68, ' ').copy(message, 80);
      int handle = -1, level = 4, status = 0;
      mmerrf_throw_(&handle, &level, message, &status);
      mmerr_throw(0, 4, "deprecation handle\n");
      redirect.close();
      mmerr_throw(-1, 4, "closed\n");
    }
    mmerr_throw(-1, 4, "after the scope\n");
    PyRun_SimpleString("sys.__stdout__.write('PYTHON:' + sys.stderr.getvalue())\n");
    Py_Finalize();
    return 0;
  });
  EXPECT_EQ(child.out, "PYTHON:WARNING " + std::string(5000, 'z') + "|\nWARNING from fortran" +
                           std::string(67, ' ') + "\n");
  EXPECT_EQ(child.err,
            "WARNING no redirect\n"
            "WARNING deprecation handle\nWARNING closed\nWARNING after the scope\n");
}
