#!/usr/bin/env python3
"""Counts who drew what on the board below folder BOARD: users by the beginning of their identifiers."""
import collections, sys, velwhiteboard

counts = collections.Counter()
for page in velwhiteboard.pages(sys.argv[1]):
    for entry in velwhiteboard.read_entries(sys.argv[1], page):
        user = (entry.ID or "").rpartition("_")[0]
        counts[user, entry.type] += 1
for (user, kind), count in sorted(counts.items(), key=str):
    print(f"{user:8} {kind or '':12} {count:4}")
