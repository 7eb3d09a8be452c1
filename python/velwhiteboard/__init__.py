"""The records and the storage of a teaching whiteboard, see docs/python.md.

    import velwhiteboard

    for page in velwhiteboard.pages(path):
        for entry in velwhiteboard.read_entries(path, page):
            print(page.page_info(), entry.type, entry.ID)
"""

from velwhiteboard import _velwhiteboard
from velwhiteboard._velwhiteboard import *  # noqa: F403
from velwhiteboard._velwhiteboard import __version__

__all__ = ["__version__", *(name for name in vars(_velwhiteboard) if not name.startswith("_"))]
