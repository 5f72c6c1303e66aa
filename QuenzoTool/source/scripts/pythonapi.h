// SPDX-License-Identifier: MIT
#ifndef PYTHONAPI_H
#define PYTHONAPI_H

// To be included first in a source file: the interpreter's headers define feature macros of the C library.
#include <Python.h>

#include <memory>

struct PyReferenceDrop {
    void operator()(PyObject* object) const { Py_DECREF(object); }
};

/** Owns one reference to a Python object. To be made, moved and destroyed with the interpreter lock held. */
using PyReference = std::unique_ptr<PyObject, PyReferenceDrop>;

#endif
