-- Definitions for an example of docs/cvregexp.md.
count = 0
