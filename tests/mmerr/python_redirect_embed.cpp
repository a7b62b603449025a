// Messages of the default handle routed to an embedded interpreter's
// sys.stderr while a redirect object is alive. Each case runs in a child that
// starts its own interpreter with sys.stderr replaced by an io.StringIO, and
// prints what the interpreter received after the marker line.
#include <Python.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "mmerr/capture.h"
#include "mmerr/mmerr.h"
#include "support/test_support.h"

namespace {

using morvellanth::mmlibs::RedirectMmerrToPythonStderr;
using mmfs_test::RunInChild;

// Runs body inside an interpreter whose sys.stderr is a StringIO; on exit the
// child writes "PYTHON:" and the captured text to standard output.
mmfs_test::ChildResult WithInterpreter(const std::function<void()>& body) {
  return RunInChild([&] {
    Py_Initialize();
    PyRun_SimpleString("import io, sys\nsys.stderr = io.StringIO()\n");
    body();
    PyRun_SimpleString("sys.__stdout__.write('PYTHON:' + sys.stderr.getvalue())\n");
    Py_Finalize();
    return 0;
  });
}

TEST(PythonRedirect, DefaultHandleGoesToPythonWhileRedirectLives) {
  auto child = WithInterpreter([] {
    RedirectMmerrToPythonStderr redirect;
    EXPECT_TRUE(RedirectMmerrToPythonStderr::isActive());
    mmerr_throw(-1, 4, "to python %d\n", 1);
  });
  EXPECT_EQ(child.out, "PYTHON:WARNING to python 1\n");
  EXPECT_EQ(child.err, "");
}

TEST(PythonRedirect, FortranThrowAddsNewline) {
  auto child = WithInterpreter([] {
    RedirectMmerrToPythonStderr redirect;
    char message[80];
    std::string text = "from fortran";
    text.resize(80, ' ');
    text.copy(message, 80);
    int handle = -1, level = 4, status = 0;
    mmerrf_throw_(&handle, &level, message, &status);
  });
  EXPECT_EQ(child.out, "PYTHON:WARNING from fortran" + std::string(67, ' ') + "\n");
}

TEST(PythonRedirect, LongMessagesArriveWhole) {
  auto child = WithInterpreter([] {
    RedirectMmerrToPythonStderr redirect;
    std::string long_text(5000, 'z');
    mmerr_throw(-1, 4, "%s|\n", long_text.c_str());
  });
  EXPECT_EQ(child.out, "PYTHON:WARNING " + std::string(5000, 'z') + "|\n");
}

TEST(PythonRedirect, WithoutRedirectTheStreamIsUsed) {
  auto child = WithInterpreter([] {
    {
      RedirectMmerrToPythonStderr closed_early;
      closed_early.close();
      EXPECT_FALSE(RedirectMmerrToPythonStderr::isActive());
      mmerr_throw(-1, 4, "to the stream\n");
    }
    mmerr_throw(-1, 4, "after the scope\n");
  });
  EXPECT_EQ(child.out, "PYTHON:");
  EXPECT_EQ(child.err, "WARNING to the stream\nWARNING after the scope\n");
}

TEST(PythonRedirect, OtherHandlesNeverGoToPython) {
  auto child = WithInterpreter([] {
    RedirectMmerrToPythonStderr redirect;
    int handle;
    mmerr_new(&handle);
    mmerr_file(handle, stderr);
    mmerr_throw(handle, 4, "user handle\n");
    mmerr_throw(0, 4, "deprecation handle\n");
  });
  EXPECT_EQ(child.out, "PYTHON:");
  EXPECT_EQ(child.err, "WARNING user handle\nWARNING deprecation handle\n");
}

TEST(PythonRedirect, NoInterpreterMeansTheStream) {
  auto child = RunInChild([] {
    RedirectMmerrToPythonStderr redirect;  // alive, but no interpreter running
    mmerr_throw(-1, 4, "plain\n");
    return 0;
  });
  EXPECT_EQ(child.err, "WARNING plain\n");
}

}  // namespace
