"""Measurement documents of the VantraCore library as Python objects."""

import os
from typing import IO, Any, List, Literal, Optional, Union

import numpy as np
import numpy.typing as npt

Fidelity = Literal["full", "mid", "low"]
Arrays = Literal["variants", "lists"]
Numbers = Literal["roundtrip", "15"]
Path = Union[str, bytes, os.PathLike]
UnitLike = Union["Unit", str]

class Error(RuntimeError):
    """A failure inside the library that no built-in Python exception stands for."""

class DomainError(ArithmeticError):
    """A value outside the domain of an operation, such as a JSON item of the wrong type for its kind."""

def load(source: Union[Path, IO[bytes]], fidelity: Fidelity = "full", arrays: Arrays = "variants",
         max_elements: Optional[int] = None) -> Any:
    """Read one JSON document from a path or a binary file. A regular file is mapped rather than copied;
    it must not be cut short by another process while it is read.

    max_elements: the most elements the document's arrays may declare beyond the items they carry (filled
    with zeros); more raises vantracore.Error naming the shape. None: the larger of 16M and sixteen times the
    elements a text of its length can carry."""

def loads(text: Union[str, bytes, bytearray, memoryview], fidelity: Fidelity = "full",
          arrays: Arrays = "variants", max_elements: Optional[int] = None) -> Any:
    """Read one JSON document from str or bytes; otherwise as load."""

def dump(obj: Any, target: Union[Path, IO[bytes]], fidelity: Fidelity = "full", indent: Optional[int] = None,
         numbers: Numbers = "roundtrip") -> None:
    """Write obj as one JSON document to a path or a binary file (UTF-8); otherwise as dumps."""

def dumps(obj: Any, fidelity: Fidelity = "full", indent: Optional[int] = None,
          numbers: Numbers = "roundtrip") -> str:
    """Write obj as one JSON document and return its text."""

class Unit:
    """A unit of measure: a name of the system of units or a unit text."""

    def __init__(self, text: str) -> None: ...
    @property
    def label(self) -> str: ...
    @property
    def quantity(self) -> str: ...
    @property
    def dimensions(self) -> str: ...
    @property
    def scale(self) -> float: ...
    @property
    def offset(self) -> float: ...
    @property
    def log_multiplier(self) -> float: ...
    @property
    def is_logarithmic(self) -> bool: ...
    def __eq__(self, other: object) -> bool: ...
    def __ne__(self, other: object) -> bool: ...

def convert(values: Union[float, complex, npt.ArrayLike], from_unit: UnitLike,
            to_unit: UnitLike) -> Union[float, complex, np.ndarray]:
    """values, given in from_unit, expressed in to_unit."""

def units(quantity: Optional[str] = None) -> List[str]:
    """The names of the system of units, sorted; with quantity only those of that quantity."""
