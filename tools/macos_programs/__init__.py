"""Builds and checks the two programs for a Mac."""
