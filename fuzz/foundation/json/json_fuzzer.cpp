// Any bytes as JSON text, as a dictionary and as an archive: a record that comes out goes through
// each form and comes back equal.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/services/resources.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/media_lists.h"

#include "fuzz/check.h"

namespace {

using namespace VelWhiteBoard;
using fuzz::require;

/// The archive keeps everything, whatever the record holds.
void requireArchiveRoundTrip(const Record& record) {
  Coder archive;
  record.encodeWithCoder(archive);
  const auto same = record.recordClass().create();
  decodeWithCoder(*same, Coder(archive.data()));
  require(same->isEqual(record), "a record comes back from its archive");
  require(same->hash() == record.hash(), "equal records have equal hashes");
}

/// The record that comes of the record's own text. A text loses what JSON cannot say, but only
/// once.
std::shared_ptr<Record> throughText(const Record& record, const RecordClass& asked) {
  const std::string text = modelToJSONString(record);
  require(Value::accept(text), "a record's text is JSON");
  const auto same = recordWithJSON(asked, text);
  require(same != nullptr, "a record's text is a JSON object");
  const auto third = recordWithJSON(asked, modelToJSONString(*same));
  require(third != nullptr && third->isEqual(*same), "the second round changes nothing");
  return same;
}

void requireRoundTrips(const Record& record, const RecordClass& asked) {
  require(fuzz::isFinite(record), "JSON text has no number that is not finite");
  const auto fromText = throughText(record, asked);
  const auto fromDictionary = recordWithDictionary(asked, modelToJSONObject(record));
  require(fromText->isEqual(*fromDictionary), "text and dictionary give the same record");
  if (fuzz::keepsItsClass(record, asked)) {
    require(fromText->isEqual(record), "a record comes back from its text");
  }
  requireArchiveRoundTrip(record);
  require(!record.description().empty(), "a record has a description");
}

void tryText(const RecordClass& asked, std::string_view text, const Value& parsed) {
  if (const auto record = recordWithJSON(asked, text)) {
    requireRoundTrips(*record, asked);
    // Both parsers must agree. They may drop different values that are nested too deep.
    if (parsed.is_object() && !nestsTooDeep(parsed)) {
      const auto other = recordWithDictionary(asked, parsed.get_ref<const Dictionary&>());
      require(other->isEqual(*record), "text and dictionary give the same record");
    }
  }
  for (const auto& record : recordsWithJSON(asked, text)) requireRoundTrips(*record, asked);
}

void tryArchive(const RecordClass& asked, const Coder& archive) {
  const auto record = asked.create();
  decodeWithCoder(*record, archive);
  requireArchiveRoundTrip(*record);
  // Of what the archive says of the type, the text may make a record of another class.
  throughText(*record, asked);
  const auto other = recordWithDictionary(asked, archive.values());
  requireArchiveRoundTrip(*other);
  throughText(*other, asked);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  const Value parsed = Value::parse(text, nullptr, false);
  const Coder archive(text);
  const std::string bytes = archive.data();
  require(Coder(bytes).data() == bytes, "an archive comes back from its bytes");
  for (const RecordClass* asked :
       {&VelWbBaseVector::ownClass(), &VelWbVecSwitchPage::ownClass(),
        &VelWbVecMediaList::ownClass(), &VelWhiteBoardResource::ownClass()}) {
    tryText(*asked, text, parsed);
    tryArchive(*asked, archive);
  }
  return 0;
}
