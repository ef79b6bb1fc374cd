"""The example plans, drawn with ezdxf; scripts/make_examples.py writes them to files."""
