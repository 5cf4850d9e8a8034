"""Quality of detection against exact truth: generated scenes, measures, systems under test."""
