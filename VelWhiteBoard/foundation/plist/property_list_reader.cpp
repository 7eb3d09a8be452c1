#include "VelWhiteBoard/foundation/plist/property_list_reader.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include <expat.h>

#include "VelWhiteBoard/foundation/plist/list_element.h"
#include "VelWhiteBoard/foundation/plist/record_draft.h"
#include "VelWhiteBoard/foundation/plist/value_builder.h"
#include "VelWhiteBoard/foundation/records/assignment.h"

namespace VelWhiteBoard {

class PropertyListReader::Parser {
 public:
  Parser(const RecordClass& asked, RecordConsumer consume)
      : consume_(std::move(consume)), draft_(asked), parser_(XML_ParserCreate(nullptr)) {
    if (parser_ == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, &onStart, &onEnd);
    XML_SetCharacterDataHandler(parser_, &onText);
    // With a document type, expat drops unknown entities and expands known ones; refuse both.
    XML_SetEntityDeclHandler(parser_, &onEntityDeclaration);
    // Attributes with defaults would be added to every element, so that a short text could cause
    // any amount of work.
    XML_SetAttlistDeclHandler(parser_, &onAttributeDeclaration);
    XML_SetSkippedEntityHandler(parser_, &onSkippedEntity);
  }
  ~Parser() { XML_ParserFree(parser_); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  bool feed(std::string_view block, bool last) {
    if (thrown_) std::rethrow_exception(thrown_);
    if (failed_) return false;
    constexpr std::size_t kMost = std::size_t{1} << 20U;  // expat counts in int
    do {
      const std::string_view part = block.substr(0, kMost);
      block.remove_prefix(part.size());
      const bool final = last && block.empty();
      if (XML_Parse(parser_, part.data(), static_cast<int>(part.size()), final ? 1 : 0) !=
          XML_STATUS_OK) {
        failed_ = true;
        conclude();
        return false;
      }
    } while (!block.empty());
    return true;
  }

  PropertyListResult finish() {
    feed({}, true);
    return result_;
  }

 private:
  /// The role of an open element.
  enum class Purpose : std::uint8_t {
    document,  ///< the plist element
    list,      ///< the array of records
    record,    ///< a dictionary in it
    path,      ///< an array of positions
    position,  ///< an array of numbers in it
    free,      ///< a container of a free-form value
    ignored,   ///< a container that is skipped
  };

  struct OpenContainer {
    Purpose purpose;
    bool isDict;
    bool hasKey = false;  ///< a dictionary's key has come, its value has not
  };

  /// Determines why the parser has stopped. Out of memory is not an error of the text: this call
  /// and all later ones throw it.
  void conclude() {
    try {
      if (!thrown_ && result_.ok()) {
        const XML_Error error = XML_GetErrorCode(parser_);
        if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        reportHere(XML_ErrorString(error));
      }
    } catch (...) {
      thrown_ = std::current_exception();
    }
    if (thrown_) std::rethrow_exception(thrown_);
  }

  // Handlers. No exception may pass through the C library: it is kept and rethrown afterwards.

  template <class Handle>
  static void guarded(void* self, const Handle& handle) {
    auto& parser = *static_cast<Parser*>(self);
    if (parser.stopped_) return;
    try {
      handle(parser);
    } catch (...) {
      parser.thrown_ = std::current_exception();
      parser.stop();
    }
  }
  static void onStart(void* self, const XML_Char* name, const XML_Char**) {
    guarded(self, [name](Parser& parser) { parser.start(listElementNamed(name)); });
  }
  static void onEnd(void* self, const XML_Char*) {
    guarded(self, [](Parser& parser) { parser.end(); });
  }
  static void onText(void* self, const XML_Char* text, int length) {
    guarded(self, [&](Parser& parser) {
      parser.addText(std::string_view(text, static_cast<std::size_t>(length)));
    });
  }
  static void onEntityDeclaration(void* self, const XML_Char*, int, const XML_Char*, int,
                                  const XML_Char*, const XML_Char*, const XML_Char*,
                                  const XML_Char*) {
    guarded(self, [](Parser& parser) { parser.fail("an entity is declared"); });
  }
  static void onAttributeDeclaration(void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                     const XML_Char*, int) {
    guarded(self, [](Parser& parser) { parser.fail("an attribute is declared"); });
  }
  static void onSkippedEntity(void* self, const XML_Char*, int) {
    guarded(self, [](Parser& parser) { parser.fail("an entity is not known"); });
  }

  void stop() {
    stopped_ = true;
    XML_StopParser(parser_, XML_FALSE);
  }
  void fail(std::string_view error) {
    if (stopped_) return;
    reportHere(error);
    stop();
  }
  /// To be called inside the handler that finds the error, while the parser is still at its
  /// position.
  void reportHere(std::string_view error) {
    result_.error = error;
    result_.line = XML_GetCurrentLineNumber(parser_);
    result_.column = XML_GetCurrentColumnNumber(parser_) + 1;
    result_.byte =
        static_cast<std::uint64_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser_), 0));
  }

  // Elements.

  void start(ListElement element) {
    if (leaf_) return fail("an element stands inside a text");
    if (open_.empty()) return startDocument(element);
    if (element == ListElement::unknown || element == ListElement::plist) {
      return fail("not an element of property lists");
    }
    OpenContainer& parent = open_.back();
    if (parent.purpose == Purpose::document && std::exchange(hasTop_, true)) {
      return fail("a second value stands at the top");
    }
    if (parent.isDict && parent.hasKey == (element == ListElement::key)) {
      return fail(parent.hasKey ? "a key has no value" : "a value has no key");
    }
    if (!parent.isDict && element == ListElement::key)
      return fail("a key stands outside a dictionary");
    if (element == ListElement::array || element == ListElement::dict) {
      return startContainer(parent, element == ListElement::dict);
    }
    leaf_ = element;
    text_.clear();
  }

  void startDocument(ListElement element) {
    if (element != ListElement::plist) return fail("the document is not a property list");
    open_.push_back({Purpose::document, false});
  }

  void startContainer(OpenContainer& parent, bool isDict) {
    const Purpose purpose = purposeInside(parent, isDict);
    parent.hasKey = false;
    open_.push_back({purpose, isDict});
  }

  /// The purpose of a container that opens inside `parent`. Also prepares for its content.
  Purpose purposeInside(const OpenContainer& parent, bool isDict) {
    switch (parent.purpose) {
      case Purpose::document:
        if (isDict) fail("the top of the list is not an array");
        return Purpose::list;
      case Purpose::list:
        if (!isDict) return Purpose::ignored;
        draft_.clear();
        return Purpose::record;
      case Purpose::record:
        return isDict ? Purpose::ignored : purposeOfArray();
      case Purpose::path:
        if (isDict) return Purpose::ignored;
        position_.clear();
        positionIsSound_ = true;
        return Purpose::position;
      case Purpose::position:
        positionIsSound_ = false;
        return Purpose::ignored;
      case Purpose::free:
        value_.beginContainer(isDict);
        return Purpose::free;
      case Purpose::ignored:
        return Purpose::ignored;
    }
    return Purpose::ignored;  // not reached
  }

  /// The purpose of an array that is a member of a record.
  Purpose purposeOfArray() {
    const auto kind = draft_.expectedKind();
    if (kind == PropertyKind::path) {
      path_ = {};
      return Purpose::path;
    }
    if (kind == PropertyKind::array) {
      value_.begin();
      return Purpose::free;
    }
    if (kind == PropertyKind::records) {
      value_.beginRecords();
      return Purpose::free;
    }
    return Purpose::ignored;
  }

  void end() {
    if (leaf_) {
      const ListElement element = *std::exchange(leaf_, std::nullopt);
      return endLeaf(element);
    }
    const OpenContainer closed = open_.back();
    if (closed.hasKey) return fail("a key has no value");
    open_.pop_back();
    switch (closed.purpose) {
      case Purpose::document:
        if (!hasTop_) fail("the list is empty");
        return;
      case Purpose::record:
        return consume_(draft_.record());
      case Purpose::path:
        return draft_.setPath(std::exchange(path_, {}));
      case Purpose::position:
        if (positionIsSound_) path_.push_back(Path::Position(position_));
        return;
      case Purpose::free:
        return endFree();
      case Purpose::list:
      case Purpose::ignored:
        return;
    }
  }

  void endFree() {
    if (open_.back().purpose == Purpose::free) return value_.endContainer();
    Value value;
    if (value_.take(value)) draft_.setValue(std::move(value));
  }

  // Texts.

  void addText(std::string_view text) {
    if (leaf_) {
      text_ += text;
    } else if (!isBlank(text)) {
      fail("text stands outside an element");
    }
  }

  void endLeaf(ListElement element) {
    OpenContainer& parent = open_.back();
    if (parent.purpose == Purpose::document) return fail("the top of the list is not an array");
    if (element == ListElement::key) return takeKey(parent);
    parent.hasKey = false;
    const auto [scalar, error] = valueOfElement(element, text_);
    if (!error.empty()) return fail(error);
    switch (parent.purpose) {
      case Purpose::record:
        return draft_.setValue(valueWithScalar(scalar));
      case Purpose::position:
        return addCoordinate(scalar);
      case Purpose::free:
        return value_.add(scalar);
      default:
        return;
    }
  }

  void takeKey(OpenContainer& parent) {
    parent.hasKey = true;
    if (parent.purpose == Purpose::record) draft_.beginMember(text_);
    if (parent.purpose == Purpose::free) value_.setKey(text_);
  }

  void addCoordinate(const Scalar& scalar) {
    if (const auto number = numberIn(scalar)) {
      position_.push_back(*number);
    } else {
      positionIsSound_ = false;
    }
  }

  RecordConsumer consume_;
  RecordDraft draft_;
  ValueBuilder value_;
  Path path_;
  std::vector<double> position_;
  bool positionIsSound_ = true;
  std::vector<OpenContainer> open_;
  std::optional<ListElement> leaf_;
  std::string text_;
  bool hasTop_ = false;
  bool stopped_ = false;
  bool failed_ = false;
  PropertyListResult result_;
  std::exception_ptr thrown_;
  XML_Parser parser_;
};

PropertyListReader::PropertyListReader(const RecordClass& asked, RecordConsumer consume)
    : parser_(std::make_unique<Parser>(asked, std::move(consume))) {}

PropertyListReader::~PropertyListReader() = default;

bool PropertyListReader::feed(std::string_view block) { return parser_->feed(block, false); }

PropertyListResult PropertyListReader::finish() { return parser_->finish(); }

}  // namespace VelWhiteBoard
