#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the benchmark's tree: FILES files spread over DIRS folders at most DEPTH below DEST, each of a size up to
MAX_SIZE bytes. The files are sparse, so the tree costs inodes rather than disk space. The same arguments make the
same tree."""
import argparse
import os
import random

parser = argparse.ArgumentParser(description=__doc__)
parser.add_argument("dest")
parser.add_argument("--files", type=int, required=True)
parser.add_argument("--dirs", type=int, required=True)
parser.add_argument("--depth", type=int, default=20)
parser.add_argument("--seed", type=int, default=1)
parser.add_argument("--max-size", type=int, default=1 << 20)
args = parser.parse_args()

rng = random.Random(args.seed)
os.makedirs(args.dest)
folders = [args.dest]
# Folders that may still take a sub-folder without going past the depth.
open_folders = [(args.dest, 0)]
for i in range(1, args.dirs):
    parent, depth = open_folders[rng.randrange(len(open_folders))]
    path = os.path.join(parent, "d%06d" % i)
    os.mkdir(path)
    folders.append(path)
    if depth + 1 < args.depth:
        open_folders.append((path, depth + 1))
for k in range(args.files):
    path = os.path.join(folders[rng.randrange(len(folders))], "f%07d.dat" % k)
    with open(path, "wb") as f:
        f.truncate(rng.randrange(args.max_size + 1))
