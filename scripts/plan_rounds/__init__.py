"""Random reference plans with their truth, and what judges a reading of them."""
