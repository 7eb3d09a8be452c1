// The properties of records as Python sees them, by the library's own table of properties.
#pragma once

#include <VelWhiteBoard/foundation/records/record.h>
#include <pybind11/pybind11.h>
#include <string>

namespace bindings {

/// The name of a property's kind, as in docs/records.md.
const char* nameOfKind(VelWhiteBoard::PropertyKind kind);

/// The value of a property; `None` when it is absent. Lists are new, the records in them shared.
pybind11::object propertyOf(const VelWhiteBoard::Record& record,
                            const VelWhiteBoard::Property& property);

/// Sets a property. `None` makes a text, path, array or list of records absent. A value that the
/// property cannot hold is a TypeError, ValueError or OverflowError, and changes nothing.
void setProperty(VelWhiteBoard::Record& record, const VelWhiteBoard::Property& property,
                 pybind11::handle value);

/// The class and the properties that are not at their initial value.
std::string representationOf(const VelWhiteBoard::Record& record);

}  // namespace bindings
