/// @file
/// The whole public interface.
#pragma once

// An older standard gives one error here instead of hundreds below.
#if defined(_MSVC_LANG) ? _MSVC_LANG < 202002L : __cplusplus < 202002L
#error "VelWhiteBoard needs C++20: compile with -std=c++20 or newer"
#else

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/semaphore.h"
#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/records/property.h"
#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/foundation/values/geometry.h"
#include "VelWhiteBoard/foundation/values/path.h"
#include "VelWhiteBoard/foundation/values/value.h"
#include "VelWhiteBoard/services/path_manager.h"
#include "VelWhiteBoard/services/resources.h"
#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/tools/tool_defines.h"
#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

#endif
