"""The daemon's promises, one function for each."""

from . import (  # noqa: F401
    attacks, authority, confinement, contract, hostile, life, load, moves, next_start, profile, putting_away,
    registration, rights, work)
