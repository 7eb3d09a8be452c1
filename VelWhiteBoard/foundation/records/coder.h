/// @file
/// The keyed archive of a record.
#pragma once

#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// A keyed archive: values under names, and one string of bytes that carries them all.
///
///     Coder archive;
///     record.encodeWithCoder(archive);
///     const std::string bytes = archive.data();
///     auto same = VelWbVecLine::initWithCoder(Coder(bytes));
///
/// Unlike the dictionary form it keeps every number, NaN and the infinities included, and every
/// byte of every string. It does not hold the class of the record, which the caller must know. The
/// bytes are CBOR (RFC 8949), a map from property name to value.
///
/// What an archive cannot hold becomes null: each binary value, at any place in a value, and the
/// whole of a value that nests arrays and objects deeper than 256 levels. Everything else is kept.
///
/// One archive holds one record: encoding a second record into it leaves keys of the first that the
/// second record's class does not declare.
///
/// Memory: an operation that runs out of memory throws `std::bad_alloc` and leaves the archive as
/// it was; `Record::encodeWithCoder` may then have stored some of its properties.
///
/// Threads: one archive is used by one thread at a time.
///
/// Not meant as a base class.
/// @ingroup records_in_general
class VELWHITEBOARD_EXPORT Coder {
 public:
  /// An empty archive.
  Coder() = default;
  /// The archive from the bytes of `data()`. Bytes that are damaged, cut short or not an archive
  /// give an empty one.
  explicit Coder(std::string_view data);

  Coder(const Coder& other) = default;             ///< The same keys, with copies of their values.
  Coder(Coder&& other) = default;                  ///< Leaves `other` to be assigned or destroyed.
  Coder& operator=(const Coder& other) = default;  ///< Replaces everything in this archive.
  Coder& operator=(Coder&& other) = default;       ///< Replaces everything in this archive.
  ~Coder();                                        ///< Needs no memory, whatever it holds.

  /// The archive as bytes.
  std::string data() const;

  /// Stores `value` under `key`, replacing what was there. `key` is any string, usually the name of
  /// a property.
  void encode(std::string_view key, Value value);
  /// Removes what is under `key`, if anything.
  void remove(std::string_view key);
  /// The value under `key`; null when there is none. Valid until the archive changes or is
  /// destroyed.
  const Value* decode(std::string_view key) const;
  /// Everything in the archive, by key. Valid as long as the archive.
  const Dictionary& values() const { return values_; }

 private:
  Dictionary values_;
};

}  // namespace VelWhiteBoard
