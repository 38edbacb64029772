"""What the daemon promises, one function each."""

from . import authority, confinement, contract, hostile, life, load, moves, rights, work  # noqa: F401
