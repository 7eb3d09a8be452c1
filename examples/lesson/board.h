// Where a client keeps its board.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <optional>
#include <string>

namespace lesson {

using BoardPtr = std::shared_ptr<VelWhiteBoard::VWBVectorStorage>;

/// Sets the shared instances up as a client must before it makes a board.
void startUp(VelWhiteBoard::Size size);

/// The folder that the user named, made when missing, or a new one below the temporary directory.
/// @throws CannotRun when it cannot be made.
std::string boardHome(const std::optional<std::string>& named);

/// A board below `home` that records what it is given.
/// @param fresh whether pages from before are deleted.
/// @throws CannotRun when it holds pages and may not delete them, or its folder cannot be written.
BoardPtr openBoard(const std::string& home, bool fresh);

/// Makes a folder for results, and makes sure that files can be written into it.
/// @throws CannotRun when not.
void prepareFolder(const std::string& folder);

/// Queues the current page and waits until all files are written.
void finishWriting(VelWhiteBoard::VWBVectorStorage& board);

}  // namespace lesson
