"""Checks that the README shows the quickstart as it is compiled, line by line, that documents lead only to files
that exist, and that the changelog begins with the version of CMakeLists.txt."""

import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parent.parent
readme = (root / "README.md").read_text(encoding="utf-8")
quickstart = (root / "examples/quickstart/quickstart.cpp").read_text(encoding="utf-8")

shown = re.search(r"<!-- quickstart: begin -->\n```cpp\n(.*?)```\n<!-- quickstart: end -->", readme, re.S)
problems = []
if shown is None:
    problems.append("README.md has no quickstart between its marks")
elif "--update" in sys.argv:
    text = readme[: shown.start(1)] + quickstart + readme[shown.end(1):]
    (root / "README.md").write_text(text, encoding="utf-8")
elif shown.group(1) != quickstart:
    problems.append("README.md shows another quickstart than examples/quickstart/quickstart.cpp; run with --update")
if len(quickstart.splitlines()) >= 60:
    problems.append("the quickstart has 60 lines or more")

version = re.search(r"^ *VERSION (\S+)$", (root / "CMakeLists.txt").read_text(encoding="utf-8"), re.M)[1]
newest = re.search(r"^## (\S+)", (root / "CHANGELOG.md").read_text(encoding="utf-8"), re.M)[1]
if newest != version:
    problems.append(f"CHANGELOG.md begins with {newest}, CMakeLists.txt says {version}")

for document in [*sorted(root.glob("*.md")), *sorted((root / "docs").glob("*.md"))]:
    text = re.sub(r"^```.*?^```$", "", document.read_text(encoding="utf-8"), flags=re.M | re.S)  # lambdas look like links
    for target in re.findall(r"\]\(([^)#]+)\)", text):
        if "://" not in target and not (document.parent / target).exists():
            problems.append(f"{document.relative_to(root)} leads to {target}, which does not exist")

for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
