// Pages as files for others.
#pragma once

#include <QString>

#include "lesson/board.h"

namespace whiteboard {

/// Saves pages by the ending of the file's name: .pdf has all pages, .png and .svg the one that is
/// shown. Answers what went wrong, for a person; empty when nothing did.
QString savePages(Board& board, const QString& file);

}  // namespace whiteboard
