/// @file
/// The keyed archive of a record.
#pragma once

#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/value.h"

namespace VelWhiteBoard {

/// A keyed archive: values under names, and one string of bytes that carries them all.
///
///     Coder archive;
///     record.encodeWithCoder(archive);
///     const std::string bytes = archive.data();
///     auto same = VelWbVecLine::initWithCoder(Coder(bytes));
///
/// Unlike the dictionary form it keeps every number, NaN and the infinities included, and every
/// byte of every text. The bytes are CBOR (RFC 8949), a map from property name to value.
///
/// Threads: one archive is used by one thread at a time.
class VELWHITEBOARD_EXPORT Coder {
 public:
  /// An empty archive.
  Coder() = default;
  /// The archive that `data()` gave. Bytes that are no archive, or a damaged one, give an empty
  /// archive.
  explicit Coder(std::string_view data);

  /// The archive as bytes.
  std::string data() const;

  /// Stores `value` under `key`, replacing what was there.
  void encode(std::string_view key, Value value);
  /// The value under `key`; null when there is none. Valid until the archive changes or ends.
  const Value* decode(std::string_view key) const;
  /// Everything in the archive, by key.
  const Dictionary& values() const { return values_; }

 private:
  Dictionary values_;
};

}  // namespace VelWhiteBoard
