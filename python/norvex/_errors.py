"""The failures of the rule book. Each carries what the library tells of it as attributes, None where it tells nothing."""

from __future__ import annotations

from typing import Optional


class Error(Exception):
    """Root of all failures of this package."""

    description: Optional[str] = None  #: a sentence for a human reader
    details: Optional[str] = None  #: the subject, such as a path in a tree
    call_stack: Optional[str] = None  #: of the library
    diagnostics: Optional[str] = None  #: all of it, for a log

    def __str__(self) -> str:
        if self.args:
            return super().__str__()
        if self.description and self.details and self.details not in self.description:
            return f"{self.description.rstrip('.')}: {self.details}"
        return self.description or self._sentence()

    def _sentence(self) -> str:
        return self.details or "unexpected failure"


class TreeError(Error):
    """An object that is no settings tree."""

    path: str = ""  #: where in the tree, names joined by "/"


class TreeTypeError(TreeError, TypeError):
    """A type that no tree holds."""


class TreeOverflowError(TreeError, OverflowError):
    """An integer, or a part of a ratio, beyond 64 bits."""


class TreeValueError(TreeError, ValueError):
    """A tree that is too deep, or has a special member that stands for nothing."""


class PropertyError(Error):
    """A value that is missing, or not of the type that the library reads."""

    property_name: Optional[str] = None  #: of the node
    property_type: Optional[type] = None  #: of the node: NoneType, bool, float, int, str, Fraction or dict
    method_name: Optional[str] = None  #: the operation refused

    def _sentence(self) -> str:
        return f"{self.method_name} does not apply to '{self.property_name}'"


class MethodError(PropertyError):
    """An operation on a node of the wrong type."""


class SettingsError(Error):
    """A text or number that names no value of its parameter."""


class FormatError(Error):
    """A sample format or channel layout that the library does not know."""


class ConstraintError(Error):
    """A value of a type that a constraint cannot judge."""

    constraint_class: Optional[str] = None
    value_type: Optional[type] = None  #: the type that the constraint works in

    def _sentence(self) -> str:
        wanted = self.value_type.__name__ if self.value_type else "other"
        return f"{self.constraint_class} judges values of type {wanted} alone"


class HelperError(Error):
    """A helper that is not there, or cannot do what it is asked."""

    class_is_not_found: Optional[str] = None  #: the kind that nothing serves
    class_is_found: Optional[str] = None  #: the kind that is known ...
    type_is_not_found: Optional[str] = None  #: ... but not with this id

    def _sentence(self) -> str:
        if self.class_is_not_found is not None:
            return f"there is no kind of helper '{self.class_is_not_found}'"
        return f"there is no {self.class_is_found} '{self.type_is_not_found}'"


class RegistrationError(HelperError):
    """A helper or census that cannot be registered or made."""


class DocumentError(Error, ValueError):
    """A preset's document that cannot be read or written."""

    line: Optional[int] = None  #: of the text, from 1; 0 where there is no text

    def __str__(self) -> str:
        return f"line {self.line}: {self.description}" if self.line else super().__str__()
