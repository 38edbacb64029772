"""Compares declarations of the system's frameworks with facts about them."""
