// What the JSON parser's shared library and its header hand each other. The library may be built
// with another C++ standard library than its user is, as Debian's is for a user of libc++. That
// works as long as each standard type among the members of what they share is one plain pointer.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include <gtest/gtest.h>
#include <simdjson.h>

namespace VelWhiteBoard {
namespace {

/// Whether the bytes of `holder` are those of `pointer`, and nothing else.
template <class Holder, class T>
bool isOnlyThePointer(const Holder& holder, const T* pointer) {
  static_assert(sizeof(Holder) == sizeof(const T*));
  const T* bytes = nullptr;
  std::memcpy(&bytes, static_cast<const void*>(&holder), sizeof bytes);
  return bytes == pointer;
}

TEST(ParserLibrary, OwnersOfMemoryArePlainPointers) {
  const auto tape = std::make_unique<std::uint64_t[]>(1);
  EXPECT_TRUE(isOnlyThePointer(tape, tape.get()));
  const auto text = std::make_unique<std::uint8_t[]>(1);
  EXPECT_TRUE(isOnlyThePointer(text, text.get()));
  std::unique_ptr<simdjson::internal::dom_parser_implementation> parser;
  ASSERT_EQ(simdjson::get_active_implementation()->create_dom_parser_implementation(64, 8, parser),
            simdjson::SUCCESS);
  EXPECT_TRUE(isOnlyThePointer(parser, parser.get()));
}

TEST(ParserLibrary, ThePlaceOfTheImplementationIsAPlainPointer) {
  const auto& place = simdjson::get_active_implementation();
  EXPECT_TRUE(isOnlyThePointer(place, place.operator->()));
}

TEST(ParserLibrary, ADocumentIsTwoOwnersAndASize) {
  EXPECT_EQ(sizeof(simdjson::dom::document), 2 * sizeof(void*) + sizeof(std::size_t));
}

}  // namespace
}  // namespace VelWhiteBoard
