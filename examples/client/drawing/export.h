#pragma once
#include <QImage>
#include <VelWhiteBoard/VelWhiteBoard.h>
namespace whiteboard { QImage pictureOf(const VelWhiteBoard::VectorList&, QSize); }
