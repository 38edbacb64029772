"""The rules of the source tree that a compiler does not check."""
