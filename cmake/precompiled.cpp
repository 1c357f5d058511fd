// Nothing of its own: it carries the headers that are precompiled for a group of libraries.
