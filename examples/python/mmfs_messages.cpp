// A Python extension module that routes the library's messages to sys.stderr.
//
//   import mmfs_messages
//   with mmfs_messages.Redirect():          # messages of handle -1 -> sys.stderr
//       mmfs_messages.throw(4, "hello")     # what a wrapped library call would raise
//
// Extension modules of the suite keep a RedirectMmerrToPythonStderr alive
// while they call into the library, so that its warnings show up where the
// Python program (or its test harness) looks for them.
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "mmerr/capture.h"
#include "mmerr/mmerr.h"

namespace {

using morvellanth::mmlibs::RedirectMmerrToPythonStderr;

struct RedirectObject {
  PyObject_HEAD
  RedirectMmerrToPythonStderr* redirect;  // alive from __enter__ to __exit__
};

PyObject* redirect_enter(PyObject* self, PyObject*) {
  auto* object = reinterpret_cast<RedirectObject*>(self);
  if (!object->redirect) object->redirect = new RedirectMmerrToPythonStderr();
  Py_INCREF(self);
  return self;
}

PyObject* redirect_exit(PyObject* self, PyObject*) {
  auto* object = reinterpret_cast<RedirectObject*>(self);
  delete object->redirect;
  object->redirect = nullptr;
  Py_RETURN_FALSE;
}

void redirect_dealloc(PyObject* self) {
  delete reinterpret_cast<RedirectObject*>(self)->redirect;
  PyTypeObject* type = Py_TYPE(self);
  PyObject_Free(self);
  Py_DECREF(type);  // heap types are owned by their instances
}

PyMethodDef redirect_methods[] = {
    {"__enter__", redirect_enter, METH_NOARGS, "Start routing messages to sys.stderr."},
    {"__exit__", redirect_exit, METH_VARARGS, "Stop routing messages to sys.stderr."},
    {nullptr, nullptr, 0, nullptr}};

PyType_Slot redirect_slots[] = {
    {Py_tp_dealloc, reinterpret_cast<void*>(redirect_dealloc)},
    {Py_tp_methods, redirect_methods},
    {Py_tp_doc, const_cast<char*>("Context manager: messages of error handle -1 go to sys.stderr inside it.")},
    {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
    {0, nullptr}};

PyType_Spec redirect_spec = {"mmfs_messages.Redirect", sizeof(RedirectObject), 0, Py_TPFLAGS_DEFAULT,
                             redirect_slots};

// throw(level, text): raises text on the default error handle, as library
// code would.
PyObject* throw_message(PyObject*, PyObject* args) {
  int level = 0;
  const char* text = nullptr;
  if (!PyArg_ParseTuple(args, "is", &level, &text)) return nullptr;
  return PyLong_FromLong(mmerr_throw(-1, level, "%s\n", text));
}

PyMethodDef module_methods[] = {
    {"throw", throw_message, METH_VARARGS, "throw(level, text): raise text on error handle -1."},
    {nullptr, nullptr, 0, nullptr}};

PyModuleDef module_definition = {PyModuleDef_HEAD_INIT, "mmfs_messages",
                                 "The library's messages routed to sys.stderr.", -1, module_methods,
                                 nullptr, nullptr, nullptr, nullptr};

}  // namespace

PyMODINIT_FUNC PyInit_mmfs_messages() {
  PyObject* module = PyModule_Create(&module_definition);
  if (!module) return nullptr;
  PyObject* redirect_type = PyType_FromSpec(&redirect_spec);
  if (!redirect_type || PyModule_AddObject(module, "Redirect", redirect_type) < 0) {
    Py_XDECREF(redirect_type);
    Py_DECREF(module);
    return nullptr;
  }
  return module;
}
