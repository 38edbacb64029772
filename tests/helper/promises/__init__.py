"""What the daemon promises, one function each."""

from . import (  # noqa: F401
    authority, confinement, contract, hostile, life, load, moves, registration, rights, work)
