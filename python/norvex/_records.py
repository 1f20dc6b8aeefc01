"""What the rule book tells, as plain records."""

from __future__ import annotations

from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Dict, List, Literal, Optional

if TYPE_CHECKING:
    from norvex._norvex import Constraint

#: A settings tree. Values are bool, int, float, str, bytes, fractions.Fraction, None and dicts of these.
Tree = Dict[str, Any]


@dataclass
class Rule:
    """If the value at the first path keeps the condition, the one at `path` must keep the constraint."""

    path: str  #: from the preset's root
    constraint: Optional[Constraint]
    condition_path: str = ""  #: empty in a rule without a condition
    condition: Optional[Constraint] = None


@dataclass
class Finding:
    """What came of looking at one rule, at one constraint and one value, or at what a helper has room for."""

    helper_kind: str
    helper_id: str
    source: Literal["constraint", "rule", "helper"]
    verdict: Literal["kept", "does_not_apply", "violated", "failed"]
    problem: Literal["none", "not_allowed", "missing", "wrong_type", "no_place", "too_many", "failed"]
    path: str  #: of the value, where rules read it
    value: Any  #: None where it is missing
    constraint: Optional[Constraint]  #: on that value
    condition_path: str  #: of a rule; empty for one without a condition
    condition: Any  #: the value there
    document_path: str  #: of what is violated, in the preset as it was given
    message: str  #: one sentence, in the language of the locale; empty for what is kept
    failure: Optional[Exception] = None  #: what a helper raised when it was asked


@dataclass
class Change:
    """One value that a correction changed."""

    helper_kind: str
    helper_id: str
    path: str  #: in the stream
    before: Any  #: None where there was none
    after: Any  #: None where it was taken away
    reason: Literal["broken", "default", "helper"]
    broken: Optional[Finding]  #: what the former value broke


@dataclass
class Correction:
    """A corrected stream, and what was corrected."""

    stream: Tree
    changes: List[Change]  #: in the order in which the helpers ran
    left: List[Finding]  #: what the stream still breaks: validation asks for more than correction mends
    failure: Optional[Exception]  #: what a helper raised when it was asked what the report needs


@dataclass
class MendedValue:
    """What became of one value, section or stream of a preset that was mended."""

    path: str
    outcome: Literal["kept", "corrected", "defaulted", "dropped"]
    before: Any
    after: Any
    message: str


@dataclass
class Mended:
    """A preset made legal, and what became of its values."""

    preset: Tree
    broken: List[Finding]  #: by the former preset
    values: List[MendedValue]
    left: List[Finding]  #: what the mended preset still breaks
    open: List[Finding]  #: rules about values that the mended preset leaves to the source


@dataclass
class Limits:
    """How many streams of each kind a container may hold."""

    video: int
    audio: int
    subtitle: int
    other: int  #: covers of a film among them, attachments and data


@dataclass
class ChangedSetting:
    """A value of a stream that encoding changes."""

    path: str
    before: Any
    after: Any


@dataclass
class StreamFit:
    """What becomes of one stream in one container."""

    answer: Literal["as_it_is", "refused", "encoded", "left_out"]  #: refused: FFmpeg would take it as it is
    kind: Literal["video", "audio", "subtitle", "cover", "other"]
    codec_id: str  #: as it is
    is_encoded: bool  #: unless a host goes against the rule book
    encoded_to: str  #: the codec
    changes: List[ChangedSetting]
    is_one_picture: bool  #: nothing but the first picture of a film goes over
    reason: str  #: one sentence, in the language of the locale


@dataclass
class FormatFit:
    """What becomes of a file's streams in one container."""

    format: str
    limits: Limits
    streams: List[StreamFit]
    lost: int
    encoded: int
    changed: int  #: settings


@dataclass
class HoldingFormat:
    """A container that holds what is wanted."""

    format: str
    limits: Limits
    is_encodable: bool  #: in the running build
