#include "Errors.h"

#include <cstring>
#include <new>
#include <string>

namespace py = pybind11;

namespace vantracore {
namespace {

PyObject *errorType = nullptr;
PyObject *domainErrorType = nullptr;

void raise(PyObject *type, std::exception const &error) {
  PyErr_SetString(type, error.what());
}

// The library reports a missing position and a missing key alike; its key messages say which it is.
PyObject *outOfRangeType(std::out_of_range const &error) {
  return std::strncmp(error.what(), "Key not found", 13) == 0 ? PyExc_KeyError : PyExc_IndexError;
}

void translate(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (py::builtin_exception const &) {
    throw;  // pybind11's own, raised by this module: its translator knows them
  } catch (NotSupportedYet const &error) {
    raise(PyExc_NotImplementedError, error);
  } catch (std::invalid_argument const &error) {
    raise(PyExc_ValueError, error);
  } catch (std::out_of_range const &error) {
    raise(outOfRangeType(error), error);
  } catch (std::domain_error const &error) {
    raise(domainErrorType, error);
  } catch (std::range_error const &error) {
    raise(PyExc_OverflowError, error);
  } catch (std::bad_alloc const &) {
    PyErr_NoMemory();
  } catch (std::exception const &error) {
    raise(errorType, error);
  }
}

}  // namespace

void addErrors(py::module_ &module) {
  // The types live as long as the process: a translation may run while the module is torn down.
  py::exception<std::runtime_error> error(module, "Error", PyExc_RuntimeError);
  error.doc() = "A failure inside the library that no built-in Python exception stands for.";
  py::exception<std::domain_error> domainError(module, "DomainError", PyExc_ArithmeticError);
  domainError.doc() =
      "A value outside the domain of an operation, such as a JSON item of the wrong type for its kind.";
  errorType = error.inc_ref().ptr();
  domainErrorType = domainError.inc_ref().ptr();
  py::register_exception_translator(&translate);
}

}  // namespace vantracore
