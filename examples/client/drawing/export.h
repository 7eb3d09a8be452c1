// Pages as files for people.
//
// A file gets its name once it is whole: a full disk leaves the file that was there, or none.
#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <vector>

namespace whiteboard {

/// The page, opaque. Null when there is no memory for it, or for a size that is none.
QImage pictureOf(const VelWhiteBoard::VectorList& entries, QSize size);

/// Each writes a file; false when that was not possible, with the reason, for a person, in
/// `problem`. `size` is that of the board, in pixels; in files of shapes it only says how large a
/// view point is, and in which shape the page is.
bool savePng(const QString& path, const VelWhiteBoard::VectorList& entries, QSize size,
             QString& problem);
bool saveSvg(const QString& path, const VelWhiteBoard::VectorList& entries, QSize size,
             QString& problem);
/// A sheet for each page, 29 cm wide. No pages make no file.
bool savePdf(const QString& path, const std::vector<VelWhiteBoard::VectorList>& pages, QSize size,
             QString& problem);

}  // namespace whiteboard
