"""Draws the sample map sheets: an invented landscape, its map and the true positions of what is printed on it."""
