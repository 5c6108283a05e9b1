#!/usr/bin/env python3
"""Input filter of the reference: pastes the renderer's list of operations as declarations."""
import pathlib
import re
import sys

header = pathlib.Path(sys.argv[1]).read_text()
rows = pathlib.Path(sys.argv[1]).with_name("renderer_ops.inc")
declarations = []
comment = []
for line in rows.read_text().splitlines() if rows.exists() else []:
    if line.startswith("///"):
        comment.append("  " + line)
        continue
    row = re.match(r"ORV_(?:BASE_)?OP\(([^,]+), (\w+), (\(.*?\)), \(", line)
    slot = re.match(r"ORV_RESERVED_OP\(([^,]+), (\w+), (\d+)", line)
    if row:
        declarations += comment + [f"  virtual {row[1]} {row[2]}{row[3]};"]
    elif slot:
        pointers = ", ".join(["void*"] * int(slot[3]))
        declarations += ["  /// Slot of other back ends.", f"  virtual {slot[1]} {slot[2]}({pointers});"]
    comment = []
header = re.sub(r"#define ORV_(?:BASE_)?OP\((?:.*\\\n)*.*\n", "", header)
print(header.replace("#include <orv/render/renderer_ops.inc>", "\n".join(declarations)))
