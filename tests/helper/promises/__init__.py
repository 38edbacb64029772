"""What the daemon promises, one function each."""

from . import authority, life, load, moves, rights  # noqa: F401
