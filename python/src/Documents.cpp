#include "Documents.h"

#include "FileText.h"
#include "FromPython.h"
#include "LibraryOptions.h"
#include "ToPython.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

namespace py = pybind11;
using namespace pybind11::literals;
using namespace Tarvex::VantraCore;

namespace vantracore {
namespace {

template <class Choice, std::size_t N>
Choice choose(char const *option, std::string const &given, char const *const (&names)[N],
              Choice const (&choices)[N]) {
  std::string known;
  for (std::size_t i = 0; i < N; ++i) {
    if (given == names[i]) return choices[i];
    known += std::string(i == 0 ? "\"" : i + 1 == N ? " or \"" : ", \"") + names[i] + "\"";
  }
  throw py::value_error(std::string(option) + " must be " + known + ", not \"" + given + "\"");
}

Fidelity fidelityOf(std::string const &name) {
  return choose("fidelity", name, {"full", "mid", "low"}, {Fidelity::full, Fidelity::mid, Fidelity::low});
}
ArrayForm arraysOf(std::string const &name) {
  return choose("arrays", name, {"variants", "lists"}, {ArrayForm::variants, ArrayForm::lists});
}
NumberText numbersOf(std::string const &name) {
  return choose("numbers", name, {"roundtrip", "15"}, {NumberText::roundTrip, NumberText::fifteenDigits});
}
int indentOf(py::object const &indent) {
  if (indent.is_none()) return -1;
  int const spaces = indent.cast<int>();
  if (spaces < 0) throw py::value_error("indent must be None or at least 0");
  return spaces;
}

bool isPath(py::handle target) {
  return py::isinstance<py::str>(target) || py::isinstance<py::bytes>(target) ||
         py::hasattr(target, "__fspath__");
}

std::string fileNameOf(py::handle path) {
  return py::module_::import("os").attr("fsencode")(path).cast<std::string>();
}

// OSError, or its subclass for the error number, naming the file as Python's own open does.
void raiseFileError(int error, py::handle path) {
  if (error == 0) return;
  errno = error;
  PyErr_SetFromErrnoWithFilenameObject(PyExc_OSError, path.ptr());
  throw py::error_already_set();
}

void writeFile(py::handle path, VxString const &text) {
  std::string const fileName = fileNameOf(path);
  int error = 0;
  {
    py::gil_scoped_release released;
    FILE *const file = std::fopen(fileName.c_str(), "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.length(), file) != text.length()) error = errno;
    if (file != nullptr && std::fclose(file) != 0 && error == 0) error = errno;
  }
  raiseFileError(error, path);
}

py::object parse(VxStringView text, std::string const &fidelity, std::string const &arrays,
                 py::object const &maxElements) {
  Fidelity const chosenFidelity = fidelityOf(fidelity);
  std::optional<std::uint64_t> const cap =
      maxElements.is_none() ? std::nullopt : std::optional<std::uint64_t>(maxElements.cast<std::uint64_t>());
  ArrayForm const chosenArrays = arraysOf(arrays);
  PropertyNode document;
  {
    py::gil_scoped_release released;
    document = parseDocument(text, chosenFidelity, chosenArrays, cap);
  }
  return nodeToPython(document);
}

VxString write(py::handle object, std::string const &fidelity, py::object const &indent,
               std::string const &numbers) {
  Fidelity const chosenFidelity = fidelityOf(fidelity);
  int const spaces = indentOf(indent);
  NumberText const chosenNumbers = numbersOf(numbers);
  PropertyNode document = nodeFromPython(object);
  py::gil_scoped_release released;
  VxString text = writeDocument(document, chosenFidelity, spaces, chosenNumbers);
  document = PropertyNode();  // holders over NumPy arrays take the GIL to let them go
  return text;
}

// The bytes of str (as UTF-8) or of any bytes-like object. A str or bytes is read where it lies: the
// caller holds it, and it cannot change. Any other buffer could change while the GIL is released, so
// its bytes are copied first.
py::object loads(py::object const &source, std::string const &fidelity, std::string const &arrays,
                 py::object const &maxElements) {
  if (py::isinstance<py::str>(source)) {
    Py_ssize_t length = 0;
    char const *const bytes = PyUnicode_AsUTF8AndSize(source.ptr(), &length);
    if (bytes == nullptr) throw py::error_already_set();
    return parse(VxStringView(bytes, static_cast<std::uint64_t>(length)), fidelity, arrays, maxElements);
  }
  if (py::isinstance<py::bytes>(source)) {
    return parse(VxStringView(PyBytes_AS_STRING(source.ptr()), static_cast<std::uint64_t>(PyBytes_GET_SIZE(source.ptr()))),
                 fidelity, arrays, maxElements);
  }
  if (!PyObject_CheckBuffer(source.ptr()))
    throw py::type_error("expected str or a bytes-like object, not " +
                         py::str(py::type::handle_of(source).attr("__name__")).cast<std::string>());
  py::buffer_info const buffer = py::reinterpret_borrow<py::buffer>(source).request();
  VxString const copy(static_cast<char const *>(buffer.ptr), static_cast<std::uint64_t>(buffer.size * buffer.itemsize));
  return parse(copy, fidelity, arrays, maxElements);
}

py::object load(py::object const &source, std::string const &fidelity, std::string const &arrays,
                py::object const &maxElements) {
  if (isPath(source)) {
    std::string const fileName = fileNameOf(source);
    std::unique_ptr<FileText> text;
    {
      py::gil_scoped_release released;
      text = std::make_unique<FileText>(fileName);
    }
    raiseFileError(text->error(), source);
    return parse(text->view(), fidelity, arrays, maxElements);
  }
  if (!py::hasattr(source, "read")) throw py::type_error("load takes a path or a binary file");
  py::object const content = source.attr("read")();
  if (py::isinstance<py::str>(content)) throw py::type_error("load takes a binary file: open it with \"rb\"");
  return loads(content, fidelity, arrays, maxElements);
}

py::str dumps(py::object const &object, std::string const &fidelity, py::object const &indent,
              std::string const &numbers) {
  VxString const text = write(object, fidelity, indent, numbers);
  PyObject *const decoded =
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.length()), "surrogateescape");
  if (decoded == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(decoded);
}

void dump(py::object const &object, py::object const &target, std::string const &fidelity, py::object const &indent,
          std::string const &numbers) {
  bool const toPath = isPath(target);
  if (!toPath && !py::hasattr(target, "write")) throw py::type_error("dump takes a path or a binary file");
  VxString const text = write(object, fidelity, indent, numbers);
  if (toPath)
    writeFile(target, text);
  else
    target.attr("write")(py::bytes(text.data(), text.length()));
}

}  // namespace

void addDocuments(py::module_ &module) {
  module.def("load", &load, "source"_a, "fidelity"_a = "full", "arrays"_a = "variants",
             "max_elements"_a = py::none(),
             R"(Read one JSON document from a path or a binary file.

fidelity: "full" reads the library's documents with their metadata; "mid" reads them and plain JSON
alike, making up missing metadata; "low" reads plain JSON, every number as a float.
arrays: how plain JSON arrays are read in "mid" and "low": "variants" as NumPy arrays, "lists" as
lists. Arrays of a full-fidelity document are always NumPy arrays.
max_elements: the most elements that the document's arrays may declare beyond the items they carry
(those are filled with zeros); more raises vantracore.Error naming the shape before anything is allocated.
None: the larger of 16M and sixteen times the elements that a text of its length can carry.

Maps become dicts in document order, lists lists, scalars Python scalars, and array values NumPy
arrays that share the library's memory (read-only; C order for row-major data, Fortran order for
column-major). The GIL is released while the text is read and parsed. A malformed document raises
(ValueError for a syntax error) and returns nothing. A regular file is mapped rather than copied: like
any mapping of it, it must not be cut short by another process while it is read.)");
  module.def("loads", &loads, "text"_a, "fidelity"_a = "full", "arrays"_a = "variants",
             "max_elements"_a = py::none(),
             "Read one JSON document from str or bytes; otherwise as load.");
  module.def("dump", &dump, "obj"_a, "target"_a, "fidelity"_a = "full", "indent"_a = py::none(),
             "numbers"_a = "roundtrip",
             R"(Write obj as one JSON document to a path or a binary file (UTF-8); otherwise as dumps.)");
  module.def("dumps", &dumps, "obj"_a, "fidelity"_a = "full", "indent"_a = py::none(),
             "numbers"_a = "roundtrip",
             R"(Write obj as one JSON document and return its text.

dict (str keys) becomes a map, list and tuple a list, None null, bool, int, float, complex and str
scalars, NumPy scalars and arrays values of their kind: contiguous arrays of numbers are written from
their own memory without a copy; datetime64 and timedelta64 become timestamps and durations.
fidelity: "full" and "mid" write the library's documents, "low" plain JSON without metadata.
indent: None for compact text, or the spaces per level.
numbers: "roundtrip" for the shortest text that reads back to the same number, "15" for 15
significant digits. The GIL is released while the text is written.)");
}

}  // namespace vantracore
